// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_WEBPWRITER_H_
#define ZVEX_TOOLS_ZVTEXT_WEBPWRITER_H_

#include <string>

#include "tools/zvtext/Picture.h"

namespace zvtext {

constexpr int kMaxWebpSide = 16383;  // of the format

// The picture as a lossless WebP file's content: every pixel comes back as it is, the colours of transparent
// ones too. Sides are at most kMaxWebpSide. Throws std::bad_alloc.
std::string encodeWebp(const Picture& picture);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_WEBPWRITER_H_
