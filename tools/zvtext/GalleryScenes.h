// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_GALLERYSCENES_H_
#define ZVEX_TOOLS_ZVTEXT_GALLERYSCENES_H_

#include <string>
#include <vector>

#include "tools/zvtext/Picture.h"

namespace zvtext {

// The pictures of `zvtext gallery`, as data.

enum class Ground { Light, Dark };

struct GalleryScene {
    const char* name;   // of its file, without ".png"
    const char* title;  // what there is to see
    Ground ground;      // on which it is shown first
    const char* font;   // file name of a font
    const char* text;
    std::vector<std::string> arguments;  // of `zvtext render`, besides text, font and output
};

struct GalleryGroup {
    const char* name;  // for --only, and the section's anchor
    const char* title;
    const char* introduction;
    std::vector<GalleryScene> scenes;
};

const std::vector<GalleryGroup>& galleryGroups();

// Small tiles that the scenes name as patterns/NAME.png.
struct GalleryPattern {
    const char* name;
    Picture (*draw)();
};
const std::vector<GalleryPattern>& galleryPatterns();

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_GALLERYSCENES_H_
