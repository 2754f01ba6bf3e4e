// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_LANGUAGE_H_
#define ZVEX_SCENE_LANGUAGE_H_

#include <cstddef>
#include <string>

namespace Zvex::scene {

constexpr size_t kMaxLanguage = 64;  // bytes
constexpr char kWantedLanguage[] = "a language tag; write one such as de, tr or zh-Hant";

// ICU's name of the locale; empty if the tag is not one of BCP 47 with a language of two or three letters.
std::string localeOf(const std::string& tag);

// fontconfig's name of the language, where it writes Han characters: "ja", "ko", "zh-tw" or "zh-cn"; else
// empty.
std::string hanLanguageOf(const std::string& tag);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_LANGUAGE_H_
