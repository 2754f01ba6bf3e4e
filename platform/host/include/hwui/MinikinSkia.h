// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_HWUI_MINIKINSKIA_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_HWUI_MINIKINSKIA_H_

#include <SkPaint.h>
#include <SkRefCnt.h>
#include <SkTypeface.h>
#include <minikin/MinikinFont.h>

#include <cstddef>
#include <vector>

namespace android {

// A typeface as a font for layout.
class MinikinFontSkia : public minikin::MinikinFont {
public:
    // Holds a reference to the typeface; with a null one the font is not usable. `fontData`, `fontSize` and
    // `ttcIndex` describe the typeface's source and are only stored. The typeface has its axis values, so
    // `axes` is not kept.
    MinikinFontSkia(sk_sp<SkTypeface> typeface, const void* fontData, size_t fontSize, int ttcIndex,
                    const std::vector<minikin::FontVariation>& axes);
    ~MinikinFontSkia() override;

    const void* GetFontData() const override { return mFontData; }
    size_t GetFontSize() const override { return mFontSize; }
    int GetFontIndex() const override { return mTtcIndex; }

    // Null for a font that is not usable. The second takes a reference for the caller.
    SkTypeface* GetSkTypeface() const { return mTypeface.get(); }
    sk_sp<SkTypeface> RefSkTypeface() const { return mTypeface; }

    // What fake italic adds to the skew of a text.
    static constexpr float kFakeItalicSkew = -0.25f;

    // Makes the paint draw with the font: sets the typeface, adds fake bold if asked for, and adds -0.25 to
    // the skew for fake italic. `font` is a MinikinFontSkia.
    static void populateSkPaint(SkPaint* paint, const minikin::MinikinFont* font, minikin::FontFakery fakery);

private:
    const sk_sp<SkTypeface> mTypeface;
    const void* const mFontData;
    const size_t mFontSize;
    const int mTtcIndex;
};

}  // namespace android

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_HWUI_MINIKINSKIA_H_
