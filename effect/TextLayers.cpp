// SPDX-License-Identifier: Apache-2.0
#include "effect/TextLayers.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "effect/LayerJoin.h"
#include "effect/PixelOrder.h"
#include "effect/Spread.h"
#include "effect/ZvEffect.h"
#include "effect/ZvGlyph.h"
#include "effect/kernels/Coverage.h"
#include "foundation/OutOfMemory.h"
#include "foundation/SafeConvert.h"
#include "raster/Rects.h"

namespace Zvex {

namespace {

// A layer that is being made for the joined picture.
struct DrawnLayer {
    Spread coverage;                    // made unless a layer before has the same
    ZvRect area;                        // the part of the plane that is drawn, before the layer moves
    std::unique_ptr<ZvBitmap> picture;  // of that area; null if transparent
};

void grow(int* margin, int64_t wanted) {
    *margin = std::max(*margin, clampToInt(wanted));
}

// Makes the rows and columns of the picture outside the box transparent.
void clearOutside(const ZvBitmap& picture, const ZvRect& box) {
    const auto held = [](int at, uint32_t size) {
        return static_cast<size_t>(std::clamp<int64_t>(at, 0, size));
    };
    const size_t left = held(box.left, picture.width), right = held(box.right, picture.width);
    const size_t top = held(box.top, picture.height), bottom = held(box.bottom, picture.height);
    for (size_t y = 0; y < picture.height; ++y) {
        uint8_t* row = picture.pixels + y * picture.width * 4;
        const bool within = y >= top && y < bottom && left < right;
        std::memset(row, 0, (within ? left : picture.width) * 4);
        if (within) std::memset(row + right * 4, 0, (picture.width - right) * 4);
    }
}

// Draws the stack with the coverage at (x, y).
bool drawStack(ZvEffect& effect, const Spread& coverage, int x, int y, ZvBitmap* drawn) {
    const ZvRect& box = coverage.box();
    ZvGlyph glyph;
    if (widthOf(box) > UINT16_MAX || heightOf(box) > UINT16_MAX) return false;
    glyph.pixels = coverage.coverage();
    glyph.width = static_cast<uint16_t>(widthOf(box));
    glyph.height = static_cast<uint16_t>(heightOf(box));
    effect.initPicture(drawn);
    effect.renderEffectLayer(x + box.left, y + box.top, &glyph);
    effect.drawPicture(PixelOrder::BlueFirst);
    return true;
}

// The coverage at a pixel of the picture.
int coverageAt(const Spread& coverage, const ZvRect& text, int64_t x, int64_t y) {
    const ZvRect& box = coverage.box();
    x -= int64_t{text.left} + box.left;
    y -= int64_t{text.top} + box.top;
    if (x < 0 || x >= widthOf(box) || y < 0 || y >= heightOf(box)) return 0;
    return coverage.coverage()[y * widthOf(box) + x];
}

// `count` pixels of a row of colour glyphs onto the layer's picture, from (x, y) on; `around` is the picture
// of the effects around them.
void joinColors(const uint32_t* colors, size_t count, float opacity, const Spread& coverage,
                const ZvRect& text, int64_t x, int64_t y, uint32_t* target, const uint32_t* around) {
    using JoinRows::kPiece;
    for (size_t at = 0; at < count; at += kPiece) {
        const size_t here = std::min(kPiece, count - at);
        uint32_t source[kPiece] = {}, below[kPiece] = {};
        std::copy_n(colors + at, here, source);
        if (JoinRows::isTransparent(source)) continue;
        for (size_t i = 0; i < here; ++i) {
            const int alpha = static_cast<int>(source[i] >> 24);
            const bool alone =
                alpha > 0 && coverageAt(coverage, text, x + static_cast<int64_t>(at + i), y) <= alpha;
            below[i] = !alone ? target[at + i] : around != nullptr ? around[at + i] : 0;
        }
        JoinRows::Piece piece;
        float alphas[kPiece];
        JoinRows::takeWords(&piece, below);
        JoinRows::takeAlpha(alphas, source, opacity);
        JoinRows::join(&piece, source, alphas, LayerBlend::Normal);
        JoinRows::giveWords(below, piece, 1);
        for (size_t i = 0; i < here; ++i) {
            if (source[i] >> 24 != 0) target[at + i] = below[i];
        }
    }
}

// Onto the layer's picture, in which the text has the box. False if memory is short.
bool drawColorGlyphs(const TextLayer& layer, const Spread& coverage, const ZvRect& box,
                     const DrawnLayer& own) {
    const ColorGlyphLayer& glyphs = *layer.colorGlyphs;
    ZvBitmap* drawn = own.picture.get();
    std::unique_ptr<ZvBitmap> around;
    if (glyphs.around != nullptr) {
        around = tryMake<ZvBitmap>(drawn->width, drawn->height, 4u, ZvBitmap::Unset::Pixels);
        glyphs.around->textAlpha = layer.effect->textAlpha;
        if (around == nullptr || around->pixels == nullptr ||
            !drawStack(*glyphs.around, coverage, box.left, box.top, around.get())) {
            return false;
        }
    }
    const int64_t glyphsX = int64_t{glyphs.x} - own.area.left, glyphsY = int64_t{glyphs.y} - own.area.top;
    const int64_t left = std::max<int64_t>(glyphsX, 0), top = std::max<int64_t>(glyphsY, 0);
    const int64_t right = std::min<int64_t>(glyphsX + glyphs.picture.width, drawn->width);
    const int64_t bottom = std::min<int64_t>(glyphsY + glyphs.picture.height, drawn->height);
    const auto* words = reinterpret_cast<const uint32_t*>(glyphs.picture.pixels);
    for (int64_t y = top; y < bottom && left < right; ++y) {
        const auto at = static_cast<size_t>(y * drawn->width + left);
        joinColors(words + (y - glyphsY) * glyphs.picture.width + (left - glyphsX),
                   static_cast<size_t>(right - left), static_cast<float>(layer.effect->textAlpha) / 255,
                   coverage, box, left, y, reinterpret_cast<uint32_t*>(drawn->pixels) + at,
                   around != nullptr ? reinterpret_cast<const uint32_t*>(around->pixels) + at : nullptr);
    }
    return true;
}

// The coverage for layer i, its box counted from the text's. It is made for the first layer with that spread.
// Null if memory is short.
const Spread* coverageFor(size_t i, const TextCoverage& text, const TextLayer* layers, DrawnLayer* drawn) {
    for (size_t earlier = 0; earlier < i; ++earlier) {
        if (layers[earlier].spread == layers[i].spread) return &drawn[earlier].coverage;
    }
    const ZvRect box(0, 0, widthOf(text.box), heightOf(text.box));
    return drawn[i].coverage.make(text.mask, box, layers[i].spread) ? &drawn[i].coverage : nullptr;
}

// The first layer that has the same picture as layer i before it is moved and cut.
size_t firstLike(size_t i, const TextLayer* layers) {
    const auto isLike = [&](const TextLayer& layer) {
        return layer.effect == layers[i].effect && layer.spread == layers[i].spread &&
               layer.colorGlyphs == layers[i].colorGlyphs;
    };
    return static_cast<size_t>(std::find_if(layers, layers + i, isLike) - layers);
}

ZvRect movedBy(int64_t x, int64_t y, const ZvRect& rect) {
    return ZvRect(clampToInt(rect.left + x), clampToInt(rect.top + y), clampToInt(rect.right + x),
                  clampToInt(rect.bottom + y));
}

// What is drawn for layer i and those that share its picture: what they show once they have moved, and the
// whole text, whose effects would change if it were cut. Layers that have moved out of the picture with all
// their margins need nothing more.
ZvRect areaOf(size_t i, const TextLayer* layers, size_t count, const ZvRect& whole, const ZvRect& text) {
    ZvEffect& stack = *layers[i].effect;
    const ZvRect shown(clampToInt(int64_t{text.left} - stack.getLeftOffset()),
                       clampToInt(int64_t{text.top} - stack.getTopOffset()),
                       clampToInt(int64_t{text.right} + stack.getRightOffset()),
                       clampToInt(int64_t{text.bottom} + stack.getBottomOffset()));
    ZvRect area = intersected(text, whole);
    for (size_t other = i; other < count; ++other) {
        if (other != i && firstLike(other, layers) != i) continue;
        const ZvRect moved = movedBy(-int64_t{layers[other].x}, -int64_t{layers[other].y}, whole);
        if (!isEmpty(intersected(shown, moved))) area = united(area, moved);
    }
    return area;
}

JoinedLayer joinedLayer(const TextLayer& layer, const DrawnLayer& drawn, const TextCoverage& text) {
    JoinedLayer joined;
    joined.picture = drawn.picture.get();
    joined.x = clampToInt(int64_t{layer.x} + drawn.area.left);
    joined.y = clampToInt(int64_t{layer.y} + drawn.area.top);
    joined.blend = layer.blend;
    joined.opacity = layer.opacity;
    joined.clipped = layer.clipped;
    if (!layer.knockout) return joined;
    joined.knockout = &text.mask;
    joined.knockoutX = text.box.left;
    joined.knockoutY = text.box.top;
    return joined;
}

}  // namespace

ZvRect marginsOf(const TextLayer* layers, size_t count) {
    ZvRect margins;
    for (size_t i = 0; i < count; ++i) {
        const TextLayer& layer = layers[i];
        const int64_t spread = std::clamp(layer.spread, 0, kMaxSpread);
        grow(&margins.left, layer.effect->getLeftOffset() + spread - layer.x);
        grow(&margins.top, layer.effect->getTopOffset() + spread - layer.y);
        grow(&margins.right, layer.effect->getRightOffset() + spread + layer.x);
        grow(&margins.bottom, layer.effect->getBottomOffset() + spread + layer.y);
    }
    return margins;
}

int TextCoverage::doPostProcessing(ParamPostProcessing* param) {
    box = ZvRect();
    mask = ZvBitmap();
    if (!isDrawable(param)) return 0;
    const ZvRect part = partWithin(*param->mask, *param->textRect);
    mask = ZvBitmap(*param->mask, &part);
    if (mask.pixels != nullptr) box = part;
    return 0;
}

bool drawTextLayers(ZvBitmap* picture, const TextCoverage& text, const TextLayer* layers, size_t count,
                    const ZvRect& clip, float opacity) {
    const std::unique_ptr<DrawnLayer[]> drawn(new (std::nothrow) DrawnLayer[count]);
    const std::unique_ptr<JoinedLayer[]> joined(new (std::nothrow) JoinedLayer[count]);
    if (drawn == nullptr || joined == nullptr) return false;
    const bool isCut = clip.left > 0 || clip.top > 0 || clip.right < static_cast<int64_t>(picture->width) ||
                       clip.bottom < static_cast<int64_t>(picture->height);
    const ZvRect whole = pictureRect(picture->width, picture->height);
    const auto drawnFor = [&](size_t i) -> auto& {
        return drawn[isCut ? i : firstLike(i, layers)];
    };
    for (size_t i = 0; i < count && text.mask.pixels != nullptr; ++i) {
        if (drawnFor(i).picture != nullptr) continue;
        const TextLayer& layer = layers[i];
        const Spread* coverage = coverageFor(i, text, layers, drawn.get());
        if (coverage == nullptr) return false;
        if (coverage->coverage() == nullptr) continue;
        DrawnLayer& own = drawn[i];
        const ZvRect spread = movedBy(text.box.left, text.box.top, coverage->box());
        own.area = areaOf(i, layers, isCut ? i + 1 : count, whole, spread);
        own.picture =
            tryMake<ZvBitmap>(static_cast<uint32_t>(widthOf(own.area)),
                              static_cast<uint32_t>(heightOf(own.area)), 4u, ZvBitmap::Unset::Pixels);
        if (own.picture == nullptr || own.picture->pixels == nullptr) return false;
        const ZvRect box = movedBy(-int64_t{own.area.left}, -int64_t{own.area.top}, text.box);
        if (!drawStack(*layer.effect, *coverage, box.left, box.top, own.picture.get())) return false;
        if (layer.colorGlyphs != nullptr && !drawColorGlyphs(layer, *coverage, box, own)) return false;
        if (!isCut) continue;
        clearOutside(*own.picture,
                     movedBy(-int64_t{layer.x} - own.area.left, -int64_t{layer.y} - own.area.top, clip));
    }
    for (size_t i = 0; i < count; ++i) joined[i] = joinedLayer(layers[i], drawnFor(i), text);
    joinLayers(picture, joined.get(), count, opacity);
    return true;
}

}  // namespace Zvex
