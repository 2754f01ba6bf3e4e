// SPDX-License-Identifier: Apache-2.0
//
// The library in scripts/compare: answers requests in lines on standard input (benchmarks/peers/README.md).
//
// Timed: everything from a new text object to the picture, which is its settings, shaping, glyphs, effects
// and composition. Each render uses a new object, so that nothing of the render before remains except the
// loaded font. Titles keep the cached glyphs; they are drawn by one object or by a new one for each.
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
#include "benchmarks/Titles.h"
#include "platform/host/GlyphCache.h"

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

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
    const Milliseconds elapsed = Clock::now() - begin;
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
    const Milliseconds elapsed = Clock::now() - begin;
    if (argb == nullptr) return "none";
    if (file.empty()) return std::to_string(elapsed.count());
    const size_t count = size_t(canvas.width()) * size_t(canvas.height());
    return writePixels(argb, count, file) ? "written" : "none";
}

// One title into the file, if there is one, or all of them on the clock.
std::string answerTitles(std::istream& request, const std::string& file) {
    std::string look, way;
    int glyphSize = 0;
    request >> look >> glyphSize >> way;
    std::vector<std::string> words;
    for (std::string word; request >> word;) words.push_back(word);
    if (way != "reused" && way != "new") return "none";
    const auto begin = Clock::now();
    auto object = std::make_unique<Zvex::ZvTextObject>();
    if (!bench::prepareTitle(*object, look, glyphSize)) return "none";
    for (const std::string& word : words) {
        if (way == "new") {
            object = std::make_unique<Zvex::ZvTextObject>();
            bench::prepareTitle(*object, look, glyphSize);
        }
        const bench::PictureSize size = bench::setTitle(*object, word);
        const uint32_t* argb = object->RenderTextEffect(size.width, size.height);
        if (argb == nullptr) return "none";
        if (file.empty()) continue;
        const size_t count = size_t(size.width) * size_t(size.height);
        return writePixels(argb, count, file) ? "written " + std::to_string(size.width) : "none";
    }
    return std::to_string(Milliseconds(Clock::now() - begin).count());
}

std::string answer(const std::string& line) {
    std::istringstream words(line);
    std::string first, size, file;
    words >> first;
    if (first == "title") words >> file;
    if (first == "title" || first == "titles") return answerTitles(words, file);
    words >> size >> file;
    return answer(first, size, file);
}

}  // namespace

int main() {
    // Keeps the font loaded for the whole run.
    Zvex::ZvTextObject font;
    if (!bench::prepareScene(font, "S1", bench::Canvas())) return 1;
    for (std::string line; std::getline(std::cin, line);) std::cout << answer(line) << std::endl;
    return 0;
}
