// SPDX-License-Identifier: Apache-2.0
//
// Times each kernel on real text, in one process with its plain form.
//
//     bench_kernels [--target=baseline|avx2|avx512] [--benchmark_filter=stroke/.*/1024x256]
//
// The target is the largest instruction set that the kernels use. By default, and if the machine lacks it,
// that is the machine's best.
#include "benchmarks/kernels/TextScene.h"

#include <benchmark/benchmark.h>
#include <hwui/Paint.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "raster/CpuTarget.h"
#include "text/ZvTextObject.h"

namespace bench {

namespace {

using namespace Zvex;

constexpr char kFont[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
constexpr char kText[] = "Hamburgefonst";

// Text that is drawn opaque and without effects has its coverage as alpha.
TextScene renderText(int width, int height, float size) {
    ZvTextObject object;
    object.Construct();
    ZvString text;
    text.Construct(kText);
    object.SetText(&text);
    if (!object.SetFont(kFont)) {
        std::fprintf(stderr, "bench_kernels: cannot load the font %s\n", kFont);
        std::exit(1);
    }
    android::Paint paint;
    paint.setFlags(1);
    paint.setTextSize(size);
    object.SetPaint(paint);
    object.SetTextColor(0xFFFFFFFF);
    object.GetView()->SetSize(width, height);
    object.GetView()->SetBitmapWidth(width);
    object.GetView()->SetBitmapHeight(height);
    auto* line = new ZvLineInfo;
    line->x = width / 64;
    line->y = height * 3 / 4;
    line->end = static_cast<int>(sizeof kText - 1);
    line->direction = 1;
    List lines;
    lines.Construct();
    lines.Add(line);
    object.SetLineInfo(&lines);

    const unsigned int* argb = object.RenderTextEffect(width, height);
    TextScene scene;
    scene.name = std::to_string(width) + "x" + std::to_string(height);
    scene.mask = ZvBitmap(static_cast<unsigned>(width), static_cast<unsigned>(height), 1);
    scene.box = *object.GetEffect()->getTextRect();
    uint64_t ink = 0;
    for (int i = 0; argb != nullptr && i < width * height; ++i) {
        scene.mask.pixels[i] = static_cast<uint8_t>(argb[i] >> 24);
        ink += scene.mask.pixels[i];
    }
    if (ink < static_cast<uint64_t>(size * size) * 255) {
        std::fprintf(stderr, "bench_kernels: hardly any ink\n");
        std::exit(1);
    }
    return scene;
}

// Draws once onto the cleared target and returns the seconds.
double drawOnce(const TextScene& scene, const Draw& draw, ZvBitmap& target) {
    std::memset(target.pixels, 0, target.byteCount());
    ZvBitmap mask = scene.mask;
    ZvRect box = scene.box;
    ZvECore::ParamPostProcessing param;
    param.target = &target;
    param.mask = &mask;
    param.textRect = &box;
    const auto start = std::chrono::steady_clock::now();
    draw(param);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void run(benchmark::State& state, const TextScene& scene, const Draw& draw) {
    ZvBitmap target(scene.mask.width, scene.mask.height, 4);
    for (auto _ : state) state.SetIterationTime(drawOnce(scene, draw, target));
    const ZvRect& box = scene.box;
    state.counters["px"] =
        benchmark::Counter(double(box.right - box.left) * double(box.bottom - box.top),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

bool samePicture(const TextScene& scene, const Draw& fast, const Draw& plain) {
    ZvBitmap expected(scene.mask.width, scene.mask.height, 4), actual(expected);
    const CpuTarget best = cpuTarget();
    if (plain == nullptr) limitCpuTarget(CpuTarget::Baseline);
    drawOnce(scene, plain == nullptr ? fast : plain, expected);
    limitCpuTarget(best);
    drawOnce(scene, fast, actual);
    return std::memcmp(expected.pixels, actual.pixels, expected.byteCount()) == 0;
}

std::vector<void (*)()>& families() {
    static std::vector<void (*)()> all;
    return all;
}

// Removes --target=NAME from the arguments. False for an unknown NAME.
bool takeTarget(int* argc, char** argv) {
    constexpr char kOption[] = "--target=";
    constexpr size_t kLength = sizeof kOption - 1;
    int kept = 1;
    for (int i = 1; i < *argc; ++i) {
        if (std::strncmp(argv[i], kOption, kLength) != 0) {
            argv[kept++] = argv[i];
            continue;
        }
        const std::string name = argv[i] + kLength;
        if (name != "baseline" && name != "avx2" && name != "avx512") return false;
        limitCpuTarget(name == "baseline" ? CpuTarget::Baseline
                       : name == "avx2"   ? CpuTarget::Avx2
                                          : CpuTarget::Avx512);
    }
    *argc = kept;
    return true;
}

}  // namespace

Family::Family(void (*addRows)()) {
    families().push_back(addRows);
}

const TextScene& smallText() {
    static const TextScene scene = renderText(1024, 256, 120);
    return scene;
}

const TextScene& largeText() {
    static const TextScene scene = renderText(4096, 1024, 480);
    return scene;
}

void addRows(const std::string& name, const TextScene& scene, Draw fast, Draw plain) {
    const std::string row = name + "/" + scene.name;
    if (plain != nullptr) {
        benchmark::RegisterBenchmark((row + "/plain").c_str(),
                                     [&scene, plain](benchmark::State& state) { run(state, scene, plain); })
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
    }
    const auto compared = std::make_shared<bool>(false);  // the library calls a row several times
    benchmark::RegisterBenchmark((row + "/fast").c_str(),
                                 [&scene, fast, plain, compared](benchmark::State& state) {
                                     if (!*compared && !samePicture(scene, fast, plain)) {
                                         state.SkipWithError("not the plain form's picture");
                                         return;
                                     }
                                     *compared = true;
                                     run(state, scene, fast);
                                 })
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

}  // namespace bench

int main(int argc, char** argv) {
    if (!bench::takeTarget(&argc, argv)) {
        std::fprintf(stderr, "bench_kernels: --target is baseline, avx2 or avx512\n");
        return 2;
    }
    benchmark::Initialize(&argc, argv);
    for (const auto addRowsOfFamily : bench::families()) addRowsOfFamily();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
