// SPDX-License-Identifier: Apache-2.0
// A picture drawn a few rows at a time, over memory with any content, equals the same layers drawn one after
// the other.
#include <gtest/gtest.h>
#include <malloc.h>

#include <cstring>
#include <string>
#include <vector>

#include "effect/ZvEffect.h"
#include "raster/ZvBlender.h"
#include "tests/CpuTargets.h"
#include "tests/FailingAllocations.h"
#include "tests/effect/RandomLayer.h"
#include "tests/effect/StackPictures.h"
#include "tests/effect/TestPictures.h"

namespace Zvex {
namespace {

// Fresh memory holds something, never the same twice, where the C library can do that.
class DirtyMemory {
public:
    explicit DirtyMemory(int pattern) { fillWith(pattern); }
    ~DirtyMemory() { fillWith(0); }

private:
    static void fillWith([[maybe_unused]] int pattern) {
#ifdef M_PERTURB
        mallopt(M_PERTURB, pattern);
#endif
    }
};

// Lines of glyphs anywhere on and beside the picture, and a random choice of layers.
struct Rendering {
    int width, height;
    ZvEffect stack;
    std::vector<Line> lines;

    explicit Rendering(unsigned seed) {
        Random random(seed);
        width = random.between(1, 70);
        height = random.between(1, 170);
        for (int count = seed % 17 == 0 ? 0 : random.between(1, 3); count > 0; --count) {
            const MaskKind kind = kAllMasks[static_cast<size_t>(random.below(6))];
            const int lineWidth = random.between(1, 50), lineHeight = random.between(1, 40);
            lines.push_back({random.between(-20, width), random.between(-20, height), ZvBitmap()});
            lines.back().coverage = makeMask(kind, lineWidth, lineHeight, random);
        }
        for (int layers = random.below(5); layers > 0; --layers)
            addLayer(stack, random.below(kLayerKinds - 1), random);
        if (random.below(4) == 0) stack.setTextOpacity(0.4f);
        stack.addText(random.color() | (random.below(2) != 0 ? 0xFF000000u : 0));
    }
};

void expectNothingOutside(const ZvBitmap& picture, const ZvRect& box) {
    for (int y = 0; y < static_cast<int>(picture.height); ++y) {
        for (int x = 0; x < static_cast<int>(picture.width); ++x) {
            if (x >= box.left && x < box.right && y >= box.top && y < box.bottom) continue;
            uint32_t pixel;
            std::memcpy(&pixel, picture.pixels + 4 * (static_cast<size_t>(y) * picture.width + x), 4);
            ASSERT_EQ(pixel, 0u) << "x " << x << ", y " << y;
        }
    }
}

TEST(Picture, IsWhatTheLayersMakeOneAfterTheOther) {
    for (unsigned seed = 0; seed < 400; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Rendering rendering(seed);
        auto& [width, height, stack, lines] = rendering;
        ZvBitmap expected = inLayers(stack, width, height, lines);
        ZvRect drawn;
        const DirtyMemory memory(1 + static_cast<int>(seed % 250));
        const auto order = seed % 4 == 0 ? PixelOrder::RedFirst : PixelOrder::BlueFirst;
        if (order == PixelOrder::BlueFirst) ZvBlender::convertBGRAToARGB(&expected);
        ASSERT_TRUE(samePixels(expected, asPicture(stack, width, height, lines, order, &drawn)));
        expectNothingOutside(expected, drawn);
        EXPECT_TRUE(stack.mask == nullptr && stack.dst == nullptr && stack.layerMode == 0);
    }
}

// Text over one or two colours, and pictures too large for the caches, have paths of their own.
TEST(Picture, OfTextOverColorsOrLarge) {
    for (unsigned seed = 0; seed < 240; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        Rendering rendering(seed);
        auto& [width, height, stack, lines] = rendering;
        if (seed % 40 == 0) {
            width = 2100;
            height = 501;
        } else {
            stack.releaseEffect();
            stack.clearTextOpacity();
            width *= 3;
            const float size = static_cast<float>(random.below(70)) * 0.25f;
            const float opacity = random.below(2) != 0 ? 1.0f : 0.6f;
            if (seed % 3 != 1) {
                const auto angle = static_cast<float>(random.below(360)),
                           distance = static_cast<float>(random.below(30));
                stack.addOuterShadowText(angle, distance, size, random.color(), 1.6f - opacity);
            }
            if (seed % 3 != 0) stack.addStrokeText(size, random.color(), opacity, 0, ZV_STROKE_OUTSIDE);
            stack.addText(random.color() | (random.below(2) != 0 ? 0xFF000000u : 0));
            // Channels may exceed the alpha only in records that are set directly.
            for (ZvECore* layer : stack.effects)
                if (seed % 4 == 0) layer->getProperty()->color = random.color();
        }
        ZvBitmap expected = inLayers(stack, width, height, lines);
        ZvBlender::convertBGRAToARGB(&expected);
        forEachCpuTarget([&] {  // clang's lambdas do not capture the names of parts
            ASSERT_TRUE(samePixels(expected, asPicture(rendering.stack, rendering.width, rendering.height,
                                                       rendering.lines, PixelOrder::BlueFirst)));
        });
    }
}

// Nothing leaks, and nothing of the picture's old content is left.
TEST(Picture, AnyAllocationMayFail) {
    for (unsigned seed = 1; seed <= 14; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Rendering rendering(seed);
        ZvBitmap picture(static_cast<unsigned>(rendering.width), static_cast<unsigned>(rendering.height), 4);
        forEachFailingAllocation([&](bool) {
            std::memset(picture.pixels, 0xA7, picture.byteCount());
            rendering.stack.initPicture(&picture);
            drawLines(rendering.stack, rendering.lines);
            expectNothingOutside(picture, rendering.stack.drawPicture(PixelOrder::BlueFirst));
        });
    }
}

}  // namespace
}  // namespace Zvex
