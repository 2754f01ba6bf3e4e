// SPDX-License-Identifier: Apache-2.0
#include <hb-ot.h>
#include <minikin/FontCollection.h>
#include <minikin/FontFamily.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "platform/host/ShapingFont.h"

namespace minikin {
namespace {

// How far a font is from the style that is wanted.
int distance(FontStyle wanted, FontStyle actual) {
    return std::abs(wanted.weight() / 100 - actual.weight() / 100) +
           (wanted.slant() != actual.slant() ? 2 : 0);
}

FontFakery fakeryFor(FontStyle wanted, FontStyle actual) {
    const bool bold = wanted.weight() >= 600 && wanted.weight() - actual.weight() >= 200;
    const bool italic =
        wanted.slant() == FontStyle::Slant::ITALIC && actual.slant() == FontStyle::Slant::UPRIGHT;
    return FontFakery(bold, italic);
}

uint64_t nextCollectionId() {
    static std::atomic<uint64_t> last{0};
    return ++last;
}

}  // namespace

MinikinFont::~MinikinFont() = default;

Font::Builder& Font::Builder::setStyle(FontStyle style) {
    return setWeight(style.weight()).setSlant(style.slant());
}

Font::Builder& Font::Builder::setWeight(uint16_t weight) {
    mWeight = weight;
    mWeightSet = true;
    return *this;
}

Font::Builder& Font::Builder::setSlant(FontStyle::Slant slant) {
    mSlant = slant;
    mSlantSet = true;
    return *this;
}

Font Font::Builder::build() {
    Font font;
    font.mTypeface = mTypeface;
    font.mShaping = host::ShapingFont::open(mTypeface.get());
    uint16_t weight = mWeightSet ? mWeight : FontStyle().weight();
    FontStyle::Slant slant = mSlantSet ? mSlant : FontStyle().slant();
    if (font.mShaping && !mWeightSet) {
        const float stated = hb_style_get_value(font.mShaping->hbFont, HB_STYLE_TAG_WEIGHT);
        weight = static_cast<uint16_t>(std::lround(std::clamp(stated, 1.0f, 1000.0f)));
    }
    if (font.mShaping && !mSlantSet && hb_style_get_value(font.mShaping->hbFont, HB_STYLE_TAG_ITALIC) > 0) {
        slant = FontStyle::Slant::ITALIC;
    }
    font.mStyle = FontStyle(weight, slant);
    return font;
}

FontFamily::FontFamily(std::vector<Font>&& fonts) : FontFamily(Variant::DEFAULT, std::move(fonts)) {}

FontFamily::FontFamily(Variant variant, std::vector<Font>&& fonts)
    : FontFamily(0, variant, std::move(fonts)) {}

FontFamily::FontFamily(uint32_t localeListId, Variant variant, std::vector<Font>&& fonts)
    : mLocaleListId(localeListId), mVariant(variant), mFonts(std::move(fonts)) {
    const auto unusable = [](const Font& font) { return !font.shaping(); };
    mFonts.erase(std::remove_if(mFonts.begin(), mFonts.end(), unusable), mFonts.end());
}

FakedFont FontFamily::getClosestMatch(FontStyle style) const {
    const auto nearer = [style](const Font& a, const Font& b) {
        return distance(style, a.style()) < distance(style, b.style());
    };
    const auto best = std::min_element(mFonts.begin(), mFonts.end(), nearer);
    if (best == mFonts.end()) return FakedFont();
    return FakedFont{&*best, fakeryFor(style, best->style())};
}

FontCollection::FontCollection(const std::vector<std::shared_ptr<FontFamily>>& families)
    : mId(nextCollectionId()) {
    for (const std::shared_ptr<FontFamily>& family : families) {
        if (family && family->getClosestMatch(FontStyle()).font) mFamilies.push_back(family);
    }
}

}  // namespace minikin
