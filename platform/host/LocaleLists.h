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
    uint32_t scripts = 0;     // what an East Asian script is made of, as bits
    hb_language_t hbLanguage = HB_LANGUAGE_INVALID;

    // Whether text in `script` can be this locale's: Japanese, for one, is written in Han, Hiragana and
    // Katakana.
    bool writesIn(hb_script_t script) const;
};

using LocaleList = std::vector<Locale>;

// The list registered under the id; empty for 0 and for ids that were never given out. Lists are never
// dropped, so the reference stays good. Any thread.
const LocaleList& localeListOf(uint32_t id);

// How well a family made for `offered` suits a text in `wanted`; the first wanted locale outweighs all the
// others, and so on through the first twelve. For each: 4 when the presentation and the language agree, 3
// when the script and the language do, 2 when the presentation does, 1 when the script does, 0 otherwise.
uint32_t localeScore(const LocaleList& wanted, const LocaleList& offered);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_LOCALELISTS_H_
