// SPDX-License-Identifier: Apache-2.0
// An effect stack through a program of operations: layers come, change and go, pictures are drawn in both
// ways, renderings are given up halfway or put together of any operations in any order. Both ways give the
// same picture, and so does a fresh stack with the same layers.
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "effect/ZvECoreBase.h"
#include "effect/ZvEffect.h"
#include "effect/ZvGlyph.h"
#include "fuzz/Input.h"
#include "raster/CpuTarget.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"
#include "tests/effect/LayerSettings.h"

namespace {

using namespace Zvex;

using Adder = std::function<int(ZvEffect&)>;

// The layers of the stack in order of creation, each as the call that adds it.
struct Layer {
    int type, id;
    Adder add;
};

struct Line {
    int x, y;
    ZvBitmap coverage;
};

// A layer that is none of the library's own: writes on what it is given.
class ForeignLayer : public ZvECoreBase {
public:
    explicit ForeignLayer(int type) { style = type; }
    int render(ParamRender* param) override {
        mark(param->target);
        return 1;
    }
    int doPostProcessing(ParamPostProcessing* param) override {
        mark(param->target);
        mark(param->otherLayer);
        ZVEX_FUZZ_CHECK(param->rows == nullptr && param->drawnArea == nullptr);
        return 0;
    }
    void setProperty(ZvProperty*) override {}
    ZvProperty* getProperty() override { return nullptr; }

private:
    static void mark(ZvBitmap* picture) {
        if (picture == nullptr || picture->pixels == nullptr) return;
        ++picture->pixels[0];
        ++picture->pixels[picture->byteCount() - 1];
    }
};

// Any numbers. The adders do not limit the size of reliefs. One of thousands of pixels takes as many seconds;
// beyond those it does not fit, and nothing is drawn.
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
        for (ZvBitmap& pattern : mPatterns) {
            pattern = readBitmap(12, 4);
        }
    }

    void step() {
        const int kind = mInput.between(0, 31);
        if (kind <= 15) {
            addLayer();
        } else if (kind == 16) {
            removeLayer();
        } else if (kind == 17) {
            mStack.setTextOpacity(mTextOpacity = mInput.number());
        } else if (kind == 18) {
            mStack.clearTextOpacity();
            mTextOpacity = 1;
        } else if (kind == 19) {
            mStack.cleanAllEffect();
            mLayers.clear();
        } else if (kind <= 24) {
            addLine();
        } else if (kind == 25) {
            mInput.byte() < 80 ? mLines.clear() : callAnything();
        } else if (kind <= 28) {
            interrupt();
        } else if (mDrawn++ < 2) {
            compare();
        }
    }

    void compare() {
        ZVEX_FUZZ_CHECK(mStack.effects.size() == mLayers.size());
        ZvEffect fresh;
        fresh.setTextOpacity(mTextOpacity);
        for (const Layer& layer : mLayers) layer.add(fresh);
        fresh.textAlpha = mStack.textAlpha;  // that of the last text added, which may be gone
        ZVEX_FUZZ_CHECK(fresh.getLeftOffset() == mStack.getLeftOffset());
        ZVEX_FUZZ_CHECK(fresh.getTopOffset() == mStack.getTopOffset());
        ZVEX_FUZZ_CHECK(fresh.getRightOffset() == mStack.getRightOffset());
        ZVEX_FUZZ_CHECK(fresh.getBottomOffset() == mStack.getBottomOffset());
        ZvEffect copy(mStack);
        ZVEX_FUZZ_CHECK(mStack.hasEffect(ZV_EFFECT_PATTERN) ||  // whose bitmap's address is in the key
                        (keyOf(mStack) == keyOf(fresh) && keyOf(mStack) == keyOf(copy)));
        if (!mStack.textRectReset) {  // the box of a rendering that was given up is part of the next one's
            fresh.textRect = copy.textRect = mStack.textRect;
            fresh.textRectReset = copy.textRectReset = false;
            const ZvBitmap expected = inLayers(copy);
            checkSame(expected, asPicture(mStack));
            checkSame(expected, asPicture(fresh));
        }
        const ZvBitmap expected = inLayers(fresh);
        const bool layersFirst = mInput.flag();
        if (layersFirst) checkSame(expected, inLayers(mStack));
        checkSame(expected, asPicture(mStack));
        if (!layersFirst) checkSame(expected, inLayers(mStack));
        checkSame(expected, asPicture(copy));
        Zvex::limitCpuTarget(static_cast<CpuTarget>(mInput.between(0, 2)));
        checkSame(expected, asPicture(fresh));
        Zvex::limitCpuTarget(CpuTarget::Avx512);
    }

