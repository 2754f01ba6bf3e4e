// SPDX-License-Identifier: Apache-2.0
#include "scene/Values.h"

#include <charconv>
#include <cmath>
#include <cstdio>

#include "scene/Failure.h"

namespace Zvex::scene {

namespace {

[[noreturn]] void refuse(const std::string& option, const std::string& text, const std::string& wanted) {
    throw UsageError(option + ": '" + text + "' is not " + wanted);
}

}  // namespace

uint32_t parseColor(const std::string& option, const std::string& text) {
    if (text.empty() || text[0] != '#') refuse(option, text, kWantedColor);
    uint32_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + 1, end, value, 16);
    if (error != std::errc() || stop != end) refuse(option, text, kWantedColor);
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
            refuse(option, text, kWantedColor);
    }
}

bool NumberRange::contains(double value) const {
    if (whole && value != std::trunc(value)) return false;
    return std::isfinite(value) && value <= high && (exclusiveLow ? value > low : value >= low);
}

std::string NumberRange::wanted() const {
    std::string text = whole ? "a whole number" : "a number";
    if (std::isfinite(low)) {
        text += (exclusiveLow ? " above " : " from ") + formatNumber(low) +
                (exclusiveLow ? " and up to " : " to ") + formatNumber(high);
    }
    return *unit != '\0' ? text + " (" + unit + ")" : text;
}

double NumberRange::scaled(double value, double factor) const {
    // 2.9 * 10 as a person means it: the library drops fractions, so a product must not fall just short.
    const double product = std::round(value * factor * 1e9) / 1e9;
    return whole ? std::round(product) : product;
}

double parseNumber(const std::string& option, const std::string& text, const NumberRange& range) {
    const size_t unitLength = std::char_traits<char>::length(range.unit);
    const bool hasUnit =
        text.size() > unitLength && text.compare(text.size() - unitLength, unitLength, range.unit) == 0;
    const char* end = text.data() + text.size() - (hasUnit ? unitLength : 0);
    double value = 0;
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || !range.contains(value)) refuse(option, text, range.wanted());
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

double parseOpacity(const std::string& option, const std::string& text) {
    const bool percent = !text.empty() && text.back() == '%';
    const char* end = text.data() + text.size() - (percent ? 1 : 0);
    double value = 0;
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (percent) value /= 100;
    if (error != std::errc() || stop != end || !kShare.contains(value)) refuse(option, text, kWantedShare);
    return value;
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

std::string formatColor(uint32_t color) {
    char text[16];
    const bool opaque = color >> 24 == 0xFF;
    std::snprintf(text, sizeof text, opaque ? "#%06x" : "#%08x",
                  static_cast<unsigned>(opaque ? color & 0xFFFFFF : color));
    return text;
}

std::string formatNumber(double value) {
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
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

}  // namespace Zvex::scene
