// SPDX-License-Identifier: Apache-2.0
#include "text/LinePlacement.h"

#include <algorithm>

#include "foundation/SafeConvert.h"

namespace Zvex {

namespace {

bool fillsFromBottom(const ZvView& view) {
    return (view.gravity & ZvView::VERTICAL_MASK) == ZvView::BOTTOM;
}

// How far the laid-out text moves down in the view; `last` is the last line shown.
int64_t shiftOf(const ZvView& view, const LaidOutLine& last) {
    const int64_t height = view.height;
    const int64_t top = view.paddingTop;
    const int64_t bottom = view.paddingBottom;
    switch (view.gravity & ZvView::VERTICAL_MASK) {
        case ZvView::CENTER_VERTICAL:
        case ZvView::FILL_VERTICAL: {
            const int64_t spare = height - top - bottom - last.bottom;
            return top + (spare > 0 ? spare / 2 : 0);
        }
        case ZvView::BOTTOM:
            return height - last.bottom - bottom;
        default:
            return top;
    }
}

}  // namespace

ZvRect textClip(const ZvView& view) {
    const int horizontal = view.gravity & ZvView::HORIZONTAL_MASK;
    const int vertical = view.gravity & ZvView::VERTICAL_MASK;
    const int left = horizontal == ZvView::LEFT ? 0 : view.paddingLeft;
    const int top = vertical == ZvView::TOP ? 0 : view.paddingTop;
    const int64_t right = int64_t{view.bitmapWidth} - (horizontal == ZvView::RIGHT ? 0 : view.paddingRight);
    const int64_t bottom = int64_t{view.bitmapHeight} - (vertical == ZvView::BOTTOM ? 0 : view.paddingBottom);
    const auto end = [](int64_t begin, int64_t wanted) {
        return static_cast<int>(std::min<int64_t>(std::max(begin, wanted), INT32_MAX));
    };
    return ZvRect(left, top, end(left, right), end(top, bottom));
}

ShownLines shownLines(const ZvView& view, int count) {
    const int limit = view.lines >= 1 ? view.lines : view.maxLines;
    ShownLines shown;
    if (limit < 1 || count < 1) return shown;
    shown.count = std::min(limit, count);
    shown.first = fillsFromBottom(view) ? count - shown.count : 0;
    return shown;
}

std::vector<ZvLineInfo> placeLines(const ZvView& view, const LaidOutLine* lines, int count) {
    std::vector<ZvLineInfo> placed;
    const ShownLines shown = shownLines(view, lines != nullptr ? count : 0);
    if (shown.count < 1) return placed;

    // Lines keep the distances between their baselines, so one shift places them all.
    const int64_t shift = shiftOf(view, lines[shown.first + shown.count - 1]);

    placed.reserve(static_cast<size_t>(shown.count));
    for (int i = shown.first; i < shown.first + shown.count; ++i) {
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
