// SPDX-License-Identifier: Apache-2.0
// Bevel and emboss: two filters with the same record, tested alike.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <vector>

#include "effect/ZvProperty.h"
#include "effect/filters/ZvBevel.h"
#include "effect/filters/ZvEmboss.h"
#include "tests/effect/FilterScene.h"
#include "tests/effect/TestValues.h"
#include "tests/reference/ReliefReference.h"

namespace Zvex {
namespace {

template <typename Property>
Property makeSettings(int style, float size, int technique, int soften) {
    return Property(style, size, 1.5f, 1, technique, soften, 1.0f, 120.0f, 30.0f, 0xC0102040, 1.0f,
                    0xF0FFE0A0, 1.0f);
}

// Random settings except for the size, also beyond the record's limits, because callers can change a layer's
// record.
template <typename Filter, typename Property>
void setAnySettings(Filter& filter, float size, int technique, unsigned seed) {
    Random random(seed);
    const auto choose = [&](auto... choices) {
        const double list[] = {static_cast<double>(choices)...};
        return list[random.below(static_cast<int>(sizeof...(choices)))];
    };
    Property property = makeSettings<Property>(0, size, technique, 0);
    filter.setProperty(&property);
    Property& p = *filter.property;
    p.style = static_cast<int>(choose(1, 1, 3, 3, 0));
    p.depth = static_cast<float>(choose(-1, 0, 0.05, 0.1, 0.15, 0.3, 1, 1, 2.7, 10));
    p.direction = random.between(-1, 1);
    p.soften = static_cast<int>(choose(-3, 0, 0, 1, 2, 5, 16));
    p.angle = static_cast<float>(choose(0, -30, 45, 90, 120.5, 359));
    p.altitude = static_cast<float>(choose(0, -20, 30, 30, 60, 90));
    p.shadowColor = static_cast<uint32_t>(random.below(256)) << 24 | 0x30A0FF;
    p.highlightColor =
        static_cast<uint32_t>(choose(0, 128, 255)) << 24 | static_cast<uint32_t>(random.below(1 << 24));
}

// Compares the filter with its plain form over seeded scenes, each with its own settings. Every seventh mask
// is so faint that only some of the methods react to it.
template <typename Filter, typename Property, typename Draw>
void expectThePlainRelief(Draw draw, float size, int technique, unsigned first, unsigned count,
                          int width = 30, int height = 22) {
    Filter filter;
    const auto plain = [&](FilterScene& scene) {
        setAnySettings<Filter, Property>(filter, size, technique, scene.seed);
        draw(scene.record(), *filter.property);
    };
    expectThePlainForm(filter, first, count, plain, width, height);
}

// Widths on either side of the change of method, and of the end of the table of roots (hard, 50 and 57). The
// first blur of 36 is wide in a low picture, unless its border shows there. In the scene of seed 160 the
// border on the left is within reach.
TEST(Bevel, EqualsThePlainForm) {
    const auto check = [](auto... arguments) {
        expectThePlainRelief<ZvBevel, ZvBevelProperty>(reference::drawBevel, arguments...);
    };
    unsigned seed = 0;
    for (float size : {-4.0f, -1.5f, 0.0f, 0.9f, 1.0f, 3.7f, 12.0f}) check(size, 1, seed += 6, 6);
    for (float size : {-5.0f, -1.5f, 0.0f, 1.0f, 4.0f, 13.9f, 14.0f, 25.0f}) check(size, 0, seed += 6, 6);
    check(36.0f, 0, 2, 6, 7, 6);
    check(36.0f, 0, 20, 10, 200, 6);
    check(36.0f, 0, 160, 1, 200, 6);
    check(45.0f, 0, 18, 6, 40, 9);
    check(50.0f, 2, 6, 1, 7, 6);
    check(9.0f, 0, 40, 6, 400, 200);
    check(57.0f, 2, 0, 3, 7, 6);
}

TEST(Emboss, EqualsThePlainForm) {
    const auto check = [](auto... arguments) {
        expectThePlainRelief<ZvEmboss, ZvEmbossProperty>(reference::drawEmboss, arguments...);
    };
    unsigned seed = 0;
    for (float size : {-9.0f, -4.0f, -1.5f, 0.0f, 0.9f, 3.7f, 10.0f, 20.0f}) check(size, 1, seed += 6, 6);
    for (float size : {-5.0f, -3.0f, 0.0f, 1.0f, 10.0f, 25.9f, 26.0f, 31.0f}) check(size, 0, seed += 6, 6);
    check(48.0f, 0, 2, 6, 7, 6);
    check(48.0f, 0, 20, 4, 200, 6);
    check(70.0f, 0, 18, 6, 40, 9);
    check(101.0f, 2, 6, 2, 7, 6);
}

// Beyond the picture a larger size changes nothing, and costs nothing: the same as the largest size whose
// windows are searched whole. The square is deeper than the furthest ground of other glyphs.
TEST(Emboss, HugeSizesDrawTheSamePicture) {
    const auto draw = [](FilterScene scene, float size) {
        ZvEmboss emboss;
        ZvEmbossProperty property = makeSettings<ZvEmbossProperty>(1, size, 1, 0);
        emboss.setProperty(&property);
        scene.draw(emboss);
        return scene;
    };
    for (unsigned seed = 2; seed < 4; ++seed)
        EXPECT_TRUE(draw(FilterScene(seed), 30000.0f).sameAs(draw(FilterScene(seed), 510.0f))) << seed;

    constexpr int kSide = 550;
    FilterScene square(0, kSide, kSide);
    for (int i = 0; i < kSide * kSide; ++i) {
        const int x = i % kSide, y = i / kSide, edge = std::min({x, y, kSide - 1 - x, kSide - 1 - y});
        square.mask.pixels[i] = edge < 5 ? 0 : edge == 5 ? 90 : 255;
    }
    square.box = ZvRect(0, 0, kSide, kSide);
    EXPECT_TRUE(draw(square, 30000.0f).sameAs(draw(square, 550.0f)));
}

constexpr int kWidth = 23, kHeight = 17;
constexpr reference::Light kLight = {0.6f, -0.35f, 0.7f, 1.3f};

reference::Distances randomPlane(Random& random, float low) {
    reference::Distances plane(kWidth, kHeight, 0);
    for (float& value : plane.values) {
        // 4.5: half of a byte, at the limit of 5.
        const float some[] = {5, 5, low, low, 4.5f, static_cast<float>(random.below(5000)) / 1000.0f};
        value = some[random.below(6)];
    }
    return plane;
}

template <typename Filter>
void expectTheKernelsOfBoth() {
    Random random(2);
    const ZvBitmap noise = makeMask(MaskKind::Noise, kWidth, kHeight, random);
    const std::vector<int> weights = reference::gaussianWeights(3, 100, false);
    reference::Bytes source(noise.pixels, noise.pixels + kWidth * kHeight), actual(source.size(), 9),
        expected(actual);
    for (int yBegin : {6, 3}) {
        const int yEnd = yBegin == 6 ? kHeight - 5 : 6;
        typename Filter::BlurJob job = {source.data(), actual.data(), kWidth, 3, 4, kWidth - 3, yBegin, yEnd};
        EXPECT_EQ(Filter::partialBlur(&job) + Filter::partialBlur(nullptr), 0);
    }
    reference::Blur{kWidth, 4, kWidth - 3, 3, kHeight - 5}.draw(source, expected, weights);
    EXPECT_EQ(actual, expected);
    for (int radius : {3, 12, INT_MAX}) Filter::blur(source.data(), actual.data(), radius, kHeight, kWidth);
    reference::Blur{kWidth, 3, kWidth - 3, 3, kHeight - 3}.draw(source, expected, weights);
    EXPECT_EQ(actual, expected);
    Filter::blur(nullptr, actual.data(), 3, kHeight, kWidth);
    Filter::blur(source.data(), nullptr, 3, kHeight, kWidth);
    Filter::blur(source.data(), actual.data(), INT_MIN, kHeight, kWidth);  // copies
    EXPECT_EQ(actual, source);

    float line[] = {1e20f, 0, 1e20f, 1e20f, 3}, squares[5];
    Filter::dt1D(squares, line, 5);
    EXPECT_EQ(std::vector<float>(squares, squares + 5), (std::vector<float>{1, 0, 1, 4, 3}));
}

// Draws two bands of rows, the lower one first, and compares them with draw's whole rectangle. Bytes outside
// do not change.
template <typename Job, typename Draw>
void expectTheLight(int (*worker)(void*), Job job, Draw draw) {
    reference::LightPlanes light(kWidth, kHeight, 200, 77);
    std::fill(light.highlight.begin(), light.highlight.end(), uint8_t{99});
    reference::Bytes highlight = light.highlight, shadow = light.shadow;
    draw(light, 2, kWidth - 1, 1, kHeight - 2);
    for (int yBegin : {6, 1}) {
        job.highlight = highlight.data(), job.shadow = nullptr;
        job.yBegin = yBegin, job.yEnd = yBegin == 6 ? kHeight - 2 : 6;
        EXPECT_EQ(worker(&job) + worker(nullptr), 0);
        job.shadow = shadow.data();
        EXPECT_EQ(worker(&job), 0);
    }
    EXPECT_EQ(highlight, light.highlight);
    EXPECT_EQ(shadow, light.shadow);
}

// Other programs fill the workers' blocks in this order.
TEST(Bevel, WorkersTakeBlocksAndAnyPartOfTheRows) {
    expectTheKernelsOfBoth<ZvBevel>();
    Random random(3);
    reference::Distances plane = randomPlane(random, 0), expected(plane);
    for (int rowBegin : {12, 0, 6}) {
        ZvBevel::DistanceJob job = {plane.values.data(), kHeight, kWidth, 4, rowBegin, rowBegin + 6};
        EXPECT_EQ(ZvBevel::partialDT(&job) + ZvBevel::partialDT(nullptr), 0);
    }
    reference::searchNearest(expected, 4, 0, kHeight);
    EXPECT_EQ(plane.values, expected.values);

    plane = randomPlane(random, 6);  // beyond the radius
    for (bool inner : {false, true}) {
        const ZvBevel::LightJob job = {nullptr, nullptr,   kWidth, 5,  1.3f,  0.6f,
                                       -0.35f,  0.7f,      200,    77, inner, plane.values.data(),
                                       2,       kWidth - 1};
        expectTheLight(&ZvBevel::partialLightProcess, job, [&](auto& planes, auto... sides) {
            reference::lightBevel(planes, plane, 5, inner, kLight, sides...);
        });
    }
}

TEST(Emboss, WorkersTakeBlocksAndAnyPartOfTheRows) {
    expectTheKernelsOfBoth<ZvEmboss>();
    Random random(4);
    reference::Distances plane = randomPlane(random, -2), expected(plane), inside = randomPlane(random, 0);
    const auto search = [&](int (*worker)(void*)) {
        for (int rowBegin : {12, 0, 6}) {
            ZvEmboss::DistanceJob job = {plane.values.data(), kHeight, kWidth, 3, 1, rowBegin, rowBegin + 6};
            EXPECT_EQ(worker(&job) + worker(nullptr), 0);
        }
        EXPECT_EQ(plane.values, expected.values);
    };
    reference::searchOutward(expected, 3, 0, kHeight);
    search(&ZvEmboss::partialOutDT);
    reference::searchInward(expected, 1, 0, kHeight);
    search(&ZvEmboss::partialInDT);

    const auto job = [&] {
        return ZvEmboss::LightJob{nullptr,
                                  nullptr,
                                  plane.values.data(),
                                  inside.values.data(),
                                  kWidth,
                                  5,
                                  3,
                                  1.3f,
                                  0.6f,
                                  -0.35f,
                                  0.7f,
                                  200,
                                  77,
                                  2,
                                  kWidth - 1};
    };
    plane = randomPlane(random, -2);
    expectTheLight(&ZvEmboss::partialLightHardProcess, job(), [&](auto& planes, auto... sides) {
        reference::lightEmboss(planes, plane, 5, 3, kLight, sides...);
    });
    plane = randomPlane(random, 0);
    expectTheLight(&ZvEmboss::partialLightSoftProcess, job(), [&](auto& planes, auto... sides) {
        reference::lightEmboss(planes, plane, inside, 5, 3, kLight, sides...);
    });
}

template <typename Filter, typename Property>
void expectMargins(std::vector<int> margins) {
    Filter filter;
    std::vector<int> offsets;
    for (float size : {0.0f, 0.49999997f, 2.0f, 2.0000002f, 2.5f, -8.0f, kEndless, kNotANumber}) {
        Property property = makeSettings<Property>(1, size, 1, 3);
        filter.setProperty(&property);
        offsets.push_back(filter.getOffset());
    }
    EXPECT_EQ(offsets, margins);
    // Not-a-number sizes count as 0.
    FilterScene scene(2), before(2);
    for (int soften : {INT_MAX, 30000, INT_MIN}) {
        EXPECT_TRUE(scene.sameAs(before));
        filter.property->soften = soften;
        scene.draw(filter);
    }
    EXPECT_FALSE(scene.sameAs(before));  // with none at all
}

TEST(Relief, MarginsGrowWithTheSize) {
    expectMargins<ZvBevel, ZvBevelProperty>({3, 3, 5, 5, 6, -4, INT_MAX, 3});
    expectMargins<ZvEmboss, ZvEmbossProperty>({4, 5, 5, 6, 6, 0, INT_MAX, 3});
}

}  // namespace
}  // namespace Zvex
