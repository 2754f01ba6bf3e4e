// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_FREETYPEORACLE_H_
#define ZVEX_TESTS_HOST_FREETYPEORACLE_H_

#include <ft2build.h>

#include <cstdint>
#include <cstring>
#include <vector>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include "platform/host/FontFace.h"

// FreeType used directly (a face, a size, its own renderer), to compare the port's glyphs with.
class FreeTypeOracle {
public:
    FreeTypeOracle(const std::vector<uint8_t>& file, int index) {
        FT_Init_FreeType(&mLibrary);
        FT_New_Memory_Face(mLibrary, file.data(), static_cast<FT_Long>(file.size()), index, &mFace);
    }
    ~FreeTypeOracle() {
        FT_Done_Face(mFace);
        FT_Done_FreeType(mLibrary);
    }
    FreeTypeOracle(const FreeTypeOracle&) = delete;
    FreeTypeOracle& operator=(const FreeTypeOracle&) = delete;

    FT_Face face() const { return mFace; }
    uint32_t glyph(uint32_t codePoint) const { return FT_Get_Char_Index(mFace, codePoint); }

    // An outline glyph at `size` (whole 64ths), without hinting, moved right by quarterX / 4 pixels.
    host::GlyphImage outline(uint32_t glyph, float size, int quarterX) const {
        const FT_F26Dot6 size26 = static_cast<FT_F26Dot6>(size * 64);
        FT_Set_Char_Size(mFace, size26, size26, 72, 72);
        FT_Load_Glyph(mFace, glyph, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP);
        FT_Outline_Translate(&mFace->glyph->outline, quarterX * 16, 0);
        // FreeType would sample outlines that state overlaps several times; the port, like the platform, does
        // not.
        mFace->glyph->outline.flags &= ~0x40;
        FT_Render_Glyph(mFace->glyph, FT_RENDER_MODE_NORMAL);
        return coverage(1, 0);
    }

    // Byte `offset` of each pixel of the slot's bitmap.
    host::GlyphImage coverage(unsigned bytesPerPixel, unsigned offset) const {
        const FT_Bitmap& bitmap = mFace->glyph->bitmap;
        host::GlyphImage image;
        image.left = mFace->glyph->bitmap_left;
        image.top = -mFace->glyph->bitmap_top;
        image.width = static_cast<int>(bitmap.width);
        image.height = static_cast<int>(bitmap.rows);
        for (unsigned y = 0; y < bitmap.rows; ++y) {
            for (unsigned x = 0; x < bitmap.width; ++x) {
                image.coverage.push_back(
                    bitmap.buffer[y * static_cast<unsigned>(bitmap.pitch) + x * bytesPerPixel + offset]);
            }
        }
        return image;
    }

private:
    FT_Library mLibrary = nullptr;
    FT_Face mFace = nullptr;
};

#endif  // ZVEX_TESTS_HOST_FREETYPEORACLE_H_
