// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_INTRINSICS_H_
#define ZVEX_RASTER_INTRINSICS_H_

// What raster/Lanes.inc is made of; a source file whose kernels include that one includes this. The
// intrinsics are always inlined, so that no copy of them can stray from one build of a kernel into another.

#if defined(__SSE2__)
#if defined(__GNUC__) && !defined(__clang__)
// g++ 12 reports the vectors that its own header leaves undefined on purpose.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif
#include <immintrin.h>
#endif

// Before a loop: the compiler is to unroll it by n. clang reads g++'s spelling only in newer versions.
#define ZVEX_PRAGMA(text) _Pragma(#text)
#if defined(__clang__)
#define ZVEX_UNROLL(n) ZVEX_PRAGMA(unroll n)
#else
#define ZVEX_UNROLL(n) ZVEX_PRAGMA(GCC unroll n)
#endif

#endif  // ZVEX_RASTER_INTRINSICS_H_
