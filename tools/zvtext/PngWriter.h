// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_PNGWRITER_H_
#define ZVEX_TOOLS_ZVTEXT_PNGWRITER_H_

#include <string>

#include "tools/zvtext/Picture.h"

namespace zvtext {

// At which a pixel is a point of print.
constexpr double kPointsPerInch = 72;

// The picture as an 8-bit RGBA PNG file's content, to be shown at `dpi` pixels an inch (1 to 10000). Throws
// std::bad_alloc.
std::string encodePng(const Picture& picture, double dpi = kPointsPerInch);

// Writes it to a file, or to standard output for "-", as writeFile of OutputFile.h does.
void writePng(const Picture& picture, const std::string& path, const std::string& option);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_PNGWRITER_H_
