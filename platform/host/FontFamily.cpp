// SPDX-License-Identifier: Apache-2.0
#include <hb-ot.h>
#include <minikin/FontCollection.h>
#include <minikin/FontFamily.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <mutex>
#include <string>
#include <unordered_map>
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

// The number of a collection, from the keys of its families. Numbers are not used again, so forgetting some
// does no harm.
uint64_t numberOf(const std::string& key) {
    constexpr size_t kKeptNumbers = 256;
    static std::mutex mutex;
    static uint64_t last = 0;
    // Never destroyed: text may be laid out while the process ends.
    static auto* const numbers = new std::unordered_map<std::string, uint64_t>;
    const std::lock_guard<std::mutex> lock(mutex);
    if (numbers->size() >= kKeptNumbers) numbers->clear();
    const auto entry = numbers->emplace(key, last + 1);
    if (entry.second) ++last;
    return entry.first->second;
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

std::string FontFamily::key() const {
    std::string key;
    const auto put = [&key](uint32_t number) {
        key.append(reinterpret_cast<const char*>(&number), sizeof number);
    };
    put(mLocaleListId);
    put(static_cast<uint32_t>(mVariant));
    put(static_cast<uint32_t>(mFonts.size()));
    for (const Font& font : mFonts) {
        put(font.shaping()->face->uniqueId());
        put(font.style().weight());
        put(font.style().slant() == FontStyle::Slant::ITALIC ? 1 : 0);
    }
    return key;
}

FontCollection::FontCollection(const std::vector<std::shared_ptr<FontFamily>>& families) {
    std::string key;
    for (const std::shared_ptr<FontFamily>& family : families) {
        if (!family || !family->getClosestMatch(FontStyle()).font) continue;
        mFamilies.push_back(family);
        key += family->key();
    }
    mId = numberOf(key);
}

}  // namespace minikin
