// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_PNG_H_
#define ZVEX_SCENE_PNG_H_

#include <cstdint>
#include <string>

#include "scene/Picture.h"

namespace Zvex::scene {

// The largest picture read: checked against the file's header, before memory is taken for the pixels.
constexpr int kMaxPngSide = 16384;
constexpr int64_t kMaxPngPixels = 64'000'000;

// Reads a PNG of any colour type and depth, interlaced or not: grey becomes red, green and blue, 16 bits
// become the nearest 8, a transparent colour or palette entry becomes alpha. Gamma and colour profiles are
// not applied. Throws Failure with one line that starts with `name` where the bytes are no PNG, damaged, cut
// short, or too large a picture.
Picture decodePng(const std::string& name, const std::string& bytes);

// At which a pixel is a point of print.
constexpr double kPointsPerInch = 72;

// The picture as an 8-bit RGBA PNG file's content, to be shown at `dpi` pixels an inch (1 to 10000). Throws
// std::bad_alloc.
std::string encodePng(const Picture& picture, double dpi = kPointsPerInch);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_PNG_H_
