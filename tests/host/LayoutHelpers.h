// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_LAYOUTHELPERS_H_
#define ZVEX_TESTS_HOST_LAYOUTHELPERS_H_

#include <SkStream.h>
#include <gtest/gtest.h>
#include <hb.h>
#include <hwui/MinikinUtils.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Fonts.h"
#include "platform/host/FontFace.h"

// Short words for tests of layout: families out of font files, a line out of a text.
namespace hosttest {

using minikin::Bidi;
using minikin::Font;
using minikin::FontFamily;
using minikin::FontStyle;
using minikin::Layout;
using minikin::MinikinRect;
using FamilyPtr = std::shared_ptr<FontFamily>;
using FontPtr = std::shared_ptr<minikin::MinikinFont>;

constexpr FontStyle kRegular(400, FontStyle::Slant::UPRIGHT);

// One object for a file and index.
inline FontPtr fontOf(fonts::Role role, int index = 0) {
    static auto* const made = new std::map<std::pair<fonts::Role, int>, FontPtr>;
    FontPtr& font = (*made)[{role, index}];
    if (!font) {
        const std::vector<uint8_t>& bytes = fonts::bytes(role);
        auto* stream = new SkMemoryStream(bytes.data(), bytes.size());
        sk_sp<SkTypeface> typeface = SkTypeface::MakeFromStream(stream, index);
        EXPECT_TRUE(typeface) << fonts::path(role);
        font = std::make_shared<android::MinikinFontSkia>(typeface, bytes.data(), bytes.size(), index,
                                                          std::vector<minikin::FontVariation>());
    }
    return font;
}

// fontOf() by a short name.
struct FontName {
    fonts::Role role;
    int index = 0;
    FontPtr operator()() const { return fontOf(role, index); }
};
constexpr FontName roboto{fonts::Role::kLatinSmall}, dejavu{fonts::Role::kLatin},
    hebrew{fonts::Role::kHebrew}, arabic{fonts::Role::kArabic}, devanagari{fonts::Role::kDevanagari},
    thai{fonts::Role::kThai}, symbols{fonts::Role::kSymbols}, emoji{fonts::Role::kEmoji};
constexpr FontName japanese{fonts::Role::kCollection, 0}, korean{fonts::Role::kCollection, 1},
    chinese{fonts::Role::kCollection, 2};

inline const host::FontFace& faceOf(const minikin::MinikinFont* font) {
    return *static_cast<const android::MinikinFontSkia*>(font)->GetSkTypeface()->face();
}

inline FamilyPtr familyOf(const FontPtr& font, const char* locales = "",
                          FontFamily::Variant variant = FontFamily::Variant::DEFAULT,
                          FontStyle style = kRegular) {
    std::vector<Font> fonts;
    fonts.push_back(Font::Builder(font).setStyle(style).build());
    return std::make_shared<FontFamily>(minikin::registerLocaleList(locales), variant, std::move(fonts));
}

using TypefacePtr = std::unique_ptr<android::Typeface>;

inline TypefacePtr typefaceOf(std::vector<FamilyPtr> families, int weight = 400, int italic = 0) {
    return TypefacePtr(android::Typeface::createFromFamilies(std::move(families), weight, italic));
}

inline android::Paint paintOf(float size, uint32_t flags = 1) {
    android::Paint paint;
    paint.setTextSize(size);
    paint.setFlags(flags);
    return paint;
}

inline Layout layRange(const std::u16string& text, size_t start, size_t end, const TypefacePtr& typeface,
                       const android::Paint& paint, Bidi bidi = Bidi::DEFAULT_LTR) {
    return android::MinikinUtils::doLayout(&paint, bidi, typeface.get(),
                                           reinterpret_cast<const uint16_t*>(text.data()), start, end - start,
                                           text.size(), nullptr);
}

inline Layout layLine(const std::u16string& text, const TypefacePtr& typeface, const android::Paint& paint,
                      Bidi bidi = Bidi::DEFAULT_LTR) {
    return layRange(text, 0, text.size(), typeface, paint, bidi);
}

inline std::vector<unsigned> glyphsOf(const Layout& layout) {
    std::vector<unsigned> glyphs;
    for (int i = 0; i < static_cast<int>(layout.nGlyphs()); i++) glyphs.push_back(layout.getGlyphId(i));
    return glyphs;
}

inline std::vector<float> pensOf(const Layout& layout) {
    std::vector<float> pens;
    for (int i = 0; i < static_cast<int>(layout.nGlyphs()); i++) pens.push_back(layout.getX(i));
    return pens;
}

// The glyphs of single characters, one by one as the character map has them; no shaping.
inline std::vector<unsigned> nominalGlyphs(const FontPtr& font, const std::u32string& characters) {
    hb_font_t* hbFont = hb_font_create(faceOf(font.get()).hbFace());
    std::vector<unsigned> glyphs;
    for (const char32_t c : characters) {
        hb_codepoint_t glyph = 0;
        hb_font_get_nominal_glyph(hbFont, c, &glyph);
        glyphs.push_back(glyph);
    }
    hb_font_destroy(hbFont);
    return glyphs;
}

// For each glyph, which of the fonts it comes from ("0" the first, "?" none of them), one digit for a run of
// glyphs of one font.
inline std::string fontsOf(const Layout& layout, const std::vector<FontPtr>& known) {
    std::string names;
    for (int i = 0; i < static_cast<int>(layout.nGlyphs()); i++) {
        size_t index = 0;
        while (index < known.size() && known[index].get() != layout.getFont(i)) index++;
        const char name = index < known.size() ? static_cast<char>('0' + index) : '?';
        if (names.empty() || names.back() != name) names += name;
    }
    return names;
}

}  // namespace hosttest

#endif  // ZVEX_TESTS_HOST_LAYOUTHELPERS_H_
