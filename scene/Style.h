// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_STYLE_H_
#define ZVEX_SCENE_STYLE_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "scene/Effects.h"
#include "scene/Fields.h"
#include "scene/Layers.h"

namespace Zvex::scene {

constexpr NumberRange kTextSize = {0, 10000, "px", true, true};
constexpr NumberRange kEffectDesignedFor = {0, 10000, "px"};  // 0: its pixels stay as they are

// What a style file says about itself. The sizes that the effects are designed for are those of their Look.
struct StyleNotes {
    std::string schema;       // address of the JSON Schema for editors; not followed
    std::string description;  // a line for people
    std::string extends;      // the style that it changes
    double designedFor = 0;   // the text size that its effects are designed for; 0: any
};

// The look of a text without its font, words and position: the content of a style file.
struct Style : Look {
    double size = 96;  // pixels per em
    uint32_t color = 0xFF000000;
    std::optional<uint32_t> background;  // behind each line
    std::optional<Canvas> canvas;        // behind everything, over the whole picture
    double letterSpacing = 0;            // ems
    double wordSpacing = 0;              // ems, for each space; none becomes narrower than nothing
    double lineHeight = 0;               // between baselines, times the size; 0: as the fonts have it
    bool upperCase = false;              // by the rules of the scene's language
    std::string features;                // OpenType features, "smcp, -liga"
    double opacity = 1;                  // of the whole picture
    std::optional<bool> colorGlyphs;     // emoji in their own colours; unset: yes, in the front layer
    // From the front to the back. Effects are then the layers' own, and the style has none.
    std::vector<LayerSettings> layers;
    double layersDesignedFor = 0;  // the text size that their spreads and offsets are designed for; 0: any
    StyleNotes notes;              // of the last file that was read
    std::vector<std::string> warnings;  // of reading, each with its place in front; render() repeats them
};

// All fields except the effects and the layers.
Fields fieldsOf(Style& style);
Fields fieldsOf(StyleNotes& notes);

// A style file is a JSON object with the keys of fieldsOf(Style&), those of fieldsOf(StyleNotes&) and
// "effects", an array of objects which hold "type", an effect's name, and the effect's keys:
//
//     {"size": 96, "color": "#ff8800", "effects": [{"type": "stroke", "width": 8, "color": "#202020"}]}
//
// In the place of "effects" it may hold "layers", an array of objects from the front to the back, with the
// keys of fieldsOf(LayerSettings&) and their own "effects":
//
//     {"layers": [{"color": "#fff"}, {"spread": 6, "color": "#c03"}, {"spread": 12, "color": "#222"}]}
//
// Numbers and opacities are numbers, choices and colours strings as on the command line; stops are objects
// {"color", "position", "opacity"} and highlight and shadow objects {"color", "opacity"}. Nothing has to be
// there; what an effect leaves out has its start value. A pattern's file is relative to the style's folder
// and lies there or below.
// Comments, // and /* */, may stand wherever a space may. With "designed-for" the effects grow and shrink
// with the text: what is 8 pixels for a text of 100 is 24 for one of 300. An effect may have its own.
//
// "extends" names a preset, or a style file as a pattern is named; the style then changes that one. What it
// says replaces what the other says: of effects and layers, the keys that they have. Effects are told apart
// by their type, layers by their position; new ones are added, on top and at the back. null takes away: a
// key, "effects" or "layers" as a whole, {"stroke": null} among the effects the stroke, and null among the
// layers the one in its place. The result is as one style.

// Reads a style file into `style`; "-" is standard input. Settings of the file replace those of `style`, its
// effects are added or replace those of the same kind, and its layers replace all earlier ones. Throws
// Failure with one line that starts with `option` and names the file, the place in it
// ("effects[2].stops[0].position") and what is accepted there. Patterns are read from
// the source of the style (see Source::ofStyle) when they are drawn.
void readStyle(const std::string& option, const std::string& name, Style& style,
               const std::shared_ptr<const Source>& source = nullptr);

// The same with a preset. Throws UsageError, which lists the presets, if there is none of that name.
void readPreset(const std::string& option, const std::string& name, Style& style);

// All effects that the style draws, including those of its layers and its canvas.
std::vector<const EffectSettings*> allEffects(const Style& style);

// Make new styles from a file, from a style's text, and from a preset. Errors in a text name the place in it:
// "layers[0].spread".
Style styleFromFile(const std::string& path);
Style styleFromText(const std::string& json);
Style styleFromPreset(const std::string& name);

// Scales the lengths of effects that are designed for another text size, in whole pixels and within their
// limits; a length of at least one pixel stays at least one. Call it when the size is known; render() calls
// it itself.
void fitEffects(Style& style);

// The same from a text, which messages do not repeat; a pattern's file is relative to the working folder, or
// a name of the source. Throws UsageError.
void readStyleText(const std::string& option, const std::string& text, Style& style,
                   const std::shared_ptr<const Source>& source = nullptr);

// The style as the content of a file. Reading it gives the same style, alone and for texts of any size; the
// paths of patterns become absolute. Settings of the style and its layers that are at their start are left
// out.
// Throws Failure if a text is not UTF-8.
std::string writeStyle(const Style& style);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_STYLE_H_
