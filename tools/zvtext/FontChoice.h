// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_FONTCHOICE_H_
#define ZVEX_TOOLS_ZVTEXT_FONTCHOICE_H_

#include <string>

#include "tools/zvtext/FontFile.h"

namespace zvtext {

constexpr char kFontHelp[] = "A font file, FILE#2 for the third font of a collection";
constexpr char kAxesHelp[] = "Where the axes of a variable font stand, such as wght=650,opsz=20";

// The font that `text` names: a file; FILE#N, the font N (from 0) of a collection. A file whose name ends in
// #N wins over its font. Throws one line that starts with the option.
FontChoice chooseFont(const std::string& option, const std::string& text);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_FONTCHOICE_H_
