// SPDX-License-Identifier: Apache-2.0
#include <hb-ot.h>
#include <minikin/FontCollection.h>
#include <minikin/FontFamily.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <utility>

#include "platform/host/ShapingFont.h"
#include "platform/host/WordCache.h"

namespace minikin {
namespace {

// How far a font is from the wanted style.
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

void FontFamily::appendKey(std::string* key, std::vector<uint32_t>* faceIds) const {
    const auto put = [key](uint32_t number) {
        key->append(reinterpret_cast<const char*>(&number), sizeof number);
    };
    put(mLocaleListId);
    put(static_cast<uint32_t>(mVariant));
    put(static_cast<uint32_t>(mFonts.size()));
    for (const Font& font : mFonts) {
        faceIds->push_back(font.shaping()->face->uniqueId());
        put(faceIds->back());
        put(font.style().weight());
        put(font.style().slant() == FontStyle::Slant::ITALIC ? 1 : 0);
    }
}

FontCollection::FontCollection(const std::vector<std::shared_ptr<FontFamily>>& families) {
    std::string key;
    std::vector<uint32_t> faceIds;
    for (const std::shared_ptr<FontFamily>& family : families) {
        if (!family || !family->getClosestMatch(FontStyle()).font) continue;
        mFamilies.push_back(family);
        family->appendKey(&key, &faceIds);
    }
    mId = host::numberOfCollection(key, faceIds);
}

}  // namespace minikin
