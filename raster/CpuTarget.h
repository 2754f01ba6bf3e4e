// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_CPUTARGET_H_
#define ZVEX_RASTER_CPUTARGET_H_

// Whether kernels are built for AVX-512: clang supports VNNI from version 7 on.
#if defined(__x86_64__) && (!defined(__clang__) || __clang_major__ >= 7)
#define ZVEX_BUILDS_AVX512 1
#endif

namespace Zvex {

// The instruction sets that the pixel kernels are compiled for; each includes the one before it. Machines
// other than x86-64 have one build of every kernel, the baseline. On arm64 it includes vector instructions.
enum class CpuTarget : int {
    Baseline = 0,
    Avx2 = 1,
    Avx512 = 2,  // F, BW, DQ, VL and VNNI
};

// The set that the kernels use: the machine's best, or the limit if that is lower. Any thread.
CpuTarget cpuTarget();

// Limits the kernels of the whole process to this set; a set that the machine lacks is never used. For tests
// and benchmarks, which run every path a machine has.
void limitCpuTarget(CpuTarget limit);

}  // namespace Zvex

#endif  // ZVEX_RASTER_CPUTARGET_H_
