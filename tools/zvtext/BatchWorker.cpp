// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/BatchWorker.h"

#include <sys/socket.h>
#include <sys/stat.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <new>
#include <nlohmann/json.hpp>
#include <set>
#include <vector>

#include "tools/zvtext/BatchLine.h"
#include "tools/zvtext/Digest.h"
#include "tools/zvtext/Failure.h"
#include "tools/zvtext/FontChoice.h"
#include "tools/zvtext/Output.h"
#include "tools/zvtext/Scene.h"
#include "tools/zvtext/TextInput.h"

namespace zvtext {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using Parts = std::vector<std::string>;

constexpr size_t kMaxMessage = 2000;
constexpr size_t kMaxFontsHeld = 64;  // beyond, a worker makes way for a new one
constexpr size_t kMaxPictureBytes = size_t{2} << 30;

// --- Strings over the socket: how many, then the length of each and its bytes

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

std::string dump(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// --- One line

// What shows that a file is another than before, or nothing where there is none.
std::string fileMark(const std::string& path) {
    struct stat status;
    if (path.empty() || stat(path.c_str(), &status) != 0) return "";
    return std::to_string(status.st_size) + "." + std::to_string(status.st_mtim.tv_sec) + "." +
           std::to_string(status.st_mtim.tv_nsec);
}

// All that the picture is made from: the line, the defaults, and the files they name.
std::string digestOf(const BatchJob& job, const BatchSettings& settings, const Scene& scene) {
    Digest digest;
    digest.add(ZVEX_VERSION).add(settings.digest).add(job.path).add(job.json);
    digest.add(writeStyle(scene.style)).add(scene.text);
    digest.add(fileMark(chooseFont("--font", scene.font).path));
    for (const std::string& font : scene.fallbacks) {
        digest.add(fileMark(chooseFont("--fallback", font).path));
    }
    for (const EffectSettings& effect : scene.style.effects) {
        const auto* pattern = std::get_if<PatternSettings>(&effect);
        if (pattern != nullptr) digest.add(fileMark(pattern->file));
    }
    return digest.hex();
}

// Of what lies there; empty where it cannot be read or is no file of its own.
std::string contentDigest(const std::string& path) {
    std::error_code error;
    if (!fs::is_regular_file(path, error)) return "";
    try {
        return Digest().add(readFile("", path, kMaxPictureBytes)).hex();
    } catch (const Failure&) {
        return "";
    }
}

class Worker {
public:
    Worker(const BatchSettings& settings, const BatchJournal& journal)
        : mSettings(settings), mJournal(journal), mReader(settings.defaults) {}

    BatchResult run(const BatchJob& job) {
        BatchResult result = renderOrFail(job);
        result.last = mFonts.size() > kMaxFontsHeld;
        return result;
    }

private:
    BatchResult renderOrFail(const BatchJob& job) {
        try {
            return render(job);
        } catch (const std::bad_alloc&) {
            return failedResult(job.line, job.path, "not enough memory");
        } catch (const std::exception& error) {
            return failedResult(job.line, job.path, error.what());
        }
    }

    BatchResult render(const BatchJob& job) {
        const auto begin = std::chrono::steady_clock::now();
        const RenderArguments arguments = mReader.read(job.json);
        checkOutput(job.path, arguments.outputOptions, "--output");
        const Scene scene = readScene(arguments);
        BatchResult result;
        result.record.job = digestOf(job, mSettings, scene);
        if (mSettings.resumes && findPicture(job, result)) return result;
        countFonts(scene);
        const Rendering rendering = renderScene(scene);
        makeFolder(job.path);
        writeRendering(rendering, job.path, arguments.outputOptions, "--output");

        const Metrics& metrics = rendering.metrics;
        const Margins& margins = metrics.margins;
        Json json = {{"line", job.line},
                     {"path", job.path},
                     {"width", metrics.width},
                     {"height", metrics.height},
                     {"margins",
                      {{"left", margins.left},
                       {"top", margins.top},
                       {"right", margins.right},
                       {"bottom", margins.bottom}}},
                     {"baseline", metrics.baseline}};
        result.record.result = dump(json);
        result.record.content = contentDigest(job.path);
        if (result.record.content.empty()) result.record.job.clear();
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begin;
        json["milliseconds"] = std::round(took.count() * 10) / 10;
        result.json = dump(json);
        return result;
    }

    // Whether the picture is there as the journal has it for this job.
    bool findPicture(const BatchJob& job, BatchResult& result) const {
        const std::optional<BatchJournal::Record> record = mJournal.find(result.record.job);
        if (!record || record->content != contentDigest(job.path)) return false;
        Json json = Json::parse(record->result, nullptr, false);
        if (!json.is_object()) return false;
        json["line"] = job.line;
        json["path"] = job.path;
        json["skipped"] = true;
        result.json = dump(json);
        result.record.job.clear();
        return true;
    }

    static void makeFolder(const std::string& path) {
        const fs::path folder = fs::path(path).parent_path();
        std::error_code error;
        if (!folder.empty()) fs::create_directories(folder, error);
        if (error) throw Failure("--output: cannot make '" + folder.string() + "': " + error.message());
    }

    // Fonts that were read stay; lines with fonts of their own must not fill the memory.
    void countFonts(const Scene& scene) {
        mFonts.insert(scene.font + "\n" + scene.axes);
        mFonts.insert(scene.fallbacks.begin(), scene.fallbacks.end());
    }

    const BatchSettings& mSettings;
    const BatchJournal& mJournal;
    LineReader mReader;
    std::set<std::string> mFonts;
};

}  // namespace

bool sendJob(int socket, const BatchJob& job) {
    return sendParts(socket, {std::to_string(job.line), job.path, job.json});
}

bool receiveJob(int socket, BatchJob& job) {
    Parts parts(3);
    if (!receiveParts(socket, parts)) return false;
    job = {std::stoull(parts[0]), std::move(parts[1]), std::move(parts[2])};
    return true;
}

bool sendResult(int socket, const BatchResult& result) {
    const BatchJournal::Record& record = result.record;
    return sendParts(socket, {result.failed ? "failed" : "", result.last ? "last" : "", result.json,
                              record.job, record.content, record.result});
}

bool receiveResult(int socket, BatchResult& result) {
    Parts parts(6);
    if (!receiveParts(socket, parts)) return false;
    result = {!parts[0].empty(),
              !parts[1].empty(),
              std::move(parts[2]),
              {std::move(parts[3]), std::move(parts[4]), std::move(parts[5])}};
    return true;
}

BatchResult failedResult(uint64_t line, const std::string& path, const std::string& message) {
    Json json = {{"line", line}};
    if (!path.empty()) json["path"] = path;
    json["error"] = message.size() > kMaxMessage ? message.substr(0, kMaxMessage) + "..." : message;
    BatchResult result;
    result.failed = true;
    result.json = dump(json);
    return result;
}

void runBatchWorker(int socket, const BatchSettings& settings, const BatchJournal& journal) {
    Worker worker(settings, journal);
    BatchJob job;
    while (receiveJob(socket, job) && sendResult(socket, worker.run(job))) {
    }
}

}  // namespace zvtext
