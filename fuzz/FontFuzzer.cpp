// SPDX-License-Identifier: Apache-2.0
// Damaged fonts, from the file's bytes through the font manager and the layout to a picture: each is refused,
// or drawn twice with the same result.
#include <algorithm>
#include <string>
#include <vector>

#include "fuzz/Fonts.h"
#include "fuzz/Input.h"
#include "platform/host/FontFace.h"
#include "platform/host/GlyphCache.h"
#include "tests/text/TextScene.h"

namespace {

using text_test::TextScene;

constexpr int kWidth = 96, kHeight = 64;

uint32_t readBig(const std::string& file, size_t at, size_t count) {
    uint32_t value = 0;
    for (size_t i = 0; i < count; ++i)
        value = value << 8 | (at + i < file.size() ? static_cast<uint8_t>(file[at + i]) : 0);
    return value;
}

void writeBig(std::string& file, size_t at, size_t count, uint32_t value) {
    for (size_t i = 0; i < count && at + i < file.size(); ++i)
        file[at + i] = static_cast<char>(value >> 8 * (count - 1 - i));
}

// Changes the file, mostly where tables have their counts and offsets: at their starts.
std::string damaged(const std::string& original, fuzz::Input& input) {
    std::string file = original;
    const size_t tables = readBig(file, 4, 2);
    for (int changes = 0; changes < 24 && input.left() > 0; ++changes) {
        const uint8_t kind = input.byte();
        const size_t table = input.byte() % (tables + 1);  // the last one is the directory
        const size_t offset = table < tables ? readBig(original, 12 + 16 * table + 8, 4) : 0;
        const size_t within = (kind & 64) != 0 ? input.byte() : input.half();
        const size_t at = offset + within;
        if (at >= file.size()) continue;
        if (kind % 8 < 2) writeBig(file, at, 1, input.byte());
        if (kind % 8 == 2 || kind % 8 == 3) writeBig(file, at, 2, input.word() >> 16);
        if (kind % 8 == 4)
            writeBig(file, at, 2, readBig(file, at, 2) + static_cast<uint32_t>(input.between(-8, 8)));
        if (kind % 8 == 5) writeBig(file, at, 4, static_cast<uint32_t>(input.integer()));
        if (kind % 8 == 6) {
            const size_t from = offset + input.byte(), count = input.byte();
            for (size_t i = 0; i < count && std::max(at, from) + i < file.size(); ++i)
                file[at + i] = file[from + i];
        }
        if (kind % 8 == 7 && kind >= 192) file.resize(at);
    }
    return file;
}

// A damaged units-per-em value makes glyphs of many million pixels, up to the limit. They are slow, ten times
// slower with the sanitizers, and run the same code.
constexpr uint64_t kLarge = 4'000'000;

uint64_t pixelsOf(const host::InkBox& box) {
    return static_cast<uint64_t>(box.right - box.left) * static_cast<uint64_t>(box.bottom - box.top);
}

bool drawsLarge(const std::string& file, const host::GlyphStyle& style) {
    const auto face = host::FontFace::open(file.data(), file.size(), 0);
    uint64_t pixels = 0;
    for (uint32_t glyph = 0; face != nullptr && glyph < std::min(face->glyphCount(), 200u); ++glyph) {
        pixels += pixelsOf(face->inkBox(glyph, style));
    }
    return pixels > kLarge;
}

void askFace(const std::string& file, const host::GlyphStyle& style, fuzz::Input& input) {
    // The memory has exactly the file's size, so that a read beyond it is found.
    const std::vector<char> bytes(file.begin(), file.end());
    const auto face =
        host::FontFace::open(bytes.data(), bytes.size(), input.byte() < 250 ? 0 : input.integer());
    if (face == nullptr) return;
    for (int i = 0; i < 6; ++i) {
        const uint32_t glyph = input.byte() < 250 ? input.byte() % face->glyphCount() : input.word();
        face->advance(glyph, style);
        const host::InkBox box = face->inkBox(glyph, style);
        const int quarterX = input.byte() % 4;
        if (pixelsOf(box) <= kLarge) {
            const auto image = face->image(glyph, style, quarterX);
            ZVEX_FUZZ_CHECK(image->coverage.size() ==
                            static_cast<size_t>(image->width) * static_cast<size_t>(image->height));
            ZVEX_FUZZ_CHECK(image->width <= host::kMaxGlyphSide && image->height <= host::kMaxGlyphSide);
            const host::ColorImage colors = face->colorImage(glyph, style, quarterX, input.word());
            ZVEX_FUZZ_CHECK(colors.pixels.empty() || colors.pixels.size() == image->coverage.size());
        }
        face->covers(input.word() % 0x20000);
        face->coversVariation(input.word() % 0x20000, 0xFE00 + input.byte() % 16);
    }
}

std::vector<uint32_t> render(const std::string& file, const std::wstring& text, const host::GlyphStyle& style,
                             const std::string& features) {
    std::vector<uint32_t> pixels;
    {
        TextScene scene(nullptr, text.c_str(), style.size, kWidth, kHeight);
        scene.object.SetFont("damaged", text_test::newBuffer(file), static_cast<unsigned>(file.size()));
        scene.changePaint([&](android::Paint& paint) {
            paint.setTextScaleX(style.scaleX);
            paint.setTextSkewX(style.skewX);
            paint.setAntiAlias(style.antiAlias);
            paint.setFakeBoldText(style.fakeBold);
            paint.setFontFeatureSettings(features);
        });
        const int end = static_cast<int>(text.size());
        scene.setLines({TextScene::makeLine(4, 30, 0, end), TextScene::makeLine(4, 55, 0, end, -1)});
        pixels = scene.render().pixels;
        ZVEX_FUZZ_CHECK(!pixels.empty());
    }
    Zvex::FontManager::GetInstance()->ClearFontMaps();
    host::clearGlyphCache();
    return pixels;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const fuzz::Font& font = fuzz::fonts()[input.byte() % fuzz::fonts().size()];
    host::GlyphStyle style;
    style.size =
        input.byte() < 240 ? static_cast<float>(input.between(1, 120)) : std::min(input.number(), 200.0f);
    style.scaleX = input.byte() < 240 ? 1.0f : std::min(input.number(), 4.0f);
    const uint8_t flags = input.byte();
    style.fakeBold = flags % 2 != 0;
    style.antiAlias = flags / 2 % 4 != 0;
    style.subpixel = flags / 8 % 2 != 0;
    style.skewX = flags / 16 % 4 == 0 ? -0.25f : 0.0f;
    static const char* const kFeatures[] = {
        "", "", "", "liga, dlig, calt", "smcp, ss01", "-kern, frac", "salt=2, aalt"};
    const std::string features = kFeatures[input.byte() % 7];
    std::wstring text;
    for (int i = input.between(0, 24); i > 0; --i) {
        const uint8_t byte = input.byte();
        text += byte < 220 ? static_cast<wchar_t>(font.characters[byte % font.characters.size()])
                           : L"A \u0301\u200Fz\n"[byte % 6];
    }
    const uint8_t asked = input.byte();
    const std::string file = damaged(font.bytes, input);
    if (asked % 2 == 0) {
        fuzz::Input questions(data, size);
        askFace(file, style, questions);
        host::clearGlyphCache();
    }
    if (asked % 4 != 0 && !drawsLarge(file, style)) {
        const std::vector<uint32_t> picture = render(file, text, style, features);
        if (asked % 8 == 1) ZVEX_FUZZ_CHECK(render(file, text, style, features) == picture);
    }
    return 0;
}
