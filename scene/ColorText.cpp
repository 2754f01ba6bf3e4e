// SPDX-License-Identifier: Apache-2.0
// Colours as text: #rgb, #rrggbb, #aarrggbb, and what CSS has besides: names, rgb() and hsl().
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "scene/Decimal.h"
#include "scene/Failure.h"
#include "scene/Values.h"

namespace Zvex::scene {

namespace {

constexpr double kPi = 3.14159265358979323846;

std::optional<uint32_t> ofHex(const std::string& digits) {
    uint32_t value = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, 16);
    if (error != std::errc() || stop != end) return std::nullopt;
    switch (digits.size()) {
        case 3: {
            const uint32_t r = value >> 8 & 0xF, g = value >> 4 & 0xF, b = value & 0xF;
            return 0xFF000000u | (r * 0x11) << 16 | (g * 0x11) << 8 | b * 0x11;
        }
        case 6:
            return 0xFF000000u | value;
        case 8:
            return value;
        default:
            return std::nullopt;
    }
}

// A number with one of the units, each "%=2.55": what a number with it is multiplied by. Without a unit it
// stands as it is.
std::optional<double> number(const std::string& text,
                             const std::vector<std::pair<const char*, double>>& units, double low,
                             double high) {
    double value = 0;
    const char* end = text.data() + text.size();
    const char* stop = readDecimal(text.data(), end, &value);
    if (stop == nullptr) return std::nullopt;
    for (const auto& [unit, factor] : units) {
        if (std::strcmp(stop, unit) == 0) value *= factor;
    }
    const bool known = stop == end || std::any_of(units.begin(), units.end(), [stop](const auto& unit) {
                           return std::strcmp(stop, unit.first) == 0;
                       });
    if (!known || !std::isfinite(value) || value < low || value > high) return std::nullopt;
    return value;
}

// The words between the parentheses, three or four: with commas, or with blanks and a slash before the
// opacity.
std::vector<std::string> argumentsOf(std::string text) {
    const bool commas = text.find(',') != std::string::npos;
    const char separator = commas ? ',' : ' ';
    const auto slash = static_cast<size_t>(std::count(text.begin(), text.end(), '/'));
    if (commas ? slash != 0 : slash > 1) return {};
    std::vector<std::string> words(1);
    for (const char c : text) {
        const bool blank = c == ' ' || c == '\t' || c == '\n';
        if (c == separator || c == '/' || (blank && !commas)) {
            if (commas || !words.back().empty()) words.emplace_back();
        } else if (!blank) {
            words.back() += c;
        }
    }
    if (!commas && words.back().empty()) words.pop_back();
    // Only what follows a slash is an opacity, where there are no commas.
    const bool opacity = commas ? words.size() == 4 : slash == 1;
    return words.size() == (opacity ? 4u : 3u) ? words : std::vector<std::string>();
}

uint32_t channel(double share) {
    return static_cast<uint32_t>(std::floor(share * 255 + 0.5));
}

// After the formula of CSS Color 4 ("HSL Colors"): hue in degrees, the others 0 to 1.
uint32_t ofHsl(double hue, double saturation, double lightness) {
    hue = std::fmod(hue, 360);
    if (hue < 0) hue += 360;
    uint32_t color = 0;
    for (const int n : {0, 8, 4}) {
        const double k = std::fmod(n + hue / 30, 12);
        const double amplitude = saturation * std::min(lightness, 1 - lightness);
        color = color << 8 | channel(lightness - amplitude * std::max(-1.0, std::min({k - 3, 9 - k, 1.0})));
    }
    return color;
}

std::optional<uint32_t> ofFunction(const std::string& name, const std::string& inside) {
    const std::vector<std::string> words = argumentsOf(inside);
    const bool rgb = name == "rgb" || name == "rgba";
    if (words.empty() || !(rgb || name == "hsl" || name == "hsla")) return std::nullopt;
    const std::optional<double> alpha = words.size() == 4 ? number(words[3], {{"%", 0.01}}, 0, 1) : 1.0;
    std::optional<double> parts[3];
    for (size_t i = 0; i < 3; ++i) {
        if (rgb) {
            const double most = words[i].find('%') != std::string::npos ? 100 : 255;
            parts[i] = number(words[i], {{"%", 1}}, 0, most);
            if (parts[i]) *parts[i] /= most;
        } else if (i == 0) {
            parts[i] =
                number(words[i], {{"deg", 1}, {"grad", 0.9}, {"rad", 180 / kPi}, {"turn", 360}}, -1e9, 1e9);
        } else {
            parts[i] = number(words[i], {{"%", 1}}, 0, 100);
        }
        if (!parts[i]) return std::nullopt;
    }
    if (!alpha) return std::nullopt;
    const uint32_t color = rgb ? channel(*parts[0]) << 16 | channel(*parts[1]) << 8 | channel(*parts[2])
                               : ofHsl(*parts[0], *parts[1] / 100, *parts[2] / 100);
    return channel(*alpha) << 24 | color;
}

// A warning for eight digits whose alpha is 0 or 255 as #aarrggbb but would mean something as #rrggbbaa; else
// empty.
std::string eightDigitsWarning(const std::string& text, uint32_t color) {
    const uint32_t alpha = color >> 24, last = color & 0xFF;
    if (text[0] != '#' || text.size() != 9 || (alpha != 0 && alpha != 0xFF) || last == 0) return "";
    if ((color << 8 | color >> 24) == color) return "";
    char other[64];
    std::snprintf(other, sizeof other, "rgb(%u %u %u / %s%%)", alpha, color >> 16 & 0xFF, color >> 8 & 0xFF,
                  formatNumber(std::round(last / 0.255) / 10).c_str());
    const std::string reading = alpha == 0 ? "which is invisible; if that is not meant, write "
                                           : "the opaque " + formatColor(color) + "; write that, or ";
    return "'" + text + "' is #aarrggbb, " + reading + other;
}

}  // namespace

std::optional<uint32_t> readColor(const std::string& text) {
    if (!text.empty() && text[0] == '#') return ofHex(text.substr(1));
    std::string folded;
    for (const char c : text) folded += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    const size_t open = folded.find('(');
    if (open != std::string::npos && folded.back() == ')')
        return ofFunction(folded.substr(0, open), folded.substr(open + 1, folded.size() - open - 2));
    for (const auto& [name, color] : colorNames()) {
        if (folded == name) return color;
    }
    return std::nullopt;
}

uint32_t parseColor(const std::string& option, const std::string& text, std::vector<std::string>* warnings) {
    const std::optional<uint32_t> color = readColor(text);
    if (!color) throw UsageError(option + ": '" + text + "' is not " + kWantedColor);
    const std::string warning = warnings != nullptr ? eightDigitsWarning(text, *color) : "";
    if (!warning.empty())
        warnings->push_back((option.compare(0, 2, "--") == 0 ? option.substr(2) : option) + ": " + warning);
    return *color;
}

std::string formatColor(uint32_t color) {
    char text[16];
    const bool opaque = color >> 24 == 0xFF;
    std::snprintf(text, sizeof text, opaque ? "#%06x" : "#%08x",
                  static_cast<unsigned>(opaque ? color & 0xFFFFFF : color));
    return text;
}

}  // namespace Zvex::scene
