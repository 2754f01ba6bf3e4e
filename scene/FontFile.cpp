// SPDX-License-Identifier: Apache-2.0
#include "scene/FontFile.h"

#include <hwui/MinikinSkia.h>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <tuple>

#include "scene/Failure.h"
#include "scene/SystemFonts.h"
#include "scene/TextInput.h"
#include "scene/Values.h"
#include "text/FontData.h"

namespace Zvex::scene {

namespace {

constexpr size_t kMaxFontBytes = size_t{256} << 20;  // more than twice the largest collections
constexpr unsigned kMaxInstances = 1000;
constexpr unsigned kMaxAxes = 64;

struct HbDeleter {
    void operator()(hb_blob_t* blob) const { hb_blob_destroy(blob); }
    void operator()(hb_face_t* face) const { hb_face_destroy(face); }
    void operator()(hb_font_t* font) const { hb_font_destroy(font); }
};
template <typename T>
using HbOwner = std::unique_ptr<T, HbDeleter>;

struct AxisValue {
    hb_tag_t tag;
    double value;
};

void setAxis(std::vector<AxisValue>& values, hb_tag_t tag, double value) {
    for (AxisValue& known : values) {
        if (known.tag == tag) {
            known.value = value;
            return;
        }
    }
    values.push_back({tag, value});
}

// "wght 100 to 900, opsz 14 to 32"
std::string listAxes(const std::vector<hb_ot_var_axis_info_t>& axes) {
    std::string list;
    for (const hb_ot_var_axis_info_t& axis : axes) {
        const auto number = [](float value) { return formatNumber(static_cast<double>(value)); };
        list += (list.empty() ? "" : ", ") + tagName(axis.tag) + " " + number(axis.min_value) + " to " +
                number(axis.max_value);
    }
    return list;
}

// Reads "wght=650,opsz=20" over `values`. Throws UsageError.
void readAxes(const std::string& option, const std::string& text, const std::string& font,
              const std::vector<hb_ot_var_axis_info_t>& axes, std::vector<AxisValue>& values) {
    if (axes.empty()) throw UsageError(option + ": '" + font + "' has no axes");
    std::vector<hb_tag_t> seen;
    for (const std::string& part : split(text, ',')) {
        const size_t equals = part.find('=');
        const std::string tag = part.substr(0, equals);
        const auto axis = std::find_if(axes.begin(), axes.end(),
                                       [&](const auto& info) { return tagName(info.tag) == tag; });
        if (equals == std::string::npos || axis == axes.end()) {
            throw UsageError(option + ": '" + part + "' is not an AXIS=VALUE of '" + font + "', which has " +
                             listAxes(axes));
        }
        if (std::find(seen.begin(), seen.end(), axis->tag) != seen.end()) {
            throw UsageError(option + ": '" + tag + "' is given twice");
        }
        seen.push_back(axis->tag);
        const NumberRange range = {static_cast<double>(axis->min_value),
                                   static_cast<double>(axis->max_value)};
        setAxis(values, axis->tag, parseNumber(option + " " + tag, part.substr(equals + 1), range));
    }
}

// The positions of the font's axes, without those at their defaults.
std::vector<AxisValue> placesOf(const std::string& option, const FontChoice& choice, hb_face_t* face,
                                const std::string& axesOption, const std::string& axesText) {
    const std::vector<hb_ot_var_axis_info_t> axes = axesOf(face);
    std::vector<AxisValue> values;
    if (choice.instance > 0) {
        float places[kMaxAxes];
        unsigned count = kMaxAxes;
        hb_ot_var_named_instance_get_design_coords(face, choice.instance - 1, &count, places);
        for (size_t i = 0; i < std::min<size_t>(count, axes.size()); ++i) {
            setAxis(values, axes[i].tag, static_cast<double>(places[i]));
        }
    }
    // fontconfig puts its own values before those of the pattern, so an axis may occur twice.
    if (!choice.variations.empty()) {
        for (const std::string& part : split(choice.variations, ',')) {
            readAxes(option, part, choice.name(), axes, values);
        }
    }
    if (!axesText.empty()) readAxes(axesOption, axesText, choice.name(), axes, values);
    const auto atDefault = [&](const AxisValue& value) {
        return std::any_of(axes.begin(), axes.end(), [&](const auto& axis) {
            return axis.tag == value.tag && static_cast<double>(axis.default_value) == value.value;
        });
    };
    values.erase(std::remove_if(values.begin(), values.end(), atDefault), values.end());
    return values;
}

void appendBigEndian(std::string& bytes, uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xFF);
}

// The font as a file of its own, with the table that gives the port its axis values. The library passes bytes
// on unchanged, so it needs no code for this.
HbOwner<hb_blob_t> rebuilt(hb_face_t* face, const std::vector<AxisValue>& axes) {
    const HbOwner<hb_face_t> builder(hb_face_builder_create());
    hb_tag_t tags[64];
    unsigned count = 64;
    for (unsigned at = 0; hb_face_get_table_tags(face, at, &count, tags), count > 0;
         at += count, count = 64) {
        for (unsigned i = 0; i < count; ++i) {
            if (tags[i] == host::kAxesTable) continue;
            const HbOwner<hb_blob_t> table(hb_face_reference_table(face, tags[i]));
            hb_face_builder_add_table(builder.get(), tags[i], table.get());
        }
    }
    std::string values;
    for (const AxisValue& axis : axes) {
        const double fixed = std::clamp(std::round(axis.value * 65536), -2147483648.0, 2147483647.0);
        appendBigEndian(values, axis.tag);
        appendBigEndian(values, static_cast<uint32_t>(static_cast<int32_t>(fixed)));
    }
    if (!values.empty()) {
        const HbOwner<hb_blob_t> table(hb_blob_create(values.data(), static_cast<unsigned>(values.size()),
                                                      HB_MEMORY_MODE_READONLY, nullptr, nullptr));
        hb_face_builder_add_table(builder.get(), host::kAxesTable, table.get());
    }
    return HbOwner<hb_blob_t>(hb_face_reference_blob(builder.get()));
}

// The name of the named instance with the font's axis values; empty if there is none.
std::string instanceName(hb_face_t* face, hb_font_t* font) {
    unsigned count = 0;
    const float* here = hb_font_get_var_coords_design(font, &count);
    if (here == nullptr || count == 0 || count > kMaxAxes) return "";
    const unsigned instances = std::min(hb_ot_var_get_named_instance_count(face), kMaxInstances);
    for (unsigned i = 0; i < instances; ++i) {
        float there[kMaxAxes];
        unsigned length = count;
        hb_ot_var_named_instance_get_design_coords(face, i, &length, there);
        if (length == count && std::equal(there, there + count, here)) {
            return fontString(face, hb_ot_var_named_instance_get_subfamily_name_id(face, i));
        }
    }
    return "";
}

// The family class that the font's PANOSE numbers give.
std::string genericFamily(hb_face_t* face) {
    constexpr unsigned kPanose = 32, kLatinText = 2, kFirstSerif = 2, kFirstSans = 11, kLastSans = 15;
    constexpr unsigned kMonospaced = 9;
    const HbOwner<hb_blob_t> table(hb_face_reference_table(face, HB_TAG('O', 'S', '/', '2')));
    unsigned length = 0;
    const auto* bytes = reinterpret_cast<const uint8_t*>(hb_blob_get_data(table.get(), &length));
    if (length < kPanose + 10 || bytes[kPanose] != kLatinText) return "";
    const unsigned serifs = bytes[kPanose + 1], proportion = bytes[kPanose + 3];
    if (proportion == kMonospaced) return "monospace";
    if (serifs < kFirstSerif || serifs > kLastSans) return "";
    return serifs < kFirstSans ? "serif" : "sans-serif";
}

FontFacts factsOf(const host::FontFace& face) {
    const HbOwner<hb_font_t> font(hb_font_create(face.hbFace()));
    face.setAxes(font.get());
    hb_font_extents_t extents = {};
    hb_font_get_h_extents(font.get(), &extents);
    const auto em = static_cast<float>(face.unitsPerEm());
    FontFacts facts;
    facts.ascent = static_cast<float>(extents.ascender) / em;
    facts.descent = static_cast<float>(extents.line_gap - extents.descender) / em;
    const float weight = hb_style_get_value(font.get(), HB_STYLE_TAG_WEIGHT);
    facts.weight = static_cast<int>(std::clamp(weight, 1.0f, 1000.0f));
    facts.italic = hb_style_get_value(font.get(), HB_STYLE_TAG_ITALIC) > 0;
    const auto either = [&](unsigned first, unsigned second) {
        const std::string text = fontString(face.hbFace(), first);
        return text.empty() ? fontString(face.hbFace(), second) : text;
    };
    facts.family = either(HB_OT_NAME_ID_TYPOGRAPHIC_FAMILY, HB_OT_NAME_ID_FONT_FAMILY);
    facts.style = either(HB_OT_NAME_ID_TYPOGRAPHIC_SUBFAMILY, HB_OT_NAME_ID_FONT_SUBFAMILY);
    facts.generic = genericFamily(face.hbFace());
    const std::string instance = instanceName(face.hbFace(), font.get());
    if (!instance.empty()) facts.style = instance;
    return facts;
}

// A name that no file can have (nothing lies below a device). It states the weight as file names do.
std::string keyFor(const FontFacts& facts, size_t number) {
    const char* weight = facts.weight < 250   ? "-Thin"
                         : facts.weight < 350 ? "-Light"
                         : facts.weight < 450 ? ""
                         : facts.weight < 600 ? "-Medium"
                         : facts.weight < 800 ? "-Bold"
                                              : "-Black";
    return "/dev/null/" + std::to_string(number) + weight;
}

// Gives `loaded` a font made from a copy of the bytes; false if they are no font.
bool hold(LoadedFont& loaded, const char* content, size_t size) {
    auto bytes = std::make_unique<char[]>(size);
    std::memcpy(bytes.get(), content, size);
    auto data = std::make_shared<Zvex::ZvFontData>();
    data->size = static_cast<uint32_t>(size);
    data->data = bytes.release();
    loaded.font = Zvex::wrapFont(std::move(data), 0);
    if (loaded.font == nullptr) return false;
    loaded.face = static_cast<const android::MinikinFontSkia&>(*loaded.font).RefSkTypeface()->face();
    return true;
}

Bytes bytesOf(const std::string& option, const FontChoice& choice) {
    try {
        // readFile would read standard input for "-", but a font is always a file.
        return orDefault(choice.source).read(option, choice.path == "-" ? "./-" : choice.path, kMaxFontBytes);
    } catch (const Failure& failure) {
        const bool missing =
            orDefault(choice.source).realm() == nullptr && !orDefault(choice.source).has(choice.path);
        const std::string named = missing ? systemFontLike(choice.path) : "";
        if (named.empty()) throw;
        throw Failure(option + ": " + failure.cause() + "; the system has '" + named + "'");
    }
}

std::shared_ptr<const LoadedFont> readFont(const std::string& option, const FontChoice& choice,
                                           const std::string& axesOption, const std::string& axes,
                                           size_t number) {
    const std::string& path = choice.path;
    if (path.empty()) throw UsageError(option + ": the path is empty");
    const Bytes bytes = choice.bytes != nullptr ? choice.bytes : bytesOf(option, choice);
    const std::string& content = *bytes;
    if (content.empty()) throw Failure(option + ": '" + path + "' is empty");
    if (content.compare(0, 4, "wOFF") == 0 || content.compare(0, 4, "wOF2") == 0) {
        throw Failure(option + ": '" + path + "' is a compressed font (WOFF); unpack it to .ttf or .otf");
    }
    const Failure unreadable(option + ": '" + choice.name() +
                             "' is not a font that can be read (or is damaged)");
    const HbOwner<hb_blob_t> blob(hb_blob_create(content.data(), static_cast<unsigned>(content.size()),
                                                 HB_MEMORY_MODE_READONLY, nullptr, nullptr));
    const auto fonts = static_cast<int>(hb_face_count(blob.get()));
    if (fonts > 0 && choice.index >= fonts) {
        throw UsageError(option + ": '" + path + "' has no font #" + std::to_string(choice.index) + "; " +
                         (fonts == 1 ? "it is a single font" : "its last is #" + std::to_string(fonts - 1)));
    }
    const std::shared_ptr<host::FontFace> face =
        host::FontFace::open(content.data(), content.size(), choice.index);
    if (face == nullptr) throw unreadable;

    auto font = std::make_shared<LoadedFont>();
    font->choice = choice;
    font->fontsInFile = fonts;
    const std::vector<AxisValue> places = placesOf(option, choice, face->hbFace(), axesOption, axes);
    bool held = false;
    if (choice.index == 0 && places.empty() && choice.bytes == nullptr) {
        // Elsewhere than among the machine's files a name may say nothing of the weight.
        const bool isFile = orDefault(choice.source).realm() == nullptr || endsAsFontFile(path);
        font->key = isFile ? path : keyFor(factsOf(*face), number);
        held = hold(*font, content.data(), content.size());
    } else {
        const HbOwner<hb_blob_t> own = rebuilt(face->hbFace(), places);
        unsigned size = 0;
        const char* bytes = hb_blob_get_data(own.get(), &size);
        const std::shared_ptr<host::FontFace> ownFace = host::FontFace::open(bytes, size, 0);
        if (ownFace == nullptr) throw unreadable;
        font->key = keyFor(factsOf(*ownFace), number);
        held = hold(*font, bytes, size);
    }
    if (!held) throw Failure(option + ": '" + choice.name() + "' could not be loaded");
    font->facts = factsOf(*font->face);
    return font;
}

}  // namespace

