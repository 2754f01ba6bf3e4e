// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_DECIMAL_H_
#define ZVEX_SCENE_DECIMAL_H_

#include <string>

namespace Zvex::scene {

// Reads the number that begins at `from`, as std::from_chars does, whatever the locale. Returns its end, or
// null where there is no number or none that fits.
const char* readDecimal(const char* from, const char* end, double* value);

// The shortest text that reads as this number, as std::to_chars has it.
std::string writeDecimal(double value);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_DECIMAL_H_
