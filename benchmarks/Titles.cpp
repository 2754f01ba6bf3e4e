// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/Titles.h"

#include <hwui/MinikinUtils.h>
#include <hwui/Paint.h>
#include <hwui/Typeface.h>

#include <cmath>
#include <memory>
#include <vector>

#include "benchmarks/SceneEffects.h"
#include "benchmarks/Scenes.h"
#include "effect/ZvProperty.h"
#include "text/FontManager.h"

namespace bench {

namespace {

using namespace Zvex;

constexpr int kAntiAlias = 1;

bool addLook(ZvEffect& effects, const std::string& look, float unit) {
    if (look == "plain") return true;
    if (look == "bevel") return addBevel(effects, unit * 4 / 3);
    if (look == "shadow") {
        ZvOuterShadowProperty shadow(90, unit, 3 * unit, kBlack, 1);
        if (effects.addEffect(ZV_EFFECT_OUTER_SHADOW, &shadow) < 0) return false;
    } else if (look != "stroke") {
        return false;
    }
    return effects.addStrokeText(unit, kDark, 1, 0, ZV_STROKE_OUTSIDE) >= 0;
}

// With which a caller measures its words.
const android::Typeface* measuringTypeface() {
    static const android::Typeface* const made = []() -> const android::Typeface* {
        ZvString path;
        int weight = 400;
        std::vector<std::shared_ptr<minikin::FontFamily>> families;
        FontManager& manager = *FontManager::GetInstance();
        if (!path.Construct(kFont) || !manager.GetMinikinFontFamilies(families, &path, weight))
            return nullptr;
        return android::Typeface::createFromFamilies(std::move(families), weight, 0);
    }();
    return made;
}

}  // namespace

bool prepareTitle(ZvTextObject& object, const std::string& look, int glyphSize) {
    if (!object.Construct() || !object.SetFont(kFont)) return false;
    android::Paint paint;
    paint.setFlags(kAntiAlias);
    paint.setTextSize(static_cast<float>(glyphSize));
    object.SetPaint(paint);
    object.SetTextColor(kOrange);
    return addLook(*object.GetEffect(), look, static_cast<float>(glyphSize) / 16);
}

PictureSize setTitle(ZvTextObject& object, const std::string& word) {
    const android::Typeface* typeface = measuringTypeface();
    const std::vector<uint16_t> units(word.begin(), word.end());
    const android::Paint paint = object.GetPaint();
    const minikin::Layout layout = android::MinikinUtils::doLayout(
        &paint, minikin::Bidi::DEFAULT_LTR, typeface, units.data(), 0, units.size(), units.size(), nullptr);
    minikin::MinikinRect bounds;
    layout.getBounds(&bounds);

    ZvString text;
    if (typeface == nullptr || !text.Construct(word.c_str()) || !object.SetText(&text)) return {};
    ZvEffect& effects = *object.GetEffect();
    ZvView& view = *object.GetView();
    const int width = static_cast<int>(std::ceil(layout.getAdvance()));
    const int height = static_cast<int>(std::ceil(bounds.mBottom - bounds.mTop));
    const PictureSize size = {width + effects.getLeftOffset() + effects.getRightOffset(),
                              height + effects.getTopOffset() + effects.getBottomOffset()};
    view.SetSize(width, height);
    view.SetBitmapWidth(size.width);
    view.SetBitmapHeight(size.height);
    auto* line = new ZvLineInfo;
    line->y = static_cast<int>(std::ceil(-bounds.mTop));
    line->end = static_cast<int>(units.size());
    line->direction = 1;
    List lines;
    lines.Construct();
    lines.Add(line);
    return object.SetLineInfo(&lines) ? size : PictureSize();
}

}  // namespace bench
