// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_TEXTINPUT_H_
#define ZVEX_SCENE_TEXTINPUT_H_

#include <cstddef>
#include <string>

#include "scene/Source.h"

namespace Zvex::scene {

constexpr size_t kMaxTextBytes = size_t{4} << 20;

// The text. Throws UsageError where it is empty, not UTF-8, holds a NUL or
// is larger than kMaxTextBytes.
std::string checkedText(const std::string& text);

// The same from a file of the source, or from standard input for "-": one line ending at the very end is
// dropped, and CR LF becomes LF. Throws Failure.
std::string readText(const std::string& file, const std::shared_ptr<const Source>& source = nullptr);

// The reason why the text cannot be drawn, or empty.
std::string faultOf(const std::string& text);

// The text in a form safe for a terminal: '?' replaces control characters except line ends, also U+0080 to
// U+009F, and invalid UTF-8.
std::string printable(const std::string& text);

// Offset of the first byte that is not part of well-formed UTF-8 (Unicode 15, table 3-7); npos if all of it
// is.
size_t findInvalidUtf8(const std::string& text);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_TEXTINPUT_H_
