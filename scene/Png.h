// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_PNG_H_
#define ZVEX_SCENE_PNG_H_

#include <cstdint>
#include <string>

#include "scene/Picture.h"

namespace Zvex::scene {

// The largest picture that is read. Checked in the file's header, before pixels are allocated.
constexpr int kMaxPngSide = 16384;
constexpr int64_t kMaxPngPixels = 64'000'000;

// Reads a PNG of any colour type and depth, interlaced or not. Grey becomes red, green and blue; 16 bits
// become the nearest 8; a transparent colour or palette entry becomes alpha. Gamma and colour profiles are
// not applied. Throws Failure with one line that starts with `name` if the bytes are no PNG, are damaged or
// cut short, or if the picture is too large.
Picture decodePng(const std::string& name, const std::string& bytes);

// At this resolution a pixel is a typographic point.
constexpr double kPointsPerInch = 72;

// The picture as the content of an 8-bit RGBA PNG file with a resolution of `dpi` pixels an inch (1 to
// 10000). Takes, beyond the picture, 4 bytes a pixel and twice the file's size; with Compression::Small three
// times. Throws std::bad_alloc, and UsageError as checkComplete does.
std::string encodePng(const Picture& picture, double dpi = kPointsPerInch,
                      Compression compression = Compression::Default);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_PNG_H_
