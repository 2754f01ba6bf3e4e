// SPDX-License-Identifier: Apache-2.0
// What zvtext reads: command lines, lines of a batch, style files, PNGs. Each is refused with a message or
// taken; a style that was written reads back as itself, and small pictures are made of what was taken.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <variant>
#include <vector>

#include "fuzz/Input.h"
#include "scene/Failure.h"
#include "scene/Png.h"
#include "scene/SceneOptions.h"
#include "scene/Style.h"
#include "scene/TextInput.h"
#include "scene/WebpWriter.h"
#include "tests/scene/PngBytes.h"
#include "tools/zvtext/batch/BatchLine.h"
#include "tools/zvtext/render/RenderCommand.h"

namespace {

using namespace Zvex::scene;
using namespace zvtext;

constexpr char kFont[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
constexpr int kMostSide = 160;  // of the view

// A file in memory.
class MemoryFile {
public:
    MemoryFile() : mDescriptor(memfd_create("fuzz", 0)) { ZVEX_FUZZ_CHECK(mDescriptor >= 0); }
    const std::string& write(const std::string& content) {
        ZVEX_FUZZ_CHECK(ftruncate(mDescriptor, 0) == 0);
        ZVEX_FUZZ_CHECK(pwrite(mDescriptor, content.data(), content.size(), 0) ==
                        static_cast<ssize_t>(content.size()));
        return mPath;
    }

private:
    int mDescriptor;
    std::string mPath = "/proc/self/fd/" + std::to_string(mDescriptor);
};

MemoryFile& memoryFile() {
    static MemoryFile file;
    return file;
}

// Chunks of the fuzzer's making, with sums that are right: without them nothing behind a changed byte would
// be read.
std::string makePng(fuzz::Input& input) {
    static const char* const kTypes[] = {"IHDR", "IDAT", "IDAT", "PLTE", "tRNS",
                                         "gAMA", "iCCP", "zTXt", "IEND", "pHYs"};
    std::string png("\x89PNG\r\n\x1A\n", 8);
    std::string header;
    header += bigEndian(static_cast<uint32_t>(input.byte() < 240 ? input.between(0, 40) : input.integer()));
    // Pictures that are taken can be so large that it takes seconds.
    header += bigEndian(static_cast<uint32_t>(input.byte() < 240 ? input.between(0, 40) : -1));
    for (int i = 0; i < 5; ++i)
        header += static_cast<char>(input.byte() < 230 ? "\x08\x06\x00\x00\x00"[i] : input.byte());
    if (input.byte() < 240) png += chunk("IHDR", header);
    while (input.left() > 0) {
        const uint8_t kind = input.byte();
        const std::string type = kind < 250 ? kTypes[kind % 10] : std::string("vpAg");
        std::string content = input.text(300);
        if (type == "IDAT" && kind % 4 != 0) {
            std::string pixels(static_cast<size_t>(input.between(0, 255)) * 16, '\0');
            input.fill(reinterpret_cast<uint8_t*>(&pixels[0]), pixels.size());
            content = deflated(pixels);
        }
        png += chunk(type, content);
    }
    return png;
}

void readPicture(fuzz::Input& input) {
    const Picture picture = decodePng("--pattern", input.flag() ? makePng(input) : input.rest());
    ZVEX_FUZZ_CHECK(picture.pixels.size() ==
                    static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height));
    const auto compression = static_cast<Compression>(picture.width % 3);
    const Picture again = decodePng("", encodePng(picture, kPointsPerInch, compression));
    ZVEX_FUZZ_CHECK(again.width == picture.width && again.height == picture.height &&
                    again.pixels == picture.pixels);
}

// Of the files that the fuzzer names none is there, so patterns are drawn with this one.
Style& namedPattern(Style& style) {
    static MemoryFile file;
    for (EffectSettings& effect : style.effects) {
        if (auto* pattern = std::get_if<PatternSettings>(&effect)) {
            Picture picture;
            picture.width = 2, picture.height = 1;
            picture.pixels = {0xFFFF8000, 0x40102030};
            pattern->file = file.write(encodePng(picture));
            pattern->source = nullptr;
        }
    }
    return style;
}

// Files become absolute, and a canvas may be one; what else is written reads back to the bit.
bool same(const Fields& a, const Fields& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const Field& one, const Field& other) {
        return std::holds_alternative<FileField>(one.value) ||
               std::holds_alternative<CanvasField>(one.value) || formatValue(one) == formatValue(other);
    });
}

