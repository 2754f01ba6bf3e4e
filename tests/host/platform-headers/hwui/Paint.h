// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <SkPaint.h>
#include <minikin/FontFamily.h>

#include <cstdint>
#include <string>

namespace android {

class Paint : public SkPaint {
public:
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
