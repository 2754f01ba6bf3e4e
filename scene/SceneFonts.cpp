// SPDX-License-Identifier: Apache-2.0
// Asks the layout itself, cluster by cluster, whether characters are missing. Character maps do not tell,
// because shaping composes letters and draws some spaces without a glyph of their own.
#include "scene/SceneFonts.h"

#include <hwui/MinikinUtils.h>
#include <hwui/Paint.h>
#include <hwui/Typeface.h>
#include <minikin/Layout.h>
#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <set>
#include <string>
#include <unordered_set>

#include "platform/host/Clusters.h"
#include "scene/Failure.h"
#include "scene/FontChoice.h"
#include "scene/Language.h"
#include "scene/SystemFonts.h"
#include "text/FontPath.h"

namespace Zvex::scene {

namespace {

using Fonts = std::vector<std::shared_ptr<const LoadedFont>>;

// A text in every script needs about a hundred fonts. A text of only odd clusters is not worth more questions
// than this.
constexpr size_t kMaxSystemFonts = 128, kMaxQuestions = 2000;
constexpr size_t kMaxAsked = 64;  // characters of one cluster

struct Cluster {
    std::u16string text;
    std::vector<uint32_t> characters;  // the visible ones
};

std::shared_ptr<minikin::FontFamily> familyOf(const LoadedFont& font, int weight, bool italic) {
    using Slant = minikin::FontStyle::Slant;
    std::vector<minikin::Font> fonts;
    fonts.push_back(minikin::Font::Builder(font.font)
                        .setWeight(static_cast<uint16_t>(weight))
                        .setSlant(italic ? Slant::ITALIC : Slant::UPRIGHT)
                        .build());
    return std::make_shared<minikin::FontFamily>(std::move(fonts));
}

// One family for each font, in order. Each keeps its own weight, so that a bold fallback after a bold font is
// not widened again.
std::shared_ptr<const android::Typeface> typefaceOf(const Fonts& fonts) {
    int weight = 400;
    bool italic = false;
    Zvex::styleFromPath(fonts[0]->key, weight, italic);
    std::vector<std::shared_ptr<minikin::FontFamily>> families = {familyOf(*fonts[0], weight, italic)};
    for (size_t i = 1; i < fonts.size(); ++i)
        families.push_back(familyOf(*fonts[i], fonts[i]->facts.weight, fonts[i]->facts.italic));
    return std::shared_ptr<const android::Typeface>(
        android::Typeface::createFromFamilies(std::move(families), weight, 0));
}

bool hasAll(const LoadedFont& font, const std::vector<uint32_t>& characters) {
    return std::all_of(characters.begin(), characters.end(),
                       [&](uint32_t c) { return font.face->covers(c); });
}

// Tabs, which are drawn as spaces, and what ends a line; other control characters are drawn as missing.
bool hasNoGlyph(uint32_t c) {
    return c == '\t' || c == '\n' || c == '\r' || c == 0x2028 || c == 0x2029;
}

std::u16string toUtf16(const std::string& text) {
    std::u16string units;
    const auto length = static_cast<int64_t>(text.size());
    for (int64_t i = 0; i < length;) {
        UChar32 c;
        U8_NEXT(text.data(), i, length, c);
        if (c < 0) c = ' ';
        if (c > 0xFFFF) units += static_cast<char16_t>(U16_LEAD(c));
        units += static_cast<char16_t>(c > 0xFFFF ? U16_TRAIL(c) : c);
    }
    return units;
}

// The clusters of the text that no single font has as written, each once.
std::vector<Cluster> doubtfulClusters(const std::u16string& text, const Fonts& fonts) {
    std::vector<Cluster> doubtful;
    std::unordered_set<std::u16string> seen;
    const auto* units = reinterpret_cast<const uint16_t*>(text.data());
    for (size_t at = 0; at < text.size();) {
        const size_t end = host::clusterEnd(units, at, text.size());
        Cluster cluster;
        for (size_t next = at; next < end;) {
            const uint32_t c = host::nextCodePoint(units, &next, end);
            if (!hasNoGlyph(c) && !host::isDefaultIgnorable(c)) cluster.characters.push_back(c);
        }
        const bool served = std::any_of(fonts.begin(), fonts.end(),
                                        [&](const auto& font) { return hasAll(*font, cluster.characters); });
        if (!served && seen.insert(text.substr(at, end - at)).second) {
            cluster.text = text.substr(at, end - at);
            doubtful.push_back(std::move(cluster));
        }
        at = end;
    }
    return doubtful;
}

// Lays single clusters out.
class ClusterLayout {
public:
    ClusterLayout(const android::Typeface& typeface, const std::string& features) : mTypeface(typeface) {
        mPaint.setTextSize(16);
        mPaint.setFontFeatureSettings(features);
    }

