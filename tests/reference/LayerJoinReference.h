// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_REFERENCE_LAYERJOINREFERENCE_H_
#define ZVEX_TESTS_REFERENCE_LAYERJOINREFERENCE_H_

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "raster/LayerBlend.h"

// Layers joined pixel by pixel. In float, with the operations in this order, it equals the library byte for
// byte; in double it is the exact result.
namespace reference {

using Mode = Zvex::LayerBlend;
struct PlainLayer {
    std::vector<uint32_t> words;    // of the picture, straight
    std::vector<uint8_t> coverage;  // that is knocked out; as many
    Mode mode;
    float opacity;
    bool clipped;
};

using Real = float;
#include "tests/reference/LayerJoinReference.inc"

namespace exact {
using Real = double;
#include "tests/reference/LayerJoinReference.inc"
}  // namespace exact

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_LAYERJOINREFERENCE_H_
