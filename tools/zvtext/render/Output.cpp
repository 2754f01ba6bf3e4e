// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/render/Output.h"

#include <filesystem>

#include "scene/Failure.h"
#include "scene/WebpWriter.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

namespace fs = std::filesystem;

bool isSamePlace(const std::string& path, const std::string& other) {
    if (path == "-" || other == "-") return path == other;
    std::error_code error;
    if (fs::is_regular_file(path, error) && fs::equivalent(path, other, error)) return true;
    // Neither file exists yet, and links may lead to the same folder.
    const auto place = [&](const std::string& name) {
        const fs::path absolute = fs::absolute(name, error).lexically_normal(),
                       real = fs::weakly_canonical(absolute, error);
        return error ? absolute : real;
    };
    return place(path) == place(other);
}

constexpr std::pair<const char*, OutputFormat> kEndings[] = {
    {".png", OutputFormat::Png}, {".webp", OutputFormat::Webp}, {".rgba", OutputFormat::Rgba}};

OutputFormat formatOf(const std::string& path, const OutputOptions& options, const std::string& option) {
    if (options.format != OutputFormat::ByEnding) return options.format;
    const std::string ending = fs::path(path).extension();
    if (ending.empty()) return OutputFormat::Png;
    std::string lower = ending, known;
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    for (const auto& [name, format] : kEndings) {
        if (lower == name) return format;
        known += (known.empty() ? "" : ", ") + std::string(name);
    }
    throw UsageError(option + ": '" + path + "' ends in '" + ending + "', which is not one of " + known +
                     "; --format says what to write under any name");
}

std::string encode(const Picture& picture, OutputFormat format, const OutputOptions& options,
                   const std::string& option) {
    if (format == OutputFormat::Rgba) {
        std::string bytes(picture.pixels.size() * 4, '\0');
        convertPixels(picture.pixels.data(), picture.pixels.size(), PixelFormat::Rgba, &bytes[0]);
        return bytes;
    }
    if (format == OutputFormat::Png) return encodePng(picture, options.dpi, options.compression);
    if (picture.width > kMaxWebpSide || picture.height > kMaxWebpSide) {
        throw UsageError(option + ": the picture is " + std::to_string(picture.width) + " x " +
                         std::to_string(picture.height) + " pixels; WebP holds at most " +
                         std::to_string(kMaxWebpSide) + " a side");
    }
    return encodeWebp(picture, options.compression);
}

}  // namespace

Fields fieldsOf(OutputOptions& options) {
    return {
        {"format",
         ChoiceField{&options.format,
                     {{"png", OutputFormat::Png}, {"webp", OutputFormat::Webp}, {"raw", OutputFormat::Rgba}}},
         "PNG, lossless WebP or raw RGBA bytes; by default as the output's ending says: .png, .webp, .rgba"},
        {"dpi", NumberField{&options.dpi, {1, 10000}},
         "Resolution stored in a PNG, in pixels per inch; at 72 a pixel is a point"},
        compressionField(options.compression),
        {"premultiplied", FlagField{&options.premultiplied},
         "Multiply colours by alpha; by default they are straight"}};
}

void checkOutput(const std::string& path, const OutputOptions& options, const std::string& option) {
    formatOf(path, options, option);
    if (!options.metrics.empty() && isSamePlace(path, options.metrics)) {
        throw UsageError("--metrics: " + (path == "-" ? "standard output" : "'" + path + "'") +
                         " is where the picture goes");
    }
}

std::string formatName(const std::string& path, const OutputOptions& options, const std::string& option) {
    const OutputFormat format = formatOf(path, options, option);
    return format == OutputFormat::Png ? "png" : format == OutputFormat::Webp ? "webp" : "raw";
}

EncodedRendering encodeRendering(const Rendering& rendering, const std::string& path,
                                 const OutputOptions& options, const std::string& option) {
    checkOutput(path, options, option);
    const OutputFormat format = formatOf(path, options, option);
    EncodedRendering encoded;
    if (options.premultiplied) {
        Picture copy = rendering.picture;
        uint32_t* pixels = copy.pixels.data();
        convertPixels(pixels, copy.pixels.size(), PixelFormat::ArgbPremultiplied, pixels);
        encoded.picture = encode(copy, format, options, option);
    } else {
        encoded.picture = encode(rendering.picture, format, options, option);
    }
    if (!options.metrics.empty()) encoded.metrics = writeMetrics(rendering.metrics);
    return encoded;
}

std::vector<NewFile> EncodedRendering::files(const std::string& path, const OutputOptions& options,
                                             const std::string& option) const {
    std::vector<NewFile> files = {{picture, path, option, options.scope}};
    if (!options.metrics.empty()) files.push_back({metrics, options.metrics, "--metrics", options.scope});
    return files;
}

void writeRendering(const Rendering& rendering, const std::string& path, const OutputOptions& options,
                    const std::string& option, const std::string& printed) {
    const EncodedRendering encoded = encodeRendering(rendering, path, options, option);
    std::vector<NewFile> files = encoded.files(path, options, option);
    // Printed before any file gets its name, so that no picture is left if printing fails.
    if (!printed.empty()) files.push_back({printed, "-", ""});
    writeFiles(files);
}

}  // namespace zvtext
