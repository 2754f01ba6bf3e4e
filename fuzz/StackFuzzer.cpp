// SPDX-License-Identifier: Apache-2.0
// Runs a program of operations on an effect stack: layers are added, changed and removed, pictures are drawn
// in both ways, renderings are abandoned or composed of any operations in any order. Both ways must give the
// same picture, and so must a copy of the stack.
#include <memory>
#include <string>
#include <vector>

#include "effect/ZvEffect.h"
#include "fuzz/Input.h"
#include "raster/CpuTarget.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"
#include "tests/effect/LayerSettings.h"
#include "tests/effect/StackPictures.h"

namespace {

using namespace Zvex;

// Any numbers. The adders do not limit the size of reliefs. A relief of thousands of pixels takes seconds; a
// much larger one does not fit, and nothing is drawn.
LayerSettings readSettings(fuzz::Input& input, int type, const ZvBitmap& pattern) {
    LayerSettings s;
    float* const numbers[] = {&s.size,     &s.distance,      &s.angle, &s.opacity,
                              &s.altitude, &s.shadowOpacity, &s.scale};
    for (float* number : numbers) *number = input.number();
    const bool relief = type == ZV_EFFECT_BEVEL || type == ZV_EFFECT_EMBOSS;
    if (relief && s.size > 50 && s.size < 32768) s.size = 50;
    s.depth = s.distance;
    s.highlightOpacity = s.shadowOpacity;
    s.color = input.word();
    s.highlight = input.word();
    for (int* choice : {&s.style, &s.position, &s.technique, &s.soften})
        *choice = input.byte() < 240 ? input.between(0, 3) : input.integer();
    s.strokeKind = s.style;
    s.direction = s.position;
    s.stops.resize(static_cast<size_t>(input.byte() < 250 ? input.between(0, 4) : input.between(0, 300)));
    for (ZvGradient& stop : s.stops) stop = {input.word(), input.number(), input.number()};
    s.pattern = pattern;
    return s;
}

std::string keyOf(ZvEffect& stack) {
    const std::unique_ptr<char[]> key(stack.getMapKey());
    return key.get();
}

class StackAndModel {
public:
    explicit StackAndModel(fuzz::Input& input) : mInput(input) {
        mWidth = input.between(0, 90);
        mHeight = input.between(0, 90);
        for (ZvBitmap& pattern : mPatterns) pattern = readBitmap(12, 4);
    }

    void step() {
        const int kind = mInput.between(0, 31);
        if (kind <= 15) addLayer();
        if (kind == 16) mStack.removeEffect(mInput.between(-1, 12));
        if (kind == 17) mStack.setTextOpacity(mInput.number());
        if (kind == 18) mStack.clearTextOpacity();
        if (kind == 19) mStack.cleanAllEffect();
        if (kind >= 20 && kind <= 24) addLine();
        if (kind == 25) mLines.clear();
        if (kind >= 26 && kind <= 28) callAnything();
        if (kind >= 29 && mDrawn++ < 2) compare();
    }

    void compare() {
        ZvEffect copy(mStack);
        ZVEX_FUZZ_CHECK(mStack.hasEffect(ZV_EFFECT_PATTERN) ||  // its bitmap's address is in the key
                        keyOf(mStack) == keyOf(copy));
        if (!mStack.textRectReset) {  // the box of an abandoned rendering is part of the next one's
            copy.textRect = mStack.textRect;
            copy.textRectReset = false;
            checkSame(layered(copy), pictured(mStack));
        }
        const ZvBitmap expected = layered(copy);
        if (mInput.flag()) checkSame(expected, layered(mStack));
        checkSame(expected, pictured(mStack));
        Zvex::limitCpuTarget(static_cast<CpuTarget>(mInput.between(0, 2)));
        checkSame(expected, pictured(copy));
        Zvex::limitCpuTarget(CpuTarget::Avx512);
    }

private:
    void addLayer() {
        const int type = kLayerTypes[mInput.between(0, kLayerKinds - 1)];
        const ZvBitmap& pattern = mPatterns[mInput.byte() % 2];
        const int id = readSettings(mInput, type, pattern).addTo(mStack, type);
        ZVEX_FUZZ_CHECK(mStack.getEffect(type) != nullptr && mStack.getEffect(type)->getId() == id);
    }

