// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/Scenes.h"

#include <hwui/Paint.h>

#include "benchmarks/SceneEffects.h"
#include "foundation/List.h"
#include "foundation/ZvString.h"

namespace bench {

using namespace Zvex;

bool prepareScene(ZvTextObject& object, const std::string& scene, Canvas canvas, const char* font) {
    ZvString text;
    if (!object.Construct() || !text.Construct(kText) || !object.SetText(&text) || !object.SetFont(font)) {
        return false;
    }
    android::Paint paint;
    constexpr int kAntiAlias = 1;
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
