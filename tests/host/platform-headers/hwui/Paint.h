// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PLATFORM_HEADERS_HWUI_PAINT_H_
#define ZVEX_TESTS_HOST_PLATFORM_HEADERS_HWUI_PAINT_H_

#include <SkPaint.h>
#include <minikin/FontFamily.h>

#include <cstdint>
#include <string>

namespace android {

class Paint : public SkPaint {
public:
    Paint();
    Paint(const Paint& paint);
    ~Paint();
    Paint& operator=(const Paint& paint);

    void setLetterSpacing(float letterSpacing);
    float getLetterSpacing() const;
    void setFontFeatureSettings(const std::string& settings);
    std::string getFontFeatureSettings() const;
    void setMinikinLocaleListId(uint32_t id);
    uint32_t getMinikinLocaleListId() const;
    void setFamilyVariant(minikin::FontFamily::Variant variant);
    minikin::FontFamily::Variant getFamilyVariant() const;
};

}  // namespace android

#endif  // ZVEX_TESTS_HOST_PLATFORM_HEADERS_HWUI_PAINT_H_
