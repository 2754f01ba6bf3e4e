// SPDX-License-Identifier: Apache-2.0
#include "scene/Renderer.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>
#include <tuple>
#include <utility>

#include "effect/ZvEffect.h"
#include "foundation/KeptMemory.h"
#include "foundation/List.h"
#include "foundation/OutOfMemory.h"
#include "raster/ZvBitmap.h"
#include "scene/Failure.h"
#include "scene/LayeredScene.h"
#include "scene/SceneCheck.h"
#include "scene/SceneFonts.h"
#include "scene/SceneLayout.h"
#include "text/LinePlacement.h"
#include "text/ZvFontDrawing.h"
#include "text/ZvTextObject.h"
#include "text/ZvView.h"

namespace Zvex::scene {

namespace {

using Zvex::List;
using Zvex::ZvEffect;
using Zvex::ZvLineInfo;
using Zvex::ZvTextObject;
using Zvex::ZvView;

int gravityBits(const Scene& scene) {
    static constexpr int kHorizontal[] = {0x3, 0x1, 0x5};   // left, center, right
    static constexpr int kVertical[] = {0x30, 0x10, 0x50};  // top, center, bottom
    return kHorizontal[static_cast<int>(scene.align)] | kVertical[static_cast<int>(scene.gravity)];
}

void alignLines(std::vector<Zvex::LaidOutLine>& lines, Scene::Align align, int innerWidth) {
    for (Zvex::LaidOutLine& line : lines) {
        const float room = static_cast<float>(innerWidth) - line.width;
        if (align == Scene::Align::Center) line.left = std::round(room / 2);
        if (align == Scene::Align::Right) line.left = std::floor(room);
    }
}

int64_t floorOf(float value) {
    return static_cast<int64_t>(std::floor(value));
}
int64_t ceilingOf(float value) {
    return static_cast<int64_t>(std::ceil(value));
}

// A scene's lines in its view, and the size of the picture: the view plus margins.
struct PlacedScene {
    int width = 0, height = 0;
    Margins margins;                // those of the effects, and room for ink beyond the view
    Point origin;                   // of the lines' coordinates in the picture
    size_t first = 0;               // the first line of the text that shows
    std::vector<ZvLineInfo> lines;  // the lines that show
};

// The picture's size, from the view's and the margins. Throws UsageError if it is too large.
void setSize(PlacedScene& placed, const Scene& scene, int64_t viewWidth, int64_t viewHeight) {
    const int64_t width = viewWidth + placed.margins.left + placed.margins.right;
    const int64_t height = viewHeight + placed.margins.top + placed.margins.bottom;
    // One picture for each layer, besides the one that they are joined on.
    const auto pictures = static_cast<int64_t>(std::max<size_t>(scene.style.layers.size(), 1));
    const int64_t side = std::min(scene.limits.side, kMaxSide);
    const int64_t most = std::min(scene.limits.pixels, 3 * kMaxPixels / pictures);
    if (width > side || height > side || width * height > most) {
        throw UsageError(std::string(scene.width > 0 ? "--width" : "--size") + ": the picture would be " +
                         std::to_string(width) + " x " + std::to_string(height) + " pixels; at most " +
                         std::to_string(side) + " a side and " + std::to_string(most) + " in all");
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

// Sets up the object's view; its effects must have been added.
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
    alignLines(lines, scene.align, innerWidth);

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

std::vector<LineMetrics> measureLines(const PlacedScene& placed, const LaidOutText& laidOut,
                                      const SceneText& text) {
    std::vector<LineMetrics> lines;
    for (size_t i = 0; i < placed.lines.size(); ++i) {
        const ZvLineInfo& info = placed.lines[i];
        LineMetrics& line = lines.emplace_back();
        line.start = text.offsetOf(static_cast<size_t>(info.start));
        line.end = text.offsetOf(static_cast<size_t>(info.end));
        line.baseline = info.y + placed.origin.y;
        const Box box = {static_cast<float>(info.rect.left), static_cast<float>(info.rect.top),
                         static_cast<float>(info.rect.right), static_cast<float>(info.rect.bottom)};
        line.box = moved(box, placed.origin.x, placed.origin.y);
        for (const LineGlyph& glyph : laidOut.glyphs[placed.first + i]) {
            line.glyphs.push_back(
                {text.offsetOf(glyph.cluster), moved(glyph.box, info.x + placed.origin.x, line.baseline)});
        }
    }
    return lines;
}

std::vector<PlacedRun> placeRuns(const LaidOutText& laidOut, const PlacedScene& placed) {
    std::vector<PlacedRun> result;
    for (size_t i = 0; i < placed.lines.size(); ++i) {
        const ColourRun& run = laidOut.colours[placed.first + i];
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

// Everything that a text's lines and glyphs depend on.
struct ShapedFrom {
    std::string text;
    Font font;
    std::vector<Font> fallbacks;
    bool systemFallback;
    std::string features;
    double size, letterSpacing;
    int width, left, right;
    host::Rendering rendering;

    explicit ShapedFrom(const Scene& scene)
        : text(scene.text),
          font(scene.font),
          fallbacks(scene.fallbacks),
          systemFallback(scene.systemFallback),
          features(scene.style.features),
          size(scene.style.size),
          letterSpacing(scene.style.letterSpacing),
          width(scene.width),
          left(scene.padding.left),
          right(scene.padding.right),
          rendering(scene.rendering) {}

    bool operator==(const ShapedFrom& other) const { return tied() == other.tied(); }

private:
    auto tied() const -> std::tuple<const std::string&, const Font&, const std::vector<Font>&, bool,
                                    const std::string&, double, double, int, int, int, host::Rendering> {
        return {text,          font,  fallbacks, systemFallback, features, size,
                letterSpacing, width, left,      right,          rendering};
    }
};

}  // namespace

// A laid-out text, without its style. Its object keeps the lines' images.
struct Renderer::Text {
    explicit Text(const Scene& scene)
        : from(scene),
          fonts(takeFonts(scene)),
          text(scene),
          shaper(shaperOf(scene, fonts, text)),
          laidOut(layOutText(shaper, scene, fonts, text)) {
        if (!object.Construct()) throw std::bad_alloc();
        setText(object, fonts, text, shaper);
    }

    const ShapedFrom from;
    const SceneFonts fonts;
    const SceneText text;
    const LineShaper shaper;
    const LaidOutText laidOut;
    ZvTextObject object;
};

struct Renderer::Kept {
    std::unique_ptr<Zvex::KeptMemory> memory;  // null: nothing is kept
    std::unique_ptr<Text> text;
};

Renderer::Renderer(Keeping keeping) : mKept(std::make_unique<Kept>()) {
    if (keeping == Keeping::All) mKept->memory = std::make_unique<Zvex::KeptMemory>();
}
Renderer::~Renderer() = default;
Renderer::Renderer(Renderer&&) noexcept = default;
Renderer& Renderer::operator=(Renderer&&) noexcept = default;

// Without a sink nothing is drawn. The result's picture has only its size.
Rendering Renderer::make(const Scene& scene, const Sink& sink) {
    checkScene(scene);
    const host::RenderingOfThread drawnSo(scene.rendering);
    const Zvex::KeptMemory::Use memory(mKept->memory.get());
    Zvex::takeOutOfMemoryMark();                          // left by an earlier picture
    std::unique_ptr<Text> text = std::move(mKept->text);  // lost if this picture fails
    if (text == nullptr || !(text->from == ShapedFrom(scene))) {
        text.reset();
        text = std::make_unique<Text>(scene);
    }
    ZvTextObject& object = text->object;
    object.GetEffect()->releaseEffect();
    Style style = scene.style;
    fitEffects(style);
    std::optional<LayeredScene> layered;
    if (!LayeredScene::isFor(style) && hasColours(text->laidOut.colours, style)) {
        style.color = withOpacity(style.color, style.opacity);
        if (style.background) style.background = withOpacity(*style.background, style.opacity);
        style.opacity = 1;
        layered.emplace(style, object);
    } else if (LayeredScene::isFor(style)) {
        layered.emplace(style, object);
    } else {
        object.SetTextColor(withOpacity(style.color, style.opacity));
        object.SetBackgroundColor(withOpacity(style.background.value_or(0), style.opacity),
                                  style.background.has_value());
        addEffects(*object.GetEffect(), style.effects);
    }

    const PlacedScene placed = placeScene(object, scene, text->laidOut);
    setLines(object, placed.lines);
    Rendering rendering;
    for (std::string warning : {missingWarning(text->fonts, scene.systemFallback),
                                silhouetteWarning(text->laidOut.colours, style)}) {
        if (!warning.empty()) rendering.warnings.push_back(std::move(warning));
    }
    rendering.picture.width = placed.width;
    rendering.picture.height = placed.height;
    const ZvLineInfo& first = placed.lines.front();
    rendering.metrics = {placed.width,
                         placed.height,
                         placed.margins,
                         first.y + placed.origin.y,
                         {first.x + placed.origin.x, first.y + placed.origin.y},
                         measureLines(placed, text->laidOut, text->text)};
    addClusters(rendering.metrics, scene.text);
    if (sink) {
        std::optional<Zvex::ZvBitmap> joined;
        if (layered) {
            layered->render(joined.emplace(placed.width, placed.height, 4u),
                            placeRuns(text->laidOut, placed));
        }
        const unsigned* pixels = layered ? reinterpret_cast<const unsigned*>(joined->pixels)
                                         : object.RenderTextEffect(placed.width, placed.height);
        if (pixels == nullptr || Zvex::takeOutOfMemoryMark())
            throw Failure("TEXT: not enough memory for the picture");
        sink(pixels, placed.width, placed.height);
    }
    mKept->text = std::move(text);
    return rendering;
}

Rendering Renderer::render(const Scene& scene) {
    std::vector<uint32_t> kept;
    Rendering rendering = make(scene, [&](const unsigned* pixels, int width, int height) {
        kept.assign(pixels, pixels + static_cast<size_t>(width) * static_cast<size_t>(height));
    });
    rendering.picture.pixels = std::move(kept);
    if (scene.trim) trimRendering(rendering);
    return rendering;
}

Rendering Renderer::measure(const Scene& scene) {
    return make(scene, nullptr);
}

Rendering Renderer::renderInto(const Scene& scene, uint32_t* target, int width, int height, size_t stride,
                               PixelFormat format) {
    return make(scene, [&](const unsigned* pixels, int madeWidth, int madeHeight) {
        if (madeWidth != width || madeHeight != height || stride < static_cast<size_t>(width)) {
            throw UsageError("TEXT: the picture is " + std::to_string(madeWidth) + " x " +
                             std::to_string(madeHeight) + " pixels, not " + std::to_string(width) + " x " +
                             std::to_string(height));
        }
        for (int y = 0; y < height; ++y, target += stride, pixels += width)
            convertPixels(pixels, static_cast<size_t>(width), format, target);
    });
}

}  // namespace Zvex::scene
