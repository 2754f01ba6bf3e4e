// SPDX-License-Identifier: Apache-2.0
#include "scene/ParagraphDirections.h"

#include <unicode/ubidi.h>

#include <algorithm>
#include <memory>
#include <new>

namespace Zvex::scene {

ParagraphDirections::ParagraphDirections(const std::u16string& text, Scene::Direction direction) {
    const UBiDiLevel wanted = direction == Scene::Direction::Auto          ? UBIDI_DEFAULT_LTR
                              : direction == Scene::Direction::RightToLeft ? UBiDiLevel{1}
                                                                           : UBiDiLevel{0};
    const std::unique_ptr<UBiDi, void (*)(UBiDi*)> bidi(ubidi_open(), ubidi_close);
    if (bidi == nullptr) throw std::bad_alloc();
    // One by one: given several at once, ICU lets the digits at the start of a paragraph follow the letters
    // of the one before.
    for (size_t begin = 0; begin < text.size();) {
        const size_t ending = text.find_first_of(u"\n\r\u2029", begin);
        const size_t end = ending == std::u16string::npos ? text.size() : ending + 1;
        const auto length = static_cast<int32_t>(end - begin);
        UErrorCode status = U_ZERO_ERROR;
        ubidi_setPara(bidi.get(), text.data() + begin, length, wanted, nullptr, &status);
        if (U_FAILURE(status)) throw std::bad_alloc();
        mParagraphs.push_back({static_cast<int>(begin), ubidi_getParaLevel(bidi.get())});
        if (ubidi_getDirection(bidi.get()) != UBIDI_LTR) {
            const UBiDiLevel* levels = ubidi_getLevels(bidi.get(), &status);
            if (U_FAILURE(status)) throw std::bad_alloc();
            mLevels.resize(text.size());
            std::copy(levels, levels + length, mLevels.begin() + static_cast<ptrdiff_t>(begin));
        }
        begin = end;
    }
}

std::vector<BidiLevelRun> ParagraphDirections::runsOf(int start, int end, bool more) const {
    const int limit = more ? end + 1 : end;
    if (start >= limit) return {};
    if (mLevels.empty()) return {{start, limit, false}};
    std::vector<BidiLevelRun> logical;
    std::vector<UBiDiLevel> levels;
    for (int i = start; i < limit; ++i) {
        const UBiDiLevel level = i < end ? mLevels[static_cast<size_t>(i)] : beginsRight(start) ? 1 : 0;
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

bool ParagraphDirections::beginsRight(int unit) const {
    const auto after =
        std::upper_bound(mParagraphs.begin(), mParagraphs.end(), unit,
                         [](int at, const Paragraph& paragraph) { return at < paragraph.start; });
    return after != mParagraphs.begin() && ((after - 1)->level & 1) != 0;
}

}  // namespace Zvex::scene
