// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_FONTFILE_H_
#define ZVEX_TOOLS_ZVTEXT_FONTFILE_H_

#include <string>

namespace zvtext {

// The line metrics of a font in ems, both positive: how far its lines reach above and below the baseline, the
// line gap counted below.
struct LineMetrics {
    float ascent = 0, descent = 0;
};

// Checks that `path` is a font file the port can draw with, and reads its line metrics. Throws Failure with
// one line that starts with `option` and says what is wrong: missing, a folder, empty, unreadable, or no
// font.
LineMetrics checkFont(const std::string& option, const std::string& path);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_FONTFILE_H_
