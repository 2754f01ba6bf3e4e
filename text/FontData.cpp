// SPDX-License-Identifier: Apache-2.0
#include "text/FontData.h"

#include <SkStream.h>
#include <SkTypeface.h>
#include <fcntl.h>
#include <hwui/MinikinSkia.h>
#include <unistd.h>

#include <cstdio>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "foundation/OutOfMemory.h"
#include "foundation/ZvLog.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvFontManager";

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};

}  // namespace

char* getFontData(const char* path, unsigned int& size) {
    const char* name = path != nullptr ? path : "";
    // Non-blocking, so that a pipe is refused by the seek instead of waiting here for its writer.
    const int descriptor = open(name, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    std::unique_ptr<FILE, FileCloser> file(descriptor >= 0 ? fdopen(descriptor, "rb") : nullptr);
    if (file == nullptr) {
        if (descriptor >= 0) close(descriptor);
        ZV_DEBUG_LOG(kTag, "getFontData: fail open file path = %s", name);
        return nullptr;
    }
    const long length = std::fseek(file.get(), 0, SEEK_END) == 0 ? std::ftell(file.get()) : -1;
    if (length < 0) {
        ZV_DEBUG_LOG(kTag, "getFontData: fseek(file, 0, SEEK_END) failure path = %s", name);
        return nullptr;
    }
    if (length == 0) {
        ZV_DEBUG_LOG(kTag, "getFontData: font length is 0 path = %s", name);
        return nullptr;
    }
    if (std::fseek(file.get(), 0, SEEK_SET) != 0) {
        ZV_DEBUG_LOG(kTag, "getFontData: fseek(file, 0, SEEK_SET) failure path = %s", name);
        return nullptr;
    }
    // A folder opens too; it reports an enormous length or fails to read.
    const auto wanted = static_cast<unsigned long long>(length);
    const bool fits = wanted <= std::numeric_limits<uint32_t>::max();
    std::unique_ptr<char[]> data(fits ? new (std::nothrow) char[static_cast<size_t>(wanted)] : nullptr);
    if (fits && data == nullptr) markOutOfMemory();
    if (data == nullptr || std::fread(data.get(), static_cast<size_t>(wanted), 1, file.get()) != 1) {
        ZV_DEBUG_LOG(kTag, "getFontData: fread failure path = %s length = %zu", name,
                     static_cast<size_t>(wanted));
        return nullptr;
    }
    size = static_cast<unsigned int>(wanted);
    return data.release();
}

std::shared_ptr<minikin::MinikinFont> wrapFont(std::shared_ptr<ZvFontData> bytes, int index) {
    if (index < 0) return nullptr;
    sk_sp<SkTypeface> typeface =
        SkTypeface::MakeFromStream(new SkMemoryStream(bytes->data, bytes->size, false), index);
    if (typeface == nullptr) return nullptr;
    auto* font = new android::MinikinFontSkia(std::move(typeface), bytes->data, bytes->size, index,
                                              std::vector<minikin::FontVariation>());
    return std::shared_ptr<minikin::MinikinFont>(
        font, [bytes = std::move(bytes)](minikin::MinikinFont* f) mutable {
            delete f;
            bytes.reset();  // now, not when the last weak pointer lets the deleter go
        });
}

}  // namespace Zvex
