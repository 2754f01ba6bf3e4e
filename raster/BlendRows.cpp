// SPDX-License-Identifier: Apache-2.0
#include "raster/BlendRows.h"

#include "raster/CpuTarget.h"
#include "raster/Intrinsics.h"

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the kernels take pixels as little-endian words");

namespace Zvex::BlendRows {

namespace {

#define ZVEX_KERNELS "raster/BlendKernels.inc"
#include "raster/ForEachTarget.h"

}  // namespace

void srcOver8To32(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color) {
    ZVEX_ON_TARGET(srcOver8To32(target, coverage, count, color));
}

void dstOver8To32(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color) {
    ZVEX_ON_TARGET(dstOver8To32(target, coverage, count, color));
}

void dstOver8To32NSA(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color) {
    ZVEX_ON_TARGET(dstOver8To32NSA(target, coverage, count, color));
}

void dstOverSA8To32(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color) {
    ZVEX_ON_TARGET(dstOverSA8To32(target, coverage, count, color));
}

void srcOver32To32(uint8_t* target, const uint32_t* source, size_t count) {
    ZVEX_ON_TARGET(srcOver32To32(target, source, count));
}

void dstOver32To32(uint8_t* target, const uint32_t* source, size_t count) {
    ZVEX_ON_TARGET(dstOver32To32(target, source, count));
}

void dstOverRGBA(uint8_t* target, const uint8_t* source, size_t count) {
    ZVEX_ON_TARGET(dstOverRGBA(target, source, count));
}

void dstOverARGB(uint8_t* target, const uint8_t* source, size_t count) {
    ZVEX_ON_TARGET(dstOverARGB(target, source, count));
}

void fill8To32(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color) {
    ZVEX_ON_TARGET(fill8To32(target, coverage, count, color));
}

void max8To8(uint8_t* target, const uint8_t* coverage, size_t count) {
    ZVEX_ON_TARGET(max8To8(target, coverage, count));
}

void exchangeRedBlue(uint8_t* pixels, size_t count) {
    ZVEX_ON_TARGET(exchangeRedBlue(pixels, count));
}

}  // namespace Zvex::BlendRows
