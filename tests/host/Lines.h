// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_LINES_H_
#define ZVEX_TESTS_HOST_LINES_H_

#include <SkStream.h>
#include <gtest/gtest.h>
#include <hb.h>
#include <hwui/MinikinUtils.h>
#include <unicode/unistr.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Fonts.h"
#include "platform/host/FontFace.h"

// Lines of text to lay out, from files of data and from code.
namespace hosttest {

using minikin::Bidi;
using minikin::Font;
using minikin::FontFamily;
using minikin::FontStyle;
using minikin::Layout;
using minikin::MinikinRect;
using FamilyPtr = std::shared_ptr<FontFamily>;
using FontPtr = std::shared_ptr<minikin::MinikinFont>;
using TypefacePtr = std::unique_ptr<android::Typeface>;

inline std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    for (size_t begin = 0; begin <= text.size(); begin += parts.back().size() + 1) {
        parts.push_back(text.substr(begin, std::min(text.find(separator, begin), text.size()) - begin));
    }
    return parts;
}

// The rows of a table of tab-separated columns, without those that start with #.
inline std::vector<std::vector<std::string>> rowsOf(const std::string& path) {
    std::vector<std::vector<std::string>> rows;
    for (const std::string& line : split(fonts::readFile(path.c_str()), '\n')) {
        if (!line.empty() && line[0] != '#') rows.push_back(split(line, '\t'));
    }
    EXPECT_FALSE(rows.empty()) << path;
    return rows;
}

// The bytes must outlive the font.
template <typename Bytes>
FontPtr fontOf(const Bytes& bytes, int index = 0) {
    const sk_sp<SkTypeface> face =
        SkTypeface::MakeFromStream(new SkMemoryStream(bytes.data(), bytes.size()), index);
    return std::make_shared<android::MinikinFontSkia>(face, bytes.data(), bytes.size(), index,
                                                      std::vector<minikin::FontVariation>());
}

// A font by file name and, after #, its index in a collection; one object for each font. "-" means none.
inline FontPtr fontNamed(const std::string& name) {
    static auto* const made = new std::map<std::string, FontPtr>;
    static auto* const files = new std::map<std::string, std::string>;
    FontPtr& font = (*made)[name];
    if (font || name == "-") return font;
    const std::vector<std::string> parts = split(name, '#');
    std::string& bytes = (*files)[parts[0]];
    for (const char* folder :
         {"truetype/dejavu/", "truetype/noto/", "opentype/noto/", "truetype/roboto/unhinted/RobotoTTF/"}) {
        if (bytes.empty()) bytes = fonts::readFile(("/usr/share/fonts/" + (folder + parts[0])).c_str());
    }
    EXPECT_FALSE(bytes.empty()) << "font missing, run scripts/setup: " << name;
    return font = fontOf(bytes, parts.size() > 1 ? std::atoi(parts[1].c_str()) : 0);
}

inline FontPtr roboto() {
    return fontNamed("Roboto-Regular.ttf");
}
inline FontPtr dejavu() {
    return fontNamed("DejaVuSans.ttf");
}
inline FontPtr hebrew() {
    return fontNamed("NotoSansHebrew-Regular.ttf");
}
inline FontPtr emoji() {
    return fontNamed("NotoColorEmoji.ttf");
}

inline const host::FontFace& faceOf(const minikin::MinikinFont* font) {
    return *static_cast<const android::MinikinFontSkia*>(font)->GetSkTypeface()->face();
}

inline FamilyPtr familyOf(const FontPtr& font) {
    std::vector<Font> fonts;
    fonts.push_back(Font::Builder(font).setStyle(FontStyle(400, FontStyle::Slant::UPRIGHT)).build());
    return std::make_shared<FontFamily>(std::move(fonts));
}

inline TypefacePtr typefaceOf(std::vector<FamilyPtr> families, int weight = 400, int italic = 0) {
    return TypefacePtr(android::Typeface::createFromFamilies(std::move(families), weight, italic));
}

inline android::Paint paintOf(float size) {
    android::Paint paint;
    paint.setTextSize(size);
    paint.setFlags(1);
    return paint;
}

inline Layout layRange(const std::u16string& text, size_t start, size_t end, const TypefacePtr& typeface,
                       const android::Paint& paint, Bidi bidi = Bidi::DEFAULT_LTR) {
    return android::MinikinUtils::doLayout(&paint, bidi, typeface.get(),
                                           reinterpret_cast<const uint16_t*>(text.data()), start, end - start,
                                           text.size(), nullptr);
}

