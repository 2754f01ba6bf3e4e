// SPDX-License-Identifier: Apache-2.0
#include "effect/ZvEffect.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <new>

#include "effect/Composite.h"
#include "effect/EffectArguments.h"
#include "effect/EffectFactory.h"
#include "effect/LayerPlace.h"
#include "effect/StripDrawing.h"
#include "effect/ZvGlyph.h"
#include "foundation/OutOfMemory.h"
#include "foundation/ZvLog.h"
#include "raster/Rects.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvEffect";

int addHeld(int value, int length) {
    return static_cast<int>(std::min<int64_t>(int64_t{value} + length, INT_MAX));
}

int widestMargin(const std::vector<ZvECore*>& effects, int (ZvECore::*side)()) {
    int widest = 0;
    for (ZvECore* effect : effects) widest = std::max({widest, (effect->*side)(), effect->getOffset()});
    return widest;
}

void forget(std::vector<ZvECore*>& list, ZvECore* effect) {
    list.erase(std::remove(list.begin(), list.end(), effect), list.end());
}

}  // namespace

ZvEffect::ZvEffect() {
    ZV_DEBUG_LOG(kTag, "ZvEffect(%p)", static_cast<void*>(this));
}

ZvEffect::ZvEffect(void*) {}

ZvEffect::ZvEffect(const ZvEffect& other)
    : layerMode(other.layerMode),
      textOpacity(other.textOpacity),
      textColor(other.textColor),
      nextEffectId(other.nextEffectId),
      textAlpha(other.textAlpha) {
    for (ZvECore* effect : other.effects)
        addEffect(effect->getId(), effect->getStyle(), effect->getProperty());
}

ZvEffect::~ZvEffect() {
    releaseEffect();
    releaseBitmap();
    ZV_DEBUG_LOG(kTag, "~ZvEffect(%p)", static_cast<void*>(this));
}

// --- Layers

ZvECore* ZvEffect::createEffect(int id, int type) {
    ZvECore* effect = newEffectLayer(type);
    if (effect == nullptr) return nullptr;
    effect->setId(id < 0 ? getNewEffectId() : id);
    return effect;
}

int ZvEffect::getNewEffectId() {
    const int id = std::max(nextEffectId, 0);
    nextEffectId = addHeld(id, 1);
    return id;
}

int ZvEffect::addEffect(int id, int type, ZvProperty* property) {
    if (ZvECore* existing = getEffect(type)) {
        existing->setProperty(property);
        return existing->getId();
    }
    const int oldNextId = nextEffectId;
    std::unique_ptr<ZvECore> created(createEffect(id, type));
    if (created == nullptr) return -1;
    created->setProperty(property);
    const bool kept = unlessOutOfMemory(false, [&] {
        if (property != nullptr && created->getProperty() == nullptr) return false;  // no memory for the copy
        layers.reserve(effects.size() + 1);  // so that a rendering can order its layers without allocating
        effects.push_back(created.get());
        return true;
    });
    if (!kept) {
        nextEffectId = oldNextId;
        return -1;
    }
    return created.release()->getId();
}

int ZvEffect::addEffect(int type, ZvProperty* property) {
    return addEffect(-1, type, property);
}

ZvECore* ZvEffect::getEffect(int type) {
    for (ZvECore* effect : effects) {
        if (effect->getStyle() == type) return effect;
    }
    return nullptr;
}

bool ZvEffect::hasEffect(int type) {
    return getEffect(type) != nullptr;
}

bool ZvEffect::hasEffects() {
    return !effects.empty() || textOpacity < 1.0f;
}

bool ZvEffect::removeEffect(int id) {
    for (ZvECore* effect : effects) {
        if (effect->getId() != id) continue;
        releaseEffect(effect);
        return true;
    }
    return false;
}

// A rendering may be under way, so the layer leaves the drawing order as well.
void ZvEffect::releaseEffect(ZvECore* effect) {
    if (effect == nullptr) return;
    forget(effects, effect);
    forget(layers, effect);
    delete effect;
}

void ZvEffect::releaseEffect() {
    for (ZvECore* effect : effects) delete effect;
    effects.clear();
    layers.clear();
    nextEffectId = 0;
}

