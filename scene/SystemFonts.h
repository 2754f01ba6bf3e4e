// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SYSTEMFONTS_H_
#define ZVEX_SCENE_SYSTEMFONTS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "scene/FontFile.h"

namespace Zvex::scene {

// The fonts that fontconfig knows. One thread at a time. A library without ZVEX_SCENE_SYSTEM_FONTS knows
// none.

// The font that fontconfig has for a pattern, as chooseFont says. Throws Failure and UsageError, every
// message starting with `option`.
FontChoice matchSystemFont(const std::string& option, const std::string& pattern);

// "DejaVu Sans:bold" for "DejaVuSans-Bold.ttf": the name of a font whose file is called so, or that would be
// called so. Empty if there is none.
std::string systemFontLike(const std::string& file);

// The folders in which fontconfig looks for fonts, with what is below them.
std::vector<std::string> systemFontFolders();

// The system's fonts that have all the characters, best first, at most eight: in fontconfig's order for a
// text in `language` (never the user's own, so that a text looks the same for everybody) beside a font like
// this one. Empty without fontconfig's configuration.
std::vector<FontChoice> systemFontsFor(const std::vector<uint32_t>& characters, const std::string& language,
                                       const FontFacts& like);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SYSTEMFONTS_H_
