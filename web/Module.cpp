// SPDX-License-Identifier: Apache-2.0
//
// The functions that zvex.wasm exports; web/zvex.js calls them. Texts are UTF-8 with their size. A function
// that can fail returns false then, and its answer is an object {"option", "reason"}. An answer is the
// module's own and lasts until the next call.
#include <unicode/udata.h>

#include <cstdlib>
#include <map>
#include <new>
#include <string>
#include <utility>

#include "scene/Failure.h"
#include "scene/FontFile.h"
#include "scene/Json.h"
#include "scene/Png.h"
#include "scene/Presets.h"
#include "scene/Renderer.h"
#include "scene/SceneOptions.h"
#include "scene/StyleSchema.h"

#define ZVEX_EXPORT extern "C" __attribute__((visibility("default"), used))

using namespace Zvex::scene;

namespace {

// What the page has added, by name. The bytes of a name never change, for the library keeps what it has read.
class AddedFiles : public Source {
public:
    Bytes read(const std::string& option, const std::string& name, size_t maxBytes) const override {
        const auto found = mFiles.find(name);
        if (found == mFiles.end()) throw Failure(option + ": there is no '" + name + "'; add it first");
        if (found->second->size() > maxBytes)
            throw Failure(option + ": '" + name + "' is larger than " + std::to_string(maxBytes) + " bytes");
        return found->second;
    }
    bool has(const std::string& name) const override { return mFiles.count(name) != 0; }

    // False where the name has these bytes already.
    bool add(const std::string& name, std::string bytes) {
        const auto found = mFiles.find(name);
        if (found != mFiles.end() && *found->second == bytes) return false;
        if (found != mFiles.end())
            throw UsageError("name: '" + name + "' has other bytes already; take another name");
        if (name.empty() || name == "-") throw UsageError("name: '" + name + "' is not a name for a file");
        mFiles[name] = std::make_shared<const std::string>(std::move(bytes));
        return true;
    }
    void remove(const std::string& name) { mFiles.erase(name); }

private:
    std::map<std::string, Bytes> mFiles;
};

struct Module {
    std::shared_ptr<AddedFiles> files = std::make_shared<AddedFiles>();
    Renderer renderer;
    std::string answer;
    Picture picture;  // straight RGBA bytes
};

// Never destroyed: the page drops the memory as a whole.
Module& module() {
    static Module& only = *new Module;
    return only;
}

const char kNoMemory[] = R"({"option": "text", "reason": "not enough memory for the picture"})";

struct AnswerView {
    const char* text;
    size_t size;
} lastAnswer;

void answerWith(std::string text) {
    module().answer = std::move(text);
    lastAnswer = {module().answer.data(), module().answer.size()};
}

bool refuse(const std::string& option, const std::string& reason) {
    answerWith(dumpJson({{"option", option}, {"reason", reason}}));
    return false;
}

// Calls `action`. After an exception what was kept is freed, for it may be what takes the memory.
template <typename Action>
bool answers(const Action& action) {
    try {
        try {
            module().picture = {};
            answerWith(action());
            return true;
        } catch (const Error& error) {
            return refuse(error.place(), error.cause());
        } catch (const std::bad_alloc&) {
            module().renderer = Renderer();
        } catch (const std::exception& error) {
            return refuse("text", error.what());
        }
    } catch (const std::bad_alloc&) {
    }
    lastAnswer = {kNoMemory, sizeof kNoMemory - 1};
    return false;
}

Json boxOf(const Box& box) {
    return {{"left", box.left}, {"top", box.top}, {"right", box.right}, {"bottom", box.bottom}};
}

Json spanOf(const TextRange& range, const Box& box) {
    return {{"start", range.startCharacter}, {"end", range.endCharacter}, {"box", boxOf(box)}};
}

// Positions in the text count code points.
std::string describe(const Rendering& made) {
    const Metrics& metrics = made.metrics;
    const Margins& margins = metrics.margins;
    Json lines = Json::array();
    for (const LineMetrics& line : metrics.lines) {
        Json one = spanOf(line, line.box);
        one["baseline"] = line.baseline;
        one["clusters"] = Json::array();
        for (const ClusterMetrics& cluster : line.clusters)
            one["clusters"].push_back(spanOf(cluster, cluster.box));
        lines.push_back(std::move(one));
    }
    return dumpJson({{"width", metrics.width},
                     {"height", metrics.height},
                     {"origin", {{"x", metrics.origin.x}, {"y", metrics.origin.y}}},
                     {"margins",
                      {{"left", margins.left},
                       {"top", margins.top},
                       {"right", margins.right},
                       {"bottom", margins.bottom}}},
                     {"baseline", metrics.baseline},
                     {"lines", std::move(lines)},
                     {"warnings", made.warnings}});
}

Scene readOptionsOf(const char* json, size_t size) {
    const std::shared_ptr<const Source> files = module().files;
    SceneOptions options;
    readOptions(fieldsOf(options), readGiven(std::string(json, size), "options: it"), {"", files, files});
    if (!options.textFile.empty())
        throw UsageError("text-file: there are no files of texts; give the text itself");
    return sceneOf(std::move(options));
}

}  // namespace

