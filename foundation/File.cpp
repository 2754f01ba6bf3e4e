// SPDX-License-Identifier: Apache-2.0
#include "foundation/File.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <new>

#include "foundation/Error.h"
#include "foundation/ZvString.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZV_File";

// The UTF-8 form of a wide path. `size` counts its bytes without the NUL: 0 for an empty path, -1 for an
// unconstructed one, which reports itself.
struct NarrowPath {
    std::unique_ptr<char[]> text;
    int size = -1;

    explicit NarrowPath(const ZvString& path) {
        if (path.GetLength() < 0) return;
        const int withNul = std::max(path.GetUTF8Size(), 1);
        text.reset(new (std::nothrow) char[static_cast<size_t>(withNul)]);
        if (text != nullptr && path.GetUTF8(text.get(), withNul) != 0) {
            size = static_cast<int>(std::strlen(text.get()));
        }
    }
};

// Failures of the path itself, -1 with code 7, write no report line.
int invalidPath() {
    ::Zvex::Error::SetError(ZV_ERROR_INVALID_ARGUMENT);
    return -1;
}

}  // namespace

struct File::Impl {
    FILE* stream = nullptr;
    bool write = false;
    bool keepOpen = false;
};

File::~File() {
    Close();
    delete mImpl;
}

bool File::attachImpl(const void* path, const char* mode) {
    if (mImpl != nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_ALREADY_CONSTRUCTED);
        return false;
    }
    if (path == nullptr || mode == nullptr) {
        ::Zvex::Error::SetError(ZV_ERROR_INVALID_ARGUMENT);
        return false;
    }
    mImpl = new (std::nothrow) Impl;
    if (mImpl == nullptr) ZV_REPORT_ERROR(kTag, ZV_ERROR_PLATFORM);
    return mImpl != nullptr;
}

bool File::open(const char* path, const char* mode, bool keepOpen) {
    FILE* const stream = std::fopen(path, mode);
    if (stream == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "OpenFile - Fail to open file. errno = %d", errno);
        ZV_REPORT_ERROR(kTag, ZV_ERROR_OPEN_FILE);
        return false;
    }
    mImpl->stream = stream;
    mImpl->write = std::strpbrk(mode, "wa") != nullptr;
    mImpl->keepOpen = keepOpen;
    return true;
}

bool File::Construct(const ZvString* path, const char* mode, bool keepOpen) {
    if (!attachImpl(path, mode)) return false;
    const NarrowPath narrow(*path);
    if (narrow.size < 1) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "OpenFile() - pathSize < 0");
        ::Zvex::Error::SetError(ZV_ERROR_INVALID_ARGUMENT);
        return false;
    }
    return open(narrow.text.get(), mode, keepOpen);
}

bool File::Construct(const char* path, const char* mode) {
    return attachImpl(path, mode) && open(path, mode, false);
}

FILE* File::openStream() {
    FILE* const stream = GetFilePointer();
    if (stream == nullptr) ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED);
    return stream;
}

unsigned long File::Read(void* buffer, unsigned long size, unsigned long count) {
    FILE* const stream = openStream();
    if (stream == nullptr) return 0;
    if (buffer == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_INVALID_ARGUMENT);
        return 0;
    }
    return static_cast<unsigned long>(std::fread(buffer, size, count, stream));
}

unsigned long File::Write(const void* buffer, unsigned long size, unsigned long count) {
    FILE* const stream = openStream();
    if (stream == nullptr) return 0;
    if (buffer == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_INVALID_ARGUMENT);
        return 0;
    }
    return static_cast<unsigned long>(std::fwrite(buffer, size, count, stream));
}

int File::Seek(long offset, int whence) {
    FILE* const stream = openStream();
    return stream != nullptr ? std::fseek(stream, offset, whence) : -1;
}

long File::Tell() {
    FILE* const stream = openStream();
    return stream != nullptr ? std::ftell(stream) : -1;
}

int File::Eof() {
    FILE* const stream = openStream();
    return stream != nullptr ? std::feof(stream) : -1;
}

int File::Error() {
    FILE* const stream = openStream();
    return stream != nullptr ? std::ferror(stream) : -1;
}

int File::GetFileDescriptor() {
    FILE* const stream = openStream();
    return stream != nullptr ? ::fileno(stream) : -1;
}

FILE* File::GetFilePointer() {
    return mImpl != nullptr ? mImpl->stream : nullptr;
}

void File::Close() {
    if (mImpl == nullptr || mImpl->stream == nullptr || mImpl->keepOpen) return;
    std::fflush(mImpl->stream);
    if (mImpl->write) ::fsync(::fileno(mImpl->stream));
    std::fclose(mImpl->stream);
    mImpl->stream = nullptr;
}

int File::IsAccessible(const ZvString* path, int mode) {
    if (path == nullptr) return invalidPath();
    const NarrowPath narrow(*path);
    if (narrow.size < 1) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "IsAccessible() - pathSize < 0");
        return invalidPath();
    }
    return IsAccessible(narrow.text.get(), mode);
}

int File::IsAccessible(const char* path, int mode) {
    return path != nullptr ? ::access(path, mode) : invalidPath();
}

int File::Unlink(const ZvString* path) {
    if (path == nullptr) return invalidPath();
    const NarrowPath narrow(*path);
    if (narrow.size < 1) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "Unlink() - pathSize < 0");
        return invalidPath();
    }
    return Unlink(narrow.text.get());
}

int File::Unlink(const char* path) {
    return path != nullptr ? ::unlink(path) : invalidPath();
}

int File::Rename(const ZvString* oldPath, const ZvString* newPath) {
    if (oldPath == nullptr || newPath == nullptr) return invalidPath();
    const NarrowPath narrowOld(*oldPath);
    const NarrowPath narrowNew(*newPath);
    if (narrowOld.size < 1 || narrowNew.size < 1) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "Rename() - pathSize < 0 : old %d, new %d",
                            narrowOld.size, narrowNew.size);
        return invalidPath();
    }
    return Rename(narrowOld.text.get(), narrowNew.text.get());
}

int File::Rename(const char* oldPath, const char* newPath) {
    return oldPath != nullptr && newPath != nullptr ? std::rename(oldPath, newPath) : invalidPath();
}

}  // namespace Zvex
