// SPDX-License-Identifier: Apache-2.0
// The text object lays the text out and rasterises it once, and draws nothing but the background. The stacks
// of the layers' text objects draw its coverage.
#include "jni/LayerNatives.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "effect/Canvas.h"
#include "effect/LayerJoin.h"
#include "effect/Spread.h"
#include "effect/TextLayers.h"
#include "effect/ZvEffect.h"
#include "effect/ZvProperty.h"
#include "foundation/OutOfMemory.h"
#include "jni/BoundTextObject.h"
#include "jni/GlyphColors.h"
#include "jni/JniSupport.h"
#include "jni/RenderPicture.h"
#include "raster/ZvBitmap.h"
#include "text/LayOver.h"
#include "text/LinePlacement.h"
#include "text/ZvFontDrawing.h"
#include "text/ZvTextObject.h"
#include "text/ZvView.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvTextEffects_JNI";
constexpr int kMaxOffset = 32767;  // keeps sums of margins far from the end of int

enum LayerNumber { kHandle, kColor, kSpread, kX, kY, kBlend, kFlags };
constexpr int kClipped = 1, kKnockout = 2, kColored = 4;

class LayerList {
public:
    // False for arrays that do not match and for handles without a text object; an exception may be pending.
    bool read(JNIEnv* env, jintArray numbers, jfloatArray opacities) {
        if (numbers == nullptr || opacities == nullptr) return false;
        const auto count = static_cast<size_t>(env->GetArrayLength(opacities));
        if (count == 0 || count * kLayerNumbers != static_cast<size_t>(env->GetArrayLength(numbers)))
            return false;
        const IntElements numberOf(env, numbers);
        if (numberOf.get() == nullptr) return false;
        const FloatElements opacityOf(env, opacities);
        if (opacityOf.get() == nullptr) return false;
        for (size_t i = 0; i < count; ++i) {
            if (!add(numberOf.get() + i * kLayerNumbers, opacityOf.get()[i])) return false;
        }
        return true;
    }

    // The text with its own effects as the only layer.
    void addText(ZvTextObject& text, bool colored) {
        TextLayer layer;
        layer.effect = text.GetEffect();
        add(layer, text.GetTextColor(), colored);
    }

    // Call before drawing, and again after anything else has used the same stacks.
    void setColors() const {
        for (size_t i = 0; i < mLayers.size(); ++i) mLayers[i].effect->addText(mColors[i]);
    }

    const TextLayer* layers() const { return mLayers.data(); }
    size_t count() const { return mLayers.size(); }

    // Gives the layers that show the glyphs' colours these, and the coverage the glyphs' shape.
    void takeColorGlyphs(const GlyphColors& glyphs, TextCoverage& coverage, const ZvBitmap& picture) {
        const auto draw = [&](uint32_t textColor) {
            return glyphs.draw(coverage.margins, static_cast<int>(picture.width),
                               static_cast<int>(picture.height), textColor | 0xFF000000);
        };
        for (size_t i = 0; i < mLayers.size(); ++i) {
            if (!mColored[i]) continue;
            mColorGlyphs.push_back(std::make_unique<LayerGlyphs>(draw(mColors[i]), *mLayers[i].effect));
            mLayers[i].colorGlyphs = &mColorGlyphs.back()->glyphs;
        }
        glyphs.complete(coverage, mColorGlyphs.empty() ? draw(0) : mColorGlyphs.front()->glyphs);
    }

private:
    // One layer's glyphs in their colours, and those of its effects that show around them.
    struct LayerGlyphs {
        LayerGlyphs(ColorGlyphLayer drawn, const ZvEffect& stack) : glyphs(std::move(drawn)), around(stack) {
            for (int type = ZV_EFFECT_OUTER_SHADOW; type <= ZV_EFFECT_TEXT; ++type) {
                if (!showsAround(around.getEffect(type))) around.releaseEffect(around.getEffect(type));
            }
            if (!around.effects.empty()) glyphs.around = &around;
        }
        static bool showsAround(ZvECore* effect) {
            if (effect == nullptr) return false;
            const int type = effect->getStyle();
            const auto* stroke = type == ZV_EFFECT_STROKE
                                     ? static_cast<const ZvStrokeProperty*>(effect->getProperty())
                                     : nullptr;
            return stroke != nullptr ? stroke->position != ZV_STROKE_INSIDE
                                     : type == ZV_EFFECT_OUTER_SHADOW || type == ZV_EFFECT_OUTER_GLOW;
        }

