// SPDX-License-Identifier: Apache-2.0
#include "text/ZvFontDrawing.h"

#include <SkBitmap.h>
#include <SkCanvas.h>
#include <SkImageInfo.h>
#include <SkPaint.h>
#include <SkTextBlob.h>
#include <hwui/MinikinUtils.h>
#include <hwui/Paint.h>
#include <hwui/Typeface.h>
#include <minikin/FontFamily.h>
#include <minikin/Layout.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "effect/Composite.h"
#include "effect/ZvEffect.h"
#include "effect/ZvGlyph.h"
#include "foundation/Error.h"
#include "foundation/List.h"
#include "foundation/OutOfMemory.h"
#include "foundation/SafeConvert.h"
#include "foundation/ZvString.h"
#include "raster/ZvBitmap.h"
#include "text/DrawTextFunctor.h"
#include "text/FontManager.h"
#include "text/LinePainter.h"
#include "text/ZvLineInfo.h"
#include "text/ZvTextObject.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvFontDrawing";

// Pen positions are 26.6 fixed point; whole pixels beyond 26 bits wrap around.
int32_t toFixed(int32_t pixels) {
    return static_cast<int32_t>(static_cast<uint32_t>(pixels) * 64u);
}

int32_t toPixels(int32_t fixed) {
    return fixed >> 6;  // arithmetic: towards minus infinity
}

// The part of [0, length) that a line covers. Line records come from outside and may be older than the text.
DrawnLines::Range rangeOf(const ZvLineInfo& line, int length) {
    const int start = std::clamp(line.start, 0, length);
    return {start, std::clamp(line.end, start, length), line.direction < 0};
}

using LineImage = DrawnLines::Image;

SkImageInfo coverageInfo(const ZvGlyph& glyph) {
    return SkImageInfo::Make(glyph.width, glyph.height, kAlpha_8_SkColorType, kPremul_SkAlphaType);
}

// The largest image that the canvas accepts.
constexpr size_t kMaxImageBytes = INT32_MAX;

bool refuseImage(const ZvGlyph& glyph) {
    __android_log_print(ANDROID_LOG_ERROR, kTag, "a line of %d x %d pixels is too large, it is left out",
                        static_cast<int>(glyph.width), static_cast<int>(glyph.height));
    return false;
}

// The line's coverage image, not yet drawn: as wide as the advance (not as the ink, so ink beyond the advance
// is cut off), as high as the bounds. Null if memory is short, and, with an error line, when it is too
// large.
LineImage makeLineImage(const minikin::MinikinRect& bounds, float advance) {
    LineImage glyph(tryMake<ZvGlyph>().release());
    if (glyph == nullptr) return nullptr;
    glyph->width = static_cast<uint16_t>(truncateToUnsigned(advance));
    glyph->height = static_cast<uint16_t>(truncateToUnsigned(bounds.mBottom - bounds.mTop));
    glyph->baseline = truncateToInt(-bounds.mTop);
    glyph->left = 0;
    if (size_t{glyph->width} * glyph->height > kMaxImageBytes) {
        refuseImage(*glyph);
        return nullptr;
    }
    glyph->pixels = new (std::nothrow) uint8_t[size_t{glyph->width} * glyph->height];
    if (glyph->pixels == nullptr) {
        markOutOfMemory();
        return nullptr;
    }
    return glyph;
}

// False, with an error line, if the platform refuses the image.
bool drawLineImage(const ZvGlyph& glyph, const minikin::Layout& layout, const minikin::MinikinRect& bounds,
                   android::Paint& paint) {
    if (glyph.width == 0 || glyph.height == 0) return true;
    SkBitmap bitmap;
    if (!bitmap.installPixels(coverageInfo(glyph), glyph.pixels, glyph.width)) return refuseImage(glyph);
    SkCanvas canvas(bitmap);
    canvas.drawColor(0, SkBlendMode::kSrc);
    DrawTextFunctor functor(layout, &canvas, &paint, bounds);
    android::MinikinUtils::forFontRun(layout, &paint, functor);
    return true;
}

// Lays the line out and draws it. Null if there is no image.
LineImage paintLine(const DrawnLines::Range& range, const DrawnLines::LineSource& source,
                    const android::Typeface& typeface, float* advance) {
    android::Paint paint(*source.paint);  // drawing sets it up for each font in turn
    const minikin::Layout layout = android::MinikinUtils::doLayout(
        &paint, range.rightToLeft ? minikin::Bidi::DEFAULT_RTL : minikin::Bidi::DEFAULT_LTR, &typeface,
        source.text, static_cast<size_t>(range.start), static_cast<size_t>(range.end - range.start),
        source.length, nullptr);
    minikin::MinikinRect bounds;
    layout.getBounds(&bounds);
    *advance = layout.getAdvance();
    LineImage glyph = makeLineImage(bounds, *advance);
    if (glyph == nullptr || !drawLineImage(*glyph, layout, bounds, paint)) return nullptr;
    return glyph;
}

}  // namespace

