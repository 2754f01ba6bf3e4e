// SPDX-License-Identifier: Apache-2.0
#include "scene/TextInput.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unicode/utf8.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

#include "scene/Failure.h"

namespace Zvex::scene {

namespace {

// There are no tab stops, and no font has a glyph for a tab.
std::string withoutTabs(std::string text) {
    std::replace(text.begin(), text.end(), '\t', ' ');
    return text;
}

}  // namespace

std::string faultOf(const std::string& text) {
    if (text.empty()) return "the text is empty";
    if (text.size() > kMaxTextBytes) return "the text is longer than 4 MiB";
    const size_t invalid = findInvalidUtf8(text);
    if (invalid != std::string::npos) return "the text is not UTF-8 (byte " + std::to_string(invalid) + ")";
    const size_t nul = text.find('\0');
    if (nul != std::string::npos) return "the text holds a NUL character (byte " + std::to_string(nul) + ")";
    return "";
}

size_t findInvalidUtf8(const std::string& text) {
    const char* bytes = text.data();
    const auto length = static_cast<int64_t>(text.size());
    int64_t i = 0;
    while (i < length) {
        const int64_t begin = i;
        UChar32 c;
        U8_NEXT(bytes, i, length, c);
        if (c < 0) return static_cast<size_t>(begin);
    }
    return std::string::npos;
}

std::string printable(const std::string& text) {
    std::string clean;
    const auto length = static_cast<int64_t>(text.size());
    for (int64_t i = 0; i < length;) {
        const int64_t begin = i;
        UChar32 c;
        U8_NEXT(text.data(), i, length, c);
        if (c != '\n' && (c < 0x20 || (c >= 0x7F && c < 0xA0))) {
            clean += '?';
        } else {
            clean.append(text, static_cast<size_t>(begin), static_cast<size_t>(i - begin));
        }
    }
    return clean;
}

std::string readFile(const std::string& option, const std::string& path, size_t maxBytes,
                     const FolderScope& scope) {
    const bool standardInput = path == "-";
    const std::string name = standardInput ? "standard input" : "'" + path + "'";
    const auto refuse = [&] {
        throw Failure(option + ": cannot read " + name + ": " + std::strerror(errno));
    };
    Descriptor file;
    if (!standardInput) {
        file = scope.isAnywhere() ? Descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY))
                                  : scope.openFile(option, path);
        if (!file) refuse();
    }
    const int descriptor = standardInput ? STDIN_FILENO : file.number();
    struct stat status = {};
    if (fstat(descriptor, &status) != 0) refuse();
    if (S_ISDIR(status.st_mode)) throw Failure(option + ": " + name + " is a folder");
    // A file says its size, which saves reading one that is too large and copying while the text grows.
    // Standard input may stand in the midst of one.
    const bool known = !standardInput && S_ISREG(status.st_mode);
    const auto size = known ? static_cast<uint64_t>(status.st_size) : 0;
    std::string content;
    if (size <= maxBytes) content.reserve(static_cast<size_t>(size));
    char block[65536];
    for (ssize_t got = 1; size <= maxBytes && got != 0 && content.size() <= maxBytes;) {
        got = read(descriptor, block, sizeof block);
        if (got < 0 && errno != EINTR) refuse();
        content.append(block, static_cast<size_t>(std::max<ssize_t>(got, 0)));
    }
    if (std::max<uint64_t>(size, content.size()) > maxBytes) {
        throw Failure(option + ": " + name + " is larger than " + std::to_string(maxBytes) + " bytes");
    }
    if (content.size() < size) {
        throw Failure(option + ": cannot read " + name + ": it ends after " + std::to_string(content.size()) +
                      " of " + std::to_string(size) + " bytes");
    }
    return content;
}

std::string checkedText(const std::string& text) {
    const std::string why = faultOf(text);
    if (!why.empty()) throw UsageError("TEXT: " + why);
    return withoutTabs(text);
}

std::string readText(const std::string& file, const FolderScope& scope) {
    const std::string option = "--text-file";
    const std::string raw = readFile(option, file, kMaxTextBytes, scope);
    std::string text;
    text.reserve(raw.size());
    for (size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] == '\r' && i + 1 < raw.size() && raw[i + 1] == '\n') continue;
        text += raw[i];
    }
    if (!text.empty() && text.back() == '\n') text.pop_back();
    const std::string why = faultOf(text);
    if (!why.empty()) throw Failure(option + ": " + why);
    return withoutTabs(text);
}

}  // namespace Zvex::scene
