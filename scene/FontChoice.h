// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_FONTCHOICE_H_
#define ZVEX_SCENE_FONTCHOICE_H_

#include <string>

#include "scene/FontFile.h"

namespace Zvex::scene {

// The font that `text` names: a file; FILE#N, the font N (from 0) of a collection; else a pattern of
// fontconfig. A file whose name ends in #N wins over its font, and what has a slash or ends as font files do
// is always a file. fontconfig answers any name with some font: one of another family, or without the weight,
// slant, width, style or language asked for, is a Failure that says which font it would have been. Generic
// names (sans-serif, monospace, ...) and patterns without a family take what is answered. What is no pattern
// or no number of a font is a UsageError. Every message starts with `option`. A pattern is answered once a
// process. A file is one of the source, which loadFont reads; what a name leads to may lie anywhere. One
// thread at a time.
FontChoice chooseFont(const std::string& option, const std::string& text,
                      const std::shared_ptr<const Source>& source = nullptr);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_FONTCHOICE_H_