        ColorGlyphLayer glyphs;
        ZvEffect around;
    };

    bool add(const jint* numbers, float opacity) {
        ZvTextObject* const object = ZvTextObject::FindZvTextObject(numbers[kHandle]);
        if (object == nullptr || numbers[kBlend] < 0 || numbers[kBlend] >= kLayerBlends) return false;
        TextLayer layer;
        layer.effect = object->GetEffect();
        for (const TextLayer& earlier : mLayers) {
            if (earlier.effect == layer.effect) return false;
        }
        layer.spread = std::clamp<int>(numbers[kSpread], -kMaxSpread, kMaxSpread);
        layer.x = std::clamp<int>(numbers[kX], -kMaxOffset, kMaxOffset);
        layer.y = std::clamp<int>(numbers[kY], -kMaxOffset, kMaxOffset);
        layer.blend = static_cast<LayerBlend>(numbers[kBlend]);
        layer.opacity = opacity;
        layer.clipped = (numbers[kFlags] & kClipped) != 0;
        layer.knockout = (numbers[kFlags] & kKnockout) != 0;
        add(layer, static_cast<uint32_t>(numbers[kColor]), (numbers[kFlags] & kColored) != 0);
        return true;
    }

    void add(const TextLayer& layer, uint32_t color, bool colored) {
        mLayers.push_back(layer);
        mColors.push_back(color);
        mColored.push_back(colored);
    }

    std::vector<TextLayer> mLayers;
    std::vector<uint32_t> mColors;
    std::vector<bool> mColored;
    std::vector<std::unique_ptr<LayerGlyphs>> mColorGlyphs;
};

// While it lives, the object's stack has only the coverage as a layer, and its text has no colour.
class CoverageAlone {
public:
    CoverageAlone(ZvTextObject& object, TextCoverage* coverage)
        : mObject(object),
          mStack(*object.GetEffect()),
          mCoverage(coverage),
          mColor(object.GetTextColor()),
          mNextId(mStack.nextEffectId) {
        std::vector<ZvECore*> alone = {coverage};
        mOwn.swap(mStack.effects);
        mStack.effects.swap(alone);
        object.SetTextColor(0);
    }
    ~CoverageAlone() {
        std::vector<ZvECore*>& all = mStack.effects;
        all.erase(std::remove(all.begin(), all.end(), mCoverage), all.end());
        mStack.releaseEffect();  // the layer of the text's colour
        mStack.effects.swap(mOwn);
        mStack.nextEffectId = mNextId;
        mObject.SetTextColor(mColor);
    }
    CoverageAlone(const CoverageAlone&) = delete;
    CoverageAlone& operator=(const CoverageAlone&) = delete;

private:
    ZvTextObject& mObject;
    ZvEffect& mStack;
    TextCoverage* mCoverage;
    std::vector<ZvECore*> mOwn;
    uint32_t mColor;
    int mNextId;
};

struct Ground {
    ZvEffect* canvas = nullptr;
    uint32_t canvasColor = 0;
    bool background = false;
    bool linear = false;  // the background is blended as without layers, after them
};

void drawGround(const Ground& ground, const ZvBitmap& background, ZvBitmap* picture) {
    if (ground.canvas != nullptr) {
        fillCanvas(picture, ground.canvas);
    } else if (ground.canvasColor != 0) {
        fillCanvas(picture, ground.canvasColor);
    }
    if (!ground.background || ground.linear) return;
    JoinedLayer layer;
    layer.picture = &background;
    joinLayers(picture, &layer, 1);
}

