// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdint>

#include "raster/Intrinsics.h"
#include "tests/CpuTargets.h"

namespace Zvex {
namespace {

#define ZVEX_KERNELS "tests/raster/LanesChecks.inc"
#include "raster/ForEachTarget.h"

TEST(Lanes, GiveWhatEachLaneAloneGives) {
    forEachCpuTarget([] {
        for (uint32_t seed = 0; seed < 2000; ++seed) {
            const char* wrong = ZVEX_ON_TARGET(wrongLanes(seed));
            ASSERT_EQ(wrong, nullptr) << wrong << ", seed " << seed;
        }
    });
}

}  // namespace
}  // namespace Zvex
