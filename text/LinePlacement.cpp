// SPDX-License-Identifier: Apache-2.0
#include "text/LinePlacement.h"

#include <algorithm>

#include "foundation/SafeConvert.h"

namespace Zvex {

namespace {

int linesShown(const ZvView& view, int count) {
    if (view.lines >= 1) return std::min(view.lines, count);
    if (view.maxLines >= 1) return std::min(view.maxLines, count);
    return 0;
}

// The baseline that line 0 of the laid-out text gets in the view.
int64_t firstBaseline(const ZvView& view, const LaidOutLine* lines, int count, int shown) {
    const int64_t height = view.height;
    const int64_t top = view.paddingTop;
    const int64_t bottom = view.paddingBottom;
    const int64_t baseline = lines[0].baseline;
    switch (view.gravity & ZvView::VERTICAL_MASK) {
        case ZvView::CENTER_VERTICAL:
        case ZvView::FILL_VERTICAL: {
            const int64_t spare = height - top - bottom - lines[shown - 1].bottom;
            return top + baseline + (spare > 0 ? spare / 2 : 0);
        }
        case ZvView::BOTTOM:
            return height + (baseline - lines[count - 1].bottom) - bottom;
        default:
            return top + baseline;
    }
}

}  // namespace

std::vector<ZvLineInfo> placeLines(const ZvView& view, const LaidOutLine* lines, int count) {
    std::vector<ZvLineInfo> placed;
    const int shown = lines != nullptr ? linesShown(view, count) : 0;
    if (shown < 1) return placed;

    const bool fromBottom = (view.gravity & ZvView::VERTICAL_MASK) == ZvView::BOTTOM;
    const int first = fromBottom ? count - shown : 0;
    // Lines keep the distances between their baselines, so one shift places them all.
    const int64_t shift = firstBaseline(view, lines, count, shown) - lines[0].baseline;

    placed.reserve(static_cast<size_t>(shown));
    for (int i = first; i < first + shown; ++i) {
        const LaidOutLine& line = lines[i];
        const int64_t x = int64_t{truncateToInt(line.left)} + view.paddingLeft;
        const int64_t y = shift + line.baseline;
        ZvLineInfo info;
        info.x = clampToInt(x);
        info.y = clampToInt(y);
        info.start = line.start;
        info.end = line.visibleEnd;
        info.direction = 1;
        info.rect.left = clampToInt(x);
        info.rect.top = clampToInt(y + line.ascent);
        info.rect.right = clampToInt(x + truncateToInt(line.width));
        info.rect.bottom = clampToInt(y + line.descent);
        placed.push_back(info);
    }
    return placed;
}

}  // namespace Zvex
