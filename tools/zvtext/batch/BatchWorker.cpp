// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/BatchWorker.h"

#include <malloc.h>
#include <sys/stat.h>

#include <chrono>
#include <cmath>
#include <exception>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "scene/Failure.h"
#include "scene/FileSource.h"
#include "scene/Json.h"
#include "scene/Scene.h"
#include "scene/SceneFonts.h"
#include "tools/zvtext/batch/BatchLine.h"
#include "tools/zvtext/batch/BatchMessages.h"
#include "tools/zvtext/batch/Digest.h"
#include "tools/zvtext/batch/GroupSync.h"
#include "tools/zvtext/render/Output.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

namespace fs = std::filesystem;

constexpr size_t kMaxFontsHeld = 64;  // with more, a worker asks to be replaced
constexpr size_t kMaxPictureBytes = size_t{2} << 30;

// A mark that changes when the file does; empty if there is no file.
std::string fileMark(const std::string& path) {
    struct stat status;
    if (path.empty() || stat(path.c_str(), &status) != 0) return "";
    return std::to_string(status.st_size) + "." + std::to_string(status.st_mtim.tv_sec) + "." +
           std::to_string(status.st_mtim.tv_nsec);
}

std::string digestOf(const std::string& bytes) {
    return Digest().add(bytes).hex();
}

// Of a picture with metrics: from the digests of both.
std::string digestOf(const std::string& picture, const std::string& metrics) {
    return Digest().add(picture).add(metrics).hex();
}

// Digest of the file; empty if it cannot be read or is not allowed.
std::string fileDigest(const std::string& path, const FolderScope& scope) {
    std::error_code error;
    if (!fs::is_regular_file(path, error)) return "";
    try {
        return digestOf(readFile("", path, kMaxPictureBytes, scope));
    } catch (const Failure&) {
        return "";
    }
}

// Of the picture and its metrics.
std::string fileDigest(const BatchJob& job, const FolderScope& scope) {
    const std::string picture = fileDigest(job.path, scope);
    if (job.metrics.empty() || picture.empty()) return picture;
    const std::string metrics = fileDigest(job.metrics, scope);
    return metrics.empty() ? "" : digestOf(picture, metrics);
}

class Worker {
public:
    Worker(int socket, const BatchSettings& settings, const BatchJournal& journal)
        : mSocket(socket), mSettings(settings), mJournal(journal) {}

    // Answers the job. False if nobody listens any more.
    bool run(const BatchJob& job) {
        BatchResult result;
        std::optional<StagedFiles> files;
        try {
            files = make(job, result);
        } catch (...) {
            result = failedResult(job);
        }
        result.line = job.line;
        // Fonts stay loaded, and lines with their own fonts must not fill the memory.
        result.last = countLoadedFonts() > kMaxFontsHeld;
        if (!files) return answer(result);
        result.made = true;
        if (!answer(result)) return false;
        result.made = false;
        mSync.add(std::move(*files), [this, names = namesOf(job), result](const std::exception_ptr& error) {
            answer(error == nullptr ? result : failedBy(error, names));
        });
        return true;
    }

private:
    bool answer(const BatchResult& result) {
        const std::lock_guard lock(mAnswering);
        return sendResult(mSocket, result);
    }

    static BatchJob namesOf(BatchJob job) {
        job.json = std::string();
        return job;
    }

    static BatchResult failedBy(const std::exception_ptr& error, const BatchJob& job) {
        try {
            std::rethrow_exception(error);
        } catch (...) {
            return failedResult(job);
        }
    }

    // Files that are still to be synced, or none where all is done.
    std::optional<StagedFiles> make(const BatchJob& job, BatchResult& result) {
        const auto begin = std::chrono::steady_clock::now();
        RenderOptions options = readLine(job.json, mSettings.defaults, mSettings.reads, mSettings.readable);
        options.output.metrics = job.metrics;
        options.output.scope = mSettings.writes;
        checkOutput(job.path, options.output, "--output");
        const Scene scene = sceneOf(std::move(options.scene));
        if (!job.isStreamed()) result.record.job = jobDigest(job, scene);  // no record is kept of streams
        const bool skipped = mSettings.resumes && !job.isStreamed() && findPicture(job, result.record);
        std::optional<StagedFiles> files;
        if (!skipped) files = makePicture(job, scene, options.output, result);
        Json json = resultOf(job);
        if (!job.metrics.empty()) json["metrics"] = job.metrics;
        const Json made = Json::parse(result.record.result, nullptr, false);
        for (const char* key : {"width", "height", "margins", "baseline"}) {
            if (made.contains(key)) json[key] = made[key];
        }
        if (skipped) json["skipped"] = true;
        if (job.isStreamed()) json["format"] = formatName(job.path, options.output, "--output");
        if (job.isStreamed()) json["bytes"] = result.picture.size();
        if (!files) result.record.job.clear();
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begin;
        json["milliseconds"] = std::round(took.count() * 10) / 10;
        result.json = dumpJson(json);
        return files;
    }

