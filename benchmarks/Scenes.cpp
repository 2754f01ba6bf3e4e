// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/Scenes.h"

#include <hwui/Paint.h>

#include <cmath>

#include "effect/ZvProperty.h"
#include "foundation/List.h"
#include "foundation/ZvString.h"

namespace bench {

namespace {

using namespace Zvex;

constexpr int kAntiAlias = 1;
constexpr unsigned int kOrange = 0xFFFF8800, kDark = 0xFF202020, kBlack = 0xFF000000, kGlow = 0xFF0060FF;

int addStroke(ZvEffect& effects, int scale) {
    return effects.addStrokeText(static_cast<float>(8 * scale), kDark, 1, 0, ZV_STROKE_OUTSIDE);
}

// Not through addOuterShadowText, which takes whole distances and sizes up to 100.
int addShadow(ZvEffect& effects, int scale) {
    const float distance = 8 * std::sqrt(2.0f) * static_cast<float>(scale);
    ZvOuterShadowProperty shadow(135, distance, static_cast<float>(30 * scale), kBlack, 1);
    return effects.addEffect(ZV_EFFECT_OUTER_SHADOW, &shadow);
}

int addGradient(ZvEffect& effects) {
    ZvGradient stops[] = {{0xFFFF0000, 1, 0}, {0xFF0000FF, 1, 1}};
    return effects.addLinearGradientText(0, 1, 1, 2, stops);
}

int addBevel(ZvEffect& effects, int scale) {
    constexpr int kInner = 1, kUp = 1, kSoft = 0, kSoften = 0;
    return effects.addBevelText(kInner, static_cast<float>(10 * scale), 2, kUp, kSoft, kSoften, 1, 135, 30,
                                kBlack, 0.75f, 0xFFFFFFFF, 0.75f);
}

bool addEffects(ZvEffect& effects, const std::string& scene, int scale) {
    if (scene == "S1") return true;
    if (scene == "S2") return addStroke(effects, scale) >= 0;
    if (scene == "S3") return addShadow(effects, scale) >= 0;
    if (scene == "S4") return addGradient(effects) >= 0;
    if (scene == "S5")
        return addStroke(effects, scale) >= 0 && addShadow(effects, scale) >= 0 && addGradient(effects) >= 0;
    if (scene == "S6")
        return effects.addOuterGlowText(static_cast<float>(20 * scale), kGlow, 1, 0, nullptr) >= 0;
    if (scene == "S7") return addBevel(effects, scale) >= 0;
    return false;
}

}  // namespace

bool prepareScene(ZvTextObject& object, const std::string& scene, Canvas canvas, const char* font) {
    ZvString text;
    if (!object.Construct() || !text.Construct(kText) || !object.SetText(&text) || !object.SetFont(font)) {
        return false;
    }
    android::Paint paint;
    paint.setFlags(kAntiAlias);
    paint.setTextSize(static_cast<float>(canvas.glyphSize()));
    object.SetPaint(paint);
    object.SetTextColor(kOrange);
    ZvEffect& effects = *object.GetEffect();
    if (!addEffects(effects, scene, canvas.scale)) return false;

    const int left = effects.getLeftOffset(), top = effects.getTopOffset();
    object.GetView()->SetSize(canvas.width() - left - effects.getRightOffset(),
                              canvas.height() - top - effects.getBottomOffset());
    object.GetView()->SetBitmapWidth(canvas.width());
    object.GetView()->SetBitmapHeight(canvas.height());
    auto* line = new ZvLineInfo;
    line->x = canvas.inkX() - left;  // a line's picture begins with its ink
    line->y = canvas.baseline() - top;
    line->end = static_cast<int>(sizeof kText - 1);
    line->direction = 1;
    List lines;
    lines.Construct();
    lines.Add(line);
    return object.SetLineInfo(&lines);
}

}  // namespace bench
