// SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <string>

#include "benchmarks/kernels/TextScene.h"
#include "effect/ZvProperty.h"
#include "effect/filters/ZvStroke.h"
#include "tests/reference/StrokeReference.h"

namespace {

using namespace Zvex;

constexpr uint32_t kColor = 0xFF202020;

// `measure` is the name of the width in the row's name.
void addStroke(const std::string& measure, const bench::TextScene& scene, int position, int width,
               bool withPlain) {
    const char* names[] = {"center", "outside", "inside"};
    const auto stroke = std::make_shared<ZvStroke>();
    ZvStrokeProperty property(static_cast<float>(width), kColor, 1.0f, 0, position);
    stroke->setProperty(&property);
    const bench::Draw plain = [position, width](ZvECore::ParamPostProcessing& p) {
        reference::drawStroke(p.target, nullptr, *p.mask, *p.textRect, p.layerMode, static_cast<float>(width),
                              kColor, position);
    };
    bench::addRows(
        std::string("stroke/") + names[position] + "/" + measure + "=" + std::to_string(width), scene,
        [stroke](ZvECore::ParamPostProcessing& p) { stroke->doPostProcessing(&p); },
        withPlain ? plain : nullptr);
}

void addStrokeRows() {
    for (int position : {0, 1, 2}) {
        for (int width : {4, 8, 12, 40}) addStroke("width", bench::smallText(), position, width, true);
        // The plain form takes minutes here.
        for (int width : {16, 32, 160}) addStroke("width", bench::largeText(), position, width, false);
    }
    // How the cost grows with the radius.
    for (int radius : {2, 5, 10, 20, 40, 70, 100}) {
        addStroke("radius", bench::smallText(), ZV_STROKE_OUTSIDE, radius, false);
    }
}

const bench::Family family(addStrokeRows);

}  // namespace
