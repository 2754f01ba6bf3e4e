// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_VALUES_H_
#define ZVEX_TOOLS_ZVTEXT_VALUES_H_

#include <cstdint>
#include <string>

namespace zvtext {

// Readers of the values that options take. Each takes the option's name for its message and throws UsageError
// where the text is not exactly one value in range; nothing depends on the process's locale.

// "#rgb", "#rrggbb" or "#aarrggbb", alpha first as on Android; gives 0xAARRGGBB.
uint32_t parseColor(const std::string& option, const std::string& text);

// A finite decimal number in [low, high]; with `exclusiveLow`, greater than low.
double parseNumber(const std::string& option, const std::string& text, double low, double high,
                   bool exclusiveLow = false);

// A whole number in [low, high].
int parseInteger(const std::string& option, const std::string& text, int64_t low, int64_t high);

// A share of one: "0.6" or "60%".
float parseOpacity(const std::string& option, const std::string& text);

// Pixels on each side: "10" (all), "10,20" (left and right, top and bottom) or "1,2,3,4" (left, top, right,
// bottom).
struct Padding {
    int left = 0, top = 0, right = 0, bottom = 0;
};
Padding parsePadding(const std::string& option, const std::string& text);

// "WIDTH", "WIDTH:COLOR" or "WIDTH:COLOR:POSITION"; the position is outside (as when it is left out), inside
// or center.
struct StrokeValue {
    float width = 0;              // pixels, 0 to 100
    uint32_t color = 0xFF000000;  // 0xAARRGGBB; the alpha becomes the stroke's opacity
    int position = 1;             // 0 centred on the glyph edge, 1 outside, 2 inside
};
StrokeValue parseStroke(const std::string& option, const std::string& text);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_VALUES_H_
