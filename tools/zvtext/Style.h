// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_STYLE_H_
#define ZVEX_TOOLS_ZVTEXT_STYLE_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/zvtext/Effects.h"
#include "tools/zvtext/Fields.h"

namespace zvtext {

// How a text looks, apart from its font, its words and where it stands: what a style file holds.
struct Style {
    double size = 96;  // pixels per em
    uint32_t color = 0xFF000000;
    std::optional<uint32_t> background;   // behind each line
    double letterSpacing = 0;             // ems
    std::string features;                 // OpenType features, "smcp, -liga"
    double opacity = 1;                   // of the whole picture
    std::vector<EffectSettings> effects;  // at most one of each kind, added in this order
};

// All but the effects.
Fields fieldsOf(Style& style);

// A style file is a JSON object with the keys of fieldsOf(Style&) and "effects", an array of objects which
// hold "type", an effect's name, and the effect's keys:
//
//     {"size": 96, "color": "#ff8800", "effects": [{"type": "stroke", "width": 8, "color": "#202020"}]}
//
// Numbers and opacities are numbers, choices and colours strings as on the command line; stops are objects
// {"color", "position", "opacity"} and highlight and shadow objects {"color", "opacity"}. Nothing has to be
// there; what an effect leaves out has its start value. A pattern's file is relative to the style's folder.

// Reads a style file into `style`, "-" being standard input: what the file sets is replaced, its effects are
// added or replace those of their kind. Throws Failure with one line that starts with `option` and names the
// file, the place in it ("effects[2].stops[0].position") and what is accepted there.
void readStyle(const std::string& option, const std::string& path, Style& style);

// The style as a file's content. Reading it gives the same style; the paths of patterns become absolute.
// Throws Failure where a text is not UTF-8.
std::string writeStyle(const Style& style);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_STYLE_H_
