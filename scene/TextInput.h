// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_TEXTINPUT_H_
#define ZVEX_SCENE_TEXTINPUT_H_

#include <cstddef>
#include <string>

#include "scene/Source.h"

namespace Zvex::scene {

constexpr size_t kMaxTextBytes = size_t{4} << 20;

// The text as it is drawn: tabs become spaces. Throws UsageError where it is empty, not UTF-8, holds a NUL or
// is larger than kMaxTextBytes.
std::string checkedText(const std::string& text);

// The same from a file of the source, or from standard input for "-": one line ending at the very end is
// dropped, and CR LF becomes LF. Throws Failure.
std::string readText(const std::string& file, const std::shared_ptr<const Source>& source = nullptr);

// Why the text cannot be drawn, or empty.
std::string faultOf(const std::string& text);

// The text as a terminal may have it: '?' for control characters (but line ends), U+0080 to U+009F among
// them, and for what is no UTF-8.
std::string printable(const std::string& text);

// Offset of the first byte that is no part of well-formed UTF-8 (Unicode 15, table 3-7); npos when all of it
// is.
size_t findInvalidUtf8(const std::string& text);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_TEXTINPUT_H_
