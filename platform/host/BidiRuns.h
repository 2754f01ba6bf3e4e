// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_BIDIRUNS_H_
#define ZVEX_PLATFORM_HOST_BIDIRUNS_H_

#include <minikin/Layout.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace host {

// Text of one direction: [start, end) in UTF-16 units.
struct BidiRun {
    size_t start = 0;
    size_t end = 0;
    bool rightToLeft = false;
};

// The runs of [start, end) in visual order, left to right. The paragraphs that the range touches are its
// context. If they have no right-to-left characters, it costs one scan of them; the lines of one long
// paragraph share one analysis. start <= end <= size <= INT32_MAX. Any thread.
std::vector<BidiRun> visualRuns(const uint16_t* text, size_t start, size_t end, size_t size,
                                minikin::Bidi bidi);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_BIDIRUNS_H_
