// SPDX-License-Identifier: Apache-2.0
// Whole renders through a text object: shaping, glyphs, effects and composition, the font loaded beforehand.
// Every scene is checked for ink before it is timed; a renderer that draws nothing is fast.
//
//     bench_render [FONT] [--benchmark_filter=...]
#include <benchmark/benchmark.h>
#include <hwui/Paint.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/host/GlyphCache.h"
#include "text/ZvTextObject.h"

namespace {

using namespace Zvex;

const char* fontPath = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
constexpr char kText[] = "Hamburgefonst";  // 13 glyphs

enum Style { kFill, kStroke };

// A view of width x height with one line of kText at `size` pixels.
void prepare(ZvTextObject& object, int width, int height, float size, Style style) {
    object.Construct();
    ZvString text;
    text.Construct(kText);
    object.SetText(&text);
    if (!object.SetFont(fontPath)) {
        std::fprintf(stderr, "bench_render: cannot load the font %s\n", fontPath);
        std::exit(1);
    }
    android::Paint paint;
    paint.setFlags(1);
    paint.setTextSize(size);
    object.SetPaint(paint);
    object.SetTextColor(0xFFFF8800);
    if (style == kStroke) object.GetEffect()->addStrokeText(8, 0xFF202020, 1, 0, 1);
    object.GetView()->SetSize(width, height);
    object.GetView()->SetBitmapWidth(width);
    object.GetView()->SetBitmapHeight(height);
    auto* line = new ZvLineInfo;
    line->x = 10;
    line->y = height * 3 / 4;
    line->end = static_cast<int>(sizeof kText - 1);
    line->direction = 1;
    List lines;
    lines.Construct();
    lines.Add(line);
    object.SetLineInfo(&lines);
}

void renderScene(benchmark::State& state, int width, int height, float size, Style style, bool coldGlyphs) {
    ZvTextObject object;
    prepare(object, width, height, size, style);
    uint64_t ink = 0;
    const auto* first = object.RenderTextEffect(width, height);
    for (int i = 0; i < width * height; ++i) ink += first[i] >> 24;
    if (ink < static_cast<uint64_t>(size * size) * 255) state.SkipWithError("hardly any ink");
    for (auto _ : state) {
        if (coldGlyphs) host::clearGlyphCache();
        benchmark::DoNotOptimize(object.RenderTextEffect(width, height));
    }
}

}  // namespace

BENCHMARK_CAPTURE(renderScene, fill / 1024x256 / warm, 1024, 256, 120, kFill, false)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(renderScene, fill / 1024x256 / cold, 1024, 256, 120, kFill, true)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(renderScene, fill / 4096x1024 / cold, 4096, 1024, 480, kFill, true)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(renderScene, stroke = 8 / 1024x256 / cold, 1024, 256, 120, kStroke, true)
    ->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc > 1) fontPath = argv[1];
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
