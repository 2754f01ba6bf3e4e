// SPDX-License-Identifier: Apache-2.0
// Text objects as callers use them: text, font, paint, view, lines, colours and effects in any order and with
// any values; several renderings of one object while the system's fonts change. Each picture must equal that
// of a new object with the same settings, which draws its glyphs again.
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <minikin/LocaleList.h>
#include "fuzz/Fonts.h"
#include "fuzz/Input.h"
#include "platform/host/GlyphCache.h"
#include "raster/ZvBitmap.h"
#include "tests/effect/LayerSettings.h"
#include "tests/text/TextScene.h"

namespace {

using namespace Zvex;
using text_test::TextScene;

constexpr int64_t kMostPixels = 220 * 220;

// Adds each font under its name.
void addFonts() {
    for (const fuzz::Font& font : fuzz::fonts()) {
        char* const buffer = text_test::newBuffer(font.bytes);
        const auto size = static_cast<unsigned>(font.bytes.size());
        ZVEX_FUZZ_CHECK(
            FontManager::GetInstance()->AddMinikinFont(font.name.c_str(), buffer, size, 0, false));
    }
}

constexpr unsigned kAllFamilies = 0xFF;

// Makes the fonts whose bits are set families of the system.
void setFamilies(unsigned wanted) {
    static unsigned present = 0;
    if (present == wanted) return;
    present = wanted;
    std::vector<ZvFontFamily*> families;
    for (size_t i = 0; i < fuzz::fonts().size(); ++i) {
        if ((wanted >> i & 1) == 0) continue;
        families.push_back(text_test::makeFamily("", {fuzz::fonts()[i].name.c_str()}));
        families.back()->loaded = 1;
    }
    FontManager::GetInstance()->ClearFontFamilies();
    FontManager::GetInstance()->SetSystemFontFamilies(text_test::makeFamilies(families));
}

// The settings of an object, for giving them to another one.
struct Told {
    bool bold = false, italic = false, background = false;
    std::wstring text;
    std::string font;
    android::Paint paint;
    int32_t width = 64, height = 48, extraWidth = 0, extraHeight = 0, padding[4] = {}, gravity = ZvView::LEFT;
    uint32_t color = 0xFF000000, backgroundColor = 0;
    std::vector<ZvLineInfo> lines;
};

std::wstring readText(fuzz::Input& input) {
    std::wstring text;
    // Mostly few, so that short inputs have steps after them.
    const uint8_t length = input.byte();
    for (int i = length < 224 ? length % 8 : length - 216; i > 0; --i) {
        const uint8_t byte = input.byte();
        const std::u32string& known = fuzz::fonts()[byte % fuzz::fonts().size()].characters;
        if (byte < 32) {
            text += static_cast<wchar_t>(U" \n\u202E\u200F\u2067\u0301\u200D\uFE0F"[byte % 8]);
        } else {
            text += static_cast<wchar_t>(byte < 250 ? known[input.byte() % known.size()]
                                                    : input.word() >> input.byte() % 32);
        }
    }
    return text.substr(0, text.find(L'\0'));
}

// Text of unlimited size has unlimited pixels. Sizes that are drawn stay small here; sizes that cannot be
// drawn may be anything.
float readSize(fuzz::Input& input, float most) {
    const float value =
        input.byte() < 200 ? static_cast<float>(input.between(0, 255)) * most / 255 : input.number();
    return std::isfinite(value) && std::fabs(value) > most ? most : value;
}

// Changes one thing at a time, so that a picture kept for another paint is found.
void changePaint(fuzz::Input& input, android::Paint& paint) {
    static const char* const kFeatures[] = {"", "liga, -kern", "smcp, c2sc=1",
                                            "\"aalt\" 2, x,,=", "-liga[2:4], frac"};
    static const char* const kLocales[] = {"", "ja", "und-Arab,de-CH"};
    const int kind = input.between(0, 7);
    if (kind == 0) paint.setTextSize(readSize(input, 90));
    if (kind == 1) paint.setFlags(input.flag() ? 1 : input.word());
    if (kind == 2) paint.setColor(input.word());
    if (kind == 3) paint.setTextScaleX(readSize(input, 3));
    if (kind == 4) paint.setTextSkewX(readSize(input, 1));
    if (kind == 5) paint.setLetterSpacing(readSize(input, 4));
    if (kind == 6) paint.setFontFeatureSettings(input.pick(kFeatures));
    if (kind == 7) paint.setMinikinLocaleListId(minikin::registerLocaleList(input.pick(kLocales)));
}

std::vector<ZvLineInfo> readLines(fuzz::Input& input, int length) {
    std::vector<ZvLineInfo> lines(static_cast<size_t>(input.between(0, 4)));
    for (ZvLineInfo& line : lines) {
        const bool odd = input.byte() < 20;
        int32_t* const numbers[] = {&line.x,         &line.y,        &line.start,      &line.end,
                                    &line.rect.left, &line.rect.top, &line.rect.right, &line.rect.bottom};
        const int most[] = {60, 90, length, length, 60, 90, 120, 96};
        for (int i = 0; i < 8; ++i) *numbers[i] = odd ? input.integer() : input.between(0, most[i]);
        line.direction = input.between(-1, 1);
    }
    return lines;
}

void addEffect(ZvEffect& effect, fuzz::Input& input) {
    // Mostly small ones: pictures with large margins are not drawn.
    LayerSettings s(readSize(input, 12));
    s.depth = s.opacity = input.number();
    s.highlightOpacity = input.number();
    s.angle = 100 * s.size;
    s.distance = s.altitude = 90 * s.opacity;
    s.scale = s.size;
    s.color = input.word(), s.highlight = input.word();
    s.style = s.technique = input.between(0, 3), s.position = s.direction = input.between(0, 2);
    s.stops = {{s.color, s.opacity, 0}, {s.highlight, 1, s.highlightOpacity}};
    input.fill(s.pattern.pixels, s.pattern.byteCount());
    const int kind = input.between(0, kLayerKinds);
    if (kind < kLayerKinds - 1) {
        s.addTo(effect, kLayerTypes[kind]);
    } else if (kind == kLayerKinds) {
        effect.setTextOpacity(s.size);
    } else {
        effect.removeEffect(s.style);
    }
}

// Empty if the picture would be larger than a small view.
struct Size {
    int width = 0, height = 0;
};
Size sizeOf(const Told& told, ZvEffect& effect) {
    const int64_t width =
        int64_t{told.width} + effect.getLeftOffset() + effect.getRightOffset() + told.extraWidth;
    const int64_t height =
        int64_t{told.height} + effect.getTopOffset() + effect.getBottomOffset() + told.extraHeight;
    if (width < -9 || height < -9 || width > kMostPixels || height > kMostPixels ||
        width * height > kMostPixels)
        return {};
    return {static_cast<int>(width), static_cast<int>(height)};
}

// Fills in the view before every rendering.
std::vector<uint32_t> render(TextScene& scene, const Told& told) {
    ZvView& view = scene.view();
    view.SetSize(told.width, told.height);
    view.SetPadding(told.padding[0], told.padding[1], told.padding[2], told.padding[3]);
    view.gravity = told.gravity;
    const Size size = sizeOf(told, scene.effect());
    view.SetBitmapWidth(std::max(size.width, 0));
    view.SetBitmapHeight(std::max(size.height, 0));
    const uint32_t* pixels = scene.object.RenderTextEffect(size.width, size.height);
    ZVEX_FUZZ_CHECK((pixels != nullptr) == (size.width > 0 && size.height > 0));
    if (pixels == nullptr) return {};
    return std::vector<uint32_t>(pixels,
                                 pixels + static_cast<size_t>(size.width) * static_cast<size_t>(size.height));
}

class ObjectAndModel {
public:
    // Draws a line of text first, so that each change comes after a picture.
    explicit ObjectAndModel(fuzz::Input& input) : mInput(input) {
        setFont();
        mTold.paint.setTextSize(readSize(input, 90));
        mTold.paint.setAntiAlias(true);
        mScene.object.SetPaint(mTold.paint);
        setText();
        ZvLineInfo line;
        line.y = mTold.height;
        line.end = static_cast<int>(mTold.text.size());
        mTold.lines.push_back(line);
        mScene.setLines(mTold.lines);
        render(mScene, mTold);
    }

