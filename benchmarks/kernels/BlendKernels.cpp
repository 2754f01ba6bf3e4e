// SPDX-License-Identifier: Apache-2.0
// The blends over a whole picture, the steps of the final composite, the gradients and the pattern.
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/kernels/TextScene.h"
#include "effect/Composite.h"
#include "effect/ZvProperty.h"
#include "effect/filters/ZvLinearGradient.h"
#include "effect/filters/ZvPattern.h"
#include "effect/filters/ZvRadialGradient.h"
#include "raster/ZvBlender.h"
#include "tests/reference/BlenderReference.h"
#include "tests/reference/CompositeReference.h"
#include "tests/reference/GradientReference.h"
#include "tests/reference/PatternReference.h"

namespace {

using namespace Zvex;
using Param = ZvECore::ParamPostProcessing;

constexpr uint32_t kColor = 0xC0FF8040;

int sideOf(uint32_t size) {
    return static_cast<int>(size);
}

// The coverage as a premultiplied picture of words 0xAARRGGBB.
std::vector<uint32_t> wordsOf(const ZvBitmap& mask) {
    std::vector<uint32_t> words;
    for (size_t i = 0; i < mask.byteCount(); ++i)
        words.push_back(reference::premultiply(mask.pixels[i] * 0x01000000u + (kColor & 0xFFFFFFu)));
    return words;
}

void addBlends(const bench::TextScene& scene) {
    for (int mode : {1, 2, 3, 7}) {
        bench::addRows(
            "blend8/mode=" + std::to_string(mode), scene,
            [mode](Param& p) {
                const int w = sideOf(p.mask->width), h = sideOf(p.mask->height);
                ZvBlender::drawBitmapBlend8(0, 0, p.target, p.mask->pixels, w, h, w, kColor, mode);
            },
            [mode](Param& p) {
                const int w = sideOf(p.mask->width), h = sideOf(p.mask->height);
                reference::drawBitmapBlend8(0, 0, p.target, p.mask->pixels, w, h, w, kColor, mode);
            });
    }
    const auto words = std::make_shared<std::vector<uint32_t>>(wordsOf(scene.mask));
    for (int mode : {1, 2}) {
        bench::addRows(
            "blend32/mode=" + std::to_string(mode), scene,
            [mode, words](Param& p) {
                const int w = sideOf(p.mask->width), h = sideOf(p.mask->height);
                ZvBlender::drawBitmapBlend32(0, 0, p.target, words->data(), w, h, w, mode);
            },
            [mode, words](Param& p) {
                const int w = sideOf(p.mask->width), h = sideOf(p.mask->height);
                reference::drawBitmapBlend32(0, 0, p.target, words->data(), w, h, w, mode);
            });
    }
}

// Merges a glyph run into the mask; the mask's bytes are in the first quarter of the target.
template <typename Merge>
bench::Draw intoMask(Merge merge) {
    return [merge](Param& p) {
        p.target->bytesPerPixel = 1;
        merge(0, 0, p.target, p.mask->pixels, sideOf(p.mask->width), sideOf(p.mask->height), 0);
        p.target->bytesPerPixel = 4;
    };
}

void addMaskMerge(const bench::TextScene& scene) {
    using Bytes = const unsigned char*;
    const auto fast = [](int x, int y, ZvBitmap* mask, Bytes coverage, int w, int h, uint32_t color) {
        ZvBlender::drawBitmap(x, y, mask, coverage, w, h, color);
    };
    bench::addRows("mask", scene, intoMask(fast), intoMask(reference::drawBitmap));
}

void addCompositeSteps(const bench::TextScene& scene) {
    const auto picture = std::make_shared<ZvBitmap>(scene.mask.width, scene.mask.height, 4);
    const std::vector<uint32_t> words = wordsOf(scene.mask);
    std::memcpy(picture->pixels, words.data(), picture->byteCount());
    const size_t count = words.size();
    bench::addRows(
        "merge", scene, [picture](Param& p) { mergeBackLayer(p.target, picture.get(), p.mask); },
        [picture, count](Param& p) {
            for (size_t i = 0; i < 4 * count; ++i) {
                p.target->pixels[i] = static_cast<uint8_t>(
                    reference::mergeByte(p.target->pixels[i], picture->pixels[i], p.mask->pixels[i / 4]));
            }
        });
    for (int textAlpha : {255, 128}) {  // both rows copy the picture first
        bench::addRows(
            "finish/alpha=" + std::to_string(textAlpha), scene,
            [picture, textAlpha](Param& p) {
                std::memcpy(p.target->pixels, picture->pixels, picture->byteCount());
                finishPicture(p.target, static_cast<uint8_t>(textAlpha));
            },
            [picture, textAlpha, count](Param& p) {
                std::memcpy(p.target->pixels, picture->pixels, picture->byteCount());
                for (size_t i = 0; i < count; ++i) {
                    uint8_t* pixel = p.target->pixels + 4 * i;
                    for (int c = 0; c < 3; ++c)
                        pixel[c] =
                            static_cast<uint8_t>(reference::finishedColor(pixel[c], pixel[3], textAlpha));
                    pixel[3] = static_cast<uint8_t>(reference::finishedAlpha(pixel[3], textAlpha));
                }
            });
    }
    bench::addRows(
        "exchange", scene, [](Param& p) { ZvBlender::convertBGRAToARGB(p.target); },
        [count](Param& p) {
            for (size_t i = 0; i < count; ++i)
                std::swap(p.target->pixels[4 * i], p.target->pixels[4 * i + 2]);
        });
}

void addPattern(const bench::TextScene& scene, const char* name, unsigned width, unsigned height,
                float scale) {
    const auto tile = std::make_shared<ZvBitmap>(width, height, 4);
    for (size_t i = 0; i < tile->byteCount(); ++i) tile->pixels[i] = static_cast<uint8_t>(i * 37 + i / 97);
    const auto pattern = std::make_shared<ZvPattern>();
    ZvPatternProperty property(tile.get(), scale, 0.75f);
    pattern->setProperty(&property);
    bench::addRows(
        std::string("pattern/") + name, scene, [pattern](Param& p) { pattern->doPostProcessing(&p); },
        [tile, scale](Param& p) {
            reference::drawPattern(p.target, *p.mask, *p.textRect, *tile, scale, 0.75f);
        });
}

void addFills(const bench::TextScene& scene) {
    const reference::Stops stops = {
        {0xFFFF0000, 1.0f, 0.0f}, {0xFF00FF00, 1.0f, 0.5f}, {0xFF0000FF, 1.0f, 1.0f}};
    const auto linear = std::make_shared<ZvLinearGradient>();
    const auto radial = std::make_shared<ZvRadialGradient>();
    std::vector<ZvGradient> copies = stops;
    ZvLinearGradientProperty linearProperty(30.0f, 1.0f, 1.0f, 3, copies.data());
    ZvRadialGradientProperty radialProperty(0.0f, 1.0f, 1.0f, 3, copies.data());
    linear->setProperty(&linearProperty);
    radial->setProperty(&radialProperty);
    bench::addRows(
        "gradient/linear/angle=30", scene, [linear](Param& p) { linear->doPostProcessing(&p); },
        [stops](Param& p) {
            reference::drawGradient(reference::FillKind::Linear, *p.target, *p.mask, *p.textRect, 30.0f, 1.0f,
                                    stops);
        });
    bench::addRows(
        "gradient/radial", scene, [radial](Param& p) { radial->doPostProcessing(&p); },
        [stops](Param& p) {
            reference::drawGradient(reference::FillKind::Radial, *p.target, *p.mask, *p.textRect, 0.0f, 1.0f,
                                    stops);
        });

    addPattern(scene, "tile", 48, 36, 1.5f);      // repeats every 72 by 54 pixels
    addPattern(scene, "photo", 2800, 700, 1.5f);  // larger than the box
}

void addBlendRows() {
    for (const bench::TextScene* scene : {&bench::smallText(), &bench::largeText()}) {
        addBlends(*scene);
        addMaskMerge(*scene);
        addCompositeSteps(*scene);
        addFills(*scene);
    }
}

const bench::Family family(addBlendRows);

}  // namespace
