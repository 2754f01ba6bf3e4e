// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_VALUES_H_
#define ZVEX_SCENE_VALUES_H_

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Zvex::scene {

// Read the values of options. Each function takes the option's name for its message and throws UsageError if
// the text is not exactly one value in range. Nothing depends on the process's locale.

// "#rgb", "#rrggbb" or "#aarrggbb", alpha first as on Android; or as CSS writes it: a name, "rgb(255 136 0 /
// 50%)" or "hsl(32, 100%, 50%)", also with commas, percentages and an "a" behind the name. Gives 0xAARRGGBB.
// Eight digits that may mean #rrggbbaa add a warning.
constexpr char kWantedColor[] =
    "a colour; write #rgb, #rrggbb, #aarrggbb, or a name, rgb() or hsl() as in CSS";
uint32_t parseColor(const std::string& option, const std::string& text,
                    std::vector<std::string>* warnings = nullptr);
std::optional<uint32_t> readColor(const std::string& text);  // without messages

// Of CSS, in small letters: {"navy", 0xFF000080}.
const std::vector<std::pair<const char*, uint32_t>>& colorNames();

// The range of numbers for a setting.
struct NumberRange {
    double low = 0, high = 0;  // both infinite: any finite number
    const char* unit = "";     // may follow the number: "px", "deg", "%"
    bool exclusiveLow = false;
    bool length = false;  // a length in the picture, which --scale multiplies
    bool whole = false;   // without a fraction
    bool share = false;   // of one; in text "60%" is 0.6

    bool contains(double value) const;
    std::string wanted() const;  // "a number from 0 to 100 (px)", for messages and help
    // The value times `factor`, rounded if whole numbers are required; it may be out of range.
    double scaled(double value, double factor) const;
};
constexpr NumberRange kShare = {0, 1, "", false, false, false, true};

// A decimal number in the range, with its unit or without.
double parseNumber(const std::string& option, const std::string& text, const NumberRange& range);

// A whole number in [low, high].
int parseInteger(const std::string& option, const std::string& text, int low, int high);

// Pixels on each side: "10" (all), "10,20" (left and right, top and bottom) or "1,2,3,4" (left, top, right,
// bottom).
struct Padding {
    int left = 0, top = 0, right = 0, bottom = 0;
};
constexpr char kWantedPadding[] = "a padding; write ALL, SIDES,ENDS or LEFT,TOP,RIGHT,BOTTOM";
constexpr NumberRange kPaddingSide = {0, 32767, "px", false, true, true};
Padding parsePadding(const std::string& option, const std::string& text);

// "#rrggbb", or "#aarrggbb" if the colour is not opaque.
std::string formatColor(uint32_t color);

// The shortest decimal that reads back as the same number: 12.5 as "12.5", 100000 as "100000".
std::string formatNumber(double value);

// What stands in parentheses is not split.
std::vector<std::string> split(const std::string& text, char separator);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_VALUES_H_