void ZvEffect::cleanAllEffect() {
    releaseEffect();
}

// --- Adders

int ZvEffect::addOuterShadowText(float angle, float distance, float size, unsigned int color, float opacity) {
    auto record = shadowArguments<ZvOuterShadowProperty>(angle, distance, size, color, opacity);
    return addEffect(ZV_EFFECT_OUTER_SHADOW, &record);
}

int ZvEffect::addInnerShadowText(float angle, float distance, float size, unsigned int color, float opacity) {
    auto record = shadowArguments<ZvInnerShadowProperty>(angle, distance, size, color, opacity);
    return addEffect(ZV_EFFECT_INNER_SHADOW, &record);
}

int ZvEffect::addOuterGlowText(float size, unsigned int color, float opacity, int count, ZvGradient* stops) {
    GradientStops copies;
    if (!stopArguments(count, stops, opacity, &copies)) return -1;
    auto record = glowArguments<ZvOuterGlowProperty>(size, color, opacity, copies);
    return addEffect(ZV_EFFECT_OUTER_GLOW, &record);
}

int ZvEffect::addInnerGlowText(float size, unsigned int color, float opacity, int count, ZvGradient* stops) {
    GradientStops copies;
    if (!stopArguments(count, stops, opacity, &copies)) return -1;
    auto record = glowArguments<ZvInnerGlowProperty>(size, color, opacity, copies);
    return addEffect(ZV_EFFECT_INNER_GLOW, &record);
}

int ZvEffect::addBevelText(int style, float size, float depth, int direction, int technique, int soften,
                           float opacity, float angle, float altitude, unsigned int shadowColor,
                           float shadowOpacity, unsigned int highlightColor, float highlightOpacity) {
    auto record = reliefArguments<ZvBevelProperty>(style, size, depth, direction, technique, soften, opacity,
                                                   angle, altitude, shadowColor, shadowOpacity,
                                                   highlightColor, highlightOpacity);
    return addEffect(ZV_EFFECT_BEVEL, &record);
}

int ZvEffect::addEmbossText(int style, float size, float depth, int direction, int technique, int soften,
                            float opacity, float angle, float altitude, unsigned int shadowColor,
                            float shadowOpacity, unsigned int highlightColor, float highlightOpacity) {
    auto record = reliefArguments<ZvEmbossProperty>(style, size, depth, direction, technique, soften, opacity,
                                                    angle, altitude, shadowColor, shadowOpacity,
                                                    highlightColor, highlightOpacity);
    return addEffect(ZV_EFFECT_EMBOSS, &record);
}

int ZvEffect::addLinearGradientText(float angle, float scale, float opacity, int count, ZvGradient* stops) {
    GradientStops copies;
    if (!stopArguments(count, stops, opacity, &copies)) return -1;
    auto record = gradientArguments<ZvLinearGradientProperty>(angle, scale, opacity, copies);
    return addEffect(ZV_EFFECT_LINEAR_GRADIENT, &record);
}

int ZvEffect::addRadialGradientText(float scale, float opacity, int count, ZvGradient* stops) {
    GradientStops copies;
    if (!stopArguments(count, stops, opacity, &copies)) return -1;
    auto record = gradientArguments<ZvRadialGradientProperty>(0.0f, scale, opacity, copies);
    return addEffect(ZV_EFFECT_RADIAL_GRADIENT, &record);
}

int ZvEffect::addStrokeText(float width, unsigned int color, float opacity, int kind, int position) {
    auto record = strokeArguments(width, color, opacity, kind, position);
    return addEffect(ZV_EFFECT_STROKE, &record);
}

int ZvEffect::addPatternText(ZvBitmap* bitmap, float scale, float opacity) {
    auto record = patternArguments(bitmap, scale, opacity);
    return addEffect(ZV_EFFECT_PATTERN, &record);
}

int ZvEffect::addText(unsigned int color, float opacity) {
    ZV_DEBUG_LOG(kTag, "AddText(%p) - (color:%d/opacity:%f)", static_cast<void*>(this),
                 static_cast<int>(color), static_cast<double>(opacity));
    textAlpha = static_cast<uint8_t>(color >> 24);
    auto record = textArguments(color, opacity);
    return addEffect(ZV_EFFECT_TEXT, &record);
}

