// SPDX-License-Identifier: Apache-2.0
#include "scene/Values.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "scene/Decimal.h"
#include "scene/Failure.h"

namespace Zvex::scene {

namespace {

[[noreturn]] void refuse(const std::string& option, const std::string& text, const std::string& wanted) {
    throw UsageError(option + ": '" + text + "' is not " + wanted);
}

}  // namespace

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
    // 2.9 * 10 must give 29: the library drops fractions, so a product must not fall just short.
    const double product = std::round(value * factor * 1e9) / 1e9;
    return whole ? std::round(product) : product;
}

double parseNumber(const std::string& option, const std::string& text, const NumberRange& range) {
    const std::string unit = range.share ? "%" : range.unit;
    const bool hasUnit = text.size() > unit.size() &&
                         text.compare(text.size() - unit.size(), unit.size(), unit) == 0 && !unit.empty();
    const char* end = text.data() + text.size() - (hasUnit ? unit.size() : 0);
    double value = 0;
    const bool read = readDecimal(text.data(), end, &value) == end;
    if (range.share && hasUnit) value /= 100;
    if (read && range.contains(value)) return value;
    refuse(option, text, range.share ? "an opacity; write 0 to 1 or 0% to 100%" : range.wanted());
}

int parseInteger(const std::string& option, const std::string& text, int low, int high) {
    return static_cast<int>(parseNumber(
        option, text, {static_cast<double>(low), static_cast<double>(high), "", false, false, true}));
}

Padding parsePadding(const std::string& option, const std::string& text) {
    std::vector<int> sides;
    for (const std::string& part : split(text, ','))
        sides.push_back(static_cast<int>(parseNumber(option, part, kPaddingSide)));
    switch (sides.size()) {
        case 1:
            return {sides[0], sides[0], sides[0], sides[0]};
        case 2:
            return {sides[0], sides[1], sides[0], sides[1]};
        case 4:
            return {sides[0], sides[1], sides[2], sides[3]};
        default:
            refuse(option, text, kWantedPadding);
    }
}

std::string formatNumber(double value) {
    const bool plain = std::fabs(value) < 1e15 && value == std::trunc(value);
    return plain ? std::to_string(std::llround(value)) : writeDecimal(value);
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<size_t> open, closing(text.size());  // of a parenthesis, its partner
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '(') open.push_back(i);
        if (text[i] != ')' || open.empty()) continue;
        closing[open.back()] = i;
        open.pop_back();
    }
    std::vector<std::string> parts(1);
    for (size_t i = 0; i < text.size(); ++i) {
        const size_t end = std::max(i, closing[i]);
        if (text[i] == separator) {
            parts.emplace_back();
        } else {
            parts.back().append(text, i, end + 1 - i);
            i = end;
        }
    }
    return parts;
}

}  // namespace Zvex::scene
