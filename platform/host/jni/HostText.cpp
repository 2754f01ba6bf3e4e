// SPDX-License-Identifier: Apache-2.0
// Texts on a desktop: glyphs in their own colours, and words laid out as scenes lay them out.
#include <android/log.h>
#include <hb-ot.h>
#include <hwui/MinikinSkia.h>
#include <hwui/MinikinUtils.h>
#include <minikin/Layout.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "effect/ZvEffect.h"
#include "foundation/List.h"
#include "foundation/ZvString.h"
#include "jni/GlyphColors.h"
#include "jni/WordLayout.h"
#include "platform/host/FontFace.h"
#include "platform/host/ShapingFont.h"
#include "scene/ColorRun.h"
#include "scene/Failure.h"
#include "scene/SceneLayout.h"
#include "scene/ScenePlacement.h"
#include "text/FontManager.h"
#include "text/ZvFontDrawing.h"
#include "text/ZvLineInfo.h"
#include "text/ZvView.h"

namespace Zvex {

namespace {

using scene::ColorRun;
using scene::PlacedRun;
using Families = std::vector<std::shared_ptr<minikin::FontFamily>>;

constexpr char kTag[] = "ZvTextEffects_JNI";
constexpr int kFar = 1 << 28;  // beyond any picture; keeps sums within an int

// The families with which the text object draws.
Families familiesOf(ZvTextObject& text, int* weight) {
    Families families;
    *weight = 400;
    if (text.GetFont() != nullptr) {
        FontManager::GetInstance()->GetMinikinFontFamilies(families, text.GetFont()->GetFontPath(), *weight);
    }
    return families;
}

std::unique_ptr<const android::Typeface> typefaceOf(ZvTextObject& text, Families families, int weight) {
    return std::unique_ptr<const android::Typeface>(
        android::Typeface::createFromFamilies(std::move(families), weight, text.isItalicTextStyle() ? 1 : 0));
}

bool hasColors(const minikin::FontFamily& family) {
    const minikin::Font* font = family.getClosestMatch(minikin::FontStyle()).font;
    if (font == nullptr) return false;
    const auto& skia = static_cast<const android::MinikinFontSkia&>(*font->typeface());
    const host::FontFace& face = *skia.GetSkTypeface()->face();
    return face.hasColors() || hb_ot_color_has_svg(face.hbFace()) != 0;
}

// --- Words

// The lines of words without a view. The text object owns it, and has it draw the lines.
class Words : public LinePainter {
public:
    Words(ZvTextObject& object, const char* utf8, const WordSettings& settings)
        : mScene(sceneOf(utf8, settings)),
          mFonts(fontsOf(object)),
          mText(mScene),
          mLayout(mScene, mFonts, mText, object.GetPaint()) {}

    DrawnLines::Image paint(const DrawnLines::Range& range, float* advance) const override {
        return mLayout.paint(range, advance);
    }

    // Gives the object its view and lines. Returns the room for ink beyond the lines.
    ZvRect place(ZvTextObject& object) {
        const scene::PlacedScene placed = scene::placeScene(object, mScene, mLayout.lines());
        ZvEffect& effect = *object.GetEffect();
        const ZvRect lean(
            placed.margins.left - effect.getLeftOffset(), placed.margins.top - effect.getTopOffset(),
            placed.margins.right - effect.getRightOffset(), placed.margins.bottom - effect.getBottomOffset());
        ZvView& view = *object.GetView();
        view.SetSize(view.GetWidth() + lean.left + lean.right, view.GetHeight() + lean.top + lean.bottom);
        scene::setLines(object, placed.lines);
        mFirst = placed.first;
        return lean;
    }

    const ColorRun& colorsOf(size_t shownLine) const { return mLayout.lines().colors[mFirst + shownLine]; }

private:
    static scene::Scene sceneOf(const char* utf8, const WordSettings& settings) {
        scene::Scene scene;
        scene.text = utf8;
        scene.style.size = settings.size;
        scene.style.wordSpacing = settings.wordSpacing;
        scene.style.lineHeight = settings.lineHeight;
        scene.width = settings.wrap;
        scene.align = settings.align == WordSettings::Left     ? scene::Scene::Align::Left
                      : settings.align == WordSettings::Center ? scene::Scene::Align::Center
                                                               : scene::Scene::Align::Right;
        scene.maxLines = settings.lines;
        return scene;
    }

