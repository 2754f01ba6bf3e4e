// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_FONTPATH_H_
#define ZVEX_TEXT_FONTPATH_H_

#include <string>

namespace Zvex {

class ZvString;

// The path in UTF-8; false for null and for a string that could not be converted.
bool toUtf8(const ZvString* path, std::string& out);

// The style that a font's file name indicates; `weight` keeps its value if the name has none. The whole path
// is searched, so a folder called "Light" makes every font in it light.
void styleFromPath(const std::string& path, int& weight, bool& italic);

}  // namespace Zvex

#endif  // ZVEX_TEXT_FONTPATH_H_
