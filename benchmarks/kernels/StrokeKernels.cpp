// SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <string>

#include "benchmarks/kernels/TextScene.h"
#include "effect/ZvProperty.h"
#include "effect/filters/ZvStroke.h"
#include "tests/reference/StrokeReference.h"

namespace {

using namespace Zvex;

constexpr uint32_t COLOR = 0xFF202020;

void addStroke(const std::string& family, const bench::TextScene& scene, int position, int width,
               bool withPlain) {
    const char* names[] = {"center", "outside", "inside"};
    const auto stroke = std::make_shared<ZvStroke>();
    ZvStrokeProperty property(static_cast<float>(width), COLOR, 1.0f, 0, position);
    stroke->setProperty(&property);
    const bench::Draw plain = [position, width](ZvECore::ParamPostProcessing& p) {
        reference::drawStroke(p.target, nullptr, *p.mask, *p.textRect, p.layerMode, static_cast<float>(width),
                              COLOR, position);
    };
    bench::addRows(
        family + "/" + names[position] + "/width=" + std::to_string(width), scene,
        [stroke](ZvECore::ParamPostProcessing& p) { stroke->doPostProcessing(&p); },
        withPlain ? plain : nullptr);
}

void addStrokeRows() {
    for (int position : {0, 1, 2}) {
        for (int width : {4, 8, 12, 40}) addStroke("stroke", bench::smallText(), position, width, true);
        // The plain form takes minutes here.
        for (int width : {16, 32, 160}) addStroke("stroke", bench::largeText(), position, width, false);
    }
    // How the cost grows with the radius.
    for (int radius : {2, 3, 5, 8, 12, 20, 30, 50, 70, 100}) {
        addStroke("stroke-radii", bench::smallText(), ZV_STROKE_OUTSIDE, radius, false);
    }
}

const bench::Family family(addStrokeRows);

}  // namespace