int ZvEffect::addText(unsigned int color) {
    ZV_DEBUG_LOG(kTag, "AddText(%p) - (color:%x)", static_cast<void*>(this), color);
    textAlpha = static_cast<uint8_t>(color >> 24);
    auto record = opaqueTextArguments(color);
    return addEffect(ZV_EFFECT_TEXT, &record);
}

// --- Text colour and opacity

void ZvEffect::setTextOpacity(float opacity) {
    textOpacity = opacityArgument(opacity);
}

float ZvEffect::getTextOpacity() {
    return textOpacity;
}

void ZvEffect::clearTextOpacity() {
    textOpacity = 1.0f;
}

char* ZvEffect::getMapKey() {
    uint64_t length = 0;
    for (ZvECore* effect : effects) {
        if (ZvProperty* property = effect->getProperty()) {
            length += static_cast<uint64_t>(std::max(property->getSequentialCharLength(), 0));
        }
    }
    if (length >= PTRDIFF_MAX) return nullptr;
    const size_t size = static_cast<size_t>(length) + 1;
    char* key = new (std::nothrow) char[size];
    if (key == nullptr) return nullptr;
    // Records with stops write less than they announce; the rest of the buffer stays NUL.
    std::memset(key, 0, size);
    char* cursor = key;
    for (ZvECore* effect : effects) {
        if (ZvProperty* property = effect->getProperty()) property->toSequentialChar(&cursor);
    }
    return key;
}

char* ZvEffect::getMapKey(unsigned int color) {
    textColor = color;
    addText(color, textOpacity);
    return getMapKey();
}

// --- Margins

int ZvEffect::getLeftOffset() {
    return widestMargin(effects, &ZvECore::getLeftOffset);
}

int ZvEffect::getRightOffset() {
    return widestMargin(effects, &ZvECore::getRightOffset);
}

int ZvEffect::getTopOffset() {
    return widestMargin(effects, &ZvECore::getTopOffset);
}

int ZvEffect::getBottomOffset() {
    return widestMargin(effects, &ZvECore::getBottomOffset);
}

// --- Rendering

void ZvEffect::initEffect(int width, int height) {
    beginRendering(width, height, MaskPixels::Zeroed);
}

void ZvEffect::initPicture(ZvBitmap* out) {
    const bool strips = std::all_of(effects.begin(), effects.end(), isBuiltInLayer);
    beginRendering(clampToSize(INT_MAX, out->width), clampToSize(INT_MAX, out->height),
                   strips ? MaskPixels::Unset : MaskPixels::Zeroed);
    dst = out;
    mInStrips = strips;
    mPictureIsUnset = true;
    if (!strips) clearUnsetPicture();  // other layers may draw at any time
}

void ZvEffect::beginRendering(int width, int height, MaskPixels maskPixels) {
    ZV_DEBUG_LOG(kTag, "InitEffect(%p)", static_cast<void*>(this));
    layers = effects;
    const bool twoLayers =
        textOpacity < 1.0f ||
        std::any_of(layers.begin(), layers.end(), [](ZvECore* effect) { return placeOf(effect).both; });
    layerMode = twoLayers ? 1 : 0;

    releaseBitmap();
    if (textRectReset) textRect = ZvRect();  // the box of an earlier rendering does not apply
    const unsigned int bitmapWidth = static_cast<unsigned int>(std::max(width, 0));
    const unsigned int bitmapHeight = static_cast<unsigned int>(std::max(height, 0));
    mMaskTop = mMaskBottom = 0;
    if (maskPixels == MaskPixels::Unset) {
        mask = tryMake<ZvBitmap>(bitmapWidth, bitmapHeight, 1u, ZvBitmap::Unset::Pixels).release();
        mPartialMask = mask;
    } else {
        mask = tryMake<ZvBitmap>(bitmapWidth, bitmapHeight, 1u).release();
        if (twoLayers) back = tryMake<ZvBitmap>(bitmapWidth, bitmapHeight, 4u).release();
    }

    // Within its group, the newest layer is the topmost.
    std::reverse(layers.begin(), layers.end());
    if (twoLayers) {
        // The text is covered by what is drawn within the glyphs. What is drawn around them goes to the other
        // picture.
        const auto text = std::find_if(layers.begin(), layers.end(),
                                       [](ZvECore* effect) { return effect->getStyle() == ZV_EFFECT_TEXT; });
        if (text != layers.end()) std::rotate(text, text + 1, layers.end());
    } else {
        // Order: layers over the text, the text (should there be several, the oldest first), layers under it.
        const auto rank = [this](ZvECore* effect) {
            return isUnderEffect(effect) ? 2 : effect->getStyle() == ZV_EFFECT_TEXT ? 1 : 0;
        };
        const auto byRank = [&](ZvECore* a, ZvECore* b) { return rank(a) < rank(b); };
        std::stable_sort(layers.begin(), layers.end(), byRank);  // sorts in place if memory is short
        const auto isAboveText = [&](ZvECore* effect) { return rank(effect) == 0; };
        const auto isNotUnderText = [&](ZvECore* effect) { return rank(effect) < 2; };
        std::reverse(std::partition_point(layers.begin(), layers.end(), isAboveText),
                     std::partition_point(layers.begin(), layers.end(), isNotUnderText));
    }

    ZvECore::ParamInit param;
    param.width = width;
    param.height = height;
    param.layerMode = layerMode;
    for (ZvECore* effect : layers) effect->initEffect(&param);
}

