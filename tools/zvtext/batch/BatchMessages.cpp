// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/BatchMessages.h"

#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "scene/Failure.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

using Parts = std::vector<std::string>;

constexpr size_t kMaxMessage = 2000;

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

void addSize(std::string& message, uint64_t size) {
    message.append(reinterpret_cast<const char*>(&size), sizeof size);
}

// The length of all that follows, then the length and the bytes of each.
bool sendParts(int socket, const Parts& parts) {
    std::string message;
    uint64_t size = 0;
    for (const std::string& part : parts) size += sizeof size + part.size();
    addSize(message, size);
    for (const std::string& part : parts) {
        addSize(message, part.size());
        message += part;
    }
    return sendBytes(socket, message.data(), message.size());
}

bool receiveParts(int socket, Parts& parts) {
    uint64_t size = 0;
    if (!receiveBytes(socket, &size, sizeof size)) return false;
    std::string message(size, '\0');
    if (!receiveBytes(socket, &message[0], size)) return false;
    size_t at = 0;
    for (std::string& part : parts) {
        uint64_t length = 0;
        if (message.size() - at < sizeof length) return false;
        std::memcpy(&length, message.data() + at, sizeof length);
        at += sizeof length;
        if (message.size() - at < length) return false;
        part.assign(message, at, length);
        at += length;
    }
    return true;
}

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
    const std::string flags = {result.made ? 'm' : '-', result.last ? 'l' : '-', result.failed ? 'f' : '-',
                               result.diskFull ? 'd' : '-'};
    const BatchJournal::Record& record = result.record;
    return sendParts(socket, {std::to_string(result.line), flags, result.json, record.job, record.content,
                              record.result, std::to_string(result.picture.size())}) &&
           sendBytes(socket, result.picture.data(), result.picture.size());
}

bool receiveResult(int socket, BatchResult& result) {
    Parts parts(7);
    if (!receiveParts(socket, parts)) return false;
    std::string picture(std::stoull(parts[6]), '\0');
    if (!receiveBytes(socket, &picture[0], picture.size())) return false;
    const std::string& flags = parts[1];
    result = {std::stoull(parts[0]), flags[0] == 'm',
              flags[1] == 'l',       flags[2] == 'f',
              flags[3] == 'd',       std::move(parts[2]),
              std::move(picture),    {std::move(parts[3]), std::move(parts[4]), std::move(parts[5])}};
    return true;
}

Json resultOf(const BatchJob& job) {
    Json json = {{"line", job.line}};
    if (!job.id.empty()) json["id"] = Json::parse(job.id, nullptr, false);
    if (!job.path.empty()) json["path"] = job.path;
    return json;
}

BatchResult failedResult(const BatchJob& job, const std::string& message) {
    Json json = resultOf(job);
    json["error"] = message.size() > kMaxMessage ? message.substr(0, kMaxMessage) + "..." : message;
    BatchResult result;
    result.line = job.line;
    result.failed = true;
    result.json = dumpJson(json);
    return result;
}

BatchResult failedResult(const BatchJob& job) {
    try {
        throw;
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

}  // namespace zvtext
