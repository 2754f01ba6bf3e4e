// SPDX-License-Identifier: Apache-2.0
#include "effect/ZvEffect.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "effect/ZvECoreBase.h"
#include "raster/ZvBitmap.h"
#include "tests/effect/PropertyFields.h"
#include "tests/effect/StackPictures.h"
#include "tests/effect/TestPictures.h"
#include "tests/reference/BlenderReference.h"

namespace Zvex {
namespace {

using testing::ElementsAre;

// A layer of any type that records what happens to it. It does not own its settings.
class Recorder : public ZvECoreBase {
public:
    ZvProperty* settings;
    ParamInit init;
    std::vector<ParamPostProcessing> draws;
    ZvRect drawnBox;
    int* deleted = nullptr;

    explicit Recorder(int type, ZvProperty* mSettings = nullptr, int mId = -1) : settings(mSettings) {
        style = type;
        id = mId;
    }
    ~Recorder() override {
        if (deleted != nullptr) ++*deleted;
    }
    int initEffect(ParamInit* param) override {
        init = *param;
        return 1;
    }
    int doPostProcessing(ParamPostProcessing* param) override {
        draws.push_back(*param);
        drawnBox = *param->textRect;
        return 0;
    }
    void setProperty(ZvProperty*) override {}
    ZvProperty* getProperty() override { return settings; }
};

Recorder* addRecorder(ZvEffect& stack, int type, ZvProperty* settings = nullptr) {
    Recorder* layer = new Recorder(type, settings, stack.getNewEffectId());
    stack.effects.push_back(layer);
    return layer;
}

std::vector<int> typesOf(const std::vector<ZvECore*>& list) {
    std::vector<int> types;
    for (ZvECore* layer : list) types.push_back(layer->getStyle());
    return types;
}

std::string keyOf(ZvEffect& stack) {
    const std::unique_ptr<char[]> key(stack.getMapKey());
    return key.get();
}

using Sides = std::array<int, 4>;  // left, top, right, bottom

Sides sidesOf(const ZvRect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

// --- Layers

TEST(EffectStack, ALaterAddReplacesTheSettingsInPlace) {
    ZvEffect stack;
    const std::vector<int> ids = {stack.addStrokeText(3, 0xFF000000, 1, 0, 1), stack.addText(0xFF00FF00),
                                  stack.addStrokeText(5, 0xFF000000, 1, 0, 2),
                                  stack.addEffect(77, ZV_EFFECT_STROKE, nullptr)};
    EXPECT_EQ(ids, (std::vector<int>{0, 1, 0, 0}));
    EXPECT_THAT(typesOf(stack.effects), ElementsAre(10, 12));
    EXPECT_TRUE(stack.hasEffect(10));
    EXPECT_EQ(fieldsOf(*static_cast<ZvStrokeProperty*>(stack.getEffect(10)->getProperty())),
              fields(5, 0xFF000000, 1, 0, 2));
}

TEST(EffectStack, TypesWithoutAClassAreRefusedAndTakeNoId) {
    ZvEffect stack;
    for (int type : {INT_MIN, -1, 0, 9, 13, 14, INT_MAX}) {
        EXPECT_EQ(stack.createEffect(-1, type), nullptr) << type;
        EXPECT_EQ(stack.addEffect(type, nullptr), -1) << type;
    }
    EXPECT_EQ(stack.nextEffectId, 0);
    EXPECT_TRUE(stack.effects.empty());
}

TEST(EffectStack, ACopyHasItsOwnLayersAndNoRendering) {
    ZvEffect stack;
    stack.addEffect(7, ZV_EFFECT_TEXT, nullptr);
    stack.addText(0x80FF8001, 0.5f);
    stack.addStrokeText(3, 0xFF000000, 1, 9, 0);
    stack.setTextOpacity(0.25f);
    stack.textColor = 5;
    stack.initEffect(8, 8);
    ZvEffect copy(stack);
    EXPECT_EQ(keyOf(copy), keyOf(stack));
    EXPECT_NE(copy.effects[1]->getProperty(), stack.effects[1]->getProperty());
    EXPECT_EQ(
        fields(copy.effects[0]->getId(), copy.nextEffectId, copy.textOpacity, copy.textColor, copy.textAlpha),
        fields(7, 1, 0.25f, 5, 0x80));
    EXPECT_TRUE(copy.textRectReset && copy.layers.empty() && copy.mask == nullptr && copy.back == nullptr);
}

TEST(EffectStack, IdsCountUpAndChosenOnesDoNotMoveTheCounter) {
    ZvEffect stack;
    EXPECT_EQ(stack.addEffect(40, ZV_EFFECT_TEXT, nullptr), 40);
    EXPECT_EQ(stack.addEffect(-7, ZV_EFFECT_STROKE, nullptr), 0);
    EXPECT_EQ(stack.getNewEffectId(), 1);
    EXPECT_TRUE(stack.removeEffect(0));
    EXPECT_EQ(stack.addEffect(ZV_EFFECT_STROKE, nullptr), 2);
    stack.nextEffectId = -5;
    EXPECT_EQ(stack.getNewEffectId(), 0);
    EXPECT_EQ(stack.nextEffectId, 1);
    stack.nextEffectId = INT_MAX;
    EXPECT_EQ(stack.getNewEffectId(), INT_MAX);
    EXPECT_EQ(stack.getNewEffectId(), INT_MAX);
    stack.cleanAllEffect();
    EXPECT_EQ(stack.getNewEffectId(), 0);
}

TEST(EffectStack, ARemovedLayerIsGoneFromTheRenderingUnderWay) {
    ZvEffect stack;
    int deleted = 0;
    addRecorder(stack, 1);
    addRecorder(stack, 3)->deleted = &deleted;
    addRecorder(stack, 12);
    stack.initEffect(4, 4);
    EXPECT_FALSE(stack.removeEffect(9));
    EXPECT_TRUE(stack.removeEffect(1));
    EXPECT_EQ(deleted, 1);
    EXPECT_THAT(typesOf(stack.effects), ElementsAre(1, 12));
    stack.renderEffectLayer(0, 0, nullptr);
    EXPECT_THAT(typesOf(stack.layers), ElementsAre(12, 1));

    stack.releaseEffect(stack.effects[0]);
    EXPECT_THAT(typesOf(stack.effects), ElementsAre(12));
    stack.releaseEffect(nullptr);
    stack.releaseEffect(new Recorder(5));  // not in the stack
    stack.releaseEffect();
    EXPECT_TRUE(stack.effects.empty());
    EXPECT_TRUE(stack.layers.empty());
    stack.renderEffectLayer(0, 0, nullptr);
}

TEST(EffectStack, TextOpacityIsClampedAndCountsAsAnEffect) {
    ZvEffect stack;
    const float cases[][2] = {{0.5f, 0.5f}, {-1, 0}, {2, 1}, {std::numeric_limits<float>::quiet_NaN(), 0}};
    for (const auto& [given, kept] : cases) {
        EXPECT_TRUE(stack.getTextOpacity() == 1 && !stack.hasEffects());
        stack.setTextOpacity(given);
        EXPECT_EQ(stack.getTextOpacity(), kept);
        EXPECT_EQ(stack.hasEffects(), kept < 1);
        stack.clearTextOpacity();
    }
    stack.addText(0);
    EXPECT_TRUE(stack.hasEffects());
}

// --- Keys

TEST(EffectStack, KeyJoinsTheLayersInOrderOfCreation) {
    ZvEffect stack;
    EXPECT_EQ(keyOf(stack), "");
    stack.addStrokeText(3, 0xFF000000, 1, 0, 1);
    stack.addText(0xFF123456);
    const std::string key =
        "K\x83\x8f\x8f\x80\x80\x80\x80\x80\x80\x80\x81"
        "T\x8f\x8f\x81\x82\x83\x84\x85\x86";
    EXPECT_EQ(keyOf(stack), key);
    addRecorder(stack, 1);  // without settings: nothing to write
    addRecorder(stack, 4, stack.effects[1]->getProperty());
    EXPECT_EQ(keyOf(stack), key + key.substr(12));
}

// --- Margins

TEST(EffectStack, MarginsAreTheWidestLayersSideBySide) {
    ZvEffect stack;
    const auto margins = [&] {
        return Sides{stack.getLeftOffset(), stack.getTopOffset(), stack.getRightOffset(),
                     stack.getBottomOffset()};
    };
    EXPECT_EQ(margins(), (Sides{0, 0, 0, 0}));
    stack.addOuterShadowText(0, 7, 0, 0, 1);
    EXPECT_EQ(margins(), (Sides{7, 0, 0, 0}));
    stack.addOuterGlowText(5, 0, 1, 0, nullptr);
    EXPECT_EQ(margins(), (Sides{7, 5, 5, 5}));
    stack.removeEffect(0);
    EXPECT_EQ(margins(), (Sides{5, 5, 5, 5}));
}

// --- Order and targets

// Types 1 to 13 in that order, each a recorder; the emboss, which decides the layer mode, only if wanted.
// Which types draw in which order, into the back picture, and of them into the front one as well.
TEST(EffectStack, OrderAndTargetsOfEveryType) {
    using Types = std::vector<int>;
    const struct {
        int bevelStyle, stroke, oldStroke;  // the strokes' positions
        float opacity;
        bool emboss;
        int layerMode;
        Types order, inBack, inBoth;
    } rows[] = {
        // One picture: over the text the newest first, the text, under it the newest first.
        {0, 1, 2, 1, false, 0, {11, 9, 8, 7, 4, 2, 12, 13, 10, 5, 3, 1}, {}, {}},
        {1, 2, 1, 1, false, 0, {11, 10, 8, 7, 5, 4, 2, 12, 13, 9, 3, 1}, {}, {}},
        {1, 7, 1, 1, false, 0, {11, 10, 8, 7, 5, 4, 2, 12, 13, 9, 3, 1}, {}, {}},  // drawn as an inside
                                                                                   // stroke
        {0, 1, 2, 0.99f, false, 1, {13, 11, 10, 9, 8, 7, 5, 4, 3, 2, 1, 12}, {1, 3, 13, 5, 10}, {}},
        {1, 0, 1, 1, false, 1, {13, 11, 10, 9, 8, 7, 5, 4, 3, 2, 1, 12}, {1, 3, 13, 10, 9}, {10}},
        {1, 2, 0, 1, false, 1, {13, 11, 10, 9, 8, 7, 5, 4, 3, 2, 1, 12}, {1, 3, 13, 9}, {9}},
        {1, 2, 2, 1, true, 1, {13, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 12}, {1, 3, 13, 6}, {6}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        ZvStrokeProperty stroke(1, 0, 1, 0, row.stroke), oldStroke(1, 0, 1, 0, row.oldStroke);
        ZvBevelProperty bevel(row.bevelStyle, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1);
        ZvEffect stack;
        for (int type = 1; type <= 13; ++type) {
            ZvProperty* settings = type == 5 ? &bevel : nullptr;
            if (type == 9) settings = &oldStroke;
            if (type == 10) settings = &stroke;
            if (type != ZV_EFFECT_EMBOSS || row.emboss) addRecorder(stack, type, settings);
        }
        stack.setTextOpacity(row.opacity);
        ZvBitmap picture(4, 5, 4);
        stack.initEffect(4, 5);
        EXPECT_EQ(stack.layerMode, row.layerMode);
        EXPECT_EQ(stack.back != nullptr, row.layerMode == 1);
        EXPECT_EQ(typesOf(stack.layers), row.order);
        stack.setDstBitmap(&picture);
        drawLines(stack, {{1, 1, ZvBitmap(2, 2, 1)}});
        stack.doEffectPostProcessing();
        Types inBack, inBoth;
        for (ZvECore* layer : stack.effects) {
            const auto& recorder = *static_cast<Recorder*>(layer);
            const auto& draw = recorder.draws.back();
            EXPECT_EQ(draw.target, draw.target == &picture ? &picture : stack.back);
            if (draw.target != &picture) inBack.push_back(layer->getStyle());
            if (draw.otherLayer == &picture) inBoth.push_back(layer->getStyle());
            EXPECT_EQ(draw.mask, stack.mask);
            EXPECT_EQ(draw.layerMode, row.layerMode);
            EXPECT_EQ((std::array{recorder.init.width, recorder.init.height, recorder.init.layerMode}),
                      (std::array{4, 5, row.layerMode}));
            EXPECT_EQ(sidesOf(recorder.drawnBox), (Sides{1, 1, 3, 3}));
        }
        EXPECT_THAT(inBack, testing::UnorderedElementsAreArray(row.inBack));
        EXPECT_EQ(inBoth, row.inBoth);
    }
}

// --- Rendering

TEST(EffectStack, GlyphsMergeIntoTheMaskAndItsBox) {
    ZvEffect stack;
    stack.addText(0xFF000000);
    stack.initEffect(6, 6);
    Random random(1);
    std::vector<Line> lines = {{1, 2, makeMask(MaskKind::Noise, 3, 3, random)},
                               {2, 3, makeMask(MaskKind::Noise, 4, 2, random)}};
    lines.push_back({-1, -1, lines[1].coverage});
    drawLines(stack, lines);
    EXPECT_EQ(sidesOf(*stack.getTextRect()), (Sides{-1, -1, 6, 5}));
    ZvBitmap expected(6, 6, 1);
    for (const Line& line : lines) {
        const ZvBitmap& from = line.coverage;
        reference::drawBitmap(line.x, line.y, &expected, from.pixels, static_cast<int>(from.width),
                              static_cast<int>(from.height), 0);
    }
    EXPECT_TRUE(samePixels(expected, *stack.mask));
    stack.doEffectPostProcessing();
    EXPECT_EQ(sidesOf(stack.textRect), (Sides{0, 0, 6, 5}));
    EXPECT_TRUE(stack.textRectReset);
    drawLines(stack, {{4, 4, lines[0].coverage}});
    EXPECT_EQ(sidesOf(stack.textRect), (Sides{4, 4, 7, 7}));
}

TEST(EffectStack, ABoxAtTheEndOfTheIntsDoesNotWrap) {
    ZvEffect stack;
    Recorder* layer = addRecorder(stack, 1);
    stack.initEffect(4, 4);
    const ZvBitmap coverage(5, 5, 1);
    drawLines(stack, {{INT_MAX - 2, INT_MAX, coverage}});
    EXPECT_EQ(sidesOf(stack.textRect), (Sides{INT_MAX - 2, INT_MAX, INT_MAX, INT_MAX}));
    drawLines(stack, {{INT_MIN, INT_MIN, coverage}});
    stack.doEffectPostProcessing();
    EXPECT_EQ(sidesOf(stack.textRect), (Sides{0, 0, 4, 4}));
    EXPECT_EQ(layer->draws.size(), 1u);
}

TEST(EffectStack, NoLayerRunsWithoutGlyphsInTheMask) {
    ZvEffect stack;
    Recorder* layer = addRecorder(stack, 1);
    const ZvBitmap coverage(3, 3, 1);
    for (const auto& [x, y] : {std::pair(4, 0), {0, 4}, {-3, 0}, {0, -3}, {100, 100}, {0, 0}}) {
        stack.initEffect(4, 4);
        drawLines(stack, {{x, y, coverage}});
        stack.doEffectPostProcessing();
    }
    stack.initEffect(4, 4);
    stack.doEffectPostProcessing();  // the box of the rendering before does not apply
    EXPECT_EQ(layer->draws.size(), 1u);
    // A box set by a caller applies to every rendering.
    *stack.getTextRect() = ZvRect(0, 0, 4, 9);
    for (int i = 0; i < 2; ++i) stack.doEffectPostProcessing();
    EXPECT_EQ(layer->draws.size(), 3u);
    EXPECT_EQ(sidesOf(stack.textRect), (Sides{0, 0, 4, 4}));
    stack.compositeLayers(nullptr);  // there is no mask any more
    drawLines(stack, {{0, 0, coverage}});
    stack.doEffectPostProcessing();
    EXPECT_EQ(layer->draws.size(), 3u);
}

// The text cuts off what layers in front filled beside the glyphs, but not the caller's own content.
TEST(EffectStack, TheTextAloneLeavesThePictureBesideIt) {
    ZvBitmap coverage(1, 1, 1);
    coverage.pixels[0] = 255;
    for (const bool stroked : {false, true}) {
        ZvEffect stack;
        stack.addText(0xFF102030);
        if (stroked) stack.addStrokeText(1, 0xFF506070, 1, 0, 2);
        stack.initEffect(2, 1);
        ZvBitmap picture(2, 1, 4);
        std::memset(picture.pixels, 0x80, picture.byteCount());
        stack.setDstBitmap(&picture);
        drawLines(stack, {{0, 0, coverage}});
        stack.doEffectPostProcessing();
        EXPECT_EQ(picture.pixels[3], 255);
        EXPECT_EQ(picture.pixels[7], stroked ? 0 : 0x80);
    }
}

TEST(EffectStack, SizesThatMakeNoBitmapDrawNothing) {
    ZvBitmap picture(4, 4, 4);
    for (const auto& [width, height] : {std::pair(-1, 5), {INT_MIN, INT_MIN}, {INT_MAX, INT_MAX}, {3, 0}}) {
        ZvEffect stack;
        stack.addText(0xFFFFFFFF);
        stack.initEffect(width, height);
        stack.setDstBitmap(&picture);
        drawLines(stack, {{0, 0, ZvBitmap(2, 2, 1)}});
        stack.doEffectPostProcessing();
        stack.compositeLayers(&picture);
    }
    EXPECT_TRUE(samePixels(ZvBitmap(4, 4, 4), picture));
}

// --- Renderings as a picture that something gets in the way of

struct Scene {
    std::vector<Line> lines{{7, 9, ZvBitmap(6, 6, 1)}};
    ZvBitmap picture{20, 30, 4};
    ZvEffect stack;

    explicit Scene(float textOpacity) {
        std::memset(lines[0].coverage.pixels, 200, 36);
        std::memset(picture.pixels, 0xA7, picture.byteCount());
        stack.setTextOpacity(textOpacity);
        stack.addText(0xC0FF8001);
        stack.addOuterShadowText(40, 5, 3, 0xFF0000FF, 1);
        // Fills memory, so that pixels nobody wrote are not zero by chance.
        ZvBitmap old(20, 30, 1);
        std::memset(old.pixels, 0x77, old.byteCount());
    }
    ZvBitmap whole() { return inLayers(stack, 20, 30, lines); }
};

TEST(EffectStack, APictureBecomesWholeWhateverComesInBetween) {
    using Step = void (*)(Scene&);
    const Step steps[] = {
        [](Scene& s) { EXPECT_EQ(s.stack.getSrcBitmap(), s.stack.mask); },
        [](Scene& s) { s.stack.setSrcBitmap(s.stack.getSrcBitmap()); },
        [](Scene& s) {
            std::memset(s.picture.pixels, 0, s.picture.byteCount());
            s.stack.setDstBitmap(&s.picture);
        },
        [](Scene& s) {
            ZvBitmap* copy = new ZvBitmap(*s.stack.getSrcBitmap());
            delete s.stack.mask;
            s.stack.mask = copy;
        },
    };
    for (const float opacity : {1.0f, 0.5f}) {
        const ZvBitmap expected = Scene(opacity).whole();
        for (size_t step = 0; step < std::size(steps); ++step) {
            for (const bool finishAsPicture : {true, false}) {
                Scene scene(opacity);
                scene.stack.initPicture(&scene.picture);
                drawLines(scene.stack, scene.lines);
                steps[step](scene);
                if (finishAsPicture) {
                    scene.stack.drawPicture(PixelOrder::RedFirst);
                } else {
                    scene.stack.doEffectPostProcessing();
                    scene.stack.compositeLayers(&scene.picture);
                }
                EXPECT_TRUE(samePixels(expected, scene.picture)) << step << finishAsPicture << opacity;
            }
        }
    }
}

TEST(EffectStack, AMaskNobodyDrewIsZeroedAndOnesOwnIsKept) {
    Scene scene(1);
    scene.stack.initPicture(&scene.picture);
    *scene.stack.getTextRect() = ZvRect(0, 0, 20, 12);  // a box set by hand has no line
    scene.stack.drawPicture(PixelOrder::RedFirst);
    EXPECT_TRUE(samePixels(ZvBitmap(20, 30, 4), scene.picture));

    scene.stack.initPicture(&scene.picture);
    delete scene.stack.getSrcBitmap();
    ZvBitmap* own = new ZvBitmap(60, 10, 1);  // of another size than the picture
    std::memset(own->pixels, 77, own->byteCount());
    ZvBitmap kept(*own);
    scene.stack.setSrcBitmap(own);
    drawLines(scene.stack, scene.lines);
    reference::drawBitmap(7, 9, &kept, scene.lines[0].coverage.pixels, 6, 6, 0);
    EXPECT_TRUE(samePixels(kept, *own));
    scene.stack.drawPicture(PixelOrder::RedFirst);
}

// Draws a pixel on the glyph and one beside it in each callback, on every picture it is given.
class Dotter : public Recorder {
public:
    using Recorder::Recorder;
    int render(ParamRender* param) override { return dot(param->target, 0); }
    int doPostProcessing(ParamPostProcessing* param) override {
        EXPECT_EQ(param->rows, nullptr);
        dot(param->target, 2);
        if (param->otherLayer != nullptr) dot(param->otherLayer, 4);
        return 0;
    }

private:
    static int dot(ZvBitmap* picture, int x) {
        for (const int at : {x, 10 * 20 + 8 + x}) std::memset(picture->pixels + 4 * at, 255, 4);
        return 1;
    }
};

// In both ways of rendering, they draw on the pictures that the layers see one after another.
TEST(EffectStack, LayersOfOtherClassesDrawAsTheyLike) {
    ZvStrokeProperty centered(4, 0xFF00FF00, 1, 0, 0);
    for (const float opacity : {1.0f, 0.5f}) {
        const ZvBitmap without = Scene(opacity).whole();
        for (const int type : {1, 4, 6, 10, 13}) {
            Scene scene(opacity);
            scene.stack.effects.push_back(new Dotter(type, type == 10 ? &centered : nullptr));
            const ZvBitmap expected = scene.whole();
            ZvRect drawn;
            const ZvBitmap picture =
                asPicture(scene.stack, 20, 30, scene.lines, PixelOrder::RedFirst, &drawn);
            EXPECT_EQ(sidesOf(drawn), (Sides{0, 0, 20, 30}));
            EXPECT_TRUE(samePixels(expected, picture)) << type << " " << opacity;
            EXPECT_FALSE(samePixels(without, picture)) << type << " " << opacity;
        }
    }
}

}  // namespace
}  // namespace Zvex