private:
    void addLayer() {
        const int type = kLayerTypes[mInput.between(0, kLayerKinds - 1)];
        const ZvBitmap& pattern = mPatterns[mInput.byte() % 2];
        const auto settings = std::make_shared<LayerSettings>(readSettings(mInput, type, pattern));
        const Adder add = [settings, type](ZvEffect& stack) { return settings->addTo(stack, type); };
        const int id = add(mStack);
        ZVEX_FUZZ_CHECK(id >= 0 && mStack.getEffect(type) != nullptr &&
                        mStack.getEffect(type)->getId() == id);
        for (Layer& layer : mLayers) {
            if (layer.type != type) continue;
            ZVEX_FUZZ_CHECK(layer.id == id);  // keeps its place
            layer.add = add;
            return;
        }
        mLayers.push_back({type, id, add});
    }

    void removeLayer() {
        const int id = mInput.between(-1, 12);
        size_t at = 0;
        while (at < mLayers.size() && mLayers[at].id != id) ++at;
        ZVEX_FUZZ_CHECK(mStack.removeEffect(id) == (at < mLayers.size()));
        if (at < mLayers.size()) mLayers.erase(mLayers.begin() + static_cast<ptrdiff_t>(at));
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

    // A rendering that is given up, or in which layers come and go.
    void interrupt() {
        ZvBitmap picture = readBitmap(40, 4);
        const int stop = mInput.between(0, 3);
        const bool asPicture = mInput.flag();
        if (asPicture) {
            mStack.initPicture(&picture);
        } else {
            // The picture need not be as large as the mask.
            const int width = mInput.between(-1, 60), height = mInput.between(-1, 60);
            mStack.initEffect(width, height);
            if (stop != 0) mStack.setDstBitmap(&picture);
        }
        if (stop >= 1) drawLines(mStack);
        if (mInput.flag()) addLayer();
        if (mInput.flag()) removeLayer();
        if (stop >= 2 && asPicture) mStack.drawPicture(PixelOrder::RedFirst);
        if (stop >= 2 && !asPicture) mStack.doEffectPostProcessing();
        if (stop >= 3 && !asPicture) mStack.compositeLayers(&picture);
        if (mInput.flag()) mStack.releaseBitmap();
        mStack.setDstBitmap(nullptr);
    }

    // Operations in any order, on pictures and masks of any size.
    void callAnything() {
        ZvBitmap pictures[] = {readBitmap(40, 4), readBitmap(60, 4), readBitmap(9, 1)};
        ZvECore* foreign = nullptr;
        if (mInput.byte() < 80) {
            foreign = new ForeignLayer(mInput.between(1, 14));
            mStack.effects.insert(
                mStack.effects.begin() + mInput.between(0, static_cast<int>(mLayers.size())), foreign);
        }
        const int count = mInput.between(0, 14);
        for (int i = 0; i < count; ++i) call(pictures, foreign == nullptr);
        mStack.setDstBitmap(nullptr);
        mStack.releaseEffect(foreign);
    }

    // An adder finds a foreign layer of its type and would hand it the settings.
    void call(ZvBitmap* pictures, bool mayAdd) {
        const int kind = mInput.between(0, 15);
        ZvBitmap* picture = &pictures[mInput.between(0, 2)];
        const int a = mInput.between(-1, 60), b = mInput.between(-1, 60);
        if (kind <= 1) {
            mStack.initPicture(picture);
        } else if (kind == 2) {
            mStack.initEffect(a, b);
        } else if (kind <= 4) {
            mStack.setDstBitmap(a < 0 ? nullptr : picture);
        } else if (kind <= 6) {
            delete mStack.getSrcBitmap();
            mStack.setSrcBitmap(a < 0 ? nullptr : new ZvBitmap(readBitmap(60, a == 0 ? 4 : 1)));
        } else if (kind == 7) {
            // All of a mask may be read and written.
            ZvBitmap* mask = mStack.getSrcBitmap();
            if (mask != nullptr && mask->pixels != nullptr) {
                for (size_t at = 0; at < mask->byteCount(); ++at) mask->pixels[at] ^= mask->pixels[at] > 7;
            }
        } else if (kind <= 9) {
            drawLines(mStack);
        } else if (kind == 10) {
            mStack.renderEffectLayer(a, b, nullptr);
        } else if (kind == 11) {
            mStack.doEffectPostProcessing();
        } else if (kind == 12) {
            mStack.compositeLayers(a < 0 ? nullptr : picture);
        } else if (kind == 13) {
            mStack.drawPicture(a < 30 ? PixelOrder::RedFirst : PixelOrder::BlueFirst);
        } else if (kind == 14) {
            *mStack.getTextRect() = ZvRect(a, b, a + mInput.between(-2, 90), mInput.integer());
        } else {
            mInput.flag() || !mayAdd ? mStack.releaseBitmap() : addLayer();
        }
    }

    void drawLines(ZvEffect& stack) {
        for (Line& line : mLines) {
            ZvGlyph glyph;
            glyph.pixels = line.coverage.pixels;
            glyph.width = static_cast<uint16_t>(line.coverage.width);
            glyph.height = static_cast<uint16_t>(line.coverage.height);
            stack.renderEffectLayer(line.x, line.y, &glyph);
        }
    }

    ZvBitmap inLayers(ZvEffect& stack) {
        ZvBitmap picture(static_cast<unsigned>(mWidth), static_cast<unsigned>(mHeight), 4);
        stack.initEffect(mWidth, mHeight);
        stack.setDstBitmap(&picture);
        drawLines(stack);
        stack.doEffectPostProcessing();
        stack.compositeLayers(&picture);
        return picture;
    }

    ZvBitmap asPicture(ZvEffect& stack) {
        ZvBitmap picture(static_cast<unsigned>(mWidth), static_cast<unsigned>(mHeight), 4);
        if (picture.pixels != nullptr) std::memset(picture.pixels, 0xA7, picture.byteCount());
        stack.initPicture(&picture);
        drawLines(stack);
        const bool blueFirst = mInput.flag();
        const ZvRect drawn = stack.drawPicture(blueFirst ? PixelOrder::BlueFirst : PixelOrder::RedFirst);
        if (blueFirst) ZvBlender::convertBGRAToARGB(&picture);
        for (int y = 0; y < mHeight; ++y) {
            for (int x = 0; x < mWidth; ++x) {
                if (x >= drawn.left && x < drawn.right && y >= drawn.top && y < drawn.bottom) continue;
                const uint8_t* pixel =
                    picture.pixels + 4 * (static_cast<size_t>(y) * picture.width + static_cast<size_t>(x));
                ZVEX_FUZZ_CHECK((pixel[0] | pixel[1] | pixel[2] | pixel[3]) == 0);
            }
        }
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
    std::vector<Layer> mLayers;
    std::vector<Line> mLines;
    float mTextOpacity = 1;
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
