// SPDX-License-Identifier: Apache-2.0
#include "scene/SystemFonts.h"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <set>

#include "scene/Failure.h"
#include "scene/TextInput.h"
#include "scene/Values.h"

// fontconfig links its patterns by offsets, which the leak sanitizer does not follow: what its configuration
// holds to the end of the process looks lost.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
extern "C" {
const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so";
}
const char* __lsan_default_options();
const char* __lsan_default_options() {
    return "print_suppressions=0";
}
}
#endif
#endif

namespace Zvex::scene {

namespace {

constexpr size_t kMaxNameBytes = 1000;
// Weights are names in most fonts, and what one calls thin another calls extra light.
constexpr double kNearWeight = 150;
constexpr double kNearWidth = 13;  // percent

struct FcDeleter {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
    void operator()(FcFontSet* set) const { FcFontSetDestroy(set); }
};
template <typename T>
using FcOwner = std::unique_ptr<T, FcDeleter>;

// Read when it is first needed, kept to the end; null without memory.
FcConfig* fontconfig() {
    static FcConfig* const config = FcInitLoadConfigAndFonts();
    return config;
}

std::string folded(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (c != ' ') out += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return out;
}

std::vector<std::string> stringsOf(FcPattern* pattern, const char* object) {
    std::vector<std::string> values;
    FcChar8* value = nullptr;
    while (FcPatternGetString(pattern, object, static_cast<int>(values.size()), &value) == FcResultMatch) {
        values.emplace_back(reinterpret_cast<const char*>(value));
    }
    return values;
}

std::string firstOf(FcPattern* pattern, const char* object) {
    const std::vector<std::string> values = stringsOf(pattern, object);
    return values.empty() ? "" : values[0];
}

// Whether a value asked for is among those answered; nothing asked for is fine too.
bool answered(FcPattern* asked, FcPattern* answer, const char* object) {
    const std::vector<std::string> wanted = stringsOf(asked, object), got = stringsOf(answer, object);
    if (wanted.empty()) return true;
    return std::any_of(wanted.begin(), wanted.end(), [&](const std::string& a) {
        return std::any_of(got.begin(), got.end(),
                           [&](const std::string& b) { return folded(a) == folded(b); });
    });
}

bool isGeneric(const std::string& family) {
    static const char* const kNames[] = {"sans",     "sans-serif",    "serif",       "mono", "monospace",
                                         "cursive",  "fantasy",       "emoji",       "math", "system-ui",
                                         "ui-serif", "ui-sans-serif", "ui-monospace"};
    return std::any_of(std::begin(kNames), std::end(kNames),
                       [&](const char* name) { return folded(family) == name; });
}

// Whether the answer has a number asked for, within `near`.
template <typename Scale>
bool isNear(FcPattern* asked, FcPattern* answer, const char* object, double near, Scale scale) {
    double wanted = 0, got = 0;
    if (FcPatternGetDouble(asked, object, 0, &wanted) != FcResultMatch) return true;  // none, or a range
    if (FcPatternGetDouble(answer, object, 0, &got) != FcResultMatch) return true;
    return std::fabs(scale(wanted) - scale(got)) <= near;
}

bool has(FcPattern* pattern, const char* object) {
    FcValue value;
    return FcPatternGet(pattern, object, 0, &value) == FcResultMatch;
}

bool hasStyle(FcPattern* asked, FcPattern* answer) {
    // The configuration makes up for styles by slanting and widening, and then answers as if they were there.
    FcBool emboldened = FcFalse;
    FcPatternGetBool(answer, FC_EMBOLDEN, 0, &emboldened);
    if (has(asked, FC_WEIGHT) && emboldened != FcFalse) return false;
    if (has(asked, FC_SLANT) && has(answer, FC_MATRIX)) return false;
    const auto leans = [](double slant) { return slant > FC_SLANT_ROMAN ? 1.0 : 0.0; };
    return answered(asked, answer, FC_STYLE) && isNear(asked, answer, FC_SLANT, 0, leans) &&
           isNear(asked, answer, FC_WEIGHT, kNearWeight, FcWeightToOpenTypeDouble) &&
           isNear(asked, answer, FC_WIDTH, kNearWidth, [](double width) { return width; });
}

bool hasLanguages(FcPattern* asked, FcPattern* answer) {
    FcLangSet *wanted = nullptr, *got = nullptr;
    if (FcPatternGetLangSet(asked, FC_LANG, 0, &wanted) != FcResultMatch) return true;
    return FcPatternGetLangSet(answer, FC_LANG, 0, &got) == FcResultMatch &&
           FcLangSetContains(got, wanted) != FcFalse;
}

FontChoice choiceOf(FcPattern* pattern) {
    FontChoice choice;
    choice.path = firstOf(pattern, FC_FILE);
    int index = 0;
    FcPatternGetInteger(pattern, FC_INDEX, 0, &index);
    choice.index = index & 0xFFFF;
    choice.instance = static_cast<unsigned>(index) >> 16 & 0x7FFF;
    choice.variations = firstOf(pattern, FC_FONT_VARIATIONS);
    return choice;
}

// The object that a part of a pattern after its families sets: "bold" the weight, "weight=bold" too. Empty
// where fontconfig would pass over the part, or take a number that it is not.
std::string objectOf(const std::string& part) {
    const auto constantOf = [](const std::string& name) {
        return FcNameGetConstant(reinterpret_cast<const FcChar8*>(name.c_str()));
    };
    const size_t equals = part.find('=');
    if (equals == std::string::npos) {
        const FcConstant* constant = constantOf(part);
        return constant != nullptr ? constant->object : "";
    }
    const std::string name = part.substr(0, equals), value = part.substr(equals + 1);
    const FcObjectType* type = FcNameGetObjectType(name.c_str());
    if (type == nullptr || type->type == FcTypeUnknown) return "";
    const bool isNumber = !value.empty() && value.find_first_not_of("0123456789") == std::string::npos;
    return type->type != FcTypeInteger || isNumber || constantOf(value) != nullptr ? name : "";
}

// "; write :bold:italic" for "bold italic".
std::string apartHint(const std::string& part) {
    std::string hint;
    const std::vector<std::string> styles = split(part, ' ');
    for (const std::string& style : styles) {
        if (objectOf(style).empty()) return "";
        hint += ":" + style;
    }
    return "; write " + hint;
}

// A pattern as fontconfig reads it, which passes silently over what it does not know (":blod", and the part
// of a family after a dash, where it expects a size) and over the second of two weights.
FcOwner<FcPattern> readPattern(const std::string& option, const std::string& text) {
    std::string pattern;
    std::vector<std::string> parts(1);
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            pattern += text[i++];
        } else if (text[i] == ':') {
            parts.emplace_back();
            pattern += ':';
            continue;
        } else if (text[i] == '-' && parts.size() == 1) {
            pattern += '\\';
        }
        pattern += text[i];
        parts.back() += text[i];
    }
    std::set<std::string> objects;
    for (size_t i = 1; i < parts.size(); ++i) {
        const std::string object = objectOf(parts[i]);
        if (object.empty()) {
            throw UsageError(option + ": '" + parts[i] + "' in '" + text +
                             "' is not a style of fontconfig's" + apartHint(parts[i]));
        }
        if (!objects.insert(object).second) {
            throw UsageError(option + ": '" + text + "' says the " + object + " twice");
        }
    }
    const bool blank = !parts[0].empty() && parts[0].find_first_not_of(" ,") == std::string::npos;
    FcOwner<FcPattern> read(blank ? nullptr : FcNameParse(reinterpret_cast<const FcChar8*>(pattern.c_str())));
    if (read == nullptr) throw UsageError(option + ": '" + text + "' is neither a file nor a name");
    return read;
}

