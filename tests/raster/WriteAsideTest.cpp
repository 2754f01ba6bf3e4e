// SPDX-License-Identifier: Apache-2.0
#include "raster/WriteAside.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace {

TEST(WriteAside, ClearsOrCopiesTheseBytesAndNoOthers) {
    constexpr size_t kRoom = 512;
    constexpr uint8_t kBefore = 0xA5;
    std::vector<uint8_t> source(kRoom);
    std::iota(source.begin(), source.end(), uint8_t{1});
    for (size_t begin = 0; begin < 70; ++begin) {
        for (const size_t count : {0, 1, 15, 63, 64, 65, 127, 128, 191, 300}) {
            std::vector<uint8_t> cleared(kRoom, kBefore), copied(kRoom, kBefore);
            Zvex::clearAside(cleared.data() + begin, count);
            Zvex::copyAside(copied.data() + begin, source.data() + 3, count);
            for (size_t i = 0; i < kRoom; ++i) {
                const bool within = i >= begin && i < begin + count;
                ASSERT_EQ(cleared[i], within ? 0 : kBefore) << begin << ", " << count;
                ASSERT_EQ(copied[i], within ? source[3 + i - begin] : kBefore) << begin << ", " << count;
            }
        }
    }
}

}  // namespace
