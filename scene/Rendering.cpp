// SPDX-License-Identifier: Apache-2.0
#include "scene/Rendering.h"

#include <algorithm>

namespace Zvex::scene {

void trimRendering(Rendering& rendering) {
    Picture& picture = rendering.picture;
    int left = picture.width, top = picture.height, right = 0, bottom = 0;
    const auto rowOf = [&](int y) {
        return picture.pixels.begin() + static_cast<ptrdiff_t>(y) * picture.width;
    };
    for (int y = 0; y < picture.height; ++y) {
        const auto row = rowOf(y);
        int x = 0;
        while (x < picture.width && row[x] >> 24 == 0) ++x;
        if (x == picture.width) continue;
        left = std::min(left, x);
        x = picture.width;
        while (row[x - 1] >> 24 == 0) --x;
        right = std::max(right, x);
        top = std::min(top, y);
        bottom = y + 1;
    }
    if (bottom == 0) {
        left = top = 0;
        right = bottom = 1;
    }
    const int width = right - left, height = bottom - top;
    auto target = picture.pixels.begin();
    for (int y = top; y < bottom; ++y) target = std::copy(rowOf(y) + left, rowOf(y) + right, target);
    picture.pixels.erase(target, picture.pixels.end());
    picture.width = width;
    picture.height = height;
    cropMetrics(rendering.metrics, left, top, width, height);
}

}  // namespace Zvex::scene
