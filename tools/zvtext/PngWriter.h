// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_PNGWRITER_H_
#define ZVEX_TOOLS_ZVTEXT_PNGWRITER_H_

#include <string>

#include "tools/zvtext/Picture.h"

namespace zvtext {

// The picture as an 8-bit RGBA PNG file's content. Throws std::bad_alloc.
std::string encodePng(const Picture& picture);

// Writes it to a file, or to standard output for "-", as writeFile of OutputFile.h does.
void writePng(const Picture& picture, const std::string& path, const std::string& option);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_PNGWRITER_H_
