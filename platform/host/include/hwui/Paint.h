// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_HWUI_PAINT_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_HWUI_PAINT_H_

#include <SkPaint.h>
#include <minikin/FontFamily.h>
#include <minikin/LocaleList.h>

#include <cstdint>
#include <string>

namespace android {

// SkPaint with the settings that layout needs as well. Copies are independent; one thread at a time uses an
// object.
class Paint : public SkPaint {
public:
    Paint() = default;
    explicit Paint(const SkPaint& paint) : SkPaint(paint) {}

    // Space added to every cluster, in ems; 0 at the start, may be negative.
    void setLetterSpacing(float letterSpacing) { mLetterSpacing = letterSpacing; }
    float getLetterSpacing() const { return mLetterSpacing; }

    // OpenType features: comma-separated "tag", "tag=value", "-tag" or "'tag' value"; malformed entries, and
    // those for a range of the text, are skipped.
    void setFontFeatureSettings(const std::string& settings) { mFontFeatureSettings = settings; }
    const std::string& getFontFeatureSettings() const { return mFontFeatureSettings; }

    // From minikin::registerLocaleList; 0, the empty list, at the start.
    void setMinikinLocaleListId(uint32_t localeListId) { mMinikinLocaleListId = localeListId; }
    uint32_t getMinikinLocaleListId() const { return mMinikinLocaleListId; }

    // DEFAULT at the start.
    void setFamilyVariant(minikin::FontFamily::Variant variant) { mFamilyVariant = variant; }
    minikin::FontFamily::Variant getFamilyVariant() const { return mFamilyVariant; }

private:
    float mLetterSpacing = 0;
    std::string mFontFeatureSettings;
    uint32_t mMinikinLocaleListId = 0;
    minikin::FontFamily::Variant mFamilyVariant = minikin::FontFamily::Variant::DEFAULT;
};

}  // namespace android

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_HWUI_PAINT_H_
