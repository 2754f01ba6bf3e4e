// SPDX-License-Identifier: Apache-2.0
//
// The text object lays the text out and rasterises it once, and draws nothing but the background; its
// coverage goes through the layers' own stacks.

#include "scene/LayeredScene.h"

#include <algorithm>
#include <cmath>

#include "effect/Canvas.h"
#include "effect/LayerJoin.h"
#include "raster/ZvBitmap.h"
#include "scene/Failure.h"
#include "text/LayOver.h"
#include "text/LinePlacement.h"
#include "text/ZvView.h"

namespace Zvex::scene {

namespace {

using Zvex::ZvBitmap;

[[noreturn]] void refuseForMemory() {
    throw Failure("TEXT: not enough memory for the picture");
}

// What a stack of these effects draws depends on nothing else; empty where it reads a file.
std::string settingsOf(const Look& look, uint32_t color) {
    std::string settings = std::to_string(color);
    for (EffectSettings effect : look.effects) {
        if (std::holds_alternative<PatternSettings>(effect)) return "";
        settings += kindOf(effect).name;
        for (const Field& field : fieldsOf(effect)) settings += ' ' + formatValue(field);
    }
    return settings;
}

void fillGround(const Canvas& canvas, ZvBitmap& picture) {
    if (const auto* color = std::get_if<uint32_t>(&canvas.fill)) {
        Zvex::fillCanvas(&picture, *color);
        return;
    }
    Zvex::ZvEffect fill;
    try {
        addEffects(fill, {std::get<EffectSettings>(canvas.fill)});
    } catch (const Failure& failure) {  // of the pattern's file
        throw Failure("--canvas: " + failure.cause());
    }
    Zvex::fillCanvas(&picture, &fill);
}

}  // namespace

uint32_t withOpacity(uint32_t color, double opacity) {
    const auto alpha = static_cast<uint32_t>(std::lround((color >> 24) * opacity));
    return alpha << 24 | (color & 0xFFFFFF);
}

LayerStacks::LayerStacks(const Style& style) {
    for (auto settings = style.layers.rbegin(); settings != style.layers.rend(); ++settings) {
        add(*settings, settings->color.value_or(style.color));
        Zvex::TextLayer& layer = layers.back();
        layer.spread = static_cast<int>(settings->spread);
        layer.x = static_cast<int>(settings->offset.x);
        layer.y = static_cast<int>(settings->offset.y);
        layer.blend = settings->blend;
        layer.opacity = static_cast<float>(settings->opacity);
        layer.clipped = settings->clip;
        layer.knockout = settings->knockout;
    }
    if (style.layers.empty()) add(style, style.color);
}

void LayerStacks::add(const Look& look, uint32_t color) {
    std::string settings = settingsOf(look, color);
    const auto known = std::find(mSettings.begin(), mSettings.end(), settings);
    auto at = static_cast<size_t>(known - mSettings.begin());
    if (settings.empty() || at == stacks.size()) {
        at = stacks.size();
        stacks.push_back(std::make_unique<Zvex::ZvEffect>());
        addEffects(*stacks[at], look.effects);
        stacks[at]->addText(color);
        mSettings.push_back(std::move(settings));
    }
    layers.emplace_back().effect = stacks[at].get();
}

LayeredScene::LayeredScene(const Style& style, Zvex::ZvTextObject& object)
    : mStyle(style), mObject(object), mStacks(style) {
    auto coverage = std::make_unique<Zvex::TextCoverage>();
    coverage->margins = Zvex::marginsOf(mStacks.layers.data(), mStacks.layers.size());
    Zvex::ZvEffect& stack = *object.GetEffect();
    stack.effects.push_back(coverage.get());
    mCoverage = coverage.release();
    object.SetTextColor(0);
    object.SetBackgroundColor(style.background.value_or(0), style.background.has_value());
}

std::unique_ptr<LayeredScene::Colors> LayeredScene::colorsOf(const Look& look, uint32_t color,
                                                             const ZvBitmap& picture,
                                                             const std::vector<PlacedRun>& runs) const {
    auto colors = std::make_unique<Colors>();
    colors->glyphs = drawColorGlyphs(runs, color | 0xFF000000, static_cast<int>(picture.width),
                                     static_cast<int>(picture.height));
    const std::vector<EffectSettings> around = effectsAround(look.effects);
    addEffects(colors->around, around);
    if (!around.empty()) colors->glyphs.around = &colors->around;
    return colors;
}

// Gives the layers, from the back, their colours, and the coverage the shape of these glyphs.
void LayeredScene::setColors(std::vector<Zvex::TextLayer>& layers,
                             std::vector<std::unique_ptr<Colors>>& colors, const ZvBitmap& picture,
                             const std::vector<PlacedRun>& runs) {
    const bool any = std::any_of(runs.begin(), runs.end(),
                                 [](const PlacedRun& placed) { return !placed.run->glyphs.empty(); });
    if (!any) return;
    const std::vector<bool> colored = coloredLayers(mStyle);
    for (size_t i = 0; i < colored.size(); ++i) {
        if (!colored[i]) continue;
        const bool single = mStyle.layers.empty();
        const Look& look = single ? static_cast<const Look&>(mStyle) : mStyle.layers[i];
        const uint32_t color = single ? mStyle.color : mStyle.layers[i].color.value_or(mStyle.color);
        colors.push_back(colorsOf(look, color, picture, runs));
        layers[layers.size() - 1 - i].colorGlyphs = &colors.back()->glyphs;
    }
    if (colors.empty()) colors.push_back(colorsOf({}, 0, picture, runs));
    raiseCoverage(*mCoverage, colors.front()->glyphs);
}

void LayeredScene::render(ZvBitmap& picture, const std::vector<PlacedRun>& runs) {
    const uint32_t* words =
        mObject.RenderTextEffect(static_cast<int>(picture.width), static_cast<int>(picture.height));
    if (words == nullptr || picture.pixels == nullptr) refuseForMemory();
    if (mStyle.canvas) fillGround(*mStyle.canvas, picture);
    const bool inLayers = isFor(mStyle);
    const ZvBitmap background(picture.width, mStyle.background ? picture.height : 0,
                              reinterpret_cast<const unsigned char*>(words), 4);
    if (mStyle.background && inLayers) {
        Zvex::JoinedLayer layer;
        layer.picture = &background;
        Zvex::joinLayers(&picture, &layer, 1);
    }
    std::vector<Zvex::TextLayer> layers = mStacks.layers;
    std::vector<std::unique_ptr<Colors>> colors;
    setColors(layers, colors, picture, runs);
    if (!Zvex::drawTextLayers(&picture, *mCoverage, layers.data(), layers.size(),
                              Zvex::textClip(*mObject.GetView()), static_cast<float>(mStyle.opacity))) {
        refuseForMemory();
    }
    if (mStyle.background && !inLayers && !Zvex::layOver(background, picture)) refuseForMemory();
}

}  // namespace Zvex::scene
