// SPDX-License-Identifier: Apache-2.0
#include "scene/ScenePlacement.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

#include "effect/ZvEffect.h"
#include "foundation/List.h"
#include "scene/Failure.h"
#include "text/LinePlacement.h"
#include "text/ZvView.h"

namespace Zvex::scene {

namespace {

using Zvex::List;
using Zvex::ZvEffect;
using Zvex::ZvLineInfo;
using Zvex::ZvTextObject;
using Zvex::ZvView;

int gravityBits(const Scene& scene) {
    static constexpr int kHorizontal[] = {0x3, 0x1, 0x5, 0x1, 0x1, 0x1};  // in the order of Align
    static constexpr int kVertical[] = {0x30, 0x10, 0x50};                // top, center, bottom
    return kHorizontal[static_cast<int>(scene.align)] | kVertical[static_cast<int>(scene.gravity)];
}

// `forms` are those of the lines.
void alignLines(std::vector<Zvex::LaidOutLine>& lines, const LineForm* forms, Scene::Align align,
                int innerWidth) {
    using Align = Scene::Align;
    for (Zvex::LaidOutLine& line : lines) {
        const float room = static_cast<float>(innerWidth) - line.width;
        const bool beginsRight = forms++->beginsRight;
        const bool right = align == Align::Right || (align == Align::End && !beginsRight) ||
                           ((align == Align::Start || align == Align::Justify) && beginsRight);
        if (align == Align::Center) line.left = std::round(room / 2);
        if (right) line.left = std::floor(room);
    }
}

int64_t floorOf(float value) {
    return static_cast<int64_t>(std::floor(value));
}
int64_t ceilingOf(float value) {
    return static_cast<int64_t>(std::ceil(value));
}

// The picture's size, from the view's and the margins. Throws UsageError if it is too large.
void setSize(PlacedScene& placed, const Scene& scene, int64_t viewWidth, int64_t viewHeight) {
    const int64_t width = viewWidth + placed.margins.left + placed.margins.right;
    const int64_t height = viewHeight + placed.margins.top + placed.margins.bottom;
    // One picture for each layer, besides the one that they are joined on.
    const auto pictures = static_cast<int64_t>(std::max<size_t>(scene.style.layers.size(), 1));
    const int64_t side = std::min(scene.limits.side, kMaxSide);
    const int64_t most = std::min(scene.limits.pixels, 3 * kMaxPixels / pictures);
    const auto fits = [&](int64_t w, int64_t h) { return w <= side && h <= side && w * h <= most; };
    if (!fits(width, height)) {
        // A given width and height have the padding in them.
        const Padding& p = scene.padding;
        const bool padded = fits(scene.width > 0 ? width : width - p.left - p.right,
                                 scene.height > 0 ? height : height - p.top - p.bottom);
        throw UsageError(std::string(padded            ? "--padding"
                                     : scene.width > 0 ? "--width"
                                                       : "--size") +
                         ": the picture would be " + std::to_string(width) + " x " + std::to_string(height) +
                         " pixels; at most " + std::to_string(side) + " a side and " + std::to_string(most) +
                         " in all");
    }
    placed.width = static_cast<int>(width);
    placed.height = static_cast<int>(height);
}

// How far the ink of the lines leans out of `inner`, the view without its padding. Lines that themselves
// stand out of it, being too long or too many, are cut off as before.
Margins leaningOf(const PlacedScene& placed, const LaidOutText& text, const ZvRect& inner) {
    Margins lean;
    for (size_t i = 0; i < placed.lines.size(); ++i) {
        const ZvLineInfo& line = placed.lines[i];
        const Box& ink = text.inks[placed.first + i];
        if (ink.left >= ink.right) continue;
        const auto add = [](int& side, bool within, int64_t beyond) {
            if (within) side = static_cast<int>(std::max<int64_t>(side, beyond));
        };
        add(lean.left, line.rect.left >= inner.left, inner.left - (line.x + floorOf(ink.left)));
        add(lean.top, line.rect.top >= inner.top, inner.top - (line.y + floorOf(ink.top)));
        add(lean.right, line.rect.right <= inner.right, line.x + ceilingOf(ink.right) - inner.right);
        add(lean.bottom, line.rect.bottom <= inner.bottom, line.y + ceilingOf(ink.bottom) - inner.bottom);
    }
    return lean;
}

// Makes room for ink that leans out of the view. The padding takes it first, and the clip then leaves as much
// of the padding to it.
void makeRoom(PlacedScene& placed, const Margins& lean, const Padding& pad, ZvView& view) {
    const auto room = [](int leaning, int padding) { return std::max(leaning - padding, 0); };
    const Margins more = {room(lean.left, pad.left), room(lean.top, pad.top), room(lean.right, pad.right),
                          room(lean.bottom, pad.bottom)};
    for (ZvLineInfo& line : placed.lines) {
        line.x += more.left;
        line.y += more.top;
        line.rect.left += more.left;
        line.rect.right += more.left;
        line.rect.top += more.top;
        line.rect.bottom += more.top;
    }
    placed.margins.left += more.left;
    placed.margins.top += more.top;
    placed.margins.right += more.right;
    placed.margins.bottom += more.bottom;
    const auto rest = [](int padding, int leaning) { return std::max(padding - leaning, 0); };
    view.SetPadding(rest(pad.left, lean.left), rest(pad.top, lean.top), rest(pad.right, lean.right),
                    rest(pad.bottom, lean.bottom));
}

}  // namespace

PlacedScene placeScene(ZvTextObject& object, const Scene& scene, const LaidOutText& text) {
    PlacedScene placed;
    std::vector<Zvex::LaidOutLine> lines = text.lines;
    const size_t shown = scene.maxLines > 0
                             ? std::min<size_t>(lines.size(), static_cast<size_t>(scene.maxLines))
                             : lines.size();
    // With a line limit, bottom gravity shows the last lines, any other the first.
    placed.first = scene.gravity == Scene::Gravity::Bottom ? lines.size() - shown : 0;
    const int linesHeight = lines[placed.first + shown - 1].bottom - lines[placed.first].top;
    float widest = 1;
    for (const Zvex::LaidOutLine& line : lines) widest = std::max(widest, line.width);
    const int wrapWidth = wrapWidthOf(scene);
    const int innerWidth = wrapWidth > 0 ? wrapWidth : static_cast<int>(std::ceil(widest));
    alignLines(lines, text.forms.data(), scene.align, innerWidth);

    ZvView& view = *object.GetView();
    ZvEffect& effect = *object.GetEffect();
    const Padding& pad = scene.padding;
    const int64_t viewWidth = int64_t{innerWidth} + pad.left + pad.right;
    const int64_t viewHeight =
        scene.height > 0 ? scene.height : int64_t{std::max(linesHeight, 1)} + pad.top + pad.bottom;
    placed.origin = {effect.getLeftOffset(), effect.getTopOffset()};
    placed.margins = {placed.origin.x, placed.origin.y, effect.getRightOffset(), effect.getBottomOffset()};
    setSize(placed, scene, viewWidth, viewHeight);
    view.gravity = gravityBits(scene);
    view.maxLines = static_cast<int>(shown);
    view.SetSize(static_cast<int>(viewWidth), static_cast<int>(viewHeight));
    view.SetPadding(pad.left, pad.top, pad.right, pad.bottom);
    placed.lines = Zvex::placeLines(view, lines.data(), static_cast<int>(lines.size()));

    const ZvRect inner(pad.left, pad.top, static_cast<int>(viewWidth) - pad.right,
                       static_cast<int>(viewHeight) - pad.bottom);
    makeRoom(placed, leaningOf(placed, text, inner), pad, view);
    setSize(placed, scene, viewWidth, viewHeight);
    view.SetBitmapWidth(placed.width);
    view.SetBitmapHeight(placed.height);
    return placed;
}

std::vector<PlacedRun> placeRuns(const LaidOutText& laidOut, const PlacedScene& placed) {
    std::vector<PlacedRun> result;
    for (size_t i = 0; i < placed.lines.size(); ++i) {
        const ColorRun& run = laidOut.colors[placed.first + i];
        result.push_back(
            {&run, placed.lines[i].x + placed.origin.x + run.left, placed.lines[i].y + placed.origin.y});
    }
    return result;
}

void setLines(ZvTextObject& object, const std::vector<ZvLineInfo>& placed) {
    List records;
    records.Construct();
    for (const ZvLineInfo& info : placed) records.Add(new ZvLineInfo(info));
    object.SetLineInfo(&records);  // the text object owns the records now
}

}  // namespace Zvex::scene
