// SPDX-License-Identifier: Apache-2.0
#include "raster/CpuTarget.h"

#include <algorithm>
#include <atomic>

namespace Zvex {

namespace {

CpuTarget detect() {
#if defined(__x86_64__)
    __builtin_cpu_init();
    if (!__builtin_cpu_supports("avx2")) return CpuTarget::Baseline;
#if defined(ZVEX_BUILDS_AVX512)
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("avx512vnni"))
        return CpuTarget::Avx512;
#endif
    return CpuTarget::Avx2;
#else
    return CpuTarget::Baseline;
#endif
}

std::atomic<CpuTarget> limit{CpuTarget::Avx512};

}  // namespace

CpuTarget cpuTarget() {
    static const CpuTarget best = detect();
    return std::min(best, limit.load(std::memory_order_relaxed));
}

void limitCpuTarget(CpuTarget newLimit) {
    limit.store(newLimit, std::memory_order_relaxed);
}

}  // namespace Zvex
