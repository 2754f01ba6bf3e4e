// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/Output.h"

#include <filesystem>

#include "tools/zvtext/Failure.h"
#include "tools/zvtext/OutputFile.h"
#include "tools/zvtext/PngWriter.h"

namespace zvtext {

namespace {

namespace fs = std::filesystem;

bool isSamePlace(const std::string& path, const std::string& other) {
    if (path == "-" || other == "-") return path == other;
    std::error_code error;
    if (fs::is_regular_file(path, error) && fs::equivalent(path, other, error)) return true;
    return fs::absolute(path, error).lexically_normal() == fs::absolute(other, error).lexically_normal();
}

}  // namespace

void checkOutput(const std::string& path, const OutputOptions& options, const std::string& option) {
    if (path.empty()) throw UsageError(option + ": the path is empty");
    if (!options.metrics.empty() && isSamePlace(path, options.metrics)) {
        throw UsageError("--metrics: " + (path == "-" ? "standard output" : "'" + path + "'") +
                         " is where the picture goes");
    }
}

void writeRendering(const Rendering& rendering, const std::string& path, const OutputOptions& options,
                    const std::string& option) {
    checkOutput(path, options, option);
    const std::string picture = encodePng(rendering.picture);
    std::vector<NewFile> files = {{picture, path, option}};
    const std::string metricsOption = "--metrics";
    std::string metrics;
    if (!options.metrics.empty()) {
        metrics = writeMetrics(rendering.metrics);
        files.push_back({metrics, options.metrics, metricsOption});
    }
    writeFiles(files);
}

}  // namespace zvtext
