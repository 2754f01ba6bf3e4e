// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_FONTS_H_
#define ZVEX_TESTS_HOST_FONTS_H_

#include <gtest/gtest.h>
#include <hb.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/host/FontFace.h"

// The fonts for the tests of the port, by role. scripts/setup installs them.
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

// Read at once: byte by byte, the large files take a second under the sanitizers.
inline std::string readFile(const char* path) {
    std::error_code missing;
    const uintmax_t size = std::filesystem::file_size(path, missing);
    std::string content(missing ? 0 : static_cast<size_t>(size), '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(&content[0], static_cast<std::streamsize>(content.size()));
    return file ? content : "";
}

// The file's bytes, read once and kept for the life of the process. If the file is missing, the test fails
// and the result is empty.
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

// Appends the values, most significant byte first.
inline void put(std::string& table, int bytes, const std::vector<uint32_t>& values) {
    for (const uint32_t value : values) {
        for (int i = bytes - 1; i >= 0; --i) table.push_back(static_cast<char>(value >> (8 * i)));
    }
}

// The first font of the file, with these tables replaced or added.
inline std::string withTables(Role role, const std::map<hb_tag_t, std::string>& added) {
    const std::vector<uint8_t>& file = bytes(role);
    const auto blobOf = [](const void* data, size_t size) {
        return hb_blob_create(static_cast<const char*>(data), static_cast<unsigned>(size),
                              HB_MEMORY_MODE_READONLY, nullptr, nullptr);
    };
    hb_blob_t* whole = blobOf(file.data(), file.size());
    hb_face_t *source = hb_face_create(whole, 0), *builder = hb_face_builder_create();
    const auto add = [builder](hb_tag_t tag, hb_blob_t* table) {
        hb_face_builder_add_table(builder, tag, table);
        hb_blob_destroy(table);
    };
    hb_tag_t tags[64];
    unsigned count = 64, length = 0;
    hb_face_get_table_tags(source, 0, &count, tags);
    for (unsigned i = 0; i < count; ++i) {
        if (added.count(tags[i]) == 0) add(tags[i], hb_face_reference_table(source, tags[i]));
    }
    for (const auto& [tag, table] : added) add(tag, blobOf(table.data(), table.size()));
    hb_blob_t* built = hb_face_reference_blob(builder);
    const char* data = hb_blob_get_data(built, &length);
    const std::string result(data, length);
    for (hb_blob_t* blob : {built, whole}) hb_blob_destroy(blob);
    for (hb_face_t* face : {builder, source}) hb_face_destroy(face);
    return result;
}

inline std::shared_ptr<host::FontFace> open(Role role, int index = 0) {
    return host::FontFace::open(bytes(role).data(), bytes(role).size(), index);
}

inline uint32_t glyphOf(const host::FontFace& face, uint32_t codePoint) {
    hb_font_t* font = hb_font_create(face.hbFace());
    hb_codepoint_t glyph = 0;
    hb_font_get_nominal_glyph(font, codePoint, &glyph);
    hb_font_destroy(font);
    return glyph;
}

}  // namespace fonts

#endif  // ZVEX_TESTS_HOST_FONTS_H_
