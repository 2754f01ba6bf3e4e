// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_TRIGONOMETRY_H_
#define ZVEX_FOUNDATION_TRIGONOMETRY_H_

namespace Zvex {

// Sine, cosine and tangent of an angle in radians, the same bits on every machine; C libraries differ in the
// last one. They are the values of glibc 2.36 at every whole degree of two turns, sine and cosine between
// them, too; at most one unit in the last place off. Angles from 120 on (tangent: 200) are reduced by whole
// turns first, with an error of 1e-16 of the angle. Infinities and not-a-number give not-a-number.
float sine(float radians);
float cosine(float radians);
float tangent(float radians);

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_TRIGONOMETRY_H_
