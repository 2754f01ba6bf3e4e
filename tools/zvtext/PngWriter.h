// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_PNGWRITER_H_
#define ZVEX_TOOLS_ZVTEXT_PNGWRITER_H_

#include <string>

#include "tools/zvtext/Picture.h"

namespace zvtext {

// Writes the picture as an 8-bit RGBA PNG. The file appears under `path` only when it is whole: it is written
// to a temporary name in the same folder, synced, and renamed over whatever stood there. "-" writes to
// standard output. On failure nothing is left or replaced; throws Failure with a message that starts with
// `option`.
void writePng(const Picture& picture, const std::string& path, const std::string& option);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_PNGWRITER_H_
