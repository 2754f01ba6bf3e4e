// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_WEBPWRITER_H_
#define ZVEX_SCENE_WEBPWRITER_H_

#include <string>

#include "scene/Picture.h"

namespace Zvex::scene {

constexpr int kMaxWebpSide = 16383;  // limit of the format

// The picture as the content of a lossless WebP file. Every pixel is kept exactly, the colours of transparent
// ones too. Sides are at most kMaxWebpSide. Throws std::bad_alloc, and UsageError as checkComplete does.
std::string encodeWebp(const Picture& picture, Compression compression = Compression::Default);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_WEBPWRITER_H_
