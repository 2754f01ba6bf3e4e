// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_FONTS_H_
#define ZVEX_TESTS_HOST_FONTS_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
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

// The file's bytes, read once and kept for the life of the process; empty, and a failed test, when it is
// missing.
inline const std::vector<uint8_t>& bytes(Role role) {
    static std::map<Role, std::vector<uint8_t>> files;
    std::vector<uint8_t>& file = files[role];
    if (file.empty()) {
        std::ifstream stream(path(role), std::ios::binary);
        file.assign(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
        EXPECT_FALSE(file.empty()) << "font missing, run scripts/setup: " << path(role);
    }
    return file;
}

inline std::shared_ptr<host::FontFace> open(Role role, int index = 0) {
    return host::FontFace::open(bytes(role).data(), bytes(role).size(), index);
}

}  // namespace fonts

#endif  // ZVEX_TESTS_HOST_FONTS_H_