    // The characters of the cluster that come out as a missing glyph.
    std::vector<uint32_t> missingOf(const Cluster& cluster) const {
        const auto* units = reinterpret_cast<const uint16_t*>(cluster.text.data());
        const size_t length = cluster.text.size();
        const minikin::Layout layout = android::MinikinUtils::doLayout(
            &mPaint, minikin::Bidi::DEFAULT_LTR, &mTypeface, units, 0, length, length, nullptr);
        // A letter may be drawn without its mark: then each has a font of its own.
        std::set<const host::FontFace*> faces;
        bool lacks = false;
        for (int i = 0; i < static_cast<int>(layout.nGlyphs()); ++i) {
            const auto* font = static_cast<const android::MinikinFontSkia*>(layout.getFont(i));
            faces.insert(font->RefSkTypeface()->face().get());
            lacks = lacks || layout.getGlyphId(i) == 0;
        }
        std::vector<uint32_t> missing;
        for (const uint32_t c : cluster.characters) {
            const auto has = [c](const host::FontFace* face) { return face->covers(c); };
            if (lacks && std::none_of(faces.begin(), faces.end(), has)) missing.push_back(c);
        }
        return missing;
    }

private:
    android::Paint mPaint;
    const android::Typeface& mTypeface;
};

// The language for fontconfig, from the script. For Han characters the given language or the other scripts of
// the text decide.
class Languages {
public:
    Languages(const std::u16string& text, const std::string& given) : mHan(hanLanguageOf(given)) {
        for (size_t i = 0; i < text.size() && mHan.empty(); ++i) {
            const std::string language = byScript(static_cast<uint32_t>(text[i]));
            if (language != "und" && language != "han") mHan = language;
        }
        if (mHan.empty()) mHan = "zh-cn";
    }

    std::string of(const Cluster& cluster) const {
        const bool emoji =
            u_hasBinaryProperty(static_cast<UChar32>(cluster.characters[0]), UCHAR_EMOJI_PRESENTATION) != 0;
        if (emoji || cluster.text.find(u'\uFE0F') != std::u16string::npos) return "und-zsye";
        const std::string language = byScript(cluster.characters[0]);
        return language == "han" ? mHan : language;
    }

private:
    static std::string byScript(uint32_t c) {
        UErrorCode status = U_ZERO_ERROR;
        switch (uscript_getScript(static_cast<UChar32>(c), &status)) {
            case USCRIPT_HIRAGANA:
            case USCRIPT_KATAKANA:
                return "ja";
            case USCRIPT_HANGUL:
                return "ko";
            case USCRIPT_BOPOMOFO:
                return "zh-tw";
            case USCRIPT_HAN:
                return "han";
            default:
                return "und";
        }
    }

