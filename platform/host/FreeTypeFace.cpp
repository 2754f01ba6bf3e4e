// SPDX-License-Identifier: Apache-2.0
#include "platform/host/FreeTypeFace.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>
#include <vector>
#include FT_MODULE_H
#include FT_MULTIPLE_MASTERS_H
#include FT_SYSTEM_H

namespace host {

namespace {

// A font states sizes of its own (tables, strike bitmaps): FreeType gets no single block larger than this for
// them.
constexpr size_t kMaxFreeTypeBlock = size_t{64} << 20;

// `memory->user` is a bool: whether the machine had no block to give.
void* noteExhaustion(FT_Memory memory, void* block) {
    if (block == nullptr) *static_cast<bool*>(memory->user) = true;
    return block;
}
void* allocateBlock(FT_Memory memory, long size) {
    if (size <= 0 || static_cast<unsigned long>(size) > kMaxFreeTypeBlock) return nullptr;
    return noteExhaustion(memory, std::malloc(static_cast<size_t>(size)));
}
void freeBlock(FT_Memory, void* block) {
    std::free(block);
}
void* resizeBlock(FT_Memory memory, long /*oldSize*/, long size, void* block) {
    if (size <= 0 || static_cast<unsigned long>(size) > kMaxFreeTypeBlock) return nullptr;
    return noteExhaustion(memory, std::realloc(block, static_cast<size_t>(size)));
}

}  // namespace

FreeTypeFace::FreeTypeFace() : mMemory{&mExhausted, allocateBlock, freeBlock, resizeBlock} {}

FreeTypeFace::~FreeTypeFace() {
    if (mFace != nullptr) FT_Done_Face(mFace);
    if (mLibrary != nullptr) FT_Done_Library(mLibrary);
}

bool FreeTypeFace::open(const void* data, size_t size, int index) {
    if (FT_New_Library(&mMemory, &mLibrary) != 0) return false;
    FT_Add_Default_Modules(mLibrary);
    // The interpreter that moves points in both directions, as the platform's does.
    FT_UInt version = 35;
    FT_Property_Set(mLibrary, "truetype", "interpreter-version", &version);
    const auto* bytes = static_cast<const FT_Byte*>(data);
    return FT_New_Memory_Face(mLibrary, bytes, static_cast<FT_Long>(size), index, &mFace) == 0 &&
           FT_IS_SFNT(mFace);
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

void FreeTypeFace::throwIfExhausted() {
    if (std::exchange(mExhausted, false)) throw std::bad_alloc();
}

}  // namespace host
