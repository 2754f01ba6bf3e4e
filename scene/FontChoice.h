// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_FONTCHOICE_H_
#define ZVEX_SCENE_FONTCHOICE_H_

#include <string>

#include "scene/FontFile.h"

namespace Zvex::scene {

// The font that `text` names: a file; FILE#N, the font N (from 0) of a collection; else a pattern of
// fontconfig. A file whose name ends in #N wins over its font, and what has a slash or ends as font files do
// is always a file. fontconfig answers every name with some font. If that font is of another family, or lacks
// the weight, slant, width, style or language asked for, throws Failure, naming the font. Generic names
// (sans-serif, monospace, ...) and patterns without a family accept any answer. Throws UsageError for an
// invalid pattern or font number. Every message starts with `option`. Each pattern is looked up once a
// process. A file is one of the source, which loadFont reads; the font of a pattern may lie anywhere. One
// thread at a time.
FontChoice chooseFont(const std::string& option, const std::string& text,
                      const std::shared_ptr<const Source>& source = nullptr);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_FONTCHOICE_H_
