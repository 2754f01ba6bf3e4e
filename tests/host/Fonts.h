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

struct Font {
    Role role;
    const char* path;
};

constexpr Font kFonts[] = {
    {Role::kLatin, "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"},
    {Role::kLatinBold, "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf"},
    {Role::kLatinSmall, "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf"},
    {Role::kLatinBoldItalic, "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-BoldItalic.ttf"},
    {Role::kHebrew, "/usr/share/fonts/truetype/noto/NotoSansHebrew-Regular.ttf"},
    {Role::kArabic, "/usr/share/fonts/truetype/noto/NotoNaskhArabic-Regular.ttf"},
    {Role::kDevanagari, "/usr/share/fonts/truetype/noto/NotoSansDevanagari-Regular.ttf"},
    {Role::kThai, "/usr/share/fonts/truetype/noto/NotoSansThai-Regular.ttf"},
    {Role::kSymbols, "/usr/share/fonts/truetype/noto/NotoSansSymbols-Regular.ttf"},
    {Role::kCollection, "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc"},
    {Role::kEmoji, "/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf"},
    {Role::kVariable, "/usr/share/fonts/truetype/inter-vf/Inter-roman.var.ttf"},
};

constexpr const char* path(Role role) {
    for (const Font& font : kFonts) {
        if (font.role == role) return font.path;
    }
    return nullptr;
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
    const std::vector<uint8_t>& file = bytes(role);
    return host::FontFace::open(file.data(), file.size(), index);
}

}  // namespace fonts

#endif  // ZVEX_TESTS_HOST_FONTS_H_