bool ZvEffect::isUnderEffect(ZvECore* effect) {
    return effect != nullptr && placeOf(effect).isUnder(layerMode == 1);
}

int ZvEffect::renderEffectLayer(int x, int y, ZvGlyph* glyph) {
    if (glyph != nullptr && mask != nullptr) {
        const ZvRect box(x, y, addHeld(x, glyph->width), addHeld(y, glyph->height));
        if (textRectReset) {
            textRect = box;
            textRectReset = false;
        } else {
            textRect = joined(textRect, box);
        }
        clearMaskRows();
        ZvBlender::drawBitmap(x, y, mask, glyph->pixels, glyph->width, glyph->height, 0xFF000000);
    }
    ZvECore::ParamRender param;
    param.x = x;
    param.y = y;
    param.glyph = glyph;
    param.target = dst;
    for (ZvECore* effect : layers) effect->render(&param);
    return 0;
}

void ZvEffect::clearMask(int top, int bottom) {
    if (top >= bottom) return;
    std::memset(mask->pixels + static_cast<size_t>(top) * mask->width, 0,
                static_cast<size_t>(bottom - top) * mask->width);
}

bool ZvEffect::isMaskPartial() const {
    return mask != nullptr && mask == mPartialMask && mask->pixels != nullptr;
}

void ZvEffect::clearMaskRows() {
    if (!isMaskPartial()) return;
    const int top = clampToSize(textRect.top, mask->height);
    const int bottom = clampToSize(addHeld(textRect.bottom, 1), mask->height);
    if (mMaskTop >= mMaskBottom) mMaskTop = mMaskBottom = top;
    clearMask(top, mMaskTop);
    clearMask(mMaskBottom, bottom);
    mMaskTop = std::min(mMaskTop, top);
    mMaskBottom = std::max(mMaskBottom, bottom);
}

void ZvEffect::leaveStrips() {
    mInStrips = false;
    if (isMaskPartial()) {
        clearMask(0, mMaskTop);
        clearMask(mMaskBottom, clampToSize(INT_MAX, mask->height));
    }
    mPartialMask = nullptr;
}

void ZvEffect::clearUnsetPicture() {
    if (mPictureIsUnset && dst != nullptr && dst->pixels != nullptr)
        std::memset(dst->pixels, 0, dst->byteCount());
    mPictureIsUnset = false;
}

// Whether there is anything to draw.
bool ZvEffect::clipTextRect() {
    textRectReset = true;
    if (mask == nullptr) return false;
    textRect = clampedTo(textRect, mask->width, mask->height);
    return !isEmpty(textRect);
}

