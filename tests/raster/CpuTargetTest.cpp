// SPDX-License-Identifier: Apache-2.0
#include "raster/CpuTarget.h"

#include <gtest/gtest.h>

namespace Zvex {
namespace {

TEST(CpuTarget, ALimitLowersAndNeverRaises) {
    const CpuTarget best = cpuTarget();
    for (CpuTarget limit : {CpuTarget::Avx512, CpuTarget::Avx2, CpuTarget::Baseline}) {
        limitCpuTarget(limit);
        EXPECT_EQ(cpuTarget(), limit < best ? limit : best);
    }
    limitCpuTarget(CpuTarget::Avx512);
    EXPECT_EQ(cpuTarget(), best);
}

}  // namespace
}  // namespace Zvex
