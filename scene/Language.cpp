// SPDX-License-Identifier: Apache-2.0
#include "scene/Language.h"

#include <unicode/uloc.h>

#include <utility>

namespace Zvex::scene {

std::string localeOf(const std::string& tag) {
    char id[ULOC_FULLNAME_CAPACITY] = "", language[ULOC_LANG_CAPACITY] = "";
    UErrorCode status = U_ZERO_ERROR;
    int32_t parsed = 0;
    uloc_forLanguageTag(tag.c_str(), id, sizeof id, &parsed, &status);
    if (U_FAILURE(status) || parsed != static_cast<int32_t>(tag.size())) return "";
    const int32_t length = uloc_getLanguage(id, language, sizeof language, &status);
    return U_SUCCESS(status) && (length == 2 || length == 3) ? id : "";
}

std::string hanLanguageOf(const std::string& tag) {
    char likely[ULOC_FULLNAME_CAPACITY] = "", script[ULOC_SCRIPT_CAPACITY] = "";
    UErrorCode status = U_ZERO_ERROR;
    uloc_addLikelySubtags(localeOf(tag).c_str(), likely, sizeof likely, &status);
    uloc_getScript(likely, script, sizeof script, &status);
    if (tag.empty() || U_FAILURE(status)) return "";
    for (const auto& [name, han] :
         {std::pair{"Jpan", "ja"}, {"Kore", "ko"}, {"Hant", "zh-tw"}, {"Hans", "zh-cn"}}) {
        if (std::string(script) == name) return han;
    }
    return "";
}

}  // namespace Zvex::scene