    // Whether the files exist as the journal's record for the job has them; then `record` is that record.
    bool findPicture(const BatchJob& job, BatchJournal::Record& record) const {
        const std::optional<BatchJournal::Record> found = mJournal.find(record.job);
        if (!found || found->content != fileDigest(job, mSettings.writes)) return false;
        record = *found;
        return true;
    }

    // Files as make() returns them. No record is kept of streams; those other than standard output are
    // written at once, and so are files beside any of them.
    static std::optional<StagedFiles> makePicture(const BatchJob& job, const Scene& scene,
                                                  const OutputOptions& options, BatchResult& result) {
        const Rendering rendering = Zvex::scene::render(scene);
        warn(rendering.warnings);
        const Metrics& metrics = rendering.metrics;
        const Margins& margins = metrics.margins;
        BatchJournal::Record& record = result.record;
        record.result = dumpJson({{"width", metrics.width},
                                  {"height", metrics.height},
                                  {"margins",
                                   {{"left", margins.left},
                                    {"top", margins.top},
                                    {"right", margins.right},
                                    {"bottom", margins.bottom}}},
                                  {"baseline", metrics.baseline}});
        EncodedRendering encoded = encodeRendering(rendering, job.path, options, "--output");
        if (!job.isStreamed()) record.content = digestOf(encoded.picture);
        if (!job.isStreamed() && !job.metrics.empty())
            record.content = digestOf(record.content, digestOf(encoded.metrics));
        if (options.scope.isAnywhere() && !job.isStreamed()) makeFolder(job.path, "--output");
        if (options.scope.isAnywhere()) makeFolder(job.metrics, "--metrics");
        const std::vector<NewFile> all = encoded.files(job.path, options, "--output");
        StagedFiles files({all.begin() + (job.isStreamed() ? 1 : 0), all.end()});
        if (!job.isStreamed() && !files.hasStreams()) return files;
        std::vector<StagedFiles> alone;
        alone.push_back(std::move(files));
        const std::exception_ptr error = commitTogether(alone).front();
        if (error != nullptr) std::rethrow_exception(error);
        if (job.isStreamed()) result.picture = std::move(encoded.picture);
        return std::nullopt;
    }

    static void makeFolder(const std::string& path, const std::string& option) {
        const fs::path folder = fs::path(path).parent_path();
        std::error_code error;
        if (!folder.empty()) fs::create_directories(folder, error);
        if (error) throw Failure(option + ": cannot make '" + folder.string() + "': " + error.message());
    }

    // Of everything that the picture is made from: the line, the defaults, the files that they name,
    // and the system's fonts for the text. Loads the fonts.
    std::string jobDigest(const BatchJob& job, const Scene& scene) {
        Digest digest;
        digest.add(ZVEX_VERSION).add(mSettings.digest).add(job.path).add(job.metrics).add(job.json);
        digest.add(writeStyle(scene.style)).add(scene.text);
        for (const std::shared_ptr<const LoadedFont>& font : takeFonts(scene, SceneText(scene)).fonts) {
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

    const int mSocket;
    const BatchSettings& mSettings;
    const BatchJournal& mJournal;
    std::map<std::string, std::string> mFontMarks;  // of the loaded fonts
    std::mutex mAnswering;
    GroupSync mSync;  // the last member, whose thread uses the others
};

}  // namespace

void runBatchWorker(int socket, const BatchSettings& settings, const BatchJournal& journal) {
    mallopt(M_ARENA_MAX, 1);  // the second thread hardly allocates
    Worker worker(socket, settings, journal);
    BatchJob job;
    while (receiveJob(socket, job) && worker.run(job)) {
    }
}

}  // namespace zvtext
