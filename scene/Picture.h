// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_PICTURE_H_
#define ZVEX_SCENE_PICTURE_H_

#include <cstdint>
#include <vector>

namespace Zvex::scene {

// A picture of straight (not premultiplied) colours, one 0xAARRGGBB word a pixel, rows without padding.
struct Picture {
    int width = 0, height = 0;  // pixels, at least 1
    std::vector<uint32_t> pixels;
};

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_PICTURE_H_
