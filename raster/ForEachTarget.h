// SPDX-License-Identifier: Apache-2.0
//
// Compiles one body of kernels for every instruction set, each into a namespace of its own, so that one
// source serves all and the linker keeps the builds apart. No include guard: included once for each body,
// inside the source file's own namespaces.
//
//     // GaussianKernels.inc: plain functions over plain data; includes nothing
//     void addTaps(...) { ... }
//
//     // Gaussian.cpp, with raster/CpuTarget.h among its includes and within its unnamed namespace
//     #define ZVEX_KERNELS "effect/kernels/GaussianKernels.inc"
//     #include "raster/ForEachTarget.h"
//
//     void blur(...) { ZVEX_ON_TARGET(addTaps(a, b)); }
//
// A body sees ZVEX_TARGET_AVX512 or ZVEX_TARGET_AVX2 as 1 in the builds for these, neither in the baseline.
// All builds must give the same bytes: integers, or floats in one stated order (contraction is off
// everywhere). Inline functions and templates of other headers must not be called: the linker may keep the
// copy that was built for the larger set and hand it to a machine without it. What a body needs, it defines.

namespace TargetBaseline {
#include ZVEX_KERNELS
}

#if defined(__x86_64__)

#define ZVEX_TARGET_AVX2 1
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif
namespace TargetAvx2 {
#include ZVEX_KERNELS
}
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
#undef ZVEX_TARGET_AVX2
#endif

#if defined(ZVEX_BUILDS_AVX512)
#define ZVEX_TARGET_AVX512 1
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx512f,avx512bw,avx512dq,avx512vl,avx512vnni"))), \
                             apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx512f,avx512bw,avx512dq,avx512vl,avx512vnni,prefer-vector-width=512")
#endif
namespace TargetAvx512 {
#include ZVEX_KERNELS
}
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
#undef ZVEX_TARGET_AVX512
#endif

#undef ZVEX_KERNELS

// Calls a function of the bodies above in the build for this machine: ZVEX_ON_TARGET(addTaps(a, b)).
#ifndef ZVEX_ON_TARGET
#if defined(ZVEX_BUILDS_AVX512)
#define ZVEX_ON_TARGET(call)                                               \
    (::Zvex::cpuTarget() == ::Zvex::CpuTarget::Avx512 ? TargetAvx512::call \
     : ::Zvex::cpuTarget() == ::Zvex::CpuTarget::Avx2 ? TargetAvx2::call   \
                                                      : TargetBaseline::call)
#elif defined(__x86_64__)
#define ZVEX_ON_TARGET(call) \
    (::Zvex::cpuTarget() == ::Zvex::CpuTarget::Avx2 ? TargetAvx2::call : TargetBaseline::call)
#else
#define ZVEX_ON_TARGET(call) (TargetBaseline::call)
#endif
#endif
