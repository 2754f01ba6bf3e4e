// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_FONTFAMILY_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_FONTFAMILY_H_

#include <minikin/FontStyle.h>
#include <minikin/MinikinFont.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace host {
struct ShapingFont;
}

namespace minikin {

// A font with the style it stands for in its family. Move-only; immutable once built.
class Font {
public:
    // Collects what is known of a font. The setters return the builder.
    class Builder {
    public:
        explicit Builder(const std::shared_ptr<MinikinFont>& typeface) : mTypeface(typeface) {}

        // Both, or one: weight 1 to 1000.
        Builder& setStyle(FontStyle style);
        Builder& setWeight(uint16_t weight);
        Builder& setSlant(FontStyle::Slant slant);

        // What was not set is read from the font file. A null typeface, or one whose bytes are no usable
        // font, builds a font that no family takes.
        Font build();

    private:
        std::shared_ptr<MinikinFont> mTypeface;
        uint16_t mWeight = 0;
        FontStyle::Slant mSlant = FontStyle::Slant::UPRIGHT;
        bool mWeightSet = false;
        bool mSlantSet = false;
    };

    Font(Font&&) = default;
    Font& operator=(Font&&) = default;
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;

    // What it was built from; the style set, or else read from the file.
    const std::shared_ptr<MinikinFont>& typeface() const { return mTypeface; }
    FontStyle style() const { return mStyle; }

    // What the port shapes with; null when the font is not usable.
    const std::shared_ptr<const host::ShapingFont>& shaping() const { return mShaping; }

private:
    Font() = default;

    std::shared_ptr<MinikinFont> mTypeface;
    FontStyle mStyle;
    std::shared_ptr<const host::ShapingFont> mShaping;
};

// A font chosen for a style, and what it lacks of that style.
struct FakedFont {
    const Font* font = nullptr;  // owned by its family
    FontFakery fakery;           // what drawing has to add
};

// Fonts of one design in several weights and slants. Immutable; any number of threads may use one object.
class FontFamily {
public:
    // Where a script has a roomy and a tight design: ELEGANT keeps tall shapes, COMPACT fits Latin line
    // heights.
    enum class Variant : uint8_t { DEFAULT = 0, COMPACT = 1, ELEGANT = 2 };

    explicit FontFamily(std::vector<Font>&& fonts);
    FontFamily(Variant variant, std::vector<Font>&& fonts);
    // `localeListId`: what the family is made for, from registerLocaleList. "und-Zsye" marks an emoji family,
    // "und-Zsym" one of symbols in text presentation.
    FontFamily(uint32_t localeListId, Variant variant, std::vector<Font>&& fonts);
    FontFamily(const FontFamily&) = delete;
    FontFamily& operator=(const FontFamily&) = delete;

    // As given; 0 and DEFAULT where they were not.
    uint32_t localeListId() const { return mLocaleListId; }
    Variant variant() const { return mVariant; }

    // The font nearest to the style: a hundred of weight counts 1, the wrong slant 2, the earlier font wins a
    // tie. Fake bold is asked for when the wanted weight is 600 or more and exceeds the font's by 200 or
    // more, fake italic when italic is wanted and the font is upright. No font in a family without usable
    // ones.
    FakedFont getClosestMatch(FontStyle style) const;

    // Adds all that the layout of a text depends on, as bytes, and the fonts' host::FontFace::uniqueId().
    void appendKey(std::string* key, std::vector<uint32_t>* faceIds) const;

private:
    uint32_t mLocaleListId;
    Variant mVariant;
    std::vector<Font> mFonts;  // usable ones only
};

}  // namespace minikin

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_FONTFAMILY_H_
