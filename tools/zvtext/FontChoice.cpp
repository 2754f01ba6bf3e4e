// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/FontChoice.h"

#include <sys/stat.h>

#include <algorithm>

#include "tools/zvtext/Failure.h"
#include "tools/zvtext/Values.h"

namespace zvtext {

namespace {

bool exists(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0;
}

// Splits "FILE#N".
bool readIndex(const std::string& option, const std::string& text, FontChoice& choice) {
    const size_t hash = text.rfind('#');
    if (hash == std::string::npos || hash == 0 || hash + 1 == text.size()) return false;
    const std::string digits = text.substr(hash + 1);
    if (!std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; })) return false;
    choice.path = text.substr(0, hash);
    choice.index = parseInteger(option, digits, 0, 0xFFFF);
    return true;
}

}  // namespace

FontChoice chooseFont(const std::string& option, const std::string& text) {
    FontChoice choice;
    if (!exists(text) && readIndex(option, text, choice)) return choice;
    choice.path = text;
    return choice;
}

}  // namespace zvtext