    std::string mHan;
};

// Guards what the process has read of fonts and fontconfig.
std::mutex& reading() {
    static std::mutex* const lock =
        new std::mutex;  // never destroyed: threads may render as the process ends
    return *lock;
}

// The first of fontconfig's fonts that the port can draw and that has all the characters; null if there is
// none.
std::shared_ptr<const LoadedFont> systemFontFor(const std::vector<uint32_t>& characters,
                                                const std::string& language, const FontFacts& like) {
    // Fonts that the port cannot draw: tried only once, not for every cluster.
    static std::set<std::string> refused;
    for (const FontChoice& choice : systemFontsFor(characters, language, like)) {
        if (refused.count(choice.name()) != 0) continue;
        try {
            auto font = loadFont("--font", choice);
            if (hasAll(*font, characters)) return font;
        } catch (const std::runtime_error&) {
            refused.insert(choice.name());
        }
    }
    return nullptr;
}

void addSystemFonts(SceneFonts& scene, const std::vector<Cluster>& clusters, const Languages& languages) {
    size_t questions = 0;
    for (const Cluster& cluster : clusters) {
        if (cluster.characters.size() > kMaxAsked ||
            u_iscntrl(static_cast<UChar32>(cluster.characters[0])) != 0)
            continue;
        const std::string language = languages.of(cluster);
        std::vector<std::vector<uint32_t>> wanted = {cluster.characters};
        // If no font has a letter with its marks, the letter alone is better than nothing.
        if (cluster.characters.size() > 1) wanted.push_back({cluster.characters[0]});
        for (const std::vector<uint32_t>& characters : wanted) {
            if (std::any_of(scene.fonts.begin(), scene.fonts.end(),
                            [&](const auto& font) { return hasAll(*font, characters); })) {
                break;
            }
            if (scene.fonts.size() - scene.given >= kMaxSystemFonts || ++questions > kMaxQuestions) return;
            if (auto font = systemFontFor(characters, language, scene.first().facts)) {
                scene.fonts.push_back(std::move(font));
                break;
            }
        }
    }
}

}  // namespace

SceneFonts takeFonts(const Scene& scene, const SceneText& sceneText) {
    SceneFonts taken;
    const auto take = [&](const std::string& option, const Font& font) {
        FontChoice choice;
        choice.path = "bytes";
        choice.bytes = font.bytes;
        if (font.bytes == nullptr) choice = chooseFont(option, font.name, font.source);
        taken.fonts.push_back(loadFont(option, choice, "--axes", font.axes));
    };
    {
        const std::lock_guard<std::mutex> lock(reading());
        take("--font", scene.font);
        for (const Font& font : scene.fallbacks) take("--fallback", font);
    }
    taken.given = taken.fonts.size();
    taken.typeface = typefaceOf(taken.fonts);

    const std::u16string text = sceneText.units + (scene.ellipsis ? u"\u2026" : u"");
    std::vector<Cluster> lacking = doubtfulClusters(text, taken.fonts);
    const auto keepMissing = [&](std::set<uint32_t>* characters) {
        const ClusterLayout layout(*taken.typeface, scene.style.features);
        std::vector<Cluster> still;
        for (Cluster& cluster : lacking) {
            const std::vector<uint32_t> missing = layout.missingOf(cluster);
            if (missing.empty()) continue;
            for (const uint32_t c : missing) {
                if (characters != nullptr && characters->insert(c).second) taken.missing.push_back(c);
            }
            still.push_back(std::move(cluster));
        }
        lacking = std::move(still);
    };
    if (lacking.empty()) return taken;
    if (scene.systemFallback) {
        keepMissing(nullptr);
        {
            const std::lock_guard<std::mutex> lock(reading());
            addSystemFonts(taken, lacking, Languages(text, scene.language));
        }
        if (taken.fonts.size() > taken.given) taken.typeface = typefaceOf(taken.fonts);
    }
    std::set<uint32_t> characters;
    keepMissing(&characters);
    return taken;
}

size_t countLoadedFonts() {
    const std::lock_guard<std::mutex> lock(reading());
    return loadedFontCount();
}

std::vector<std::string> systemFontNames(const std::string& text) {
    const std::u16string units = toUtf16(text);
    std::set<uint32_t> characters;
    for (size_t at = 0; at < units.size();) {
        const uint32_t c =
            host::nextCodePoint(reinterpret_cast<const uint16_t*>(units.data()), &at, units.size());
        if (!hasNoGlyph(c) && !host::isDefaultIgnorable(c)) characters.insert(c);
    }
    std::vector<std::string> names;
    const std::lock_guard<std::mutex> lock(reading());
    for (const FontChoice& choice : systemFontsFor({characters.begin(), characters.end()}, "und", {}))
        names.push_back(choice.name());
    return names;
}

std::string codePointName(uint32_t character) {
    char name[16];
    std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(character));
    return name;
}

std::string missingWarning(const SceneFonts& fonts, bool systemFallback) {
    constexpr size_t kListed = 20;
    if (fonts.missing.empty()) return "";
    std::string list;
    for (size_t i = 0; i < std::min(fonts.missing.size(), kListed); ++i) {
        list += (list.empty() ? "" : ", ") + codePointName(fonts.missing[i]);
    }
    if (fonts.missing.size() > kListed) {
        list += " and " + std::to_string(fonts.missing.size() - kListed) + " more";
    }
    return "no font has " + list + "; add one with --fallback" +
           (systemFallback ? "" : ", or leave --no-fallback out");
}

}  // namespace Zvex::scene
