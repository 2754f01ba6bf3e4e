// SPDX-License-Identifier: Apache-2.0
#include "effect/LayerJoin.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <vector>

#include "tests/CpuTargets.h"
#include "tests/effect/TestPictures.h"
#include "tests/effect/TestValues.h"
#include "tests/reference/LayerJoinReference.h"

namespace Zvex {
namespace {

using reference::PlainLayer;

ZvBitmap pictureOf(const std::vector<uint32_t>& words, int width) {
    return ZvBitmap(static_cast<unsigned>(width), static_cast<unsigned>(words.size()) / width,
                    reinterpret_cast<const unsigned char*>(words.data()), 4);
}

// Bytes at which the modes bend and jump are more frequent.
uint32_t someByte(Random& random) {
    const uint32_t bends[] = {0, 1, 63, 64, 127, 128, 254, 255};
    return random.below(2) == 0 ? bends[random.below(8)] : static_cast<uint32_t>(random.below(256));
}

// Pieces of a row that are empty, opaque or of one colour, and noise.
std::vector<uint32_t> somePicture(Random& random, int width, int height) {
    std::vector<uint32_t> words;
    while (words.size() < static_cast<size_t>(width * height)) {
        const int kind = random.below(4);
        for (int n = random.between(1, 90); n > 0; --n) {
            const uint32_t alpha = kind == 0 ? 0 : kind == 1 ? 255 : someByte(random);
            words.push_back(alpha << 24 | someByte(random) << 16 | someByte(random) << 8 | someByte(random));
        }
    }
    words.resize(static_cast<size_t>(width * height));
    return words;
}

// Layers with random settings; all pictures have one size and are joined without offsets.
std::vector<PlainLayer> someLayers(Random& random, int count, int width, int height) {
    std::vector<PlainLayer> layers;
    for (int i = 0; i < count; ++i) {
        PlainLayer layer;
        layer.words = somePicture(random, width, height);
        layer.coverage.assign(layer.words.size(), 0);
        if (random.below(3) == 0) {
            for (uint8_t& byte : layer.coverage) byte = static_cast<uint8_t>(someByte(random));
        }
        layer.mode = static_cast<LayerBlend>(random.below(kLayerBlends));
        const float opacities[] = {1, 1, 0.5f, 0.123f, 0};
        layer.opacity = opacities[random.below(5)];
        layer.clipped = random.below(3) == 0;
        layers.push_back(layer);
    }
    return layers;
}

// The library's picture of these layers.
ZvBitmap joined(const std::vector<uint32_t>& canvas, const std::vector<PlainLayer>& plain, int width,
                float opacity) {
    std::vector<ZvBitmap> pictures, masks;
    std::vector<JoinedLayer> layers(plain.size());
    for (const PlainLayer& layer : plain) {
        pictures.push_back(pictureOf(layer.words, width));
        masks.emplace_back(pictures[0].width, pictures[0].height, layer.coverage.data(), 1);
    }
    for (size_t i = 0; i < plain.size(); ++i) {
        layers[i].picture = &pictures[i];
        layers[i].knockout = &masks[i];
        layers[i].blend = plain[i].mode;
        layers[i].opacity = plain[i].opacity;
        layers[i].clipped = plain[i].clipped;
    }
    ZvBitmap picture = pictureOf(canvas, width);
    joinLayers(&picture, layers.data(), layers.size(), opacity);
    return picture;
}

TEST(LayerJoin, EqualsThePlainForm) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        Random random(seed);
        const int width = random.between(1, 200), height = random.between(1, 4);
        const std::vector<uint32_t> canvas = somePicture(random, width, height);
        const auto layers = someLayers(random, random.between(0, 4), width, height);
        const float opacity = random.below(3) == 0 ? 0.7f : 1;
        std::vector<uint32_t> expected;
        for (size_t i = 0; i < canvas.size(); ++i) {
            expected.push_back(reference::wordOf(reference::joinLayersAt(i, canvas[i], layers, opacity)));
        }
        forEachCpuTarget([&] {
            ASSERT_TRUE(samePixels(pictureOf(expected, width), joined(canvas, layers, width, opacity)))
                << "seed " << seed;
        });
    }
}