    ZvBitmap readBitmap(int most, unsigned depth) {
        const int width = mInput.between(0, most), height = mInput.between(0, most);
        ZvBitmap bitmap(static_cast<unsigned>(width), static_cast<unsigned>(height), depth);
        if (bitmap.pixels != nullptr) mInput.fill(bitmap.pixels, bitmap.byteCount());
        return bitmap;
    }

    void addLine() {
        Line line;
        line.coverage = readBitmap(60, 1);
        const bool far = mInput.byte() < 10;
        line.x = far ? mInput.integer() : mInput.between(-40, 100);
        line.y = far ? mInput.integer() : mInput.between(-40, 100);
        if (mLines.size() < 4) mLines.push_back(line);
    }

    // Operations in any order, on pictures and masks of any size.
    void callAnything() {
        ZvBitmap pictures[] = {readBitmap(40, 4), readBitmap(60, 4), readBitmap(9, 1)};
        const int count = mInput.between(0, 14);
        for (int i = 0; i < count; ++i) call(pictures);
        mStack.setDstBitmap(nullptr);
    }

    void call(ZvBitmap* pictures) {
        const int kind = mInput.between(0, 15);
        ZvBitmap* picture = &pictures[mInput.between(0, 2)];
        const int a = mInput.between(-1, 60), b = mInput.between(-1, 60);
        if (kind <= 1) mStack.initPicture(picture);
        if (kind == 2) mStack.initEffect(a, b);
        if (kind == 3 || kind == 4) mStack.setDstBitmap(a < 0 ? nullptr : picture);
        if (kind == 5 || kind == 6) {
            delete mStack.getSrcBitmap();
            mStack.setSrcBitmap(a < 0 ? nullptr : new ZvBitmap(readBitmap(60, a == 0 ? 4 : 1)));
        } else if (kind == 7) {
            // Callers may read and write the whole mask.
            ZvBitmap* mask = mStack.getSrcBitmap();
            if (mask != nullptr && mask->pixels != nullptr) {
                for (size_t at = 0; at < mask->byteCount(); ++at) mask->pixels[at] ^= mask->pixels[at] > 7;
            }
        }
        if (kind == 8 || kind == 9) drawLines(mStack, mLines);
        if (kind == 10) mStack.renderEffectLayer(a, b, nullptr);
        if (kind == 11) mStack.doEffectPostProcessing();
        if (kind == 12) mStack.compositeLayers(a < 0 ? nullptr : picture);
        if (kind == 13) mStack.drawPicture(a < 30 ? PixelOrder::RedFirst : PixelOrder::BlueFirst);
        if (kind == 14) *mStack.getTextRect() = ZvRect(a, b, a + mInput.between(-2, 90), mInput.integer());
        if (kind == 15) mInput.flag() ? mStack.releaseBitmap() : addLayer();
    }

    ZvBitmap layered(ZvEffect& stack) { return inLayers(stack, mWidth, mHeight, mLines); }

    ZvBitmap pictured(ZvEffect& stack) {
        const PixelOrder order = mInput.flag() ? PixelOrder::BlueFirst : PixelOrder::RedFirst;
        ZvBitmap picture = asPicture(stack, mWidth, mHeight, mLines, order);
        if (order == PixelOrder::BlueFirst) ZvBlender::convertBGRAToARGB(&picture);
        return picture;
    }

    static void checkSame(const ZvBitmap& expected, const ZvBitmap& actual) {
        ZVEX_FUZZ_CHECK(expected.byteCount() == actual.byteCount());
        ZVEX_FUZZ_CHECK(expected.pixels == nullptr ||
                        std::memcmp(expected.pixels, actual.pixels, expected.byteCount()) == 0);
    }

    fuzz::Input& mInput;
    int mWidth, mHeight;
    ZvBitmap mPatterns[2];
    ZvEffect mStack;
    std::vector<Line> mLines;
    int mDrawn = 0;  // pictures that were compared
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    StackAndModel both(input);
    for (int steps = 0; steps < 30 && input.left() > 0; ++steps) both.step();
    both.compare();
    return 0;
}
