// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_SAFECONVERT_H_
#define ZVEX_FOUNDATION_SAFECONVERT_H_

#include <cstdint>
#include <limits>

// Conversions that C++ leaves undefined outside the target's range, with the result of the ARM instruction:
// the fraction is cut off, values out of range are clamped, not-a-number becomes 0.

namespace Zvex {

inline int32_t clampToInt(int64_t value) {
    if (value < std::numeric_limits<int32_t>::min()) return std::numeric_limits<int32_t>::min();
    if (value > std::numeric_limits<int32_t>::max()) return std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(value);
}

// Also for floats, which convert exactly.
inline int32_t truncateToInt(double value) {
    if (value != value) return 0;
    if (value >= std::numeric_limits<int32_t>::max()) return std::numeric_limits<int32_t>::max();
    if (value <= std::numeric_limits<int32_t>::min()) return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(value);
}

inline uint32_t truncateToUnsigned(float value) {
    if (!(value > 0.0f)) return 0;
    if (value >= 4294967296.0f) return std::numeric_limits<uint32_t>::max();
    return static_cast<uint32_t>(value);
}

// Sum modulo 2^32, as the hardware adds.
inline int32_t wrapAdd(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

inline int32_t wrapSubtract(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_SAFECONVERT_H_
