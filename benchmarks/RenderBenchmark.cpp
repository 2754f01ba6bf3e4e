// SPDX-License-Identifier: Apache-2.0
//
// Times whole renders through a text object: shaping, glyphs, effects and composition, with the font loaded
// beforehand. Rows are named scene / size / kind. `fresh` makes a new text object for each render and clears
// the port's glyph cache, as scripts/compare does. `warm` renders one object again, as after a change of its
// effects, so its lines are kept. `over` is `warm` with a background, composed on the canvas. Every scene is
// checked for ink before it is timed, because a renderer that draws nothing is fast.
//
//     bench_render [FONT] [--benchmark_filter=...]
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <utility>

#include "benchmarks/Scenes.h"
#include "platform/host/GlyphCache.h"
#include "text/ZvTextObject.h"

namespace {

const char* fontPath = bench::kFont;

enum class Kind { kFresh, kWarm, kOver };

void renderScene(benchmark::State& state, const std::string& scene, bench::Canvas canvas, Kind kind) {
    Zvex::ZvTextObject object;
    if (!bench::prepareScene(object, scene, canvas, fontPath)) {
        state.SkipWithError("cannot be prepared; is the font there?");
        return;
    }
    object.SetBackgroundColor(0xFFFFFFFF, kind == Kind::kOver);
    uint64_t ink = 0;
    const auto* first = object.RenderTextEffect(canvas.width(), canvas.height());
    for (int i = 0; i < canvas.width() * canvas.height(); ++i) ink += first[i] >> 24;
    const auto em = static_cast<uint64_t>(canvas.glyphSize());
    if (ink < em * em * 255) {
        state.SkipWithError("hardly any ink");
        return;
    }
    for (auto _ : state) {
        if (kind == Kind::kFresh) {
            host::clearGlyphCache();
            Zvex::ZvTextObject another;
            bench::prepareScene(another, scene, canvas, fontPath);
            benchmark::DoNotOptimize(another.RenderTextEffect(canvas.width(), canvas.height()));
        } else {
            benchmark::DoNotOptimize(object.RenderTextEffect(canvas.width(), canvas.height()));
        }
    }
}

void addRows() {
    for (const int scale : {1, 4}) {
        bench::Canvas canvas;
        canvas.scale = scale;
        for (const char* scene : bench::kScenes) {
            for (const auto& [kind, label] :
                 {std::pair(Kind::kFresh, "/fresh"), {Kind::kWarm, "/warm"}, {Kind::kOver, "/over"}}) {
                const std::string name = std::string(scene) + "/" + std::to_string(canvas.width()) + "x" +
                                         std::to_string(canvas.height()) + label;
                benchmark::RegisterBenchmark(name.c_str(), [=, kind = kind](benchmark::State& state) {
                    renderScene(state, scene, canvas, kind);
                })->Unit(benchmark::kMicrosecond);
            }
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc > 1) fontPath = argv[1];
    addRows();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
