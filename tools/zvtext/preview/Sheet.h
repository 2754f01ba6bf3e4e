// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_PREVIEW_SHEET_H_
#define ZVEX_TOOLS_ZVTEXT_PREVIEW_SHEET_H_

#include <cstdint>
#include <string>
#include <vector>

#include "scene/Picture.h"

namespace zvtext {

using namespace Zvex::scene;

// What lies behind a picture: squares of two colours, 0xFFRRGGBB, which may be the same.
struct Ground {
    const char* name;
    uint32_t even, odd;
};
constexpr int kSquare = 8;  // pixels

// A picture of a style with the words that it shows and a line for people.
struct Shown {
    Picture picture;
    std::string words, label;
};

struct ShownStyle {
    std::string name, description;
    std::vector<Shown> pictures;
};

// All of it in one opaque picture. Each picture stands on each ground, its label below, those of a style
// below each other; the styles stand side by side as long as there is room. Throws UsageError if the sheet
// would be larger than a picture may be.
Picture contactSheet(const std::vector<ShownStyle>& styles, const std::vector<Ground>& grounds);

// The same as a page that needs no other file. With `reloads`, an open page shows a new one by itself.
std::string previewPage(const std::vector<ShownStyle>& styles, const std::vector<Ground>& grounds,
                        bool reloads);

// The page of previewPage as if it had been made without `reloads`.
std::string withoutReloading(const std::string& page);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_PREVIEW_SHEET_H_
