// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_FONTS_H_
#define ZVEX_TESTS_HOST_FONTS_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/host/FontFace.h"

// The fonts that the tests of the port draw with, by what they stand for. scripts/setup installs them.
namespace fonts {

enum class Role {
    kLatin,  // TrueType outlines, many scripts
    kLatinBold,
    kLatinSmall,  // TrueType, a small file
    kLatinBoldItalic,
    kHebrew,
    kArabic,
    kDevanagari,
    kThai,
    kSymbols,     // of text presentation
    kCollection,  // CFF outlines, several fonts in one big file
    kEmoji,       // colour strikes, no outlines
    kVariable,    // TrueType with variations
};

constexpr const char* kPaths[] = {
    // In the order of Role.
    "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
    "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf",
    "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf",
    "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-BoldItalic.ttf",
    "/usr/share/fonts/truetype/noto/NotoSansHebrew-Regular.ttf",
    "/usr/share/fonts/truetype/noto/NotoNaskhArabic-Regular.ttf",
    "/usr/share/fonts/truetype/noto/NotoSansDevanagari-Regular.ttf",
    "/usr/share/fonts/truetype/noto/NotoSansThai-Regular.ttf",
    "/usr/share/fonts/truetype/noto/NotoSansSymbols-Regular.ttf",
    "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc",
    "/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf",
    "/usr/share/fonts/truetype/inter-vf/Inter-roman.var.ttf",
};

constexpr const char* path(Role role) {
    return kPaths[static_cast<int>(role)];
}

// In one piece: byte by byte, the large ones take a second under the sanitizers.
inline std::string readFile(const char* path) {
    std::error_code missing;
    const uintmax_t size = std::filesystem::file_size(path, missing);
    std::string content(missing ? 0 : static_cast<size_t>(size), '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(&content[0], static_cast<std::streamsize>(content.size()));
    return file ? content : "";
}

// The file's bytes, read once and kept for the life of the process; empty, and a failed test, when it is
// missing.
inline const std::vector<uint8_t>& bytes(Role role) {
    static std::map<Role, std::vector<uint8_t>> files;
    std::vector<uint8_t>& file = files[role];
    if (file.empty()) {
        const std::string content = readFile(path(role));
        file.assign(content.begin(), content.end());
        EXPECT_FALSE(file.empty()) << "font missing, run scripts/setup: " << path(role);
    }
    return file;
}

inline std::shared_ptr<host::FontFace> open(Role role, int index = 0) {
    return host::FontFace::open(bytes(role).data(), bytes(role).size(), index);
}

}  // namespace fonts

#endif  // ZVEX_TESTS_HOST_FONTS_H_