void checkStyle(const Style& read) {
    Style style = read;
    fitEffects(style);
    const std::string written = writeStyle(style);
    Style back;
    try {
        readStyleText("--style", written, back);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n%s\n", error.what(), written.c_str());
        ZVEX_FUZZ_CHECK(!"a style that was written is read");
    }
    ZVEX_FUZZ_CHECK(writeStyle(back) == written);
    ZVEX_FUZZ_CHECK(same(fieldsOf(style), fieldsOf(back)));
    ZVEX_FUZZ_CHECK(
        std::equal(style.effects.begin(), style.effects.end(), back.effects.begin(), back.effects.end(),
                   [](EffectSettings a, EffectSettings b) { return same(fieldsOf(a), fieldsOf(b)); }));
}

void renderSmall(Scene scene) {
    if (scene.text.size() > 60) return;
    namedPattern(scene.style);
    scene.font = kFont;
    scene.fallbacks.clear();
    scene.systemFallback = false;
    scene.style.size = std::min(scene.style.size, 50.0);
    scene.style.letterSpacing = std::min(scene.style.letterSpacing, 2.0);
    scene.width = scene.width == 0 ? kMostSide : std::min(scene.width, kMostSide);
    scene.height = scene.height == 0 ? kMostSide : std::min(scene.height, kMostSide);
    const Rendering rendering = render(scene);
    const Picture& picture = rendering.picture;
    ZVEX_FUZZ_CHECK(picture.pixels.size() ==
                    static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height));
    ZVEX_FUZZ_CHECK(render(scene).picture.pixels == picture.pixels);
    const Picture back = decodePng("", encodePng(picture));
    ZVEX_FUZZ_CHECK(back.pixels == picture.pixels);
    encodeWebp(picture);
    ZVEX_FUZZ_CHECK(findInvalidUtf8(writeMetrics(rendering.metrics)) == std::string::npos);
}

void useOptions(RenderOptions options) {
    SceneOptions& asked = options.scene;
    checkStyle(asked.scene.style);
    // Neither files nor standard input.
    asked.textFile.clear();
    if (asked.scene.font.name.empty()) asked.scene.font = kFont;
    if (asked.scene.text.empty()) asked.scene.text = "Ag";
    SceneOptions styled = asked;
    fitScene(styled);
    layerKeyInHex(namedPattern(styled.scene.style));
    renderSmall(sceneOf(asked));
}

bool namesStyle(const std::pair<std::string, Json>& option) {
    return option.first == "style" && option.second.is_string() &&
           option.second.get<std::string>().rfind('{', 0) != 0;
}

// Words end with a line.
void readCommandLine(fuzz::Input& input) {
    std::vector<std::string> words = split(input.rest(), '\n');
    for (std::string& word : words) word = word.substr(0, word.find('\0'));
    std::reverse(words.begin(), words.end());  // the parser takes them from the back
    RenderArguments arguments;
    CLI::App command;
    addRenderOptions(command, arguments);
    command.parse(words);
    if (std::none_of(arguments.given.begin(), arguments.given.end(), namesStyle))
        useOptions(readRenderOptions(arguments));
}

void readBatchLine(fuzz::Input& input) {
    const std::string line = input.rest();
    RenderOptions defaults;
    defaults.scene.scene.font = kFont;
    LineNames names;
    readLineNames(line, names);
    const GivenOptions given = readGiven(line);
    if (std::none_of(given.begin(), given.end(), namesStyle)) useOptions(readLine(line, defaults, {}));
}

void readStyleFile(fuzz::Input& input) {
    Style style;
    readStyle("--style", memoryFile().write(input.rest()), style);
    checkStyle(style);
    Scene scene;
    scene.text = "Ag";
    scene.style = style;
    fitEffects(scene.style);
    renderSmall(scene);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static void (*const kWays[])(fuzz::Input&) = {readCommandLine, readBatchLine, readStyleFile, readPicture};
    fuzz::Input input(data, size);
    try {
        kWays[input.byte() % 4](input);
    } catch (const CLI::Error&) {
    } catch (const UsageError&) {
    } catch (const Failure&) {
    }  // anything else is a finding
    return 0;
}
