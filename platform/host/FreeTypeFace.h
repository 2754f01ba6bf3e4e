// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_FREETYPEFACE_H_
#define ZVEX_PLATFORM_HOST_FREETYPEFACE_H_

#include <ft2build.h>
#include <hb.h>

#include <cstddef>
#include <cstdint>
#include FT_FREETYPE_H

#include "platform/host/ControlValues.h"

namespace host {

// One FreeType library and one face of it, with bounded blocks and settings of its own: the environment,
// which FT_Init_FreeType would ask, has no say in the pixels. For one thread at a time.
class FreeTypeFace {
public:
    FreeTypeFace();
    ~FreeTypeFace();
    FreeTypeFace(const FreeTypeFace&) = delete;
    FreeTypeFace& operator=(const FreeTypeFace&) = delete;

    // The bytes are borrowed. False when FreeType takes them for no sfnt font.
    bool open(const void* data, size_t size, int index);
    // Puts the face where the axes of `font` stand.
    bool setAxes(hb_font_t* font);

    FT_Library library() const { return mLibrary; }
    FT_Face face() const { return mFace; }

    // Pixels per em, 26.6. Setting what is set already costs nothing: a new size runs a font's program.
    bool setSize(FT_F26Dot6 width, FT_F26Dot6 height);
    bool setStrike(int index);

    // Throws std::bad_alloc where the machine's memory was short since the last call. FreeType itself says
    // "out of memory" of a damaged font's absurd sizes as well, or goes on without a part of itself.
    void throwIfExhausted();

    // What FreeType's blocks come from. It uses its interpreter's record without a look at whether it got
    // one: where memory is short, a small reserve carries it to the end of the call.
    struct Blocks {
        bool exhausted = false;
        size_t used = 0, live = 0;  // of the reserve: bytes, blocks
        alignas(std::max_align_t) unsigned char reserve[size_t{16} << 10];
    };

private:
    Blocks mBlocks;
    FT_MemoryRec_ mMemory;
    ControlValues mControlValues;
    FT_Library mLibrary = nullptr;
    FT_Face mFace = nullptr;
    FT_F26Dot6 mWidth = -1, mHeight = -1;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_FREETYPEFACE_H_
