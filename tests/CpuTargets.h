// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_CPUTARGETS_H_
#define ZVEX_TESTS_CPUTARGETS_H_

#include <gtest/gtest.h>

#include <string>

#include "raster/CpuTarget.h"

// Runs `work` once with the kernels of each instruction set that this machine has, the best one last.
template <typename Work>
void forEachCpuTarget(Work work) {
    using Zvex::CpuTarget;
    const CpuTarget best = Zvex::cpuTarget();
    for (CpuTarget target : {CpuTarget::Baseline, CpuTarget::Avx2, CpuTarget::Avx512}) {
        if (target > best) break;
        SCOPED_TRACE("instruction set " + std::to_string(static_cast<int>(target)));
        Zvex::limitCpuTarget(target);
        work();
        if (testing::Test::HasFatalFailure()) break;
    }
    Zvex::limitCpuTarget(best);
}

#endif  // ZVEX_TESTS_CPUTARGETS_H_