inline Layout layLine(const std::u16string& text, const TypefacePtr& typeface, const android::Paint& paint) {
    return layRange(text, 0, text.size(), typeface, paint);
}

// From the character map, without shaping.
inline unsigned nominalGlyph(const minikin::MinikinFont* font, char32_t character) {
    hb_font_t* hbFont = hb_font_create(faceOf(font).hbFace());
    hb_codepoint_t glyph = 0;
    hb_font_get_nominal_glyph(hbFont, character, &glyph);
    hb_font_destroy(hbFont);
    return glyph;
}

// A line by named fields. `fonts` has families, separated by commas. A family has fonts, separated by +, each
// written as file:locales:variant:style, where style is a weight, with i after it for italic.
struct Line {
    using Fields = std::map<std::string, std::string>;

    explicit Line(const Fields& fields) {
        const auto field = [&fields](const char* name) {
            const auto found = fields.find(name);
            return found == fields.end() ? std::string() : found->second;
        };
        const auto number = [&field](const char* name, double standard) {
            return field(name).empty() ? static_cast<float>(standard)
                                       : std::strtof(field(name).c_str(), nullptr);
        };
        std::vector<FamilyPtr> families;
        for (const std::string& family : split(field("fonts"), ',')) {
            std::vector<Font> members;
            std::vector<std::string> parts;
            for (const std::string& member : split(family, '+')) {
                parts = split(member + ":::", ':');
                fonts.push_back(fontNamed(parts[0]));
                const bool italic = parts[3].find('i') != std::string::npos;
                const int weight = parts[3].empty() ? 400 : std::atoi(parts[3].c_str());
                const FontStyle style(static_cast<uint16_t>(weight),
                                      italic ? FontStyle::Slant::ITALIC : FontStyle::Slant::UPRIGHT);
                members.push_back(Font::Builder(fonts.back()).setStyle(style).build());
            }
            families.push_back(std::make_shared<FontFamily>(
                minikin::registerLocaleList(parts[1]),
                static_cast<FontFamily::Variant>(std::atoi(parts[2].c_str())), std::move(members)));
        }
        typeface = typefaceOf(std::move(families), static_cast<int>(number("weight", 400)),
                              static_cast<int>(number("italic", 0)));
        paint.setTextSize(number("size", 32));
        paint.setTextScaleX(number("scaleX", 1));
        paint.setTextSkewX(number("skewX", 0));
        paint.setFlags(static_cast<uint32_t>(number("flags", 1)));
        paint.setLetterSpacing(number("letterSpacing", 0));
        paint.setFontFeatureSettings(field("features"));
        paint.setMinikinLocaleListId(minikin::registerLocaleList(field("locales")));
        paint.setFamilyVariant(static_cast<FontFamily::Variant>(number("variant", 0)));
        bidi = static_cast<Bidi>(number("bidi", field("rtl") == "1" ? 3 : 2));
        const icu::UnicodeString units = icu::UnicodeString::fromUTF8(field("text")).unescape();
        text.assign(units.getBuffer(), static_cast<size_t>(units.length()));
        start = static_cast<size_t>(number("start", 0));
        end = static_cast<size_t>(number("end", static_cast<double>(text.size())));
    }

    Layout layOut() const { return layRange(text, start, end, typeface, paint, bidi); }
    size_t fontAt(const Layout& layout, int i) const {
        size_t font = 0;
        while (font < fonts.size() && fonts[font].get() != layout.getFont(i)) font++;
        return font;
    }

    std::vector<FontPtr> fonts;
    TypefacePtr typeface;
    android::Paint paint;
    Bidi bidi;
    std::u16string text;
    size_t start, end;
};

// The lines of a folder's cases.tsv, by the names in its first row.
inline std::vector<Line::Fields> casesOf(const std::string& folder) {
    const std::string path = ZVEX_HOST_DATA "/" + folder + "/cases.tsv";
    const std::vector<std::string> names = split(split(fonts::readFile(path.c_str()), '\n')[0], '\t');
    std::vector<Line::Fields> cases;
    for (const std::vector<std::string>& row : rowsOf(path)) {
        cases.emplace_back();
        for (size_t i = 0; i < names.size(); i++) cases.back()[names[i]] = row.at(i);
        cases.back()["name"] = row[0];  // the first column's name begins with the comment mark
    }
    return cases;
}

}  // namespace hosttest

#endif  // ZVEX_TESTS_HOST_LINES_H_
