// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_EFFECT_TESTVALUES_H_
#define ZVEX_TESTS_EFFECT_TESTVALUES_H_

#include <cstdint>
#include <limits>

namespace Zvex {

inline constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();
inline constexpr float kEndless = std::numeric_limits<float>::infinity();
inline constexpr uint32_t kColor = 0xC0604020;  // premultiplied

}  // namespace Zvex

#endif  // ZVEX_TESTS_EFFECT_TESTVALUES_H_
