// SPDX-License-Identifier: Apache-2.0
//
// The library in scripts/compare: answers requests in lines on standard input (benchmarks/peers/README.md).
//
// Timed: everything from a new text object to the picture, which is its settings, shaping, glyphs, effects
// and composition. Each render uses a new object, so that nothing of the render before remains except the
// loaded font.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "benchmarks/Scenes.h"
#include "platform/host/GlyphCache.h"

namespace {

using Clock = std::chrono::steady_clock;

// The picture as rows of red, green, blue, alpha bytes, straight.
bool writePixels(const uint32_t* argb, size_t count, const std::string& path) {
    std::vector<unsigned char> bytes;
    bytes.reserve(count * 4);
    for (size_t i = 0; i < count; ++i) {
        for (const int shift : {16, 8, 0, 24}) bytes.push_back(static_cast<unsigned char>(argb[i] >> shift));
    }
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) return false;
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && written;
}

// Any renderer must write its picture; this only clears one.
std::string timeOfMemset(const bench::Canvas& canvas) {
    const size_t bytes = 4 * size_t(canvas.width()) * size_t(canvas.height());
    const auto begin = Clock::now();
    void* const picture = std::malloc(bytes);
    if (picture == nullptr) return "none";
    std::memset(picture, 0, bytes);
    asm volatile("" : : "r"(picture) : "memory");  // the compiler must not see that nobody reads it
    const std::chrono::duration<double, std::milli> elapsed = Clock::now() - begin;
    std::free(picture);
    return std::to_string(elapsed.count());
}

std::string answer(const std::string& scene, const std::string& size, const std::string& file) {
    bench::Canvas canvas;
    canvas.scale = size == "large" ? 4 : 1;
    if (file == "memset") return timeOfMemset(canvas);
    host::clearGlyphCache();
    const auto begin = Clock::now();
    Zvex::ZvTextObject object;
    if (!bench::prepareScene(object, scene, canvas)) return "none";
    const uint32_t* argb = object.RenderTextEffect(canvas.width(), canvas.height());
    const std::chrono::duration<double, std::milli> elapsed = Clock::now() - begin;
    if (argb == nullptr) return "none";
    if (file.empty()) return std::to_string(elapsed.count());
    const size_t count = size_t(canvas.width()) * size_t(canvas.height());
    return writePixels(argb, count, file) ? "written" : "none";
}

}  // namespace

int main() {
    // Keeps the font loaded for the whole run.
    Zvex::ZvTextObject font;
    if (!bench::prepareScene(font, "S1", bench::Canvas())) return 1;
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string scene, size, file;
        words >> scene >> size >> file;
        std::cout << answer(scene, size, file) << std::endl;
    }
    return 0;
}
