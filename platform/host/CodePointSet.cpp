// SPDX-License-Identifier: Apache-2.0
#include "platform/host/CodePointSet.h"

#include <algorithm>

namespace host {

void CodePointSet::assign(const hb_set_t* codePoints) {
    mPageOf.fill(0);
    mPages.assign(1, Page{});
    hb_codepoint_t first = HB_SET_VALUE_INVALID, last = HB_SET_VALUE_INVALID;
    while (hb_set_next_range(codePoints, &first, &last) != 0 && first <= kLast) {
        for (uint32_t codePoint = first; codePoint <= std::min<uint32_t>(last, kLast); ++codePoint) {
            uint16_t& index = mPageOf[codePoint >> 8];
            if (index == 0) {
                index = static_cast<uint16_t>(mPages.size());  // at most 0x1100 pages
                mPages.emplace_back();
            }
            mPages[index][(codePoint >> 6) & 3] |= uint64_t{1} << (codePoint & 63);
        }
    }
}

}  // namespace host