void DrawTextFunctor::operator()(size_t start, size_t end) {
    SkPaint glyphPaint(*paint);
    glyphPaint.setTextAlign(SkPaint::kLeft_Align);
    glyphPaint.setTextEncoding(SkPaint::kGlyphID_TextEncoding);
    glyphPaint.setStyle(SkPaint::kFill_Style);

    const SkRect runBounds = SkRect::MakeLTRB(bounds.mLeft, bounds.mTop, bounds.mRight, bounds.mBottom);
    const int count = static_cast<int>(end - start);
    SkTextBlobBuilder builder;
    const SkTextBlobBuilder::RunBuffer& run = builder.allocRunPos(glyphPaint, count, &runBounds);
    for (int i = 0; i < count; ++i) {
        const int index = static_cast<int>(start) + i;
        run.glyphs[i] = static_cast<uint16_t>(layout.getGlyphId(index));
        run.pos[2 * i] = layout.getX(index);
        run.pos[2 * i + 1] = layout.getY(index);
    }
    canvas->drawTextBlob(builder.make(), -bounds.mLeft, -bounds.mTop, glyphPaint);
}

ZvFontDrawing::ZvFontDrawing() : fontPath(nullptr), glyphList(new (std::nothrow) List) {
    if (glyphList != nullptr && glyphList->Construct() == 0) {
        delete glyphList;
        glyphList = nullptr;
    }
}

ZvFontDrawing::~ZvFontDrawing() {
    delete fontPath;
    ClearGlyphList();
    delete glyphList;
}

bool ZvFontDrawing::SetFontPath(const char* path) {
    if (path == nullptr) return true;
    if (fontPath != nullptr) return fontPath->CompareTo(path) == 0 || fontPath->Set(path) != 0;
    std::unique_ptr<ZvString> made(new (std::nothrow) ZvString);
    if (made == nullptr || made->Construct(path) == 0) return false;
    fontPath = made.release();
    return true;
}

void ZvFontDrawing::ClearGlyphList() {
    if (glyphList == nullptr) return;
    const int count = glyphList->GetCount();
    for (int i = 0; i < count; ++i) {
        auto* glyph = static_cast<ZvGlyph*>(glyphList->Get(i));
        if (!mDrawn.ownsLast(glyph)) DrawnLines::freeImage(glyph);
    }
    glyphList->RemoveAll();
}

int ZvFontDrawing::DrawTextEffect(ZvTextObject* text, ZvBitmap* out) {
    const bool drawn = unlessOutOfMemory(false, [&] {
        if (!drawLines(text, out, Drawing::InLayers)) return true;
        text->GetEffect()->doEffectPostProcessing();
        text->GetEffect()->compositeLayers(out);
        return true;
    });
    // The stack must not keep a bitmap that may be freed.
    if (!drawn && text->GetEffect() != nullptr) text->GetEffect()->setDstBitmap(nullptr);
    return 0;
}

ZvRect ZvFontDrawing::DrawTextWords(ZvTextObject* text, ZvBitmap* out) {
    if (drawLines(text, out, Drawing::AsPicture))
        return text->GetEffect()->drawPicture(PixelOrder::BlueFirst);
    if (text != nullptr && text->GetEffect() != nullptr) text->GetEffect()->setDstBitmap(nullptr);
    if (out != nullptr && out->pixels != nullptr) std::memset(out->pixels, 0, out->byteCount());
    return ZvRect();
}

bool ZvFontDrawing::drawLines(ZvTextObject* text, ZvBitmap* out, Drawing drawing) {
    const ZvString* string = text != nullptr ? text->GetText() : nullptr;
    if (string == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "DrawTextEffect(%p) - text is NULL",
                            static_cast<void*>(this));
        return false;
    }
    int length = -1;
    const std::unique_ptr<uint16_t[]> utf16(string->GetUTF16(length));
    if (utf16 == nullptr) markOutOfMemory();
    if (utf16 == nullptr || length < 1) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "DrawTextEffect(%p) - textLength is 0",
                            static_cast<void*>(this));
        return false;
    }
    ZvEffect* effect = text->GetEffect();
    if (effect == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "DrawTextEffect(%p) - Effect is NULL",
                            static_cast<void*>(this));
        return false;
    }
    if (out == nullptr) return false;

    const android::Paint paint = text->GetPaint();
    effect->addText(text->GetTextColor());
    if (drawing == Drawing::AsPicture) {
        effect->initPicture(out);
    } else {
        effect->initEffect(static_cast<int>(out->width), static_cast<int>(out->height));
        effect->setDstBitmap(out);
    }

    const List* lines = text->GetLineInfo();
    if (lines == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "DrawTextEffect(%p) - lineInfoList is NULL",
                            static_cast<void*>(this));
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED);
        return false;
    }

    const android::Typeface* typeface = typefaceOf(*text);
    if (typeface == nullptr) return false;

    const DrawnLines::LineSource source = {utf16.get(), static_cast<size_t>(length), &paint};
    mergeLines(*lines, source, *typeface, size_t{out->width} * out->height, effect);
    return true;
}