uint32_t wordAt(const ZvBitmap& picture, size_t at) {
    uint32_t word;
    std::memcpy(&word, picture.pixels + 4 * at, 4);
    return word;
}

bool isWithinALevel(uint32_t word, const reference::exact::JoinedBytes& exact) {
    if (word >> 24 == 0) return exact.values[0] < 1;
    for (int i = 0; i < 4; ++i) {
        if (std::abs((word >> (24 - 8 * i) & 255) - exact.values[i]) > 1) return false;
    }
    return true;
}

// Each pair of bytes as colours, at alphas of all kinds.
TEST(LayerJoin, IsWithinALevelOfTheExactResult) {
    Random random(7);
    for (int mode = 0; mode <= static_cast<int>(LayerBlend::PlusLighter); ++mode) {
        std::vector<PlainLayer> layers = {
            {{}, std::vector<uint8_t>(256 * 256, 0), static_cast<LayerBlend>(mode), 1.0f, false}};
        std::vector<uint32_t> canvas;
        const auto word = [&](uint32_t byte) {
            return someByte(random) << 24 | byte << 16 | (255 - byte) << 8 | someByte(random);
        };
        for (uint32_t i = 0; i < 256 * 256; ++i) {
            canvas.push_back(word(i / 256));
            layers[0].words.push_back(word(i % 256));
        }
        const ZvBitmap picture = joined(canvas, layers, 256, 1);
        for (size_t i = 0; i < canvas.size(); ++i) {
            ASSERT_TRUE(
                isWithinALevel(wordAt(picture, i), reference::exact::joinLayersAt(i, canvas[i], layers, 1)))
                << std::hex << wordAt(picture, i) << " of " << layers[0].words[i] << " on " << canvas[i]
                << std::dec << " in mode " << mode;
        }
    }
}

// White keeps white through translucent layers, though color-burn leaps there.
TEST(LayerJoin, WhiteStaysWhiteUnderBurn) {
    std::vector<PlainLayer> layers;
    for (int mode = 0; mode < static_cast<int>(LayerBlend::Difference); ++mode) {
        layers.push_back({{}, std::vector<uint8_t>(256, 0), static_cast<LayerBlend>(mode), 0.37f, false});
        for (uint32_t alpha = 0; alpha < 256; ++alpha) layers.back().words.push_back(alpha << 24 | 0xFFFFFF);
    }
    layers.push_back({std::vector<uint32_t>(256, 0xFF000000), std::vector<uint8_t>(256, 0),
                      LayerBlend::ColorBurn, 1, false});
    const std::vector<uint32_t> canvas(256, 0xB3FFFFFF);
    const ZvBitmap picture = joined(canvas, layers, 256, 1);
    for (size_t i = 0; i < 256; ++i) {
        EXPECT_TRUE(
            isWithinALevel(wordAt(picture, i), reference::exact::joinLayersAt(i, canvas[i], layers, 1)))
            << "alpha " << i << ": " << std::hex << wordAt(picture, i);
    }
}

