// SPDX-License-Identifier: Apache-2.0
//
// Compiles one body of kernels for every instruction set. Each build has its own namespace, so one source
// serves all and the linker keeps the builds apart. There is no include guard: a source file includes this
// once for each body, inside its own namespaces.
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
// A body sees ZVEX_TARGET_AVX512 or ZVEX_TARGET_AVX2 as 1 in the builds for these sets, and neither in the
// baseline. All builds must give the same bytes: they use integers, or floats in one stated order
// (contraction is off everywhere). A body must not call inline functions and templates of other headers: the
// linker may keep the copy that was built for a larger set and run it on a machine without that set. A body
// defines what it needs.

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

// Calls a function of the bodies above, in the build for this machine: ZVEX_ON_TARGET(addTaps(a, b)).
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
