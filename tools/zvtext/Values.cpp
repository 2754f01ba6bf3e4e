// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/Values.h"

#include <charconv>
#include <cmath>
#include <vector>

#include "tools/zvtext/Failure.h"

namespace zvtext {

namespace {

[[noreturn]] void refuse(const std::string& option, const std::string& text, const std::string& wanted) {
    throw UsageError(option + ": '" + text + "' is not " + wanted);
}

// 12.5 is written "12.5" and 100 is written "100" in messages.
std::string shortNumber(double value) {
    std::string text = std::to_string(value);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text;
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    size_t begin = 0;
    for (;;) {
        const size_t end = text.find(separator, begin);
        parts.push_back(text.substr(begin, end - begin));
        if (end == std::string::npos) return parts;
        begin = end + 1;
    }
}

}  // namespace

uint32_t parseColor(const std::string& option, const std::string& text) {
    const char* wanted = "a colour; write #rgb, #rrggbb or #aarrggbb";
    if (text.empty() || text[0] != '#') refuse(option, text, wanted);
    uint32_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + 1, end, value, 16);
    if (error != std::errc() || stop != end) refuse(option, text, wanted);
    switch (text.size() - 1) {
        case 3: {
            const uint32_t r = value >> 8 & 0xF, g = value >> 4 & 0xF, b = value & 0xF;
            return 0xFF000000u | (r * 0x11) << 16 | (g * 0x11) << 8 | b * 0x11;
        }
        case 6:
            return 0xFF000000u | value;
        case 8:
            return value;
        default:
            refuse(option, text, wanted);
    }
}

double parseNumber(const std::string& option, const std::string& text, double low, double high,
                   bool exclusiveLow) {
    double value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    const bool readable = error == std::errc() && stop == end && std::isfinite(value);
    if (!readable || value < low || value > high || (exclusiveLow && value == low)) {
        refuse(option, text,
               std::string("a number ") + (exclusiveLow ? "above " : "from ") + shortNumber(low) +
                   (exclusiveLow ? " and up to " : " to ") + shortNumber(high));
    }
    return value;
}

int parseInteger(const std::string& option, const std::string& text, int64_t low, int64_t high) {
    int64_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || value < low || value > high) {
        refuse(option, text, "a whole number from " + std::to_string(low) + " to " + std::to_string(high));
    }
    return static_cast<int>(value);
}

float parseOpacity(const std::string& option, const std::string& text) {
    if (!text.empty() && text.back() == '%') {
        return static_cast<float>(parseNumber(option, text.substr(0, text.size() - 1), 0, 100) / 100);
    }
    return static_cast<float>(parseNumber(option, text, 0, 1));
}

Padding parsePadding(const std::string& option, const std::string& text) {
    std::vector<int> sides;
    for (const std::string& part : split(text, ',')) sides.push_back(parseInteger(option, part, 0, 32767));
    switch (sides.size()) {
        case 1:
            return {sides[0], sides[0], sides[0], sides[0]};
        case 2:
            return {sides[0], sides[1], sides[0], sides[1]};
        case 4:
            return {sides[0], sides[1], sides[2], sides[3]};
        default:
            refuse(option, text, "a padding; write ALL, SIDES,ENDS or LEFT,TOP,RIGHT,BOTTOM");
    }
}

StrokeValue parseStroke(const std::string& option, const std::string& text) {
    const std::vector<std::string> parts = split(text, ':');
    if (parts.size() > 3) refuse(option, text, "a stroke; write WIDTH[:COLOR[:outside|inside|center]]");
    StrokeValue stroke;
    stroke.width = static_cast<float>(parseNumber(option + " width", parts[0], 0, 100));
    if (parts.size() > 1) stroke.color = parseColor(option + " colour", parts[1]);
    if (parts.size() > 2) {
        if (parts[2] == "outside") {
            stroke.position = 1;
        } else if (parts[2] == "inside") {
            stroke.position = 2;
        } else if (parts[2] == "center") {
            stroke.position = 0;
        } else {
            refuse(option + " position", parts[2], "one of outside, inside, center");
        }
    }
    return stroke;
}

}  // namespace zvtext
