// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_INTRINSICS_H_
#define ZVEX_RASTER_INTRINSICS_H_

// What raster/Lanes.inc needs; a source file whose kernels include that file includes this one. The
// intrinsics are always inlined, so no copy of them can move from one build of a kernel to another.

#if defined(__wasm_simd128__)
#include <wasm_simd128.h>
#elif defined(__SSE2__)
#if defined(__GNUC__) && !defined(__clang__)
// g++ 12 warns about vectors that its own header leaves undefined on purpose.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif
#include <immintrin.h>
#endif

// Placed before a loop, asks the compiler to unroll it n times. Only newer versions of clang read g++'s
// spelling.
#define ZVEX_PRAGMA(text) _Pragma(#text)
#if defined(__clang__)
#define ZVEX_UNROLL(n) ZVEX_PRAGMA(unroll n)
#else
#define ZVEX_UNROLL(n) ZVEX_PRAGMA(GCC unroll n)
#endif

#endif  // ZVEX_RASTER_INTRINSICS_H_
