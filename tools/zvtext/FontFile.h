// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_FONTFILE_H_
#define ZVEX_TOOLS_ZVTEXT_FONTFILE_H_

#include <string>

namespace zvtext {

// What a font says of itself.
struct FontFacts {
    float ascent = 0, descent = 0;  // ems, positive: how far its lines reach; the line gap counts below
    int weight = 400;               // 100 to 900
    bool italic = false;
};

// Checks that `path` is a font file the port can draw with, and reads its facts. Throws Failure with
// one line that starts with `option` and says what is wrong: missing, a folder, empty, unreadable, or no
// font.
FontFacts checkFont(const std::string& option, const std::string& path);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_FONTFILE_H_
