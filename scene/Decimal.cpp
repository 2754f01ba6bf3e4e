// SPDX-License-Identifier: Apache-2.0
#include "scene/Decimal.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace Zvex::scene {

#ifdef __cpp_lib_to_chars

const char* readDecimal(const char* from, const char* end, double* value) {
    const auto [stop, error] = std::from_chars(from, end, *value);
    return error == std::errc() ? stop : nullptr;
}

std::string writeDecimal(double value) {
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

#else

// libc++ 14, which has these functions for whole numbers only, comes with a C library that knows no locale
// but "C".
const char* readDecimal(const char* from, const char* end, double* value) {
    // strtod reads more: blanks, a plus sign, hexadecimal numbers.
    const std::string text(from, std::find_if(from, end, [](char c) {
                               return std::strchr("0123456789.eE+-", c) == nullptr || c == '\0';
                           }));
    if (text.empty() || text[0] == '+') return nullptr;
    char* stop = nullptr;
    errno = 0;
    *value = std::strtod(text.c_str(), &stop);
    return stop == text.c_str() || errno == ERANGE ? nullptr : from + (stop - text.c_str());
}

std::string writeDecimal(double value) {
    if (!std::isfinite(value)) return std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
    char text[512];
    int digits = 1;
    do {
        std::snprintf(text, sizeof text, "%.*e", digits - 1, value);
    } while (std::strtod(text, nullptr) != value && ++digits <= 17);
    const int exponent = std::atoi(std::strchr(text, 'e') + 1);
    const std::string scientific = text;
    std::snprintf(text, sizeof text, "%.*f", std::max(0, digits - 1 - exponent), value);
    return std::strlen(text) <= scientific.size() ? text : scientific;
}

#endif

}  // namespace Zvex::scene
