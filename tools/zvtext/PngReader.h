// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_PNGREADER_H_
#define ZVEX_TOOLS_ZVTEXT_PNGREADER_H_

#include <string>

#include "raster/ZvBitmap.h"
#include "tools/zvtext/FolderScope.h"
#include "tools/zvtext/Picture.h"

namespace zvtext {

// The largest picture read: checked against the file's header, before memory is taken for the pixels.
constexpr int kMaxPngSide = 16384;
constexpr int64_t kMaxPngPixels = 64'000'000;

// Reads a PNG of any colour type and depth, interlaced or not: grey becomes red, green and blue, 16 bits
// become the nearest 8, a transparent colour or palette entry becomes alpha. Gamma and colour profiles are
// not applied. Throws Failure with one line that starts with `option` where the file cannot be read, is no
// PNG, is damaged or cut short, is too large, or lies outside `scope`.
Picture readPng(const std::string& option, const std::string& path, const FolderScope& scope = {});

// The picture in the layout that the pattern effect reads: 4 bytes a pixel, alpha, red, green, blue,
// straight. Throws std::bad_alloc.
Zvex::ZvBitmap patternBitmap(const Picture& picture);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_PNGREADER_H_
