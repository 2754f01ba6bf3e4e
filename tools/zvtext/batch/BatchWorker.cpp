// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/BatchWorker.h"

#include <sys/socket.h>
#include <sys/stat.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <map>
#include <new>
#include <vector>

#include "scene/Failure.h"
#include "scene/FileSource.h"
#include "scene/Json.h"
#include "scene/Scene.h"
#include "scene/SceneFonts.h"
#include "scene/TextInput.h"
#include "tools/zvtext/batch/BatchLine.h"
#include "tools/zvtext/batch/Digest.h"
#include "tools/zvtext/render/Output.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

namespace fs = std::filesystem;
using Parts = std::vector<std::string>;

constexpr size_t kMaxMessage = 2000;
constexpr size_t kMaxFontsHeld = 64;  // with more, a worker asks to be replaced
constexpr size_t kMaxPictureBytes = size_t{2} << 30;

// --- Strings over the socket: their number, then the length and bytes of each

bool sendBytes(int socket, const void* bytes, size_t size) {
    const char* next = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t sent = send(socket, next, size, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) continue;
        if (sent <= 0) return false;
        next += sent;
        size -= static_cast<size_t>(sent);
    }
    return true;
}

bool receiveBytes(int socket, void* bytes, size_t size) {
    char* next = static_cast<char*>(bytes);
    while (size > 0) {
        const ssize_t got = recv(socket, next, size, 0);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        next += got;
        size -= static_cast<size_t>(got);
    }
    return true;
}

bool sendParts(int socket, const Parts& parts) {
    std::string message;
    for (const std::string& part : parts) {
        const uint64_t size = part.size();
        message.append(reinterpret_cast<const char*>(&size), sizeof size);
        message += part;
    }
    return sendBytes(socket, message.data(), message.size());
}

bool receiveParts(int socket, Parts& parts) {
    for (std::string& part : parts) {
        uint64_t size = 0;
        if (!receiveBytes(socket, &size, sizeof size)) return false;
        part.resize(size);
        if (!receiveBytes(socket, &part[0], size)) return false;
    }
    return true;
}

// --- One line

// A mark that changes when the file does; empty if there is no file.
std::string fileMark(const std::string& path) {
    struct stat status;
    if (path.empty() || stat(path.c_str(), &status) != 0) return "";
    return std::to_string(status.st_size) + "." + std::to_string(status.st_mtim.tv_sec) + "." +
           std::to_string(status.st_mtim.tv_nsec);
}

// Digest of the file; empty if it cannot be read or is not allowed.
std::string contentDigest(const std::string& path, const FolderScope& scope) {
    std::error_code error;
    if (!fs::is_regular_file(path, error)) return "";
    try {
        return Digest().add(readFile("", path, kMaxPictureBytes, scope)).hex();
    } catch (const Failure&) {
        return "";
    }
}

// The same for the picture and its metrics.
std::string contentDigest(const BatchJob& job, const FolderScope& scope) {
    const std::string picture = contentDigest(job.path, scope);
    if (job.metrics.empty() || picture.empty()) return picture;
    const std::string metrics = contentDigest(job.metrics, scope);
    return metrics.empty() ? "" : Digest().add(picture).add(metrics).hex();
}

// How every result begins.
Json resultOf(const BatchJob& job) {
    Json json = {{"line", job.line}};
    if (!job.id.empty()) json["id"] = Json::parse(job.id, nullptr, false);
    if (!job.path.empty()) json["path"] = job.path;
    return json;
}

class Worker {
public:
    Worker(const BatchSettings& settings, const BatchJournal& journal)
        : mSettings(settings), mJournal(journal) {}

    BatchResult run(const BatchJob& job) {
        BatchResult result = renderOrFail(job);
        // Fonts stay loaded, and lines with their own fonts must not fill the memory.
        result.last = mFontMarks.size() > kMaxFontsHeld;
        return result;
    }

private:
    BatchResult renderOrFail(const BatchJob& job) {
        try {
            return render(job);
        } catch (const std::bad_alloc&) {
            return failedResult(job, "not enough memory");
        } catch (const DiskFull& error) {
            BatchResult result = failedResult(job, error.onCommandLine());
            result.diskFull = true;
            return result;
        } catch (const Error& error) {
            return failedResult(job, error.onCommandLine());
        } catch (const std::exception& error) {
            return failedResult(job, error.what());
        }
    }

    BatchResult render(const BatchJob& job) {
        const auto begin = std::chrono::steady_clock::now();
        RenderOptions options = readLine(job.json, mSettings.defaults, mSettings.reads, mSettings.readable);
        options.output.metrics = job.metrics;
        options.output.scope = mSettings.writes;
        checkOutput(job.path, options.output, "--output");
        const Scene scene = sceneOf(std::move(options.scene));
        BatchResult result;
        result.record.job = digestOf(job, scene);
        Json json = resultOf(job);
        if (!job.metrics.empty()) json["metrics"] = job.metrics;
        const bool skipped = mSettings.resumes && findPicture(job, result.record);
        if (!skipped) makePicture(job, scene, options.output, result.record);
        const Json made = Json::parse(result.record.result, nullptr, false);
        for (const char* key : {"width", "height", "margins", "baseline"}) {
            if (made.contains(key)) json[key] = made[key];
        }
        if (skipped) json["skipped"] = true;
        if (skipped || result.record.content.empty()) result.record.job.clear();
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begin;
        json["milliseconds"] = std::round(took.count() * 10) / 10;
        result.json = dumpJson(json);
        return result;
    }

