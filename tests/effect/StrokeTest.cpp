// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <tuple>
#include <utility>
#include <vector>

#include "effect/ZvProperty.h"
#include "effect/filters/ZvStroke.h"
#include "effect/kernels/Dilation.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"
#include "tests/effect/FilterScene.h"
#include "tests/effect/TestValues.h"
#include "tests/reference/StrokeReference.h"

namespace Zvex {
namespace {

void setStroke(ZvStroke& stroke, float width, int position) {
    ZvStrokeProperty property(width, kColor, 1.0f, 0, position);
    stroke.setProperty(&property);
}

std::vector<int> circle(float radius) {
    unsigned char* kernel = nullptr;
    const int side = makeCircleKernel(&kernel, radius);
    std::vector<int> cells(kernel, kernel + side * side);
    std::free(kernel);
    return cells;
}

TEST(CircleKernel, EqualsTheDiscAsDefined) {
    for (float radius :
         {0.0f, 0.3f, 0.49f, 0.5f, 0.6f, 0.75f, 1.0f, 1.5f, 2.25f, 3.0f, 3.3f, 6.0f, 7.5f, 12.0f, 50.0f}) {
        EXPECT_EQ(circle(radius), reference::makeDisc(radius).cells) << "radius " << radius;
    }
    // Thin pens have a pale middle; -0.7 rounds to a disc of one cell.
    const std::pair<float, int> single[] = {{0.0f, 0}, {0.3f, 77}, {-0.7f, 0}, {kNotANumber, 0}};
    for (const auto& [radius, cell] : single) EXPECT_EQ(circle(radius), std::vector<int>{cell}) << radius;
}

TEST(CircleKernel, RefusesSizesItCannotMake) {
    for (float radius : {-1.5f, -kEndless, kEndless, 3e9f, 23171.0f}) {
        unsigned char some = 0;
        unsigned char* kernel = &some;
        EXPECT_EQ(makeCircleKernel(&kernel, radius), 0) << radius;
        EXPECT_EQ(kernel, nullptr) << radius;
    }
    EXPECT_EQ(makeCircleKernel(nullptr, 1.0f), 0);
}

TEST(Stroke, MarginIsTheWidthOnTheOutside) {
    ZvStroke stroke;
    EXPECT_EQ(stroke.getOffset(), 0);  // no settings yet
    const std::tuple<float, int, int> cases[] = {
        {0, 1, 0},   {2.5f, 1, 3}, {2.4f, 1, 2},           {3, 0, 2},          {0.6f, 0, 0}, {100, 0, 50},
        {100, 2, 0}, {-1, 1, 0},   {kEndless, 1, INT_MAX}, {kNotANumber, 1, 0}};
    for (const auto& [width, position, margin] : cases) {
        setStroke(stroke, width, position);
        EXPECT_EQ(stroke.getOffset(), margin) << "width " << width << ", position " << position;
    }
}

// The last widths use scenes of several blocks side by side, some empty and some full.
TEST(Stroke, EqualsThePlainForm) {
    unsigned seed = 0;
    for (float width : {0.0f, 0.3f, 0.6f, 1.0f, 1.5f, 3.0f, 7.5f, 12.0f, 2.5f, 9.0f, 33.0f}) {
        const bool wide = width == 2.5f || width == 9 || width == 33;
        for (int position : {0, 1, 2, 7}) {
            ZvStroke stroke;
            setStroke(stroke, width, position);
            const auto plain = [&](FilterScene& scene) {
                reference::drawStroke(&scene.target, scene.both ? &scene.other : nullptr, scene.mask,
                                      scene.box, scene.layerMode, width, kColor, position);
            };
            expectThePlainForm(stroke, seed, wide ? 3 : 6, plain, wide ? 130 : 30, wide ? 40 : 22);
            seed += wide ? 3 : 6;
        }
    }
}

// Jobs for bands of rows that read a part of the source and lay it near the corner of their target: cells
// that fall outside are left out, and nothing beside the planes is written. They ask for more rows and
// columns than the source says it has.
TEST(Stroke, JobsReadAndWriteAPart) {
    constexpr int R = 3, kWidth = 10, kHeight = 8, kPlane = kWidth * kHeight, kCanary = 32;
    Random random(6);
    ZvBitmap source = makeMask(MaskKind::Noise, 12, 14, random);
    reference::Plane part{9, 5, {}};
    for (int i = 0; i < 45; ++i) part.values.push_back(source.pixels[(i / 9 + 4) * 12 + i % 9 + 3]);
    const reference::Plane inverse = reference::complement(part);
    unsigned char* kernel = nullptr;
    ZvStroke::DTJob job;
    job.kernelSize = makeCircleKernel(&kernel, static_cast<float>(R));
    job.kernel = kernel;
    job.dstStride = kWidth;
    job.dstHeight = kHeight;
    job.dstY = job.dstX = 1;
    job.planeSize = kPlane;
    job.src = source.pixels;
    job.srcStride = job.columns = 12;
    job.srcHeight = 9;
    job.srcY = 4;
    job.srcX = 3;
    job.rows = 8;
    const struct {
        int (*routine)(void*);
        std::vector<reference::Plane> planes;
    } routines[] = {{&ZvStroke::partalDTStrokeOutside, {part}},
                    {&ZvStroke::partalDTStrokeInside, {inverse}},
                    {&ZvStroke::partalDTStrokeCenter, {part, inverse}}};
    for (const auto& [routine, planes] : routines) {
        std::vector<unsigned char> memory(2 * kPlane + 2 * kCanary, 0), expected(memory);
        job.dst = memory.data() + kCanary;
        for (const int start : {3, 0}) {
            job.rowStart = start;
            job.rowEnd = start == 0 ? 3 : 8;
            EXPECT_EQ(routine(&job) + routine(nullptr), 0);
        }
        for (size_t plane = 0; plane < planes.size(); ++plane) {
            const reference::Plane whole = reference::dilate(planes[plane], reference::makeDisc(R));
            for (int i = 0; i < kPlane; ++i) {
                // Its (R, R) is (1, 1).
                expected[kCanary + plane * kPlane + static_cast<size_t>(i)] =
                    static_cast<unsigned char>(whole.at(i % kWidth - 1 + R, i / kWidth - 1 + R));
            }
        }
        EXPECT_EQ(memory, expected);
    }
    std::free(kernel);
}

// The target has low noise and lies between guard bytes.
void expectTheDefinition(DilationParam p, Random& random, unsigned seed) {
    constexpr size_t kGuard = 64;
    std::vector<uint8_t> floor(2 * kGuard + static_cast<size_t>(p.targetWidth * p.targetHeight));
    for (uint8_t& byte : floor) byte = static_cast<uint8_t>(random.below(40));
    std::vector<uint8_t> expected(floor);
    reference::Plane source{static_cast<int>(p.columns), static_cast<int>(p.rowEnd - p.rowBegin), {}};
    for (int i = 0; i < source.width * source.height; ++i) {
        const uint8_t* row = p.source + (i / source.width + p.rowBegin) * p.sourceStride;
        source.values.push_back(row[i % source.width] ^ p.inverted);
    }
    const int side = p.kernelSize;
    const reference::Plane raised = reference::dilate(source, {side, {p.kernel, p.kernel + side * side}});
    for (int i = 0; i < p.targetWidth * p.targetHeight; ++i) {
        const int x = i % p.targetWidth - p.originX + side / 2,
                  y = i / p.targetWidth - p.originY - p.rowBegin + side / 2;
        uint8_t& byte = expected[kGuard + static_cast<size_t>(i)];
        byte = static_cast<uint8_t>(std::max<int>(byte, raised.at(x, y)));
    }
    forEachCpuTarget([&] {
        std::vector<uint8_t> actual(floor);
        DilationParam fast = p;
        fast.target = actual.data() + kGuard;
        EXPECT_TRUE(dilate(fast));
        ASSERT_EQ(actual, expected) << "seed " << seed << ", kernel " << p.kernelSize;
    });
}

// Kernels that are not discs, or flawed discs; sources of few and of many columns, with empty rows and
// blocks; targets with content that cut the kernel off anywhere.
TEST(Dilation, HoldsForAnyKernel) {
    for (unsigned seed = 0; seed < 1000; ++seed) {
        Random random(seed);
        DilationParam p;
        p.columns = random.below(3) == 0 ? random.between(1, 8) : random.between(30, 140);
        p.sourceStride = p.columns + random.below(4);
        const int rows = random.between(1, 24);
        ZvBitmap source = makeMask(kAllMasks[seed % 6], static_cast<int>(p.sourceStride), rows, random);
        p.source = source.pixels;
        p.inverted = random.below(2) == 0 ? 0 : 255;
        p.rowBegin = random.below(rows);
        p.rowEnd = random.between(p.rowBegin, rows);
        p.kernelSize = random.between(0, random.below(4) == 0 ? 40 : 18);  // up to 9 is small
        // A disc, one with a flaw, or anything.
        std::vector<uint8_t> kernel(static_cast<size_t>(p.kernelSize * p.kernelSize));
        const std::vector<int> disc = circle(static_cast<float>(p.kernelSize / 2) - 0.25f);
        const int flaws = p.kernelSize % 2 == 1 ? random.below(3) : 2;
        for (size_t i = 0; i < kernel.size(); ++i) {
            const int kinds[] = {0, 255, 255, 255, random.below(256)};
            kernel[i] = static_cast<uint8_t>(flaws < 2 ? disc[i] : kinds[random.below(5)]);
        }
        if (flaws == 1) kernel[static_cast<size_t>(random.below(static_cast<int>(kernel.size())))] ^= 255;
        p.kernel = kernel.data();
        p.targetWidth = random.between(1, 160);
        p.targetHeight = random.between(1, 40);
        p.originX = random.between(-40, 40);
        p.originY = random.between(-20, 20);

        expectTheDefinition(p, random, seed);
        if (HasFatalFailure()) return;
    }
}

// Kernel sizes at which the patches of ink grow, and larger ones. Single pixels far apart must be found as
// far as the disc reaches.
TEST(Dilation, SeesInkAtTheEndOfItsReach) {
    unsigned seed = 0;
    for (const int radius : {3, 12, 95, 96, 97, 208, 209, 432, 433, 896, 897}) {
        for (int part = 0; part < 4; ++part, ++seed) {
            Random random(seed);
            DilationParam p;
            p.sourceStride = p.columns = 500;
            p.rowEnd = 12;
            std::vector<uint8_t> source(6000, 0);
            for (int i = 0; i < 5; ++i) {
                source[static_cast<size_t>(random.below(6000))] =
                    static_cast<uint8_t>(random.below(2) == 0 ? 255 : random.below(256));
            }
            p.source = source.data();
            unsigned char* kernel = nullptr;
            p.kernelSize = makeCircleKernel(&kernel, static_cast<float>(radius) - 0.25f * part);
            p.kernel = kernel;
            p.targetWidth = 400;
            p.targetHeight = 30;
            p.originX = random.between(-radius, 400 + radius) - random.below(500);
            p.originY = random.between(-radius, radius + 20);
            expectTheDefinition(p, random, seed);
            std::free(kernel);
            if (HasFatalFailure()) return;
        }
    }
}

}  // namespace
}  // namespace Zvex