// Every font, in the order in which fontconfig would ask them.
const FcFontSet* sortedFonts(const std::string& language, const FontFacts& like) {
    static std::map<std::string, FcOwner<FcFontSet>> kept;
    const std::string key = language + '\n' + like.family + '\n' + like.generic +
                            std::to_string(like.weight) + (like.italic ? "i" : "");
    const auto found = kept.find(key);
    if (found != kept.end()) return found->second.get();
    const FcOwner<FcPattern> pattern(FcPatternCreate());
    const auto text = [](const std::string& s) { return reinterpret_cast<const FcChar8*>(s.c_str()); };
    if (!like.family.empty()) FcPatternAddString(pattern.get(), FC_FAMILY, text(like.family));
    if (!like.generic.empty()) {
        // The configuration knows few families. Weakly: what suits the language comes first.
        FcValue generic;
        generic.type = FcTypeString;
        generic.u.s = text(like.generic);
        FcPatternAddWeak(pattern.get(), FC_FAMILY, generic, FcTrue);
    }
    FcPatternAddString(pattern.get(), FC_LANG, text(language));
    FcPatternAddDouble(pattern.get(), FC_WEIGHT, FcWeightFromOpenTypeDouble(like.weight));
    FcPatternAddInteger(pattern.get(), FC_SLANT, like.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcConfigSubstitute(fontconfig(), pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    FcOwner<FcFontSet> sorted(FcFontSort(fontconfig(), pattern.get(), FcFalse, nullptr, &result));
    return (kept[key] = std::move(sorted)).get();
}

}  // namespace

FontChoice matchSystemFont(const std::string& option, const std::string& text) {
    if (text.size() > kMaxNameBytes || findInvalidUtf8(text) != std::string::npos) {
        throw UsageError(option + ": '" + text.substr(0, 40) + "...' is neither a file nor a name");
    }
    if (fontconfig() == nullptr) throw Failure(option + ": fontconfig has no configuration");
    const FcOwner<FcPattern> asked = readPattern(option, text);
    const FcOwner<FcPattern> pattern(FcPatternDuplicate(asked.get()));
    FcConfigSubstitute(fontconfig(), pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    const FcOwner<FcPattern> answer(FcFontMatch(fontconfig(), pattern.get(), &result));
    const std::string path = answer != nullptr ? firstOf(answer.get(), FC_FILE) : "";
    if (path.empty()) {
        throw Failure(option + ": '" + text + "' is not a file, and fontconfig knows no font at all");
    }
    const std::vector<std::string> families = stringsOf(asked.get(), FC_FAMILY);
    const bool generic = std::any_of(families.begin(), families.end(), isGeneric);
    const std::string instead = "fontconfig would take '" + firstOf(answer.get(), FC_FAMILY) + " " +
                                firstOf(answer.get(), FC_STYLE) + "' (" + path + ")";
    if (!generic && !answered(asked.get(), answer.get(), FC_FAMILY)) {
        throw Failure(option + ": '" + text + "' is not a file, and no font has that name; " + instead);
    }
    if (!hasStyle(asked.get(), answer.get())) {
        throw Failure(option + ": '" + text + "' is a style that the font lacks; " + instead);
    }
    if (!hasLanguages(asked.get(), answer.get())) {
        throw Failure(option + ": '" + text + "' is a language that the font lacks letters of; " + instead);
    }
    return choiceOf(answer.get());
}

std::string systemFontLike(const std::string& file) {
    const auto plain = [](const std::string& text) {
        std::string letters;
        for (const char c : folded(text)) {
            if (c != '-' && c != '_') letters += c;
        }
        return letters;
    };
    const std::string name = file.substr(file.rfind('/') + 1), stem = plain(name.substr(0, name.rfind('.')));
    const FcFontSet* fonts = fontconfig() != nullptr ? FcConfigGetFonts(fontconfig(), FcSetSystem) : nullptr;
    for (int i = 0; fonts != nullptr && i < fonts->nfont; ++i) {
        const std::string path = firstOf(fonts->fonts[i], FC_FILE),
                          family = firstOf(fonts->fonts[i], FC_FAMILY),
                          style = firstOf(fonts->fonts[i], FC_STYLE);
        const bool same = plain(path.substr(path.rfind('/') + 1)) == plain(name);
        const bool styled = same || stem == plain(family + style);
        if (!styled && stem != plain(family)) continue;
        std::vector<std::string> patterns = {family};
        if (styled) {
            std::string words;
            for (const std::string& word : split(style, ' ')) words += ":" + folded(word);
            patterns.insert(patterns.end(), {family + words, family + ":style=" + style});
        }
        for (const std::string& pattern : patterns) {
            try {
                if (matchSystemFont("", pattern).path == path) return pattern;
            } catch (const Error&) {  // no name of that font
            }
        }
    }
    return "";
}

std::vector<std::string> systemFontFolders() {
    std::vector<std::string> folders;
    const std::unique_ptr<FcStrList, void (*)(FcStrList*)> list(FcConfigGetFontDirs(fontconfig()),
                                                                FcStrListDone);
    while (const FcChar8* folder = list != nullptr ? FcStrListNext(list.get()) : nullptr) {
        folders.emplace_back(reinterpret_cast<const char*>(folder));
    }
    return folders;
}

std::vector<FontChoice> systemFontsFor(const std::vector<uint32_t>& characters, const std::string& language,
                                       const FontFacts& like) {
    constexpr size_t kMost = 8;
    std::vector<FontChoice> choices;
    const FcFontSet* sorted = fontconfig() != nullptr ? sortedFonts(language, like) : nullptr;
    for (int i = 0; sorted != nullptr && i < sorted->nfont && choices.size() < kMost; ++i) {
        FcPattern* font = sorted->fonts[i];
        FcCharSet* covered = nullptr;
        const std::string format = firstOf(font, FC_FONTFORMAT);
        if (format != "TrueType" && format != "CFF") continue;
        if (FcPatternGetCharSet(font, FC_CHARSET, 0, &covered) != FcResultMatch) continue;
        if (!std::all_of(characters.begin(), characters.end(),
                         [&](uint32_t c) { return FcCharSetHasChar(covered, c) != FcFalse; })) {
            continue;
        }
        choices.push_back(choiceOf(font));
    }
    return choices;
}

}  // namespace Zvex::scene
