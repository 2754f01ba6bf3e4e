// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_REFERENCE_COMPOSITEREFERENCE_H_
#define ZVEX_TESTS_REFERENCE_COMPOSITEREFERENCE_H_

#include <algorithm>

// The two steps of the final composite for one byte or pixel, as defined.
namespace reference {

// A byte of the picture, cross-faded with the same byte of the back layer by the coverage.
inline int mergeByte(int front, int back, int coverage) {
    return std::min(255, ((back + 1) * (255 - coverage) >> 8) + ((front + 1) * coverage >> 8));
}

inline int finishedAlpha(int alpha, int textAlpha) {
    return std::min(255, (alpha + 1) * textAlpha >> 8);
}

// A colour byte of a premultiplied pixel with that alpha, straight.
inline int finishedColor(int color, int alpha, int textAlpha) {
    const int divisor = finishedAlpha(alpha, textAlpha);
    return divisor == 0 ? 0 : std::min(255, (((color + 1) * textAlpha) & 0x1FF00) / divisor);
}

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_COMPOSITEREFERENCE_H_
