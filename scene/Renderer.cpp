// SPDX-License-Identifier: Apache-2.0
#include "scene/Renderer.h"

#include <algorithm>
#include <new>
#include <optional>
#include <tuple>
#include <utility>

#include "effect/ZvEffect.h"
#include "foundation/KeptMemory.h"
#include "foundation/OutOfMemory.h"
#include "raster/ZvBitmap.h"
#include "scene/ColorGlyphs.h"
#include "scene/Failure.h"
#include "scene/LayeredScene.h"
#include "scene/SceneCheck.h"
#include "scene/SceneFonts.h"
#include "scene/SceneLayout.h"
#include "scene/ScenePlacement.h"
#include "text/ZvFontDrawing.h"
#include "text/ZvTextObject.h"

namespace Zvex::scene {

namespace {

using Zvex::ZvLineInfo;
using Zvex::ZvTextObject;

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

// One line where even the least size of --fit is too large; else empty.
std::string fitWarning(const Scene& scene, const LaidOutText& laidOut) {
    if (laidOut.fits) return "";
    return "the text does not fit even at " + formatNumber(laidOut.size) + " px, the least of --fit" +
           (scene.ellipsis ? "" : "; what has no room is cut off");
}

// Everything that a text's lines and glyphs depend on.
struct ShapedFrom {
    Scene scene;  // without what they do not depend on

    explicit ShapedFrom(const Scene& from) {
        scene.text = from.text;
        scene.language = from.language;
        scene.direction = from.direction;
        scene.font = from.font;
        scene.fallbacks = from.fallbacks;
        scene.systemFallback = from.systemFallback;
        scene.width = from.width;
        scene.padding = from.padding;
        scene.tabStops = from.tabStops;
        scene.rendering = from.rendering;
        scene.align = from.align == Scene::Align::Justify ? from.align : Scene::Align::Left;
        scene.ellipsis = from.ellipsis;
        scene.fit = from.fit;
        if (from.ellipsis || from.fit > 0) {
            scene.height = from.height;
            scene.maxLines = from.maxLines;
        } else {
            scene.padding.top = scene.padding.bottom = 0;
        }
        Style& style = scene.style;
        style.size = from.style.size;
        style.letterSpacing = from.style.letterSpacing;
        style.wordSpacing = from.style.wordSpacing;
        style.lineHeight = from.style.lineHeight;
        style.upperCase = from.style.upperCase;
        style.features = from.style.features;
    }

    static auto tied(const Scene& s) {
        return std::tie(s.text, s.language, s.direction, s.font, s.fallbacks, s.systemFallback, s.width,
                        s.height, s.tabStops, s.rendering, s.align, s.ellipsis, s.fit, s.maxLines);
    }
    static auto tied(const Style& s) {
        return std::tie(s.size, s.letterSpacing, s.wordSpacing, s.lineHeight, s.upperCase, s.features);
    }
    static auto tied(const Padding& p) { return std::tie(p.left, p.top, p.right, p.bottom); }

    bool operator==(const ShapedFrom& other) const {
        return tied(scene) == tied(other.scene) && tied(scene.style) == tied(other.scene.style) &&
               tied(scene.padding) == tied(other.scene.padding);
    }
};

}  // namespace

// A laid-out text, without its style. Its object keeps the lines' images.
struct Renderer::Text {
    explicit Text(const Scene& scene)
        : from(scene),
          text(scene),
          fonts(takeFonts(scene, text)),
          layout(scene, fonts, text, paintOf(scene)),
          laidOut(layout.lines()) {
        if (!object.Construct()) throw std::bad_alloc();
        layout.setUp(object, fonts);
    }

    const ShapedFrom from;
    const SceneText text;
    const SceneFonts fonts;
    const SceneLayout layout;
    const LaidOutText& laidOut;
    ZvTextObject object;
};

struct Renderer::Kept {
    std::unique_ptr<Zvex::KeptMemory> memory;  // null: the thread's own
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
    std::optional<Zvex::KeptMemory::Use> memory;
    if (mKept->memory != nullptr) memory.emplace(mKept->memory.get());
    Zvex::takeOutOfMemoryMark();                          // left by an earlier picture
    std::unique_ptr<Text> text = std::move(mKept->text);  // lost if this picture fails
    if (text == nullptr || !(text->from == ShapedFrom(scene))) {
        text.reset();
        text = std::make_unique<Text>(scene);
    }
    ZvTextObject& object = text->object;
    object.GetEffect()->releaseEffect();
    Style style = scene.style;
    style.size = text->laidOut.size;
    fitEffects(style);
    std::optional<LayeredScene> layered;
    if (!LayeredScene::isFor(style) && hasColors(text->laidOut.colors, style)) {
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
    rendering.warnings = style.warnings;
    for (std::string warning :
         {missingWarning(text->fonts, scene.systemFallback), silhouetteWarning(text->laidOut.colors, style),
          fitWarning(scene, text->laidOut)}) {
        if (!warning.empty()) rendering.warnings.push_back(std::move(warning));
    }
    rendering.picture.width = placed.width;
    rendering.picture.height = placed.height;
    const ZvLineInfo& first = placed.lines.front();
    rendering.metrics = {placed.width,
                         placed.height,
                         text->laidOut.size,
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
        if (target == nullptr) throw UsageError("pixels: is a null pointer");
        if (stride < static_cast<size_t>(madeWidth)) {
            throw UsageError("stride: " + std::to_string(stride) + " is less than the picture's width, " +
                             std::to_string(madeWidth));
        }
        if (madeWidth != width || madeHeight != height) {
            throw UsageError("TEXT: the picture is " + std::to_string(madeWidth) + " x " +
                             std::to_string(madeHeight) + " pixels, not " + std::to_string(width) + " x " +
                             std::to_string(height));
        }
        for (int y = 0; y < height; ++y, target += stride, pixels += width)
            convertPixels(pixels, static_cast<size_t>(width), format, target);
    });
}

}  // namespace Zvex::scene