void ZvEffect::doEffectPostProcessing() {
    ZV_DEBUG_LOG(kTag, "DoEffectPostProcessing(%p) - start", static_cast<void*>(this));
    leaveStrips();
    clearUnsetPicture();
    if (layerMode == 1 && back == nullptr && mask != nullptr) {
        back = tryMake<ZvBitmap>(mask->width, mask->height, 4u).release();
    }
    if (clipTextRect()) {
        ZvECore::ParamPostProcessing param;
        param.mask = mask;
        param.textRect = &textRect;
        param.layerMode = layerMode;
        for (ZvECore* effect : layers) {
            const LayerPlace place = layerMode == 1 ? placeOf(effect) : LayerPlace();
            param.target = place.behind ? back : dst;
            param.otherLayer = place.both ? dst : nullptr;
            effect->doPostProcessing(&param);
            param.overLayers = true;
        }
    }
    ZV_DEBUG_LOG(kTag, "DoEffectPostProcessing(%p) - end", static_cast<void*>(this));
}

bool ZvEffect::drawsInStrips() const {
    return mInStrips && mask != nullptr && mask->bytesPerPixel == 1 && mask->width == dst->width &&
           mask->height == dst->height && dst->pixels != nullptr && dst->bytesPerPixel == 4 &&
           std::all_of(layers.begin(), layers.end(), isBuiltInLayer);
}

ZvRect ZvEffect::drawPicture(PixelOrder order) {
    if (dst == nullptr) return ZvRect();
    return drawsInStrips() ? drawInStrips(order) : drawWhole(order);
}

ZvRect ZvEffect::drawWhole(PixelOrder order) {
    ZvBitmap* const picture = dst;
    doEffectPostProcessing();
    compositeLayers(picture);
    if (order == PixelOrder::BlueFirst) ZvBlender::convertBGRAToARGB(picture);
    if (picture->pixels == nullptr) return ZvRect();
    return ZvRect(0, 0, clampToSize(INT_MAX, picture->width), clampToSize(INT_MAX, picture->height));
}

ZvRect ZvEffect::drawInStrips(PixelOrder order) {
    ZV_DEBUG_LOG(kTag, "DoEffectPostProcessing(%p) - start", static_cast<void*>(this));
    ZvRect drawn;
    {
        StripDrawing drawing({layers, *dst, *mask, textRect, layerMode == 1, textAlpha});
        // The box may come from an abandoned rendering, or have been set by hand; then no line has cleared
        // its rows.
        clearMaskRows();
        if (clipTextRect() && mask->pixels != nullptr) drawing.prepare();
        ZV_DEBUG_LOG(kTag, "DoEffectPostProcessing(%p) - end", static_cast<void*>(this));

        ZV_DEBUG_LOG(kTag, "CompositeLayers(%p) - start", static_cast<void*>(this));
        drawing.draw(order);
        drawn = drawing.drawn();
    }
    releaseBitmap();
    layerMode = 0;
    ZV_DEBUG_LOG(kTag, "CompositeLayers(%p) - end", static_cast<void*>(this));
    return drawn;
}

void ZvEffect::compositeLayers(ZvBitmap* out) {
    ZV_DEBUG_LOG(kTag, "CompositeLayers(%p) - start", static_cast<void*>(this));
    if (layerMode == 1) mergeBackLayer(out, back, mask);
    finishPicture(out, textAlpha);
    releaseBitmap();
    layerMode = 0;
    ZV_DEBUG_LOG(kTag, "CompositeLayers(%p) - end", static_cast<void*>(this));
}

void ZvEffect::releaseBitmap() {
    delete mask;
    delete back;
    mask = nullptr;
    back = nullptr;
    mPartialMask = nullptr;
    setDstBitmap(nullptr);
}

ZvRect* ZvEffect::getTextRect() {
    return &textRect;
}

ZvBitmap* ZvEffect::getSrcBitmap() {
    leaveStrips();  // the caller may read and write all of it
    return mask;
}

void ZvEffect::setSrcBitmap(ZvBitmap* bitmap) {
    mInStrips = false;
    mPartialMask = nullptr;
    mask = bitmap;
}

ZvBitmap* ZvEffect::getDstBitmap() {
    return dst;
}

void ZvEffect::setDstBitmap(ZvBitmap* bitmap) {
    leaveStrips();
    dst = bitmap;
    mPictureIsUnset = false;
}

}  // namespace Zvex
