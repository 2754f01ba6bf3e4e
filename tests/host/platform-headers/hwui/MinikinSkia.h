// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <SkPaint.h>
#include <SkRefCnt.h>
#include <SkTypeface.h>
#include <minikin/MinikinFont.h>

#include <cstddef>
#include <vector>

namespace android {

class MinikinFontSkia : public minikin::MinikinFont {
public:
    MinikinFontSkia(sk_sp<SkTypeface> typeface, const void* fontData, size_t fontSize, int ttcIndex,
                    const std::vector<minikin::FontVariation>& axes);
    ~MinikinFontSkia() override;

    sk_sp<SkTypeface> RefSkTypeface() const;
    static void populateSkPaint(SkPaint* paint, const minikin::MinikinFont* font, minikin::FontFakery fakery);
};

}  // namespace android
