// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PLATFORM_HEADERS_HWUI_MINIKINSKIA_H_
#define ZVEX_TESTS_HOST_PLATFORM_HEADERS_HWUI_MINIKINSKIA_H_

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

#endif  // ZVEX_TESTS_HOST_PLATFORM_HEADERS_HWUI_MINIKINSKIA_H_
