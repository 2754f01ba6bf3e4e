// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/BatchJournal.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "scene/Failure.h"
#include "tools/zvtext/batch/Digest.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

// A record's line: the digest of the job, a space, that of the content, a space, the result, a space, the
// digest of everything before it. Other lines (damaged, or cut short by a kill or a full disk) are skipped.
constexpr size_t kDigits = 32, kHead = 2 * (kDigits + 1), kTail = kDigits + 1;
constexpr size_t kMaxRecord = 8192;

std::string sealed(const std::string& record) {
    return record + " " + Digest().add(record).hex();
}

bool isRecord(const std::string& line) {
    return line.size() > kHead + kTail && line.size() < kMaxRecord &&
           line == sealed(line.substr(0, line.size() - kTail));
}

uint64_t placeKey(const std::string& job) {
    return std::strtoull(job.substr(0, 16).c_str(), nullptr, 16);
}

}  // namespace

void BatchJournal::open(bool reads) {
    const auto refuse = [&](const std::string& why) {
        throw Failure("--output-dir: cannot write '" + mPath + "': " + why);
    };
    // Does not follow a link, which may lead anywhere, and does not block, as a pipe would.
    constexpr int kFlags = O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    mDescriptor = ::open(mPath.c_str(), kFlags, 0666);
    if (mDescriptor < 0) refuse(errno == ELOOP ? "it is a link" : std::strerror(errno));
    struct stat status = {};
    if (fstat(mDescriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        close(std::exchange(mDescriptor, -1));
        refuse("it is not a regular file");
    }
    if (reads) findRecords();
    const off_t size = lseek(mDescriptor, 0, SEEK_END);
    char last = '\n';
    mCutShort = size > 0 && pread(mDescriptor, &last, 1, size - 1) == 1 && last != '\n';
}

BatchJournal::~BatchJournal() {
    if (mDescriptor >= 0) close(mDescriptor);
}

void BatchJournal::findRecords() {
    std::string rest;
    std::vector<char> block(65536);
    uint64_t offset = 0;  // of `rest` in the file
    for (;;) {
        const ssize_t got =
            pread(mDescriptor, block.data(), block.size(), static_cast<off_t>(offset + rest.size()));
        if (got <= 0) break;
        rest.append(block.data(), static_cast<size_t>(got));
        size_t begin = 0;
        for (size_t end; (end = rest.find('\n', begin)) != std::string::npos; begin = end + 1) {
            const std::string line = rest.substr(begin, end - begin);
            if (isRecord(line)) mPlaces.emplace_back(placeKey(line), offset + begin);
        }
        if (begin == 0 && rest.size() > kMaxRecord) begin = rest.size();  // not a line of a journal
        offset += begin;
        rest.erase(0, begin);
    }
    std::sort(mPlaces.begin(), mPlaces.end());
}

std::optional<BatchJournal::Record> BatchJournal::find(const std::string& job) const {
    auto place = std::upper_bound(mPlaces.begin(), mPlaces.end(), std::pair(placeKey(job), UINT64_MAX));
    while (place != mPlaces.begin() && (--place)->first == placeKey(job)) {
        std::string line(kMaxRecord, '\0');
        const ssize_t got = pread(mDescriptor, &line[0], line.size(), static_cast<off_t>(place->second));
        line.resize(static_cast<size_t>(std::max<ssize_t>(got, 0)));
        line.resize(std::min(line.find('\n'), line.size()));
        if (!isRecord(line) || line.compare(0, kDigits, job) != 0) continue;
        return Record{job, line.substr(kDigits + 1, kDigits),
                      line.substr(kHead, line.size() - kHead - kTail)};
    }
    return std::nullopt;
}

bool BatchJournal::append(const Record& record) {
    try {
        if (mDescriptor < 0) open(false);
    } catch (const Failure&) {
        return false;
    }
    // A record starts a new line even after one that was cut short.
    const std::string line =
        (mCutShort ? "\n" : "") + sealed(record.job + " " + record.content + " " + record.result) + "\n";
    const ssize_t written = write(mDescriptor, line.data(), line.size());
    if (written > 0) mCutShort = static_cast<size_t>(written) < line.size();
    return written == static_cast<ssize_t>(line.size());
}

}  // namespace zvtext
