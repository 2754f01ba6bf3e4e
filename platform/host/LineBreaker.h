// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_LINEBREAKER_H_
#define ZVEX_PLATFORM_HOST_LINEBREAKER_H_

#include <cstdint>
#include <functional>
#include <vector>

namespace host {

// A line's part of the text in UTF-16 offsets. From visibleEnd to end are the blanks and the line ending that
// follow the last visible character.
struct LineRange {
    // Each is the offset of the first unit after the part before.
    int start = 0;
    int visibleEnd = 0;
    int end = 0;
};

// The advance in pixels of text[start, end), laid out as one line.
using MeasureText = std::function<float(int start, int end)>;

// Cuts the text at its line endings. A line wider than `width` pixels is cut at the last place that the
// Unicode line breaking rules (UAX #14, through ICU) allow; a word wider than the line is cut between
// grapheme clusters. A line holds at least one cluster, however narrow the width. width <= 0 does not wrap.
// Some languages have rules of their own: `locale` is ICU's name of one, or empty. Empty lines are kept: a
// text with n line endings has at least n + 1 lines.
std::vector<LineRange> breakLines(const uint16_t* text, int length, float width, const MeasureText& measure,
                                  const char* locale = "");

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_LINEBREAKER_H_