void ZvFontDrawing::mergeLines(const List& lines, const DrawnLines::LineSource& source,
                               const android::Typeface& typeface, size_t keptBytes, ZvEffect* effect) {
    const int leftOffset = effect->getLeftOffset();
    const int topOffset = effect->getTopOffset();
    const int lineCount = lines.GetCount();
    if (lineCount > 0) {
        ClearGlyphList();
        mDrawn.beginLines(source, static_cast<size_t>(lineCount));
    }
    for (int i = 0; i < lineCount; ++i) {
        auto* line = static_cast<ZvLineInfo*>(lines.Get(i));
        if (line == nullptr) continue;
        float advance = 0;
        const DrawnLines::Range range = rangeOf(*line, static_cast<int>(source.length));
        if (lineImage(static_cast<size_t>(i), range, source, typeface, keptBytes, &advance) == nullptr)
            continue;
        const int32_t penX = toFixed(wrapAdd(line->x, leftOffset));
        const int32_t penY = toFixed(wrapAdd(line->y, topOffset));
        _DoRender(penX, penY, glyphList, effect, line->direction);

        // Top and bottom are moved from their current values, so rendering the same lines again moves them
        // again; left and right are computed from the line.
        line->rect.left = toPixels(penX);
        line->rect.top = wrapAdd(line->rect.top, topOffset);
        line->rect.right = wrapAdd(line->rect.left, truncateToInt(advance));
        line->rect.bottom = wrapAdd(line->rect.bottom, topOffset);
    }
}

void ZvFontDrawing::SetTypeface(std::shared_ptr<const android::Typeface> typeface) {
    if (typeface == mOwnTypeface) return;
    mDrawn.forgetTypeface();
    mOwnTypeface = std::move(typeface);
}

void ZvFontDrawing::SetLinePainter(std::shared_ptr<const LinePainter> painter) {
    if (painter == mPainter) return;
    mDrawn.forgetTypeface();
    mPainter = std::move(painter);
}

const android::Typeface* ZvFontDrawing::typefaceOf(const ZvTextObject& text) {
    if (mOwnTypeface != nullptr) return mOwnTypeface.get();
    FontManager& manager = *FontManager::GetInstance();
    const DrawnLines::TypefaceSource source = {fontPath, text.isItalicTextStyle(), manager.GetGeneration()};
    if (const android::Typeface* kept = mDrawn.findTypeface(source)) return kept;

    // The platform cannot make a typeface without any family, so this counts as a failure.
    std::vector<std::shared_ptr<minikin::FontFamily>> families;
    int weight = 400;
    if (!manager.GetMinikinFontFamilies(families, fontPath, weight) || families.empty()) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "DrawTextEffect(%p) - GetMinikinFontFamilies failed",
                            static_cast<void*>(this));
        return nullptr;
    }
    // Boldness comes from the font's name and the paint's fake bold; the bold style bit plays no part.
    std::unique_ptr<const android::Typeface> made(android::Typeface::createFromFamilies(
        std::vector<std::shared_ptr<minikin::FontFamily>>(families), weight, source.italic ? 1 : 0));
    const android::Typeface* typeface = made.get();
    mDrawn.keepTypeface(source, std::move(families), std::move(made));
    return typeface;
}

const ZvGlyph* ZvFontDrawing::lineImage(size_t index, const DrawnLines::Range& range,
                                        const DrawnLines::LineSource& source,
                                        const android::Typeface& typeface, size_t keptBytes, float* advance) {
    ClearGlyphList();
    if (glyphList == nullptr) return nullptr;
    if (ZvGlyph* kept = mDrawn.findLine(index, range, advance)) {
        return glyphList->Add(kept) != 0 ? kept : nullptr;
    }
    LineImage glyph =
        mPainter != nullptr ? mPainter->paint(range, advance) : paintLine(range, source, typeface, advance);
    if (glyph == nullptr) return nullptr;
    if (glyphList->Add(glyph.get()) == 0) {
        markOutOfMemory();
        return nullptr;
    }
    mDrawn.keepLine(index, range, *advance, glyph.get(), keptBytes);
    return glyph.release();  // the list owns it now, or mDrawn
}

void ZvFontDrawing::_DoRender(int x, int y, List* glyphs, ZvEffect* effect, int direction) {
    const int count = glyphs != nullptr ? glyphs->GetCount() : 0;
    if (effect == nullptr) return;
    for (int i = 0; i < count; ++i) {
        auto* glyph = static_cast<ZvGlyph*>(glyphs->Get(direction >= 0 ? i : count - 1 - i));
        if (glyph == nullptr) continue;
        const int32_t left = wrapAdd(glyph->left, toPixels(x));
        const int32_t top = wrapSubtract(toPixels(y), glyph->baseline);
        effect->renderEffectLayer(left, top, glyph);
        x = wrapAdd(x, toFixed(glyph->width));
    }
}

}  // namespace Zvex
