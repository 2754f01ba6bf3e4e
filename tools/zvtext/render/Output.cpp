// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/render/Output.h"

#include <filesystem>

#include "scene/Failure.h"
#include "scene/WebpWriter.h"
#include "tools/zvtext/render/OutputFile.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

namespace fs = std::filesystem;

bool isSamePlace(const std::string& path, const std::string& other) {
    if (path == "-" || other == "-") return path == other;
    std::error_code error;
    if (fs::is_regular_file(path, error) && fs::equivalent(path, other, error)) return true;
    // Neither is there yet; links may lead to the same folder.
    const auto place = [&](const std::string& name) {
        const fs::path absolute = fs::absolute(name, error).lexically_normal(),
                       real = fs::weakly_canonical(absolute, error);
        return error ? absolute : real;
    };
    return place(path) == place(other);
}

struct Format {
    OutputFormat format;
    const char* name;
    const char* ending;
};
constexpr Format kFormats[] = {{OutputFormat::Png, "png", ".png"},
                               {OutputFormat::Webp, "webp", ".webp"},
                               {OutputFormat::Rgba, "raw", ".rgba"}};

std::string listed(const char* Format::*part) {
    std::string list;
    for (const Format& format : kFormats) list += (list.empty() ? "" : ", ") + std::string(format.*part);
    return list;
}

OutputFormat formatOf(const std::string& path, const OutputOptions& options, const std::string& option) {
    if (options.format) return *options.format;
    const std::string ending = fs::path(path).extension();
    if (ending.empty()) return OutputFormat::Png;
    std::string lower = ending;
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    for (const Format& format : kFormats) {
        if (lower == format.ending) return format.format;
    }
    throw UsageError(option + ": '" + path + "' ends in '" + ending + "', which is not one of " +
                     listed(&Format::ending) + "; --format says what to write under any name");
}

std::string encode(const Picture& picture, OutputFormat format, double dpi, const std::string& option) {
    if (format == OutputFormat::Rgba) {
        std::string bytes(picture.pixels.size() * 4, '\0');
        convertPixels(picture.pixels.data(), picture.pixels.size(), PixelFormat::Rgba, &bytes[0]);
        return bytes;
    }
    if (format == OutputFormat::Png) return encodePng(picture, dpi);
    if (picture.width > kMaxWebpSide || picture.height > kMaxWebpSide) {
        throw UsageError(option + ": the picture is " + std::to_string(picture.width) + " x " +
                         std::to_string(picture.height) + " pixels; WebP holds at most " +
                         std::to_string(kMaxWebpSide) + " a side");
    }
    return encodeWebp(picture);
}

}  // namespace

OutputFormat parseFormat(const std::string& option, const std::string& text) {
    for (const Format& format : kFormats) {
        if (text == format.name) return format.format;
    }
    throw UsageError(option + ": '" + text + "' is not one of " + listed(&Format::name));
}

void checkOutput(const std::string& path, const OutputOptions& options, const std::string& option) {
    if (path.empty()) throw UsageError(option + ": the path is empty");
    formatOf(path, options, option);
    if (!options.metrics.empty() && isSamePlace(path, options.metrics)) {
        throw UsageError("--metrics: " + (path == "-" ? "standard output" : "'" + path + "'") +
                         " is where the picture goes");
    }
}

void writeRendering(const Rendering& rendering, const std::string& path, const OutputOptions& options,
                    const std::string& option, const std::string& printed) {
    checkOutput(path, options, option);
    const OutputFormat format = formatOf(path, options, option);
    std::string picture;
    if (options.premultiplied) {
        Picture copy = rendering.picture;
        uint32_t* pixels = copy.pixels.data();
        convertPixels(pixels, copy.pixels.size(), PixelFormat::ArgbPremultiplied, pixels);
        picture = encode(copy, format, options.dpi, option);
    } else {
        picture = encode(rendering.picture, format, options.dpi, option);
    }
    std::vector<NewFile> files = {{picture, path, option, options.scope}};
    const std::string metricsOption = "--metrics";
    std::string metrics;
    if (!options.metrics.empty()) {
        metrics = writeMetrics(rendering.metrics);
        files.push_back({metrics, options.metrics, metricsOption, options.scope});
    }
    // Before any file has its name: where it does not arrive, no picture is left.
    const std::string standardOutput = "-", noOption;
    if (!printed.empty()) files.push_back({printed, standardOutput, noOption});
    writeFiles(files);
}

}  // namespace zvtext
