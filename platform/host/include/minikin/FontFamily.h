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

// A font with its style within its family. Move-only; immutable once built.
class Font {
public:
    // Collects a font's properties. The setters return the builder.
    class Builder {
    public:
        explicit Builder(const std::shared_ptr<MinikinFont>& typeface) : mTypeface(typeface) {}

        // Set both or one; weights are 1 to 1000.
        Builder& setStyle(FontStyle style);
        Builder& setWeight(uint16_t weight);
        Builder& setSlant(FontStyle::Slant slant);

        // Reads from the font file what was not set. A null typeface, or one without usable bytes, makes a
        // font that families skip.
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

// A font chosen for a style, and the parts of the style that it lacks.
struct FakedFont {
    const Font* font = nullptr;  // owned by its family
    FontFakery fakery;           // what drawing must add
};

// Fonts of one design in several weights and slants. Immutable; any number of threads may use one object.
class FontFamily {
public:
    // For scripts with two designs: ELEGANT keeps tall shapes, COMPACT fits Latin line heights.
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

    // The font closest to the style: a weight difference of 100 counts 1, the wrong slant 2, and the earlier
    // font wins a tie. Fake bold is set when the wanted weight is at least 600 and exceeds the font's by at
    // least 200, fake italic when italic is wanted and the font is upright. A null font in a family without
    // usable ones.
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
