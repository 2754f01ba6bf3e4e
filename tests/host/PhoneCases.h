// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PHONECASES_H_
#define ZVEX_TESTS_HOST_PHONECASES_H_

#include <hwui/MinikinUtils.h>
#include <unicode/ustring.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "LayoutHelpers.h"

// Lines of text with what the phone's own engine made of them; phone/README.md describes the files.
namespace phone {

inline std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    for (size_t begin = 0; begin <= text.size();) {
        const size_t end = std::min(text.find(separator, begin), text.size());
        parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

// The rows of a table of tab-separated columns; lines that begin with # are left out.
inline std::vector<std::vector<std::string>> rowsOf(const std::string& path) {
    std::vector<std::vector<std::string>> rows;
    for (const std::string& line : split(fonts::readFile(path.c_str()), '\n')) {
        if (!line.empty() && line[0] != '#') rows.push_back(split(line, '\t'));
    }
    return rows;
}

// A font by file name and, after #, its index in a collection; one object for each.
inline hosttest::FontPtr fontNamed(const std::string& name) {
    static auto* const made = new std::map<std::string, hosttest::FontPtr>;
    static auto* const files = new std::map<std::string, std::string>;
    hosttest::FontPtr& font = (*made)[name];
    if (font) return font;
    const size_t hash = std::min(name.find('#'), name.size());
    const int index = hash < name.size() ? std::atoi(name.c_str() + hash + 1) : 0;
    std::string& bytes = (*files)[name.substr(0, hash)];
    for (const char* folder :
         {"truetype/dejavu", "truetype/noto", "opentype/noto", "truetype/roboto/unhinted/RobotoTTF"}) {
        const std::string path = std::string("/usr/share/fonts/") + folder + "/" + name.substr(0, hash);
        if (bytes.empty()) bytes = fonts::readFile(path.c_str());
    }
    EXPECT_FALSE(bytes.empty()) << "font missing, run scripts/setup: " << name;
    sk_sp<SkTypeface> typeface =
        SkTypeface::MakeFromStream(new SkMemoryStream(bytes.data(), bytes.size()), index);
    font = std::make_shared<android::MinikinFontSkia>(typeface, bytes.data(), bytes.size(), index,
                                                      std::vector<minikin::FontVariation>());
    return font;
}

// A row of cases.tsv.
struct Case {
    std::string name;
    std::vector<hosttest::FontPtr> fonts;
    hosttest::TypefacePtr typeface;
    android::Paint paint;
    minikin::Bidi bidi;
    std::u16string text;

    explicit Case(const std::vector<std::string>& row) : name(row[0]) {
        const auto number = [&row](size_t column) { return std::strtof(row[column].c_str(), nullptr); };
        std::vector<hosttest::FamilyPtr> families;
        for (const std::string& font : split(row[1], ',')) {
            fonts.push_back(fontNamed(font));
            families.push_back(hosttest::familyOf(fonts.back()));
        }
        typeface = hosttest::typefaceOf(families, static_cast<int>(number(9)), static_cast<int>(number(10)));
        paint.setTextSize(number(2));
        paint.setTextScaleX(number(3));
        paint.setTextSkewX(number(4));
        paint.setFlags(static_cast<uint32_t>(number(5)));
        paint.setLetterSpacing(number(6));
        paint.setFontFeatureSettings(row[7]);
        paint.setMinikinLocaleListId(minikin::registerLocaleList(row[8]));
        bidi = row[11] == "1" ? minikin::Bidi::DEFAULT_RTL : minikin::Bidi::DEFAULT_LTR;
        UErrorCode status = U_ZERO_ERROR;
        int32_t length = 0;
        text.resize(row[12].size());
        u_strFromUTF8(&text[0], static_cast<int32_t>(text.size()), &length, row[12].data(),
                      static_cast<int32_t>(row[12].size()), &status);
        text.resize(static_cast<size_t>(length));
    }

    minikin::Layout layOut() const { return hosttest::layLine(text, typeface, paint, bidi); }

    // The layout as a row of layouts.tsv.
    std::vector<std::string> print(const minikin::Layout& layout) const {
        char buffer[128];
        const auto format = [&buffer](const char* form, auto... values) {
            std::snprintf(buffer, sizeof buffer, form, values...);
            return std::string(buffer);
        };
        minikin::MinikinRect bounds;
        layout.getBounds(&bounds);
        const auto wide = [](float v) { return static_cast<double>(v); };
        std::string glyphs;
        for (int i = 0; i < static_cast<int>(layout.nGlyphs()); i++) {
            size_t font = 0;
            while (font < fonts.size() && fonts[font].get() != layout.getFont(i)) font++;
            glyphs += format(i == 0 ? "%zu:%u:%.3f:%.3f" : " %zu:%u:%.3f:%.3f", font, layout.getGlyphId(i),
                             wide(layout.getX(i)), wide(layout.getY(i)));
        }
        return {name, format("%.4f", wide(layout.getAdvance())),
                format("%.3f,%.3f,%.3f,%.3f", wide(bounds.mLeft), wide(bounds.mTop), wide(bounds.mRight),
                       wide(bounds.mBottom)),
                glyphs};
    }
};

// What differs first between two rows of layouts.tsv; numbers may differ by 1/256 pixel. Empty when nothing
// does.
inline std::string difference(const std::vector<std::string>& expected,
                              const std::vector<std::string>& actual) {
    const auto numbers = [](const std::string& text) {
        std::vector<double> values;
        const char* at = text.c_str();
        while (*at != 0) {
            char* end;
            values.push_back(std::strtod(at, &end));
            at = *end != 0 ? end + 1 : end;
        }
        return values;
    };
    static const char* const kColumns[] = {"name", "advance", "bounds", "glyphs"};
    for (size_t column = 1; column < 4; column++) {
        const std::vector<double> a = numbers(expected[column]), b = numbers(actual[column]);
        bool equal = a.size() == b.size();
        for (size_t i = 0; equal && i < a.size(); i++) equal = std::fabs(a[i] - b[i]) <= 0.004;
        if (!equal) {
            return std::string(kColumns[column]) + "\n  phone " + expected[column] + "\n  here  " +
                   actual[column];
        }
    }
    return "";
}

}  // namespace phone

#endif  // ZVEX_TESTS_HOST_PHONECASES_H_
