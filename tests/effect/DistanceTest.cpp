// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "effect/kernels/DistanceRows.h"
#include "effect/kernels/DistanceSearch.h"
#include "effect/kernels/DistanceTransform.h"
#include "effect/kernels/SquareRoots.h"
#include "tests/CpuTargets.h"
#include "tests/effect/TestPictures.h"
#include "tests/reference/DistanceReference.h"

namespace Zvex {
namespace {

static_assert(sizeof(ZV_INT_SQRT_TABLE) == 5490 * sizeof(float));

TEST(SquareRoots, AreTheNearestThousandth) {
    for (int i = 0; i < 12000; ++i) {
        ASSERT_EQ(integerRoot(i), reference::root(i)) << i;
        if (i < 5490) {
            ASSERT_EQ(ZV_INT_SQRT_TABLE[i], reference::root(i)) << i;
        }
    }
    EXPECT_EQ(ZV_INT_SQRT_TABLE[6], 2.449f);
    EXPECT_EQ(ZV_INT_SQRT_TABLE[5489], 74.088f);
    EXPECT_EQ(integerRoot(INT64_MAX), 3037000500.0f);
    EXPECT_EQ(integerRoot(2000 * 2000 - 1), 2000.0f);
    EXPECT_EQ(integerRoot(-1), 0.0f);
}

// Whole numbers below 2^24 are exact. Else the envelope is found in single precision, and the parabola that
// it reads near a crossing may be above the lowest one: by what the sums of a value and its square are
// rounded by, twice over.
TEST(Distance, TransformOfALineIsTheMinimum) {
    Random random(1);
    for (int i = 0; i < 400; ++i) {
        const bool fractions = i % 2 == 1, isLong = i >= 397;
        const int count = isLong ? random.between(5000, 8000) : random.between(1, 60);
        std::vector<float> values(static_cast<size_t>(count)), actual(values.size(), -1.0f);
        for (float& value : values) {
            value = random.below(3) == 0 ? 1e20f : static_cast<float>(random.below(i % 5 == 0 ? 2 : 300));
            if (fractions) value *= 0.3f;
        }
        EXPECT_TRUE(squaredDistances(actual.data(), values.data(), count));
        const std::vector<float> expected = reference::squaredDistances(values);
        const float largest = static_cast<float>(count) * static_cast<float>(count) + 300.0f,
                    rounding = std::nextafter(largest, INFINITY) - largest;
        const float tolerance = isLong || fractions ? 4 * rounding : 0.0f;
        for (size_t q = 0; q < values.size(); ++q)
            ASSERT_NEAR(actual[q], expected[q], tolerance) << "case " << i << ", pixel " << q;
    }
    float untouched = 7;
    EXPECT_TRUE(squaredDistances(&untouched, &untouched, 0));
    EXPECT_TRUE(squaredDistances(nullptr, nullptr, 3));
    EXPECT_EQ(untouched, 7);
}

std::vector<float> allRows(DistanceRows& rows, int width, int height) {
    std::vector<float> all;
    for (int y = 0; y < height; ++y) {
        rows.next();
        all.insert(all.end(), rows.row(y), rows.row(y) + width);
    }
    return all;
}

// Rows so long that the envelope is not the minimum any more, and their ends as the rest: there the transform
// of the plane is what rows have to equal.
TEST(Distance, WithinARadiusEqualsTheTransform) {
    Random random(4);
    for (int i = 0; i < 60; ++i) {
        const bool wide = i % 5 == 0, tall = i % 10 == 0;  // beyond what floats tell apart
        const int across = wide ? random.between(3500, 9000) : random.between(1, 60);
        const int along = random.between(1, wide ? 12 : 40);
        reference::Distances expected(tall ? along : across, tall ? across : along, 1e20f);
        const int sparse[] = {1, 5, 200, 100000}, radius = random.between(1, 100);
        std::vector<uint8_t> levels;
        for (float& value : expected.values) {
            if (random.below(sparse[i % 4]) == 0 && (i % 4 != 0 || random.below(3) != 0)) value = 0;
            levels.push_back(static_cast<uint8_t>(value == 0 ? 0 : random.between(1, 255)));
        }
        if (wide) {
            EXPECT_TRUE(squaredDistances(expected.values.data(), expected.width, expected.height));
        } else {
            reference::squaredDistances(expected);
        }
        const float limit = static_cast<float>(radius);
        for (float& value : expected.values) value = value > limit * limit ? limit : std::sqrt(value);
        forEachCpuTarget([&] {
            const ZvRect whole(0, 0, expected.width, expected.height);
            const auto rows = DistanceRows::transform({levels.data(), whole, false}, expected.width,
                                                      expected.height, whole, radius);
            ASSERT_EQ(allRows(*rows, expected.width, expected.height), expected.values) << "case " << i;
        });
        if (HasFatalFailure()) return;
    }
}

// Also in planes that are too large for exact sums, in which a part alone would have other distances. Levels
// lie anywhere in the part.
TEST(Distance, APartHasTheTransformOfTheWhole) {
    Random random(5);
    for (int i = 0; i < 36; ++i) {
        const bool isFull = i % 2 == 0, tall = i % 3 == 0;
        const int across = i % 4 == 0 ? 60 : random.between(3000, i % 4 == 1 ? 5000 : 12000),
                  along = random.between(30, 60);
        reference::Distances whole(tall ? along : across, tall ? across : along,
                                   isFull ? 0.0f : kEndlessSquare);
        const bool isMost = i % 5 == 0;  // of the whole
        const int left =
                      random.between(0, isMost ? 9 : std::min(whole.width, i % 8 == 1 ? 3900 : 12000) - 10),
                  top = random.between(0, isMost ? 9 : whole.height - 10);
        const int width =
                      isMost ? whole.width - left - 5 : random.between(9, std::min(whole.width - left, 90)),
                  height =
                      isMost ? whole.height - top - 5 : random.between(9, std::min(whole.height - top, 90)),
                  radius = random.between(1, i % 7 == 0 ? 4000 : 99), around = isMost ? 5 : random.below(600);
        const ZvRect rect(left, top, left + width, top + height),
            part(std::max(left - around, 0), std::max(top - around, 0),
                 std::min(rect.right + around, whole.width), std::min(rect.bottom + around, whole.height));
        std::vector<uint8_t> levels;
        for (int y = top; y < top + height; ++y) {
            for (int x = left; x < left + width; ++x) {
                const bool inside = x > left && y > top && x < left + width - 1 && y < top + height - 1;
                float& value = whole.at(x, y);
                if (inside && random.below(9) < 5) value = random.below(9) == 0 ? 0.0f : kEndlessSquare;
                levels.push_back(value == 0 ? 0 : 200);
            }
        }
        EXPECT_TRUE(squaredDistances(whole.values.data(), whole.width, whole.height));
        const float limit = static_cast<float>(radius);
        std::vector<float> expected;
        for (int y = part.top; y < part.bottom; ++y) {
            for (int x = part.left; x < part.right; ++x) {
                const float square = whole.at(x, y);
                expected.push_back(square > limit * limit ? limit : std::sqrt(square));
            }
        }
        forEachCpuTarget([&] {
            const auto rows = DistanceRows::transform({levels.data(), rect, isFull}, whole.width,
                                                      whole.height, part, radius);
            ASSERT_EQ(allRows(*rows, part.right - part.left, part.bottom - part.top), expected) << i;
        });
        if (HasFatalFailure()) return;
    }
}

struct Search {
    const char* name;
    bool (*kernel)(const DistanceSearch&);
    void (*plain)(reference::Distances&, int, int, int);
};
constexpr Search kSearches[] = {{"nearest", searchNearest, reference::searchNearest},
                                {"outward", searchOutward, reference::searchOutward},
                                {"inward", searchInward, reference::searchInward}};

// A disc and half a plane with smooth edges, straight edges with corners and thin ground between them, or a
// mask of another kind.
std::vector<uint8_t> makeLevels(Random& random, int width, int height, int i) {
    const ZvBitmap mask = makeMask(kAllMasks[static_cast<size_t>(i) % 6], width, height, random);
    std::vector<uint8_t> levels(mask.pixels, mask.pixels + width * height);
    const double x0 = random.below(width), y0 = random.below(height), radius = random.between(3, 30),
                 angle = random.below(628) / 100.0, offset = random.below(40), blur = random.between(1, 5);
    for (int at = 0; at < width * height && i % 7 != 6; ++at) {
        const int x = at % width, y = at / width;
        const double disc = std::hypot(x - x0, y - y0) - radius,
                     edge = x * std::cos(angle) + y * std::sin(angle) - offset;
        const double distance = i % 4 == 0 ? disc : i % 4 == 1 ? edge : std::min(disc, edge);
        const double level = std::clamp((0.5 + distance / blur) * 255, 0.0, 255.0);
        const int square = x / 23 % 2 == 0 && y / 29 % 2 == 0 ? 0 : x == 23 ? 100 : 255;
        if (i % 3 != 2 || random.below(16) != 0)
            levels[static_cast<size_t>(at)] = static_cast<uint8_t>(i % 5 == 4 ? square : level);
    }
    return levels;
}

// Two bands of rows of the planes of both filters, and of worse ones, at radii on both sides of 90. The
// inward search follows the outward one. The row by row form of the other two equals the whole plane.
TEST(Distance, SearchesEqualThePlainForm) {
    Random random(3);
    for (const Search& search : kSearches) {
        const bool signs = search.plain != reference::searchNearest,
                   inward = search.plain == reference::searchInward;
        for (int i = 0; i < 108; ++i) {
            const bool wild = i % 3 == 0, wide = i % 12 == 7;
            const int radius = i == 0   ? 70
                               : i == 3 ? -2
                               : wide   ? random.between(70, 120)
                                        : random.below(wild ? 12 : 40);
            const int width = wide ? 230 : random.between(1, 110), height = wide ? 10 : random.between(1, 70);
            const std::vector<uint8_t> levels = makeLevels(random, width, height, i);
            float ramp[256];
            for (int level = 0; level < 256; ++level) ramp[level] = static_cast<float>(level) / 255;
            ramp[255] = static_cast<float>(std::max(radius, 1));
            ramp[0] = signs ? 1.0f - ramp[255] : 0.0f;
            reference::Distances expected(width, height, 0);
            for (size_t at = 0; at < levels.size(); ++at) {
                expected.values[at] = ramp[levels[at]];
                if (wild && random.below(24) == 0)
                    expected.values[at] = static_cast<float>(random.between(signs ? -3000 : 0, 9000)) / 1000;
            }
            if (inward && !wild) reference::searchOutward(expected, radius + 2, 0, height);
            if (wild && i % 9 == 6)
                expected.values[static_cast<size_t>(random.below(width * height))] =
                    i % 2 == 0 ? 40.5f : INFINITY;
            const int rowBegin = wild ? random.below(2) : 0, middle = random.between(rowBegin, height);
            const std::vector<float> before = expected.values;
            search.plain(expected, radius, rowBegin, height);
            forEachCpuTarget([&] {
                std::vector<float> actual = before;
                for (const auto& [begin, end] : {std::pair(rowBegin, middle), {middle, height}})
                    EXPECT_TRUE(search.kernel({actual.data(), height, width, radius, begin, end}));
                ASSERT_EQ(actual, expected.values) << search.name << ", case " << i << ", radius " << radius;
                if (wild || inward) return;
                const auto rows = DistanceRows::search(levels.data(), width, height, radius, ramp, signs);
                ASSERT_EQ(allRows(*rows, width, height), expected.values)
                    << search.name << ", case " << i << ", radius " << radius;
            });
            if (HasFatalFailure()) return;
        }
    }
}

TEST(Distance, SearchesSurviveSizesThatDoNotFit) {
    std::vector<float> plane = {2, 0, 2, -1};
    for (const Search& search : kSearches) {
        std::vector<float> some = plane;
        EXPECT_TRUE(search.kernel({some.data(), 2, 2, INT_MAX, INT_MIN, INT_MAX}));
        for (DistanceSearch empty : {DistanceSearch{nullptr, 2, 2, 1, 0, 2},
                                     {plane.data(), 0, 2, 1, 0, 2},
                                     {plane.data(), 2, 0, 1, 0, 2},
                                     {plane.data(), 2, 2, INT_MIN, 0, 2},
                                     {plane.data(), 2, 2, 1, 1, 1}}) {
            EXPECT_TRUE(search.kernel(empty));
        }
    }
    EXPECT_EQ(plane, (std::vector<float>{2, 0, 2, -1}));
}

}  // namespace
}  // namespace Zvex