    // Whether the files exist as the journal's record for the job has them; then `record` is that record.
    bool findPicture(const BatchJob& job, BatchJournal::Record& record) const {
        const std::optional<BatchJournal::Record> found = mJournal.find(record.job);
        if (!found || found->content != contentDigest(job, mSettings.writes)) return false;
        record = *found;
        return true;
    }

    static void makePicture(const BatchJob& job, const Scene& scene, const OutputOptions& options,
                            BatchJournal::Record& record) {
        const Rendering rendering = Zvex::scene::render(scene);
        warn(rendering.warnings);
        if (options.scope.isAnywhere()) makeFolder(job.path, "--output");
        if (options.scope.isAnywhere()) makeFolder(job.metrics, "--metrics");
        writeRendering(rendering, job.path, options, "--output");
        const Metrics& metrics = rendering.metrics;
        const Margins& margins = metrics.margins;
        record.content = contentDigest(job, options.scope);
        record.result = dumpJson({{"width", metrics.width},
                                  {"height", metrics.height},
                                  {"margins",
                                   {{"left", margins.left},
                                    {"top", margins.top},
                                    {"right", margins.right},
                                    {"bottom", margins.bottom}}},
                                  {"baseline", metrics.baseline}});
    }

    static void makeFolder(const std::string& path, const std::string& option) {
        const fs::path folder = fs::path(path).parent_path();
        std::error_code error;
        if (!folder.empty()) fs::create_directories(folder, error);
        if (error) throw Failure(option + ": cannot make '" + folder.string() + "': " + error.message());
    }

    // Digest of everything that the picture is made from: the line, the defaults, the files that they name,
    // and the system's fonts for the text. Loads the fonts.
    std::string digestOf(const BatchJob& job, const Scene& scene) {
        Digest digest;
        digest.add(ZVEX_VERSION).add(mSettings.digest).add(job.path).add(job.metrics).add(job.json);
        digest.add(writeStyle(scene.style)).add(scene.text);
        for (const std::shared_ptr<const LoadedFont>& font : takeFonts(scene).fonts) {
            const FontChoice& choice = font->choice;
            digest.add(choice.name()).add(std::to_string(choice.instance)).add(choice.variations);
            // A loaded font stays as it was read, even if its file changes.
            const auto [mark, isNew] = mFontMarks.try_emplace(font->key);
            if (isNew) mark->second = fileMark(choice.path);
            digest.add(mark->second);
        }
        for (const EffectSettings* effect : allEffects(scene.style)) {
            const auto* pattern = std::get_if<PatternSettings>(effect);
            if (pattern == nullptr) continue;
            orDefault(pattern->source).check("--pattern", pattern->file);
            digest.add(fileMark(pattern->file));
        }
        return digest.hex();
    }

    const BatchSettings& mSettings;
    const BatchJournal& mJournal;
    std::map<std::string, std::string> mFontMarks;  // of the loaded fonts
};

}  // namespace

bool sendJob(int socket, const BatchJob& job) {
    return sendParts(socket, {std::to_string(job.line), job.id, job.path, job.metrics, job.json});
}

bool receiveJob(int socket, BatchJob& job) {
    Parts parts(5);
    if (!receiveParts(socket, parts)) return false;
    job = {std::stoull(parts[0]), std::move(parts[1]), std::move(parts[2]), std::move(parts[3]),
           std::move(parts[4])};
    return true;
}

bool sendResult(int socket, const BatchResult& result) {
    const BatchJournal::Record& record = result.record;
    return sendParts(socket,
                     {result.failed ? "failed" : "", result.last ? "last" : "", result.diskFull ? "full" : "",
                      result.json, record.job, record.content, record.result});
}

bool receiveResult(int socket, BatchResult& result) {
    Parts parts(7);
    if (!receiveParts(socket, parts)) return false;
    result = {!parts[0].empty(),
              !parts[1].empty(),
              !parts[2].empty(),
              std::move(parts[3]),
              {std::move(parts[4]), std::move(parts[5]), std::move(parts[6])}};
    return true;
}

BatchResult failedResult(const BatchJob& job, const std::string& message) {
    Json json = resultOf(job);
    json["error"] = message.size() > kMaxMessage ? message.substr(0, kMaxMessage) + "..." : message;
    BatchResult result;
    result.failed = true;
    result.json = dumpJson(json);
    return result;
}

void runBatchWorker(int socket, const BatchSettings& settings, const BatchJournal& journal) {
    Worker worker(settings, journal);
    BatchJob job;
    while (receiveJob(socket, job) && sendResult(socket, worker.run(job))) {
    }
}

}  // namespace zvtext
