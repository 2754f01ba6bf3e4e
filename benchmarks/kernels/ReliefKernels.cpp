// SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <string>

#include "benchmarks/kernels/TextScene.h"
#include "effect/ZvProperty.h"
#include "effect/filters/ZvBevel.h"
#include "effect/filters/ZvEmboss.h"
#include "tests/reference/ReliefReference.h"

namespace {

using namespace Zvex;

template <typename Filter, typename Property, typename Plain>
void addRelief(const bench::TextScene& scene, const char* name, Plain plain, int style, bool soft, int size,
               bool withPlain) {
    const auto filter = std::make_shared<Filter>();
    Property property(style, static_cast<float>(size), 1.5f, 1, soft ? 0 : 1, 0, 1.0f, 120.0f, 30.0f,
                      0xC0102040, 1.0f, 0xF0FFE0A0, 1.0f);
    filter->setProperty(&property);
    bench::Draw reference = nullptr;
    if (withPlain) {
        reference = [filter, plain](ZvECore::ParamPostProcessing& p) { plain(p, *filter->property); };
    }
    bench::addRows(
        std::string(name) + (soft ? "/soft" : "/hard") + "/size=" + std::to_string(size), scene,
        [filter](ZvECore::ParamPostProcessing& p) { filter->doPostProcessing(&p); }, reference);
}

// The plain form takes minutes on the large text.
void addReliefRows() {
    for (const bench::TextScene* scene : {&bench::smallText(), &bench::largeText()}) {
        const bool small = scene == &bench::smallText();
        const int scale = small ? 1 : 4;
        for (bool soft : {false, true}) {
            for (int size : {5, 10, 20, 40, 48}) {
                const auto bevel = addRelief<ZvBevel, ZvBevelProperty, decltype(&reference::drawBevel)>;
                bevel(*scene, "bevel/inner", reference::drawBevel, 1, soft, size * scale, small);
                bevel(*scene, "bevel/outer", reference::drawBevel, 0, soft, size * scale, small);
            }
            // The library's time hardly grows with the radius. The plain form's grows with its square, so it
            // is left out.
            for (int size : {2, 5, 10, 20, 40, 70, 100}) {
                if (soft || !small) break;
                addRelief<ZvBevel, ZvBevelProperty>(*scene, "bevel-radii/inner", reference::drawBevel, 1,
                                                    soft, size, false);
                addRelief<ZvEmboss, ZvEmbossProperty>(*scene, "emboss-radii", reference::drawEmboss, 1, soft,
                                                      size, false);
            }
            for (int size : {10, 20, 40}) {
                addRelief<ZvEmboss, ZvEmbossProperty>(*scene, "emboss", reference::drawEmboss, 1, soft,
                                                      size * scale, small);
            }
        }
    }
}

const bench::Family family(addReliefRows);

}  // namespace
