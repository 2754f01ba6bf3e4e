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

// One FreeType library and one face of it, with bounded blocks and its own settings: unlike FT_Init_FreeType,
// it does not read the environment, which could change pixels. For one thread at a time.
class FreeTypeFace {
public:
    FreeTypeFace();
    ~FreeTypeFace();
    FreeTypeFace(const FreeTypeFace&) = delete;
    FreeTypeFace& operator=(const FreeTypeFace&) = delete;

    // Borrows the bytes. False if FreeType does not accept them as an sfnt font.
    bool open(const void* data, size_t size, int index);
    // Sets the face's axes to those of `font`.
    bool setAxes(hb_font_t* font);

    FT_Library library() const { return mLibrary; }
    FT_Face face() const { return mFace; }

    // Pixels per em, 26.6. Setting the current size again costs nothing; a new size runs a font's program.
    bool setSize(FT_F26Dot6 width, FT_F26Dot6 height);
    bool setStrike(int index);
    // Lets FreeType's own hinter give each digit its own width, as on the platform. Newer versions give all
    // digits of a font one width.
    void freeDigits();

    // Throws std::bad_alloc if the machine ran out of memory since the last call. FreeType's own error is not
    // enough: it also says "out of memory" for a damaged font's absurd sizes, or goes on without a part.
    void throwIfExhausted();

    // The source of FreeType's blocks. FreeType uses its interpreter's record without checking that it was
    // allocated, so if memory is short, a small reserve lets the call finish.
    struct Blocks {
        bool exhausted = false;
        size_t used = 0, live = 0;  // of the reserve: used bytes, live blocks
        alignas(std::max_align_t) unsigned char reserve[size_t{16} << 10];
    };

private:
    Blocks mBlocks;
    FT_MemoryRec_ mMemory;
    ControlValues mControlValues;
    FT_Library mLibrary = nullptr;
    FT_Face mFace = nullptr;
    FT_F26Dot6 mWidth = -1, mHeight = -1;
    bool mDigitsFree = false;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_FREETYPEFACE_H_
