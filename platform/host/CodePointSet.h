// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_CODEPOINTSET_H_
#define ZVEX_PLATFORM_HOST_CODEPOINTSET_H_

#include <hb.h>

#include <array>
#include <cstdint>
#include <vector>

namespace host {

// A set of code points, built once and then only read, by any thread. It has pages of 256 bits, and all empty
// pages are one, so a look-up takes two loads. A CJK font needs about 20 kB.
class CodePointSet {
public:
    CodePointSet() { mPages.emplace_back(); }

    // Replaces the content by the code points of `codePoints`, up to 0x10FFFF.
    void assign(const hb_set_t* codePoints);

    bool empty() const { return mPages.size() == 1; }
    bool contains(uint32_t codePoint) const {
        if (codePoint > kLast) return false;
        const Page& page = mPages[mPageOf[codePoint >> 8]];
        return (page[(codePoint >> 6) & 3] >> (codePoint & 63) & 1) != 0;
    }

private:
    static constexpr uint32_t kLast = 0x10FFFF;
    using Page = std::array<uint64_t, 4>;

    std::array<uint16_t, (kLast >> 8) + 1> mPageOf{};  // 0 is the empty page
    std::vector<Page> mPages;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_CODEPOINTSET_H_