bool endsAsFontFile(const std::string& text) {
    const size_t dot = text.rfind('.');
    std::string end;
    for (const char c : dot != std::string::npos ? text.substr(dot + 1) : "") {
        if (c != ' ') end += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return end == "ttf" || end == "otf" || end == "ttc" || end == "otc";
}

std::string FontChoice::name() const {
    return index == 0 ? path : path + "#" + std::to_string(index);
}

std::string fontString(hb_face_t* face, unsigned nameId) {
    char text[512];
    unsigned size = sizeof text;
    hb_language_t language = hb_language_from_string("en", -1);
    if (hb_ot_name_get_utf8(face, nameId, language, nullptr, nullptr) == 0) {
        // Some fonts state their names only in another language.
        unsigned count = 0;
        const hb_ot_name_entry_t* names = hb_ot_name_list_names(face, &count);
        const auto named =
            std::find_if(names, names + count, [&](const auto& entry) { return entry.name_id == nameId; });
        if (named != names + count) language = named->language;
    }
    hb_ot_name_get_utf8(face, nameId, language, &size, text);
    return std::string(text, std::min<size_t>(size, sizeof text - 1));
}

std::vector<hb_ot_var_axis_info_t> axesOf(hb_face_t* face) {
    std::vector<hb_ot_var_axis_info_t> axes(kMaxAxes);
    unsigned count = kMaxAxes;
    hb_ot_var_get_axis_infos(face, 0, &count, axes.data());
    axes.resize(count);
    return axes;
}

std::string tagName(hb_tag_t tag) {
    char name[4];
    hb_tag_to_string(tag, name);
    std::string text(name, 4);
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

namespace {

// Their keys are not name(), because a file's name may look like the name of a font in a collection. A font
// holds its bytes and its source, so their addresses are theirs alone.
using FontKey = std::tuple<std::string, int, unsigned, std::string, std::string, const void*, const void*>;

std::map<FontKey, std::shared_ptr<const LoadedFont>>& loadedFonts() {
    static std::map<FontKey, std::shared_ptr<const LoadedFont>> loaded;
    return loaded;
}

}  // namespace

size_t loadedFontCount() {
    return loadedFonts().size();
}

std::shared_ptr<const LoadedFont> loadFont(const std::string& option, const FontChoice& choice,
                                           const std::string& axesOption, const std::string& axes) {
    auto& loaded = loadedFonts();
    const Source& source = orDefault(choice.source);
    const FontKey key(choice.path, choice.index, choice.instance, choice.variations, axes, choice.bytes.get(),
                      source.realm());
    const auto found = loaded.find(key);
    // It may have been loaded for a caller that may read more.
    if (found != loaded.end() && choice.bytes == nullptr) source.check(option, choice.path);
    if (found != loaded.end()) return found->second;
    return loaded[key] = readFont(option, choice, axesOption, axes, loaded.size());
}

}  // namespace Zvex::scene
