// SPDX-License-Identifier: Apache-2.0
#include <hwui/MinikinUtils.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "platform/host/LayoutBuilder.h"

namespace android {
namespace {

host::GlyphStyle blank(const host::GlyphStyle& style) {
    host::GlyphStyle result;
    result.linear = style.linear;
    return result;
}

}  // namespace

minikin::Layout MinikinUtils::doLayout(const Paint* paint, minikin::Bidi bidiFlags, const Typeface* typeface,
                                       const uint16_t* buf, size_t start, size_t count, size_t bufSize,
                                       minikin::MeasuredText*) {
    if (!paint || !typeface || !typeface->fFontCollection || !buf) return minikin::Layout();
    const size_t size = std::min(bufSize, static_cast<size_t>(INT32_MAX));
    const size_t begin = std::min(start, size);
    const size_t end = begin + std::min(count, size - begin);

    host::LayoutRequest request;
    request.collection = typeface->fFontCollection.get();
    request.style = typeface->fStyle;
    request.glyph.size = paint->getTextSize();
    request.glyph.scaleX = paint->getTextScaleX();
    request.glyph.skewX = paint->getTextSkewX();
    request.glyph.fakeBold = paint->isFakeBoldText();
    request.glyph.antiAlias = paint->isAntiAlias();
    request.glyph.subpixel = paint->isSubpixelText();
    request.glyph.linear = paint->isLinearText();
    const bool wholeSize = request.glyph.rendering == host::Rendering::Phone && !request.glyph.linear;
    if (wholeSize) request.glyph.size = std::trunc(request.glyph.size);
    if (!host::drawable(request.glyph)) request.glyph = blank(request.glyph);
    request.letterSpacing = std::isfinite(paint->getLetterSpacing()) ? paint->getLetterSpacing() : 0;
    request.localeListId = paint->getMinikinLocaleListId();
    request.variant = paint->getFamilyVariant();
    request.features = paint->getFontFeatureSettings();
    return host::LayoutBuilder(request).build(bidiFlags, buf, begin, end, size);
}

}  // namespace android
