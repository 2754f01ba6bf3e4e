// SPDX-License-Identifier: Apache-2.0
#include "scene/FontChoice.h"

#include <algorithm>
#include <map>

#include "scene/Failure.h"
#include "scene/SystemFonts.h"
#include "scene/Values.h"

namespace Zvex::scene {

namespace {

bool looksLikeFile(const std::string& text) {
    return text.find('/') != std::string::npos || endsAsFontFile(text);
}

// Splits "FILE#N".
bool readIndex(const std::string& option, const std::string& text, FontChoice& choice) {
    const size_t hash = text.rfind('#');
    if (hash == std::string::npos) return false;
    const std::string path = text.substr(0, hash), number = text.substr(hash + 1);
    const bool isNumber = !number.empty() && std::all_of(number.begin(), number.end(),
                                                         [](char c) { return c >= '0' && c <= '9'; });
    const bool isFont = orDefault(choice.source).has(path) || endsAsFontFile(path);
    if (isFont && !isNumber) {
        throw UsageError(option + ": '" + number + "' after '" + path +
                         "' is not the number of a font in a collection; write FILE#0 for the first");
    }
    if (!isNumber || !(isFont || looksLikeFile(path))) return false;
    choice.path = path;
    choice.index = parseInteger(option, number, 0, 0xFFFF);
    return true;
}

}  // namespace

FontChoice chooseFont(const std::string& option, const std::string& text,
                      const std::shared_ptr<const Source>& source) {
    FontChoice choice;
    choice.path = text;
    choice.source = source;
    if (text.empty() || orDefault(source).has(text) || readIndex(option, text, choice) || looksLikeFile(text))
        return choice;
    // A batch asks for the same few names in every line, and a match costs as much as a small picture.
    static std::map<std::string, FontChoice> answers;
    const auto known = answers.find(text);
    return known != answers.end() ? known->second : answers[text] = matchSystemFont(option, text);
}

}  // namespace Zvex::scene
