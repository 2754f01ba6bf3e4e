// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_EFFECT_FILTERSCENE_H_
#define ZVEX_TESTS_EFFECT_FILTERSCENE_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>

#include "effect/ZvECore.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"
#include "tests/CpuTargets.h"
#include "tests/FailingAllocations.h"
#include "tests/effect/TestPictures.h"

// One seeded scene for every filter, and the checks that all filters share. Each filter's own test compares
// its picture with the plain form.

// All that a filter is given. Seeds run through the kinds of masks (period 6) and, with them, through the
// targets, the layer modes, boxes within the mask, across its edges and beside it, and targets smaller and
// larger than the mask. Every seventh mask is faint; on large ones there are a few squares far apart.
struct FilterScene {
    unsigned seed;
    Zvex::ZvBitmap mask, target, other;
    Zvex::ZvRect box;
    int layerMode;
    bool both;  // passes `other` too

    explicit FilterScene(unsigned mSeed, int width = 30, int height = 22) : seed(mSeed) {
        Random random(seed);
        mask = makeMask(kAllMasks[seed % kAllMasks.size()], width, height, random);
        for (int i = 0; i < width * height; ++i) {
            if (seed % 7 == 1) mask.pixels[i] = std::min<uint8_t>(mask.pixels[i], 1);
            const bool inSquare = i % width / 12 % 14 == 4 && i / width / 12 % 11 == 9;
            if (width * height >= 80000 && !inSquare) mask.pixels[i] = 0;
        }
        box = Zvex::ZvRect(0, 0, width, height);
        if (random.below(3) != 0) {
            box.left = random.between(-8, width + 2);
            box.top = random.between(-8, height + 2);
            box.right = random.between(box.left + 1, std::max(box.left + 1, width + 6));
            box.bottom = random.between(box.top + 1, std::max(box.top + 1, height + 6));
        }
        layerMode = random.below(2);
        both = random.below(2) == 0;
        const int grow = random.between(-5, 5);
        target = makeTarget(kAllTargets[static_cast<size_t>(random.below(3))], width + grow, height + grow,
                            random);
        other = makeTarget(TargetKind::Partly, width, height, random);
    }

    int draw(Zvex::ZvECore& filter) {
        Zvex::ZvECore::ParamPostProcessing param = record();
        return filter.doPostProcessing(&param);
    }

    Zvex::ZvECore::ParamPostProcessing record() {
        Zvex::ZvECore::ParamPostProcessing param;
        param.target = &target;
        param.mask = &mask;
        param.textRect = &box;
        param.layerMode = layerMode;
        param.otherLayer = both ? &other : nullptr;
        return param;
    }

    // Whether the pictures are those of another scene.
    testing::AssertionResult sameAs(const FilterScene& expected) const {
        const testing::AssertionResult same = samePixels(expected.target, target);
        return same ? samePixels(expected.other, other) << " on the other layer" : same;
    }
};

// Compares the filter, its settings made, with its plain form over the scenes of `count` seeds from `first`
// on, with the kernels of each instruction set of the machine: draw(scene) draws what is expected onto the
// scene's own pictures.
template <typename Draw>
void expectThePlainForm(Zvex::ZvECore& filter, unsigned first, unsigned count, Draw draw, int width = 30,
                        int height = 22) {
    for (unsigned seed = first; seed < first + count; ++seed) {
        FilterScene expected(seed, width, height);
        draw(expected);
        forEachCpuTarget([&] {
            FilterScene actual(seed, width, height);
            EXPECT_EQ(actual.draw(filter), 0);
            ASSERT_TRUE(actual.sameAs(expected)) << "seed " << seed;
        });
        if (testing::Test::HasFatalFailure()) return;
    }
}

// A filter with valid settings draws nothing if a part of the record is missing or empty, and survives boxes
// at the ends of the ints.
inline void expectNothingWithoutParts(Zvex::ZvECore& filter) {
    FilterScene scene(2);  // shapes
    scene.box = Zvex::ZvRect(0, 0, 30, 22);
    const FilterScene before(scene);
    Zvex::ZvBitmap empty;
    const auto drawWith = [&](Zvex::ZvBitmap* target, Zvex::ZvBitmap* mask, Zvex::ZvRect* box) {
        Zvex::ZvECore::ParamPostProcessing param = scene.record();
        param.target = target;
        if (target == &empty) param.otherLayer = nullptr;  // the other picture would be drawn on
        param.mask = mask;
        param.textRect = box;
        EXPECT_EQ(filter.doPostProcessing(&param), 0);
    };
    EXPECT_EQ(filter.doPostProcessing(nullptr), 0);
    for (Zvex::ZvBitmap* bad : {static_cast<Zvex::ZvBitmap*>(nullptr), &empty}) {
        drawWith(bad, &scene.mask, &scene.box);
        drawWith(&scene.target, bad, &scene.box);
    }
    drawWith(&scene.target, &scene.mask, nullptr);
    for (Zvex::ZvRect bad :
         {Zvex::ZvRect(8, 8, 2, 2), Zvex::ZvRect(2, 2, 2, 8), Zvex::ZvRect(2, 2, 8, 2),
          Zvex::ZvRect(INT_MIN, INT_MIN, INT_MAX, INT_MAX), Zvex::ZvRect(INT_MIN, 0, INT_MIN + 4, 4),
          Zvex::ZvRect(INT_MAX - 4, INT_MAX - 4, INT_MAX, INT_MAX), Zvex::ZvRect(0, 0, 65536, 65536)}) {
        drawWith(&scene.target, &scene.mask, &bad);
    }
    EXPECT_TRUE(scene.sameAs(before));
}

// If any of its allocations fails, the filter leaves the pictures unchanged.
inline void expectUntouchedWithoutMemory(Zvex::ZvECore& filter) {
    FilterScene scene(2), before(2);
    scene.box = Zvex::ZvRect(0, 0, 30, 22);
    forEachFailingAllocation([&](bool fails) {
        std::memcpy(scene.target.pixels, before.target.pixels, before.target.byteCount());
        std::memcpy(scene.other.pixels, before.other.pixels, before.other.byteCount());
        EXPECT_EQ(scene.draw(filter), 0);
        EXPECT_EQ(bool(scene.sameAs(before)), fails);
    });
}

#endif  // ZVEX_TESTS_EFFECT_FILTERSCENE_H_
