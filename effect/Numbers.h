// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_NUMBERS_H_
#define ZVEX_EFFECT_NUMBERS_H_

#include <cstdint>

#include "foundation/SafeConvert.h"

namespace Zvex {

// How the effect arguments, records and keys are rounded and limited. Every float is safe to pass: where the
// language leaves a result undefined (NaN, values beyond the ints), these functions define it, the same on
// every machine.

// Adds 0.5 and drops the fraction. So it rounds half up if the value is not negative; -0.6 becomes 0. The sum
// is rounded to single precision before the fraction is dropped.
inline int roundSize(float value) {
    return truncateToInt(value + 0.5f);
}

inline int clampInt(int value, int low, int high) {
    return value < low ? low : value > high ? high : value;
}

// NaN becomes low.
inline float clampFloat(float value, float low, float high) {
    if (!(value >= low)) return low;
    return value > high ? high : value;
}

// The whole part modulo `modulus`, with the sign of the value: 405.7 becomes 45 of 360, -30.2 becomes -30.
inline int signedRemainder(float value, int modulus) {
    return truncateToInt(value) % modulus;
}

// The same, moved into 0..modulus - 1: -30.2 becomes 330 of 360.
inline int positiveRemainder(float value, int modulus) {
    const int remainder = signedRemainder(value, modulus);
    return remainder < 0 ? remainder + modulus : remainder;
}

// 0 to 1 as a byte, half up, in single precision.
inline uint8_t byteOfUnit(float value) {
    return static_cast<uint8_t>(clampInt(truncateToInt(value * 255.0f + 0.5f), 0, 255));
}

}  // namespace Zvex

#endif  // ZVEX_EFFECT_NUMBERS_H_
