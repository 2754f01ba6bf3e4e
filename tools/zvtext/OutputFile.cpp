// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/OutputFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tools/zvtext/Failure.h"

namespace zvtext {

namespace {

// Takes the stream and closes it. False, with errno saying why, unless every byte is on its way; with `sync`,
// on the disk.
bool writeAndClose(const std::string& content, std::FILE* stream, bool sync) {
    if (stream == nullptr) return false;
    bool whole = std::fwrite(content.data(), 1, content.size(), stream) == content.size();
    whole = whole && std::fflush(stream) == 0 && (!sync || fsync(fileno(stream)) == 0);
    const int error = errno;
    if (std::fclose(stream) != 0) return false;
    errno = error;
    return whole;
}

// mkstemp makes the file private; an output gets the mode that any new file of this process would have.
std::FILE* openTemporary(std::string& temporary) {
    const int descriptor = mkstemp(&temporary[0]);
    if (descriptor < 0) return nullptr;
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(descriptor, 0666 & ~mask);
    std::FILE* stream = fdopen(descriptor, "wb");
    if (stream == nullptr) close(descriptor);
    return stream;
}

}  // namespace

void writeFile(const std::string& content, const std::string& path, const std::string& option) {
    errno = 0;
    if (path == "-") {
        if (std::fwrite(content.data(), 1, content.size(), stdout) != content.size() ||
            std::fflush(stdout) != 0) {
            throw Failure(option + ": cannot write to standard output: " + std::strerror(errno));
        }
        return;
    }
    struct stat existing;
    std::string target = path;
    bool inPlace = false;
    if (stat(path.c_str(), &existing) == 0) {
        if (S_ISDIR(existing.st_mode)) throw Failure(option + ": '" + path + "' is a folder");
        inPlace = !S_ISREG(existing.st_mode);
        if (char* resolved = inPlace ? nullptr : realpath(path.c_str(), nullptr)) {
            target = resolved;
            std::free(resolved);
        }
    }
    std::string temporary = target + ".XXXXXX";
    std::FILE* stream = inPlace ? std::fopen(path.c_str(), "wb") : openTemporary(temporary);
    const bool made = stream != nullptr && !inPlace;
    bool whole = writeAndClose(content, stream, !inPlace);
    if (whole && !inPlace) whole = std::rename(temporary.c_str(), target.c_str()) == 0;
    if (whole) return;
    const std::string why = std::strerror(errno);
    if (made) unlink(temporary.c_str());
    throw Failure(option + ": cannot write '" + path + "': " + why);
}

}  // namespace zvtext
