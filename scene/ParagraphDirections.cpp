// SPDX-License-Identifier: Apache-2.0
#include "scene/ParagraphDirections.h"

#include <unicode/ubidi.h>

#include <algorithm>
#include <memory>
#include <new>

namespace Zvex::scene {

ParagraphDirections::ParagraphDirections(const std::u16string& text) {
    const std::unique_ptr<UBiDi, void (*)(UBiDi*)> bidi(ubidi_open(), ubidi_close);
    if (bidi == nullptr) throw std::bad_alloc();
    // One by one: given several at once, ICU lets the digits at the start of a paragraph follow the letters
    // of the one before.
    for (size_t begin = 0; begin < text.size();) {
        const size_t ending = text.find_first_of(u"\n\r\u2029", begin);
        const size_t end = ending == std::u16string::npos ? text.size() : ending + 1;
        const auto length = static_cast<int32_t>(end - begin);
        UErrorCode status = U_ZERO_ERROR;
        ubidi_setPara(bidi.get(), text.data() + begin, length, UBIDI_DEFAULT_LTR, nullptr, &status);
        if (U_FAILURE(status)) throw std::bad_alloc();
        if (ubidi_getDirection(bidi.get()) != UBIDI_LTR) {
            const UBiDiLevel* levels = ubidi_getLevels(bidi.get(), &status);
            if (U_FAILURE(status)) throw std::bad_alloc();
            mLevels.resize(text.size());
            std::copy(levels, levels + length, mLevels.begin() + static_cast<ptrdiff_t>(begin));
        }
        begin = end;
    }
}

std::vector<BidiLevelRun> ParagraphDirections::runsOf(int start, int end) const {
    if (start >= end) return {};
    if (mLevels.empty()) return {{start, end, false}};
    std::vector<BidiLevelRun> logical;
    std::vector<UBiDiLevel> levels;
    for (int i = start; i < end; ++i) {
        const UBiDiLevel level = mLevels[static_cast<size_t>(i)];
        if (levels.empty() || level != levels.back()) {
            logical.push_back({i, i, (level & 1) != 0});
            levels.push_back(level);
        }
        logical.back().end = i + 1;
    }
    std::vector<int32_t> order(logical.size());
    ubidi_reorderVisual(levels.data(), static_cast<int32_t>(levels.size()), order.data());
    std::vector<BidiLevelRun> visual;
    for (const int32_t index : order) visual.push_back(logical[static_cast<size_t>(index)]);
    return visual;
}

}  // namespace Zvex::scene
