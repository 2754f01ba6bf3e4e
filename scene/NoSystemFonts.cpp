// SPDX-License-Identifier: Apache-2.0
// Stands for SystemFonts.cpp where fontconfig is left out.
#include "scene/Failure.h"
#include "scene/SystemFonts.h"

namespace Zvex::scene {

FontChoice matchSystemFont(const std::string& option, const std::string& pattern) {
    throw Failure(option + ": there is no '" + pattern + "', and no system fonts in this library");
}

std::string systemFontLike(const std::string&) {
    return "";
}

std::vector<std::string> systemFontFolders() {
    return {};
}

std::vector<FontChoice> systemFontsFor(const std::vector<uint32_t>&, const std::string&, const FontFacts&) {
    return {};
}

}  // namespace Zvex::scene