// Modes of whole colours make channels exactly 0 or 1, where the next layer's mode leaps, and leave a grey
// that an earlier layer made without the colours of its rounding.
TEST(LayerJoin, WholeColorsMeetTheLeapsOfTheNextLayer) {
    constexpr size_t kCount = 4096;
    Random random(11);
    const auto layerOf = [](LayerBlend mode) {
        return PlainLayer{std::vector<uint32_t>(kCount), std::vector<uint8_t>(kCount, 0), mode, 1, false};
    };
    const auto color = [&] { return 0xFF000000u | static_cast<uint32_t>(random.below(1 << 24)); };
    for (int mode = static_cast<int>(LayerBlend::Hue); mode <= static_cast<int>(LayerBlend::Luminosity);
         ++mode) {
        for (const LayerBlend leap : {LayerBlend::ColorDodge, LayerBlend::ColorBurn}) {
            std::vector<PlainLayer> layers = {layerOf(LayerBlend::Difference),
                                              layerOf(static_cast<LayerBlend>(mode)), layerOf(leap)};
            std::vector<uint32_t> canvas(kCount);
            for (size_t i = 0; i < kCount; ++i) {
                const uint32_t dark = color() & 0xFF7F7F7F,
                               grey = static_cast<uint32_t>(random.below(128)) * 0x10101;
                canvas[i] = i % 2 == 0 ? color() : dark;
                layers[0].words[i] = i % 2 == 0 ? 0 : dark + grey;
                layers[1].words[i] = color();
                layers[2].words[i] = leap == LayerBlend::ColorDodge ? 0xFFFFFFFF : 0xFF000000;
            }
            for (const size_t count : {3, 2}) {
                layers.resize(count);
                const ZvBitmap picture = joined(canvas, layers, 64, 1);
                for (size_t i = 0; i < kCount; ++i) {
                    ASSERT_TRUE(isWithinALevel(wordAt(picture, i),
                                               reference::exact::joinLayersAt(i, canvas[i], layers, 1)))
                        << "mode " << mode << ", " << count << " layers, pixel " << i;
                }
            }
        }
    }
}

// A picture and its knockout coverage, moved anywhere, equal pictures of the full size.
TEST(LayerJoin, LayersLieAnywhere) {
    Random random(11);
    for (int round = 0; round < 60; ++round) {
        const int width = random.between(1, 150), height = random.between(1, 6);
        const auto place = [&](int size) {
            return random.below(6) == 0 ? (random.below(2) == 0 ? INT_MAX : INT_MIN)
                                        : random.between(-size - 1, size + 1);
        };
        const std::vector<uint32_t> canvas = somePicture(random, width, height);
        const std::vector<uint32_t> small = somePicture(random, 70, 3);
        const ZvBitmap picture = pictureOf(small, 70), mask = makeMask(MaskKind::Noise, 40, 5, random);
        JoinedLayer layer;
        layer.picture = &picture;
        layer.x = place(width);
        layer.y = place(height);
        layer.knockout = &mask;
        layer.knockoutX = place(width);
        layer.knockoutY = place(height);
        PlainLayer plain = {std::vector<uint32_t>(canvas.size(), 0), std::vector<uint8_t>(canvas.size(), 0),
                            LayerBlend::Normal, 1, false};
        for (int64_t y = 0; y < height; ++y) {
            for (int64_t x = 0; x < width; ++x) {
                const size_t at = static_cast<size_t>(y * width + x);
                const int64_t px = x - layer.x, py = y - layer.y;
                const int64_t mx = x - layer.knockoutX, my = y - layer.knockoutY;
                if (px >= 0 && px < 70 && py >= 0 && py < 3) plain.words[at] = small[py * 70 + px];
                if (mx >= 0 && mx < 40 && my >= 0 && my < 5) plain.coverage[at] = mask.pixels[my * 40 + mx];
            }
        }
        ZvBitmap actual = pictureOf(canvas, width);
        joinLayers(&actual, &layer, 1);
        ASSERT_TRUE(samePixels(joined(canvas, {plain}, width, 1), actual)) << "round " << round;
    }
}

TEST(LayerJoin, TakesWhatIsMissingAsTransparent) {
    const ZvBitmap canvas = pictureOf({0xFF102030, 0x80405060}, 2), coverage(2, 1, 1), empty;
    ZvBitmap actual(canvas);
    JoinedLayer layers[6];
    layers[0].picture = &canvas;
    layers[0].opacity = kNotANumber;
    layers[1].picture = &canvas;
    layers[1].clipped = true;  // without a base
    layers[2].picture = &coverage;
    layers[3].picture = &empty;
    layers[4].knockout = &canvas;
    joinLayers(&actual, layers, 6);
    joinLayers(&actual, nullptr, 3);
    joinLayers(nullptr, layers, 6);
    EXPECT_TRUE(samePixels(canvas, actual));
    ZvBitmap mask(coverage);
    joinLayers(&mask, layers, 6, 0.0f);
    EXPECT_TRUE(samePixels(coverage, mask));
}

}  // namespace
}  // namespace Zvex