    static scene::SceneFonts fontsOf(ZvTextObject& object) {
        int weight = 0;
        const Families families = familiesOf(object, &weight);
        scene::SceneFonts fonts;
        fonts.typeface = typefaceOf(object, families, weight);
        if (families.empty() || fonts.typeface->fFontCollection->families().empty())
            throw std::runtime_error("no font: call font, or FontManager.configure, before");
        const auto& first = fonts.typeface->fFontCollection->families().front();
        hb_font_t* font = first->getClosestMatch(fonts.typeface->fStyle).font->shaping()->hbFont;
        hb_font_extents_t extents = {};
        hb_font_get_h_extents(font, &extents);
        const auto em = static_cast<float>(hb_face_get_upem(hb_font_get_face(font)));
        auto loaded = std::make_shared<scene::LoadedFont>();
        loaded->facts.ascent = std::max(0.0f, static_cast<float>(extents.ascender) / em);
        loaded->facts.descent = std::max(0.0f, static_cast<float>(extents.line_gap - extents.descender) / em);
        fonts.fonts.push_back(std::move(loaded));
        return fonts;
    }

    const scene::Scene mScene;
    const scene::SceneFonts mFonts;
    const scene::SceneText mText;
    const scene::SceneLayout mLayout;
    size_t mFirst = 0;
};

// --- Colours

class HostGlyphColors : public GlyphColors {
public:
    explicit HostGlyphColors(ZvTextObject& text) {
        const List* lines = text.GetLineInfo();
        const auto* words = dynamic_cast<const Words*>(text.GetFont()->GetLinePainter());
        if (words == nullptr) layOut(text, lines);
        for (int i = 0; words != nullptr && lines != nullptr && i < lines->GetCount(); ++i) {
            const auto& line = *static_cast<const ZvLineInfo*>(lines->Get(i));
            const ColorRun& run = words->colorsOf(static_cast<size_t>(i));
            mLines.push_back({run, line.x + run.left, line.y});
        }
    }

    bool empty() const {
        return std::all_of(mLines.begin(), mLines.end(),
                           [](const Line& line) { return line.run.glyphs.empty(); });
    }

    void warn() const {
        const auto any = [&](bool ColorRun::*flag) {
            return std::any_of(mLines.begin(), mLines.end(),
                               [&](const Line& line) { return line.run.*flag; });
        };
        if (any(&ColorRun::hasSvg)) {
            __android_log_print(ANDROID_LOG_WARN, kTag,
                                "a font has its emoji as SVG, which is not read; they are silhouettes");
        } else if (any(&ColorRun::hasLarge)) {
            __android_log_print(ANDROID_LOG_WARN, kTag, "emoji this large have no colours");
        }
    }

    bool lackCoverage() const override {
        return std::any_of(mLines.begin(), mLines.end(), [](const Line& line) {
            return std::any_of(line.run.glyphs.begin(), line.run.glyphs.end(),
                               [](const auto& glyph) { return host::drawnAsPath(glyph.style); });
        });
    }

    ColorGlyphLayer draw(const ZvRect& margins, int width, int height, uint32_t textColor) const override {
        std::vector<PlacedRun> placed;
        for (const Line& line : mLines)
            placed.push_back({&line.run, line.x + margins.left, line.y + margins.top});
        return scene::drawColorGlyphs(placed, textColor, width, height);
    }

    void complete(TextCoverage& coverage, const ColorGlyphLayer& drawn) const override {
        scene::raiseCoverage(coverage, drawn);
    }

private:
    struct Line {
        ColorRun run;
        int x, y;  // in the view: left end of the run's image, and baseline
    };

    // Lays the lines out once more, as the text object does when it draws them.
    void layOut(ZvTextObject& text, const List* lines) {
        int weight = 0, length = 0;
        Families families = familiesOf(text, &weight);
        mTypeface = typefaceOf(text, std::move(families), weight);
        const std::unique_ptr<uint16_t[]> units(text.GetText() != nullptr ? text.GetText()->GetUTF16(length)
                                                                          : nullptr);
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
            mLines.push_back({scene::colorRunOf(layout, ink, paint), line.x, line.y});
        }
    }

    std::unique_ptr<const android::Typeface> mTypeface;
    std::vector<Line> mLines;
};

}  // namespace

std::unique_ptr<GlyphColors> GlyphColors::of(ZvTextObject& text) {
    int weight = 0;
    const Families families = familiesOf(text, &weight);
    if (std::none_of(families.begin(), families.end(), [](const auto& one) { return hasColors(*one); }))
        return nullptr;
    auto colors = std::make_unique<HostGlyphColors>(text);
    colors->warn();
    if (colors->empty()) return nullptr;
    return colors;
}

bool layOutWords(ZvTextObject& text, const char* utf8, const WordSettings& settings, ZvRect* lean) {
    std::shared_ptr<Words> words;
    try {
        words = std::make_shared<Words>(text, utf8, settings);
        *lean = words->place(text);
    } catch (const scene::UsageError&) {  // in the words of the command line
        throw std::runtime_error("the text would be more than " + std::to_string(scene::kMaxSide) +
                                 " pixels a side or " + std::to_string(scene::kMaxPixels) + " in all");
    }
    text.GetFont()->SetLinePainter(std::move(words));
    return true;
}

}  // namespace Zvex