ZVEX_EXPORT const char* zvex_answer() {
    return lastAnswer.text;
}
ZVEX_EXPORT size_t zvex_answer_size() {
    return lastAnswer.size;
}

// Null where there is no memory.
ZVEX_EXPORT void* zvex_allocate(size_t size) {
    return std::malloc(size);
}
ZVEX_EXPORT void zvex_release(void* memory) {
    std::free(memory);
}

// Takes over `data`, ICU's data in its own file format, which must be aligned to 16 bytes.
ZVEX_EXPORT bool zvex_add_icu(const void* data) {
    return answers([&]() -> std::string {
        UErrorCode status = U_ZERO_ERROR;
        udata_setCommonData(data, &status);
        if (U_FAILURE(status)) throw UsageError(std::string("icu: ") + u_errorName(status));
        return "";
    });
}

// Copies the bytes. A font must be one that can be drawn.
ZVEX_EXPORT bool zvex_add(const char* name, size_t nameSize, const char* bytes, size_t size, bool font) {
    return answers([&]() -> std::string {
        const std::string text(name, nameSize);
        const std::shared_ptr<AddedFiles> files = module().files;
        if (!files->add(text, std::string(bytes, size)) || !font) return "";
        try {
            FontChoice choice;
            choice.path = text;
            choice.source = files;
            loadFont("font", choice);
        } catch (...) {
            files->remove(text);
            throw;
        }
        return "";
    });
}

// The answer is the metrics. Pixels, straight RGBA bytes, are at zvex_pixels until the next call.
ZVEX_EXPORT bool zvex_render(const char* options, size_t size, bool draws) {
    return answers([&] {
        const Scene scene = readOptionsOf(options, size);
        Rendering made = draws ? module().renderer.render(scene) : module().renderer.measure(scene);
        std::vector<uint32_t>& pixels = made.picture.pixels;
        convertPixels(pixels.data(), pixels.size(), PixelFormat::Rgba, pixels.data());
        module().picture = std::move(made.picture);
        return describe(made);
    });
}
ZVEX_EXPORT const void* zvex_pixels() {
    return module().picture.pixels.data();
}

// The answer is the file.
ZVEX_EXPORT bool zvex_encode_png(const uint8_t* rgba, int width, int height, double dpi) {
    return answers([&] {
        Picture picture;
        picture.width = width;
        picture.height = height;
        picture.pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
        for (uint32_t& pixel : picture.pixels) {
            pixel = uint32_t{rgba[3]} << 24 | uint32_t{rgba[0]} << 16 | uint32_t{rgba[1]} << 8 | rgba[2];
            rgba += 4;
        }
        return encodePng(picture, dpi);
    });
}

// The answer is {"presets": {NAME: STYLE}, "style": SCHEMA, "options": SCHEMA}.
ZVEX_EXPORT bool zvex_describe() {
    return answers([] {
        Json named = Json::object();
        for (const Preset& preset : presets()) named[preset.name] = parseJson(preset.json);
        return dumpJson({{"presets", std::move(named)},
                         {"style", parseJson(styleSchema())},
                         {"options", parseJson(optionsSchema())}});
    });
}
