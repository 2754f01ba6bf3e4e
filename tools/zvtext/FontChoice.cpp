// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/FontChoice.h"

#include <fontconfig/fontconfig.h>
#include <hb-ot.h>
#include <hb.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>

#include "tools/zvtext/Failure.h"
#include "tools/zvtext/TextInput.h"
#include "tools/zvtext/Values.h"

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

namespace zvtext {

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

bool exists(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0;
}

std::string folded(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (c != ' ') out += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return out;
}

bool looksLikeFile(const std::string& text) {
    if (text.find('/') != std::string::npos) return true;
    const std::string end = folded(text.substr(text.find_last_of('.') + 1));
    return text.find('.') != std::string::npos &&
           (end == "ttf" || end == "otf" || end == "ttc" || end == "otc");
}

// Splits "FILE#N".
bool readIndex(const std::string& option, const std::string& text, FontChoice& choice) {
    const size_t hash = text.rfind('#');
    if (hash == std::string::npos || hash == 0 || hash + 1 == text.size()) return false;
    const std::string path = text.substr(0, hash), digits = text.substr(hash + 1);
    if (!std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; })) return false;
    if (!exists(path) && !looksLikeFile(path)) return false;
    choice.path = path;
    choice.index = parseInteger(option, digits, 0, 0xFFFF);
    return true;
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

void setAxis(std::vector<AxisValue>& axes, const hb_ot_var_axis_info_t& axis, float value) {
    char name[4];
    hb_tag_to_string(axis.tag, name);
    const std::string tag(name, 4);
    axes.erase(std::remove_if(axes.begin(), axes.end(), [&](const AxisValue& a) { return a.tag == tag; }),
               axes.end());
    const float inside = std::clamp(value, axis.min_value, axis.max_value);
    if (inside != axis.default_value) axes.push_back({tag, static_cast<double>(inside)});
}

// The axes of a pattern's font: those of a named instance (counted from 1; 0: none), then `variations`.
std::vector<AxisValue> axesOf(const FontChoice& choice, unsigned instance, const std::string& variations) {
    std::vector<AxisValue> values;
    if (instance == 0 && variations.empty()) return values;
    const std::unique_ptr<hb_blob_t, void (*)(hb_blob_t*)> blob(hb_blob_create_from_file(choice.path.c_str()),
                                                                hb_blob_destroy);
    const std::unique_ptr<hb_face_t, void (*)(hb_face_t*)> face(
        hb_face_create(blob.get(), static_cast<unsigned>(choice.index)), hb_face_destroy);
    unsigned count = 64;
    std::vector<hb_ot_var_axis_info_t> axes(count);
    hb_ot_var_get_axis_infos(face.get(), 0, &count, axes.data());
    axes.resize(count);
    if (instance > 0) {
        std::vector<float> places(64);
        unsigned length = count;
        hb_ot_var_named_instance_get_design_coords(face.get(), instance - 1, &length, places.data());
        for (unsigned i = 0; i < std::min(count, length); ++i) setAxis(values, axes[i], places[i]);
    }
    for (const std::string& part : split(variations, ',')) {
        hb_variation_t variation;
        if (hb_variation_from_string(part.data(), static_cast<int>(part.size()), &variation) == 0) continue;
        for (const hb_ot_var_axis_info_t& axis : axes) {
            if (axis.tag == variation.tag) setAxis(values, axis, variation.value);
        }
    }
    return values;
}

FontChoice choiceOf(FcPattern* pattern) {
    FontChoice choice;
    choice.path = firstOf(pattern, FC_FILE);
    int index = 0;
    FcPatternGetInteger(pattern, FC_INDEX, 0, &index);
    choice.index = index & 0xFFFF;
    const auto instance = static_cast<unsigned>(index) >> 16 & 0x7FFF;
    choice.axes = axesOf(choice, instance, firstOf(pattern, FC_FONT_VARIATIONS));
    return choice;
}

// A pattern as fontconfig reads it, which passes silently over what it does not know: ":blod", and the part
// of a family after a dash, where it expects a size.
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
    for (size_t i = 1; i < parts.size(); ++i) {
        const size_t equals = parts[i].find('=');
        const std::string name = parts[i].substr(0, equals);
        const FcObjectType* type = FcNameGetObjectType(name.c_str());
        const bool known = equals != std::string::npos
                               ? type != nullptr && type->type != FcTypeUnknown
                               : FcNameGetConstant(reinterpret_cast<const FcChar8*>(name.c_str())) != nullptr;
        if (!known) {
            throw UsageError(option + ": '" + parts[i] + "' in '" + text + "' is no style of fontconfig's");
        }
    }
    return FcOwner<FcPattern>(FcNameParse(reinterpret_cast<const FcChar8*>(pattern.c_str())));
}

FontChoice matchFont(const std::string& option, const std::string& text) {
    if (text.size() > kMaxNameBytes || findInvalidUtf8(text) != std::string::npos) {
        throw UsageError(option + ": '" + text.substr(0, 40) + "...' is neither a file nor a name");
    }
    if (fontconfig() == nullptr) throw Failure(option + ": fontconfig has no configuration");
    const FcOwner<FcPattern> asked = readPattern(option, text);
    if (asked == nullptr) throw UsageError(option + ": '" + text + "' is neither a file nor a name");
    const FcOwner<FcPattern> pattern(FcPatternDuplicate(asked.get()));
    FcConfigSubstitute(fontconfig(), pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    const FcOwner<FcPattern> answer(FcFontMatch(fontconfig(), pattern.get(), &result));
    const std::string path = answer != nullptr ? firstOf(answer.get(), FC_FILE) : "";
    if (path.empty()) {
        throw Failure(option + ": '" + text + "' is no file, and fontconfig knows no font at all");
    }
    const std::vector<std::string> families = stringsOf(asked.get(), FC_FAMILY);
    const bool generic = std::any_of(families.begin(), families.end(), isGeneric);
    const std::string instead = "fontconfig would take '" + firstOf(answer.get(), FC_FAMILY) + " " +
                                firstOf(answer.get(), FC_STYLE) + "' (" + path + ")";
    if (!generic && !answered(asked.get(), answer.get(), FC_FAMILY)) {
        throw Failure(option + ": '" + text + "' is no file, and no font has that name; " + instead);
    }
    if (!hasStyle(asked.get(), answer.get())) {
        throw Failure(option + ": '" + text + "' is a style that the font lacks; " + instead);
    }
    return choiceOf(answer.get());
}

// Every font, in the order in which fontconfig would ask them.
const FcFontSet* sortedFonts(const std::string& language, const FontFacts& like) {
    static std::map<std::string, FcOwner<FcFontSet>> kept;
    const std::string key =
        language + '\n' + like.family + '\n' + std::to_string(like.weight) + (like.italic ? "i" : "");
    const auto found = kept.find(key);
    if (found != kept.end()) return found->second.get();
    const FcOwner<FcPattern> pattern(FcPatternCreate());
    const auto text = [](const std::string& s) { return reinterpret_cast<const FcChar8*>(s.c_str()); };
    if (!like.family.empty()) FcPatternAddString(pattern.get(), FC_FAMILY, text(like.family));
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

FontChoice chooseFont(const std::string& option, const std::string& text) {
    FontChoice choice;
    choice.path = text;
    if (text.empty() || exists(text) || readIndex(option, text, choice) || looksLikeFile(text)) return choice;
    return matchFont(option, text);
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

}  // namespace zvtext
