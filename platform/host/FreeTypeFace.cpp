// SPDX-License-Identifier: Apache-2.0
#include "platform/host/FreeTypeFace.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <utility>
#include <vector>
#include FT_DRIVER_H
#include FT_MODULE_H
#include FT_MULTIPLE_MASTERS_H
#include FT_SYSTEM_H

namespace host {

namespace {

// Sizes in a font (tables, strike bitmaps) may be absurd, so no single block for FreeType is larger than
// this.
constexpr size_t kMaxFreeTypeBlock = size_t{64} << 20;

using Blocks = FreeTypeFace::Blocks;

bool isReserve(const Blocks& blocks, const void* block) {
    const auto* at = static_cast<const unsigned char*>(block);
    return std::less_equal<>()(blocks.reserve, at) &&
           std::less<>()(at, blocks.reserve + sizeof blocks.reserve);
}

void* allocateBlock(FT_Memory memory, long size) {
    if (size <= 0 || static_cast<unsigned long>(size) > kMaxFreeTypeBlock) return nullptr;
    if (void* block = std::malloc(static_cast<size_t>(size))) return block;
    Blocks& blocks = *static_cast<Blocks*>(memory->user);
    blocks.exhausted = true;
    constexpr size_t kAlign = alignof(std::max_align_t);
    const size_t bytes = (static_cast<size_t>(size) + kAlign - 1) / kAlign * kAlign;
    if (bytes > sizeof blocks.reserve - blocks.used) return nullptr;
    void* block = blocks.reserve + blocks.used;
    blocks.used += bytes;
    ++blocks.live;
    return block;
}

void freeBlock(FT_Memory memory, void* block) {
    Blocks& blocks = *static_cast<Blocks*>(memory->user);
    if (!isReserve(blocks, block)) {
        std::free(block);
    } else if (--blocks.live == 0) {
        blocks.used = 0;
    }
}

void* resizeBlock(FT_Memory memory, long oldSize, long size, void* block) {
    if (size <= 0 || static_cast<unsigned long>(size) > kMaxFreeTypeBlock) return nullptr;
    Blocks& blocks = *static_cast<Blocks*>(memory->user);
    if (!isReserve(blocks, block)) {
        void* resized = std::realloc(block, static_cast<size_t>(size));
        if (resized == nullptr) blocks.exhausted = true;
        return resized;
    }
    void* resized = allocateBlock(memory, size);
    if (resized == nullptr) return nullptr;
    std::memcpy(resized, block, static_cast<size_t>(std::min(oldSize, size)));
    freeBlock(memory, block);
    return resized;
}

}  // namespace

FreeTypeFace::FreeTypeFace() : mMemory{&mBlocks, allocateBlock, freeBlock, resizeBlock} {}

FreeTypeFace::~FreeTypeFace() {
    if (mFace != nullptr) FT_Done_Face(mFace);
    if (mLibrary != nullptr) FT_Done_Library(mLibrary);
}

bool FreeTypeFace::open(const void* data, size_t size, int index) {
    if (FT_New_Library(&mMemory, &mLibrary) != 0) return false;
    FT_Add_Default_Modules(mLibrary);
    // The interpreter that moves points in both directions, as on the platform.
    FT_UInt version = 35;
    FT_Property_Set(mLibrary, "truetype", "interpreter-version", &version);
    FT_Open_Args args;
    std::memset(&args, 0, sizeof args);
    if (mControlValues.open(data, size, index)) {
        args.flags = FT_OPEN_STREAM;
        args.stream = mControlValues.stream();
    } else {
        args.flags = FT_OPEN_MEMORY;
        args.memory_base = static_cast<const FT_Byte*>(data);
        args.memory_size = static_cast<FT_Long>(size);
    }
    return FT_Open_Face(mLibrary, &args, index, &mFace) == 0 && FT_IS_SFNT(mFace);
}

bool FreeTypeFace::setAxes(hb_font_t* font) {
    unsigned count = 0;
    const float* values = hb_font_get_var_coords_design(font, &count);
    std::vector<FT_Fixed> coordinates;
    for (unsigned i = 0; i < count; ++i) coordinates.push_back(std::lround(values[i] * 65536));
    return FT_Set_Var_Design_Coordinates(mFace, static_cast<FT_UInt>(count), coordinates.data()) == 0;
}

bool FreeTypeFace::setSize(FT_F26Dot6 width, FT_F26Dot6 height) {
    if (width == mWidth && height == mHeight) return true;
    mWidth = mHeight = -1;
    FT_Size_RequestRec request;
    std::memset(&request, 0, sizeof request);  // resolution 0: width and height are 26.6 pixels
    request.type = FT_SIZE_REQUEST_TYPE_NOMINAL;
    request.width = width;
    request.height = height;
    if (FT_Request_Size(mFace, &request) != 0) return false;
    mWidth = width;
    mHeight = height;
    return true;
}

bool FreeTypeFace::setStrike(int index) {
    mWidth = mHeight = -1;
    return FT_Select_Size(mFace, index) == 0;
}

void FreeTypeFace::freeDigits() {
    if (mDigitsFree) return;
    constexpr FT_UShort kDigit = 0x8000;
    FT_Prop_GlyphToScriptMap scripts = {mFace, nullptr};
    if (FT_Property_Get(mLibrary, "autofitter", "glyph-to-script-map", &scripts) != 0) return;
    for (FT_Long glyph = 0; glyph < mFace->num_glyphs; ++glyph) {
        scripts.map[glyph] = static_cast<FT_UShort>(scripts.map[glyph] & ~kDigit);
    }
    mDigitsFree = true;
}

void FreeTypeFace::throwIfExhausted() {
    if (!std::exchange(mBlocks.exhausted, false)) return;
    mWidth = mHeight = -1;  // the size may be half set
    throw std::bad_alloc();
}

}  // namespace host
