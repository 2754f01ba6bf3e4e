// SPDX-License-Identifier: Apache-2.0
// The shadows and the glows.
#include <memory>
#include <string>

#include "benchmarks/kernels/TextScene.h"
#include "effect/ZvProperty.h"
#include "effect/filters/ZvInnerGlow.h"
#include "effect/filters/ZvInnerShadow.h"
#include "effect/filters/ZvOuterGlow.h"
#include "effect/filters/ZvOuterShadow.h"
#include "tests/reference/GlowReference.h"
#include "tests/reference/ShadowReference.h"

namespace {

using namespace Zvex;
using Param = ZvECore::ParamPostProcessing;

constexpr uint32_t kColor = 0xFF202020;
constexpr float kAngle = 135.0f, kDistance = 11.0f;  // light from the upper left

template <typename Filter, typename Property>
void addShadow(const char* name, const bench::TextScene& scene, int size, const bench::Draw& plain) {
    const auto filter = std::make_shared<Filter>();
    Property property(kAngle, kDistance, static_cast<float>(size), kColor, 1.0f);
    filter->setProperty(&property);
    bench::addRows(
        std::string("shadow/") + name + "/size=" + std::to_string(size), scene,
        [filter](Param& p) { filter->doPostProcessing(&p); }, plain);
}

template <typename Filter, typename Property>
void addGlow(const char* name, const bench::TextScene& scene, int size, const bench::Draw& plain) {
    const auto filter = std::make_shared<Filter>();
    Property property(static_cast<float>(size), kColor, 1.0f, 0, nullptr);
    filter->setProperty(&property);
    bench::addRows(
        std::string("glow/") + name + "/size=" + std::to_string(size), scene,
        [filter](Param& p) { filter->doPostProcessing(&p); }, plain);
}

void addSize(const bench::TextScene& scene, int size, bool withPlain) {
    const float pixels = static_cast<float>(size);
    const reference::Shadow shadow = {kAngle, kDistance, pixels, kColor};
    const bench::Draw outer = [shadow](Param& p) {
        reference::drawOuterShadow(p.target, *p.mask, *p.textRect, shadow);
    };
    const bench::Draw inner = [shadow](Param& p) {
        reference::drawInnerShadow(p.target, *p.mask, *p.textRect, shadow);
    };
    addShadow<ZvOuterShadow, ZvOuterShadowProperty>("outer", scene, size, withPlain ? outer : nullptr);
    addShadow<ZvInnerShadow, ZvInnerShadowProperty>("inner", scene, size, withPlain ? inner : nullptr);
    for (bool inside : {false, true}) {
        bench::Draw plain = [inside, pixels](Param& p) {
            reference::drawGlow(inside, *p.target, *p.mask, *p.textRect, pixels, kColor, {});
        };
        if (!withPlain) plain = nullptr;
        if (inside) {
            addGlow<ZvInnerGlow, ZvInnerGlowProperty>("inner", scene, size, plain);
        } else {
            addGlow<ZvOuterGlow, ZvOuterGlowProperty>("outer", scene, size, plain);
        }
    }
}

void addBlurRows() {
    for (int size : {5, 10, 20, 30, 40, 80}) addSize(bench::smallText(), size, true);
    for (int size : {2, 70, 100}) addSize(bench::smallText(), size, false);  // cost over the radius
    for (int size : {20, 30, 80, 120}) addSize(bench::largeText(), size, false);
}

const bench::Family family(addBlurRows);

}  // namespace