    void step() {
        const int kind = mInput.between(0, 12);
        if (kind <= 1) setText();
        if (kind == 2) setFont();
        if (kind == 3) changePaint(mInput, mTold.paint), mScene.object.SetPaint(mTold.paint);
        if (kind == 4 || kind == 5) mTold.lines = readLines(mInput, static_cast<int>(mTold.text.size()));
        if (kind >= 6 && kind <= 8) addEffect(mScene.effect(), mInput);
        if (kind == 9) readView();
        if (kind == 10) {
            mTold.color = mInput.word();
            mTold.background = mInput.flag();
            mTold.backgroundColor = mInput.word();
            mScene.object.SetTextColor(mTold.color);
            mScene.object.SetBackgroundColor(mTold.backgroundColor, mTold.background);
        } else if (kind == 11) {
            mTold.bold = mInput.flag();
            mTold.italic = mInput.flag();
            mScene.object.SetTextStyle(mTold.bold, mTold.italic);
        } else if (kind == 12) {
            setFamilies(mInput.byte());
        }
        // Mostly compares at once: with two changes, either one makes the object draw again.
        if (mInput.byte() < 170 && mRendered++ < 4) compare();
    }

    void compare() {
        // New lines each time, because a rendering moves them.
        mScene.setLines(mTold.lines);
        const std::vector<uint32_t> picture = render(mScene, mTold);
        host::clearGlyphCache();
        TextScene fresh(mTold.font.c_str(), mTold.text.c_str(), 0, 0, 0);
        fresh.object.SetPaint(mTold.paint);
        fresh.object.SetTextStyle(mTold.bold, mTold.italic);
        fresh.object.SetTextColor(mTold.color);
        fresh.object.SetBackgroundColor(mTold.backgroundColor, mTold.background);
        ZvEffect& effect = mScene.effect();
        fresh.effect().setTextOpacity(effect.getTextOpacity());
        for (ZvECore* layer : effect.effects)
            fresh.effect().addEffect(layer->getStyle(), layer->getProperty());
        fresh.setLines(mTold.lines);
        ZVEX_FUZZ_CHECK(render(fresh, mTold) == picture);
    }

private:
    void setText() {
        mTold.text = readText(mInput);
        ZVEX_FUZZ_CHECK(mScene.object.SetText(mTold.text.c_str()));
    }

