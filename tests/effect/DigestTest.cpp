// SPDX-License-Identifier: Apache-2.0
// Digests of pictures and layer keys, the same wherever the library is built: with another compiler, level of
// optimisation, processor, instruction set or pointer width.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "effect/ZvEffect.h"
#include "tests/CpuTargets.h"
#include "tests/effect/RandomLayer.h"
#include "tests/effect/StackPictures.h"
#include "tests/effect/TestPictures.h"

namespace Zvex {
namespace {

// FNV-1a (Fowler, Noll and Vo, 1991), 64 bits.
class Digest {
public:
    void add(const void* data, size_t size) {
        const auto* bytes = static_cast<const unsigned char*>(data);
        for (size_t i = 0; i < size; ++i) mValue = (mValue ^ bytes[i]) * 0x100000001B3u;
    }
    uint64_t value() const { return mValue; }

private:
    uint64_t mValue = 0xCBF29CE484222325u;
};

// Pictures of the kind, alone and with layers of other kinds.
uint64_t picturesOf(int kind) {
    Digest digest;
    for (unsigned seed = 0; seed < 40; ++seed) {
        Random random(seed * kLayerKinds + static_cast<unsigned>(kind));
        const int width = random.between(20, 150), height = random.between(20, 90);
        ZvEffect stack;
        addLayer(stack, kind, random);
        if (seed % 2 == 1) {
            for (int more = random.between(1, 3); more > 0; --more)
                addLayer(stack, random.below(kLayerKinds), random);
        }
        if (seed % 5 == 4) stack.setTextOpacity(0.4f);
        const uint32_t color = random.color();
        stack.addText(random.below(2) != 0 ? color | 0xFF000000u : color);
        const MaskKind mask = kAllMasks[static_cast<size_t>(random.below(3))];
        const int lineWidth = random.between(1, width), lineHeight = random.between(1, height);
        const int x = random.between(-5, 20), y = random.between(-5, 20);
        const std::vector<Line> lines = {{x, y, makeMask(mask, lineWidth, lineHeight, random)}};
        const ZvBitmap picture = asPicture(stack, width, height, lines, PixelOrder::BlueFirst);
        digest.add(picture.pixels, picture.byteCount());
    }
    return digest.value();
}

// The keys of the same layers. The pattern's key contains its bitmap's address, so it is left out.
uint64_t keysOf(int kind) {
    Digest digest;
    for (unsigned seed = 0; seed < 200; ++seed) {
        Random random(seed * kLayerKinds + static_cast<unsigned>(kind));
        ZvEffect stack;
        addLayer(stack, kind, random);
        const std::unique_ptr<char[]> key(stack.getMapKey(random.color()));
        digest.add(key.get(), std::strlen(key.get()) + 1);
    }
    return digest.value();
}

TEST(Digests, PicturesAreTheSameEverywhere) {
    constexpr uint64_t kExpected[kLayerKinds] = {0x501E257D0B862A3D, 0x9A87C029AED8568F, 0x43F8604B17860528,
                                                 0x0583934238D9B912, 0x4553286ED45B215F, 0x5FDCEDE921A2287D,
                                                 0x47A188A3C0FA0D54, 0x5992CD1CF55E02B5, 0x1AB71EC995A56AF4,
                                                 0x326BF0E4286EA4CF, 0x68AB013E2EB9E4FA};
    forEachCpuTarget([&] {
        for (int kind = 0; kind < kLayerKinds; ++kind) EXPECT_EQ(picturesOf(kind), kExpected[kind]) << kind;
    });
}

TEST(Digests, KeysAreTheSameEverywhere) {
    constexpr uint64_t kExpected[kLayerKinds] = {
        0xBBA6D898310DF1F9, 0x9B0A0C6E467C301B, 0x778C6C0C59F3BD74, 0x1247E2505621E3A4,
        0x4345F03F22D8D9EC, 0x8396A4CF21F846F3, 0xDCE43FBF2B14BFBB, 0,
        0x90DF5E0195AD3F35, 0x35417A6D3FD734BE, 0x14F5C103A7B9D400};
    for (int kind = 0; kind < kLayerKinds; ++kind) {
        if (kind != 7) {
            EXPECT_EQ(keysOf(kind), kExpected[kind]) << kind;
        }
    }
}

}  // namespace
}  // namespace Zvex