// The picture as a Java array; null if memory is short, possibly with an exception pending. `glyphs` are the
// text's; null if none has colours.
jintArray renderLayers(JNIEnv* env, ZvTextObject& text, LayerList& list, const Ground& ground, float opacity,
                       const GlyphColors* glyphs) {
    TextCoverage coverage;
    coverage.margins = marginsOf(list.layers(), list.count());
    const uint32_t* words = nullptr;
    jintArray array = nullptr;
    jsize count = 0;
    {
        const CoverageAlone alone(text, &coverage);
        count = sizePicture(text, kTag, "ZvTextEffects_RenderLayers");
        array = count >= 0 ? env->NewIntArray(count) : nullptr;
        if (array == nullptr) return nullptr;
        words = text.RenderTextEffect(text.GetView()->GetBitmapWidth(), text.GetView()->GetBitmapHeight());
    }
    if (count == 0) return array;
    const ZvView& view = *text.GetView();
    ZvBitmap picture(static_cast<unsigned>(view.bitmapWidth), static_cast<unsigned>(view.bitmapHeight), 4);
    if (words == nullptr || text.GetFont() == nullptr || picture.pixels == nullptr) return nullptr;
    const ZvBitmap background(picture.width, ground.background ? picture.height : 0,
                              reinterpret_cast<const unsigned char*>(words), 4);
    drawGround(ground, background, &picture);
    list.setColors();
    if (glyphs != nullptr) list.takeColorGlyphs(*glyphs, coverage, picture);
    if (!drawTextLayers(&picture, coverage, list.layers(), list.count(), textClip(view), opacity) ||
        (ground.background && ground.linear && !layOver(background, picture))) {
        return nullptr;
    }
    env->SetIntArrayRegion(array, 0, count, reinterpret_cast<const jint*>(picture.pixels));
    return array;
}

}  // namespace

jintArray JNICALL ZvTextEffects_GetLayerMargins(JNIEnv* env, jclass, jintArray layers,
                                                jfloatArray opacities) {
    LayerList list;
    const bool read = unlessOutOfMemory(false, [&] { return list.read(env, layers, opacities); });
    ZV_REFUSE_UNLESS(read, nullptr);
    const ZvRect margins = marginsOf(list.layers(), list.count());
    const jint sides[4] = {margins.left, margins.top, margins.right, margins.bottom};
    const jintArray array = env->NewIntArray(4);
    if (array != nullptr) env->SetIntArrayRegion(array, 0, 4, sides);
    return array;
}

jintArray JNICALL ZvTextEffects_RenderLayers(JNIEnv* env, jclass, jint handle, jintArray layers,
                                             jfloatArray opacities, jint canvas, jint canvasColor,
                                             jboolean background, jfloat opacity) {
    ZV_TEXT_OBJECT_OF(handle, text, nullptr);
    LayerList list;
    const bool read = unlessOutOfMemory(false, [&] { return list.read(env, layers, opacities); });
    ZV_REFUSE_UNLESS(read, nullptr);
    Ground ground;
    ground.canvasColor = static_cast<uint32_t>(canvasColor);
    ground.background = background != JNI_FALSE;
    if (canvas != 0) {
        ZV_TEXT_OBJECT_OF(canvas, filled, nullptr);
        ground.canvas = filled->GetEffect();
    }
    return unlessOutOfMemory<jintArray>(nullptr, [&] {
        const std::unique_ptr<GlyphColors> glyphs = GlyphColors::of(*text);
        return renderLayers(env, *text, list, ground, opacity, glyphs.get());
    });
}

jintArray JNICALL ZvTextEffects_Render(JNIEnv* env, jclass, jint handle, jboolean colored,
                                       jboolean background) {
    ZV_TEXT_OBJECT_OF(handle, text, nullptr);
    return unlessOutOfMemory<jintArray>(nullptr, [&] {
        const std::unique_ptr<GlyphColors> glyphs = GlyphColors::of(*text);
        if (glyphs == nullptr || (colored == JNI_FALSE && !glyphs->lackCoverage()))
            return renderPicture(env, *text, kTag, "ZvTextEffects_Render");
        LayerList list;
        list.addText(*text, colored != JNI_FALSE);
        Ground ground;
        ground.background = background != JNI_FALSE;
        ground.linear = true;
        return renderLayers(env, *text, list, ground, 1, glyphs.get());
    });
}

}  // namespace Zvex
