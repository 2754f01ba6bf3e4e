// SPDX-License-Identifier: Apache-2.0
// zvtext inspect text: what a text needs for drawing.
#include <unicode/uscript.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <vector>

#include "platform/host/Clusters.h"
#include "scene/FileSource.h"
#include "scene/Json.h"
#include "scene/SceneCheck.h"
#include "scene/SceneFonts.h"
#include "scene/SceneLayout.h"
#include "tools/zvtext/Options.h"
#include "tools/zvtext/inspect/InspectCommand.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

// A part of a line that is shaped at once: units [start, end) of the text.
struct TextRun {
    size_t start = 0, end = 0;
    int script = USCRIPT_COMMON;
    bool rightToLeft = false;
    size_t font = 0;  // index into SceneFonts::fonts
};

class TextReport {
public:
    TextReport(const Scene& scene, const SceneFonts& fonts, const SceneText& text, const LaidOutText& laidOut)
        : mScene(scene), mFonts(fonts), mText(text), mLaidOut(laidOut), mCharactersOf(fonts.fonts.size()) {}

    Json make() {
        Json lines = Json::array();
        for (size_t i = 0; i < mLaidOut.lines.size(); ++i) lines.push_back(lineJson(i));
        Json fonts = Json::array();
        for (size_t i = 0; i < mFonts.fonts.size(); ++i) fonts.push_back(fontJson(i));
        Json missing = Json::array();
        for (const uint32_t c : mFonts.missing) missing.push_back(codePointName(c));
        return {{"characters", charactersOf(mScripts)},
                {"scripts", scriptList(mScripts)},
                {"fonts", std::move(fonts)},
                {"missing", std::move(missing)},
                {"lines", std::move(lines)}};
    }

private:
    const uint16_t* units() const { return reinterpret_cast<const uint16_t*>(mText.units.data()); }

    // The font of each unit of the line, from its glyph. Characters without a glyph take the font of those
    // before them.
    std::vector<size_t> fontsOf(const Zvex::LaidOutLine& line, const std::vector<LineGlyph>& glyphs) const {
        const auto start = static_cast<size_t>(line.start);
        constexpr size_t kNone = SIZE_MAX;
        std::vector<size_t> fonts(static_cast<size_t>(line.visibleEnd) - start, kNone);
        for (const LineGlyph& glyph : glyphs) {
            const auto font = std::find_if(mFonts.fonts.begin(), mFonts.fonts.end(), [&](const auto& loaded) {
                return loaded->face.get() == glyph.face;
            });
            const size_t at = glyph.cluster - start;
            if (at < fonts.size()) fonts[at] = static_cast<size_t>(font - mFonts.fonts.begin());
        }
        size_t last = 0;
        for (size_t& font : fonts) last = font = font == kNone ? last : font;
        return fonts;
    }

    // In the order of the text. As in shaping, common and inherited characters join the script before them;
    // at the start, the one after them.
    std::vector<TextRun> runsOf(const Zvex::LaidOutLine& line, const std::vector<LineGlyph>& glyphs) {
        const auto start = static_cast<size_t>(line.start);
        const std::vector<size_t> fonts = fontsOf(line, glyphs);
        std::vector<BidiLevelRun> directions = mText.directions.runsOf(line.start, line.visibleEnd);
        std::sort(directions.begin(), directions.end(),
                  [](const auto& a, const auto& b) { return a.start < b.start; });
        std::vector<TextRun> runs;
        for (const BidiLevelRun& direction : directions) {
            bool begins = true;
            const auto until = static_cast<size_t>(direction.end);
            for (auto at = static_cast<size_t>(direction.start); at < until; begins = false) {
                const size_t here = at;
                const uint32_t c = host::nextCodePoint(units(), &at, until);
                ++mScripts[scriptOf(c)];
                int script = scriptOf(c);
                if (script == USCRIPT_INHERITED) script = USCRIPT_COMMON;
                const size_t font = fonts[here - start];
                ++mCharactersOf[font];
                const bool joins = !begins && runs.back().font == font &&
                                   (script == USCRIPT_COMMON || runs.back().script == USCRIPT_COMMON ||
                                    script == runs.back().script);
                if (!joins) runs.push_back({here, at, script, direction.rightToLeft, font});
                runs.back().end = at;
                if (script != USCRIPT_COMMON) runs.back().script = script;
            }
        }
        return runs;
    }

    Json lineJson(size_t index) {
        const Zvex::LaidOutLine& line = mLaidOut.lines[index];
        Json list = Json::array();
        const uint32_t start = mText.offsetOf(static_cast<size_t>(line.start));
        const uint32_t end = mText.offsetOf(static_cast<size_t>(line.visibleEnd));
        if (start < end) {
            for (const TextRun& run : runsOf(line, mLaidOut.glyphs[index])) {
                const uint32_t from = mText.offsetOf(run.start), to = mText.offsetOf(run.end);
                list.push_back({{"start", from},
                                {"end", to},
                                {"text", mScene.text.substr(from, to - from)},
                                {"script", uscript_getShortName(static_cast<UScriptCode>(run.script))},
                                {"direction", run.rightToLeft ? "rtl" : "ltr"},
                                {"font", run.font}});
            }
        }
        return {{"start", start}, {"end", end}, {"width", numberJson(line.width)}, {"runs", std::move(list)}};
    }

    Json fontJson(size_t index) const {
        const LoadedFont& font = *mFonts.fonts[index];
        const char* source = index == 0 ? "--font" : index < mFonts.given ? "--fallback" : "system";
        return {{"family", font.facts.family},
                {"style", font.facts.style},
                {"file", font.choice.path},
                {"index", font.choice.index},
                {"from", source},
                {"characters", mCharactersOf[index]}};
    }

    const Scene& mScene;
    const SceneFonts& mFonts;
    const SceneText& mText;
    const LaidOutText& mLaidOut;
    ScriptCounts mScripts;
    std::vector<size_t> mCharactersOf;  // characters drawn with each font
};

void runInspectText(const InspectTextArguments& arguments) {
    SceneOptions options;
    readOptions(fieldsOf(options), arguments.given, {"", fileSource({}, arguments.reads), {}});
    const Scene scene = sceneOf(std::move(options));
    checkScene(scene);
    const SceneText text(scene);
    const SceneFonts fonts = takeFonts(scene, text);
    const SceneLayout layout(scene, fonts, text, paintOf(scene));
    printReport(TextReport(scene, fonts, text, layout.lines()).make(), arguments.json);
}

}  // namespace

void addInspectText(CLI::App& inspect, InspectTextArguments& a) {
    CLI::App* command = inspect.add_subcommand(
        "text", "Show what a text needs: scripts, the font of each part, missing characters, line breaks");
    SceneOptions options;
    addOptions(*command, fieldsOf(options), a.given);
    addReadOptions(*command, a.reads, "a style file");
    addJsonFlag(*command, a.json);
    command->footer(
        "Examples:\n"
        "  $ zvtext inspect text 'Grüße, 世界' --font 'DejaVu Sans:bold'\n"
        "  $ zvtext inspect text --text-file story.txt --font 'Noto Serif' --size 32 --width 600 --json");
    command->callback([&a] { runInspectText(a); });
}

}  // namespace zvtext
