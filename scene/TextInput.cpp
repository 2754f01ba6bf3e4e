// SPDX-License-Identifier: Apache-2.0
#include "scene/TextInput.h"

#include <unicode/utf8.h>

#include <cstdint>

#include "scene/Failure.h"

namespace Zvex::scene {

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

std::string checkedText(const std::string& text) {
    const std::string why = faultOf(text);
    if (!why.empty()) throw UsageError("TEXT: " + why);
    return text;
}

std::string readText(const std::string& file, const std::shared_ptr<const Source>& source) {
    const std::string option = "--text-file";
    const Bytes bytes = orDefault(source).read(option, file, kMaxTextBytes);
    const std::string& raw = *bytes;
    std::string text;
    text.reserve(raw.size());
    for (size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] == '\r' && i + 1 < raw.size() && raw[i + 1] == '\n') continue;
        text += raw[i];
    }
    if (!text.empty() && text.back() == '\n') text.pop_back();
    const std::string why = faultOf(text);
    if (!why.empty()) throw Failure(option + ": " + why);
    return text;
}

}  // namespace Zvex::scene
