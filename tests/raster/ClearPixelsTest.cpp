// SPDX-License-Identifier: Apache-2.0
#include "raster/ClearPixels.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(ClearPixels, ZeroesTheseBytesAndNoOthers) {
    constexpr size_t kRoom = 512;
    for (size_t begin = 0; begin < 70; ++begin) {
        for (const size_t count : {0, 1, 15, 63, 64, 65, 127, 128, 191, 300}) {
            std::vector<uint8_t> bytes(kRoom, 0xA5);
            Zvex::clearAside(bytes.data() + begin, count);
            for (size_t i = 0; i < kRoom; ++i) {
                ASSERT_EQ(bytes[i], i >= begin && i < begin + count ? 0 : 0xA5) << begin << ", " << count;
            }
        }
    }
}

}  // namespace
