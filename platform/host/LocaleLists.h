// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_LOCALELISTS_H_
#define ZVEX_PLATFORM_HOST_LOCALELISTS_H_

#include <hb.h>

#include <cstdint>
#include <string>
#include <vector>

namespace host {

enum class Presentation : uint8_t { kNone, kEmoji, kText };

// One locale, with its likely script and region filled in.
struct Locale {
    std::string language;  // two or three lower-case letters, or "und"
    std::string script;    // "Latn", or empty in "und"
    std::string region;    // "JP", or empty
    Presentation presentation =
        Presentation::kNone;  // of emoji: script Zsye or Zsym, or the extension "-u-em-"
    uint32_t scripts = 0;     // the parts of an East Asian script, as bits
    hb_language_t hbLanguage = HB_LANGUAGE_INVALID;

    // Whether this locale can be written in `script`: Japanese, for example, uses Han, Hiragana and Katakana.
    bool writesIn(hb_script_t script) const;
};

using LocaleList = std::vector<Locale>;

// The list registered under the id; empty for 0 and for unknown ids. Lists are never dropped, so the
// reference stays valid. Any thread.
const LocaleList& localeListOf(uint32_t id);

// How well a family made for `offered` suits a text in `wanted`. The first wanted locale counts more than all
// others, and so on through the first twelve. For each locale: 4 if presentation and language match, 3 if
// script and language match, 2 if the presentation does, 1 if the script does, else 0.
uint32_t localeScore(const LocaleList& wanted, const LocaleList& offered);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_LOCALELISTS_H_