    void setFont() {
        mTold.font = fuzz::fonts()[mInput.byte() % fuzz::fonts().size()].name;
        ZVEX_FUZZ_CHECK(mScene.object.SetFont(mTold.font.c_str()));
    }

    void readView() {
        const bool odd = mInput.byte() < 30;
        mTold.width = odd ? mInput.integer() : mInput.between(0, 150);
        mTold.height = odd ? mInput.integer() : mInput.between(0, 150);
        if (mTold.width < 0 || mTold.height < 0) mTold.width = mTold.height = 0;
        for (int32_t& padding : mTold.padding) padding = odd ? mInput.integer() : mInput.between(0, 20);
        mTold.gravity = odd ? mInput.integer() : mInput.between(0, 0x77);
        mTold.extraWidth = mInput.between(-9, 9) / 4;
        mTold.extraHeight = mInput.between(-9, 9) / 4;
    }

    fuzz::Input& mInput;
    TextScene mScene{nullptr, L"", 0, 0, 0};
    Told mTold;
    int mRendered = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool ready = (addFonts(), true);
    ZVEX_FUZZ_CHECK(ready);
    setFamilies(kAllFamilies);
    fuzz::Input input(data, size);
    ObjectAndModel both(input);
    for (int steps = 0; steps < 30 && input.left() > 0; ++steps) both.step();
    both.compare();
    return 0;
}
