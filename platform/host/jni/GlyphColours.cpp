// SPDX-License-Identifier: Apache-2.0
#include "jni/GlyphColours.h"

#include <android/log.h>
#include <hb-ot.h>
#include <hwui/MinikinSkia.h>
#include <hwui/MinikinUtils.h>
#include <minikin/Layout.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "foundation/List.h"
#include "foundation/ZvString.h"
#include "platform/host/FontFace.h"
#include "scene/ColourRun.h"
#include "text/FontManager.h"
#include "text/ZvFontDrawing.h"
#include "text/ZvLineInfo.h"

namespace Zvex {

namespace {

using scene::ColourRun;
using scene::PlacedRun;

constexpr char kTag[] = "ZvTextEffects_JNI";
constexpr int kFar = 1 << 28;  // beyond any picture; keeps sums within an int

bool hasColours(const minikin::FontFamily& family) {
    const minikin::Font* font = family.getClosestMatch(minikin::FontStyle()).font;
    if (font == nullptr) return false;
    const auto& skia = static_cast<const android::MinikinFontSkia&>(*font->typeface());
    const host::FontFace& face = *skia.GetSkTypeface()->face();
    return face.hasColours() || hb_ot_color_has_svg(face.hbFace()) != 0;
}

// The typeface with which the text object draws; null if none of its fonts has colours.
std::unique_ptr<const android::Typeface> typefaceOf(ZvTextObject& text) {
    std::vector<std::shared_ptr<minikin::FontFamily>> families;
    int weight = 400;
    if (text.GetFont() == nullptr ||
        !FontManager::GetInstance()->GetMinikinFontFamilies(families, text.GetFont()->GetFontPath(),
                                                            weight) ||
        std::none_of(families.begin(), families.end(), [](const auto& one) { return hasColours(*one); })) {
        return nullptr;
    }
    return std::unique_ptr<const android::Typeface>(
        android::Typeface::createFromFamilies(std::move(families), weight, text.isItalicTextStyle() ? 1 : 0));
}

class HostGlyphColours : public GlyphColours {
public:
    // Lays the lines out once more, as the text object does when it draws them.
    HostGlyphColours(ZvTextObject& text, std::unique_ptr<const android::Typeface> typeface)
        : mTypeface(std::move(typeface)) {
        int length = 0;
        const std::unique_ptr<uint16_t[]> units(text.GetText() != nullptr ? text.GetText()->GetUTF16(length)
                                                                          : nullptr);
        const List* lines = text.GetLineInfo();
        for (int i = 0; units != nullptr && lines != nullptr && i < lines->GetCount(); ++i) {
            const auto& line = *static_cast<const ZvLineInfo*>(lines->Get(i));
            if (std::max(std::abs(int64_t{line.x}), std::abs(int64_t{line.y})) > kFar) continue;
            const int start = std::clamp(line.start, 0, length), end = std::clamp(line.end, start, length);
            const android::Paint paint = text.GetPaint();
            const minikin::Layout layout = android::MinikinUtils::doLayout(
                &paint, line.direction < 0 ? minikin::Bidi::DEFAULT_RTL : minikin::Bidi::DEFAULT_LTR,
                mTypeface.get(), units.get(), static_cast<size_t>(start), static_cast<size_t>(end - start),
                static_cast<size_t>(length), nullptr);
            minikin::MinikinRect ink;
            layout.getBounds(&ink);
            mLines.push_back({scene::colourRunOf(layout, ink, paint), line.x, line.y});
        }
    }

    bool empty() const {
        return std::all_of(mLines.begin(), mLines.end(),
                           [](const Line& line) { return line.run.glyphs.empty(); });
    }

    void warn() const {
        const auto any = [&](bool ColourRun::*flag) {
            return std::any_of(mLines.begin(), mLines.end(),
                               [&](const Line& line) { return line.run.*flag; });
        };
        if (any(&ColourRun::hasSvg)) {
            __android_log_print(ANDROID_LOG_WARN, kTag,
                                "a font has its emoji as SVG, which is not read; they are silhouettes");
        } else if (any(&ColourRun::hasLarge)) {
            __android_log_print(ANDROID_LOG_WARN, kTag, "emoji this large have no colours");
        }
    }

    bool lackCoverage() const override {
        return std::any_of(mLines.begin(), mLines.end(), [](const Line& line) {
            return std::any_of(line.run.glyphs.begin(), line.run.glyphs.end(),
                               [](const auto& glyph) { return host::drawnAsPath(glyph.style); });
        });
    }

    ColourGlyphs draw(const ZvRect& margins, int width, int height, uint32_t textColor) const override {
        std::vector<PlacedRun> placed;
        for (const Line& line : mLines)
            placed.push_back({&line.run, line.x + margins.left, line.y + margins.top});
        return scene::drawColours(placed, textColor, width, height);
    }

    void complete(TextCoverage& coverage, const ColourGlyphs& drawn) const override {
        scene::raiseCoverage(coverage, drawn);
    }

private:
    struct Line {
        ColourRun run;
        int x, y;  // in the view: left end and baseline
    };

    const std::unique_ptr<const android::Typeface> mTypeface;
    std::vector<Line> mLines;
};

}  // namespace

std::unique_ptr<GlyphColours> GlyphColours::of(ZvTextObject& text) {
    std::unique_ptr<const android::Typeface> typeface = typefaceOf(text);
    if (typeface == nullptr) return nullptr;
    auto colours = std::make_unique<HostGlyphColours>(text, std::move(typeface));
    colours->warn();
    if (colours->empty()) return nullptr;
    return colours;
}

}  // namespace Zvex
