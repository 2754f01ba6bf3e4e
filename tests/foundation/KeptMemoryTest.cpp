// SPDX-License-Identifier: Apache-2.0
#include "foundation/KeptMemory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "tests/FailingAllocations.h"

namespace Zvex {
namespace {

constexpr size_t kKilobyte = 1024;

TEST(KeptMemory, TakesTheSmallestBlockThatFitsAndNoneThatIsFarTooLarge) {
    KeptMemory memory;
    void* const small = std::malloc(4 * kKilobyte);
    void* const large = std::malloc(20 * kKilobyte);
    ASSERT_TRUE(memory.keep(large));
    ASSERT_TRUE(memory.keep(small));
    EXPECT_EQ(memory.take(3 * kKilobyte), small);
    EXPECT_EQ(memory.take(2 * kKilobyte), nullptr);
    EXPECT_EQ(memory.take(3 * kKilobyte), large);
    EXPECT_EQ(memory.take(3 * kKilobyte), nullptr);
    std::free(small);
    std::free(large);
}

// Otherwise small pictures at first would leave no room for the larger ones that follow.
TEST(KeptMemory, WithinItsBoundLargerBlocksTakeThePlaceOfSmallerOnes) {
    KeptMemory memory(16 * kKilobyte);
    void* const tooLarge = std::malloc(5 * kKilobyte);
    EXPECT_FALSE(memory.keep(tooLarge));
    std::free(tooLarge);
    for (int i = 0; i < 10; ++i) {
        void* const block = std::malloc(2 * kKilobyte);
        if (!memory.keep(block)) std::free(block);
    }
    std::vector<void*> larger;
    for (int i = 0; i < 3; ++i) {
        larger.push_back(std::malloc(3 * kKilobyte));
        EXPECT_TRUE(memory.keep(larger.back()));
    }
    for (int i = 0; i < 3; ++i) std::free(memory.take(3 * kKilobyte));
    EXPECT_EQ(memory.take(3 * kKilobyte), nullptr);
    for (int i = 0; i < 2; ++i) {
        void* const left = memory.take(2 * kKilobyte);
        EXPECT_NE(left, nullptr);
        std::free(left);
    }
}

TEST(KeptMemory, WhatIsGivenIsTakenAgainAndZeroedOnRequest) {
    KeptMemory memory;
    const KeptMemory::Use use(&memory);
    void* const first = takeMemory(8 * kKilobyte);
    std::memset(first, 1, 8 * kKilobyte);
    giveMemory(first);
    auto* const second = static_cast<unsigned char*>(takeZeroedMemory(7 * kKilobyte));
    EXPECT_EQ(second, first);
    for (size_t i = 0; i < 7 * kKilobyte; ++i) ASSERT_EQ(second[i], 0) << i;
    giveMemory(second);

    FailingAllocations counted;  // which keeps nothing
    giveMemory(takeMemory(8 * kKilobyte));
    EXPECT_EQ(counted.made(), 1);
    EXPECT_EQ(counted.outstanding(), 0);
}

}  // namespace
}  // namespace Zvex
