// SPDX-License-Identifier: Apache-2.0
#include "text/LinePlacement.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

using namespace Zvex;

namespace {

constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();

// Lines of 20 pixels, baselines 15 below their tops; line i covers the characters [10 i, 10 i + 8).
std::vector<LaidOutLine> evenLines(int count) {
    std::vector<LaidOutLine> lines(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        LaidOutLine& line = lines[static_cast<size_t>(i)];
        line.top = 20 * i;
        line.baseline = 20 * i + 15;
        line.bottom = 20 * i + 20;
        line.ascent = -15;
        line.descent = 5;
        line.width = 50;
        line.start = 10 * i;
        line.visibleEnd = 10 * i + 8;
    }
    return lines;
}

ZvView makeView(int height, int gravity, int paddingTop, int paddingBottom, int lines, int maxLines) {
    ZvView view;
    view.height = height;
    view.gravity = gravity;
    view.paddingTop = paddingTop;
    view.paddingBottom = paddingBottom;
    view.lines = lines;
    view.maxLines = maxLines;
    return view;
}

TEST(LinePlacement, ChoosesAndPlacesLines) {
    const int top = 0x30, centre = 0x10, fill = 0x70, bottom = 0x50, none = 0;
    const struct {
        const char* name;
        ZvView view;
        int count;
        std::vector<std::pair<int, int>> shown;  // starts and baselines
    } cases[] = {
        {"no limit shows nothing", makeView(200, top, 0, 0, 0, 0), 5, {}},
        {"no lines", makeView(200, top, 0, 0, 3, 0), 0, {}},
        {"maxLines", makeView(200, top, 7, 0, 0, 3), 5, {{0, 22}, {10, 42}, {20, 62}}},
        {"lines win over maxLines", makeView(200, top, 0, 0, 2, 4), 5, {{0, 15}, {10, 35}}},
        {"negative limits count as none", makeView(200, top, 0, 0, -1, -1), 5, {}},
        {"more asked for than there are", makeView(200, none, 0, 0, 0, 9), 2, {{0, 15}, {10, 35}}},
        {"centre takes the first lines", makeView(100, centre, 10, 4, 0, 2), 5, {{0, 48}, {10, 68}}},
        {"centre halves an odd rest downwards", makeView(45, centre, 0, 0, 0, 2), 2, {{0, 17}, {10, 37}}},
        {"centre without room is at the top", makeView(39, centre, 3, 0, 0, 2), 2, {{0, 18}, {10, 38}}},
        {"fill is centre", makeView(100, fill, 10, 4, 0, 2), 5, {{0, 48}, {10, 68}}},
        {"bottom, all lines", makeView(100, bottom, 9, 6, 0, 5), 2, {{0, 69}, {10, 89}}},
        {"bottom, the last lines", makeView(100, bottom, 9, 6, 0, 3), 5, {{20, 49}, {30, 69}, {40, 89}}},
        {"bottom without room", makeView(30, bottom, 0, 0, 0, 5), 3, {{0, -15}, {10, 5}, {20, 25}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<std::pair<int, int>> shown;
        for (const ZvLineInfo& info : placeLines(c.view, evenLines(c.count).data(), c.count)) {
            shown.emplace_back(info.start, info.y);
            EXPECT_EQ(info.end, info.start + 8);
            EXPECT_EQ(info.direction, 1);
            EXPECT_EQ(info.rect.top, info.y - 15);
            EXPECT_EQ(info.rect.bottom, info.y + 5);
        }
        EXPECT_EQ(shown, c.shown);

        // The shown lines alone give the same records.
        const std::vector<LaidOutLine> all = evenLines(c.count);
        const ShownLines part = shownLines(c.view, c.count);
        ASSERT_EQ(part.count, static_cast<int>(c.shown.size()));
        std::vector<std::pair<int, int>> alone;
        for (const ZvLineInfo& info : placeLines(c.view, all.data() + part.first, part.count)) {
            alone.emplace_back(info.start, info.y);
        }
        EXPECT_EQ(alone, c.shown);
    }
}

TEST(LinePlacement, CutsFractionsTowardsZeroBeforeThePadding) {
    ZvView view = makeView(100, 0x30, 0, 0, 0, 2);
    view.paddingLeft = 5;
    std::vector<LaidOutLine> lines = evenLines(2);
    lines[0].left = 10.9f;
    lines[0].width = 20.9f;
    lines[1].left = -10.9f;
    const std::vector<ZvLineInfo> placed = placeLines(view, lines.data(), 2);
    EXPECT_TRUE(placed[0].x == 15 && placed[0].rect.left == 15 && placed[0].rect.right == 35);
    EXPECT_EQ(placed[1].x, -5);
}

TEST(LinePlacement, AbsurdValuesAreClamped) {
    std::vector<LaidOutLine> lines = evenLines(2);
    lines[0].baseline = kMin;
    lines[1].baseline = kMax;
    lines[1].bottom = kMin;
    lines[0].left = std::nanf("");
    lines[0].width = 1e30f;
    lines[1].left = -1e30f;
    lines[1].ascent = kMin;
    lines[1].descent = kMax;
    for (const int gravity : {0x10, 0x30, 0x50}) {
        ZvView view = makeView(kMax, gravity, kMin, kMin, kMax, 0);
        view.paddingLeft = kMax;
        const std::vector<ZvLineInfo> placed = placeLines(view, lines.data(), 2);
        ASSERT_EQ(placed.size(), 2u);
        EXPECT_EQ(placed[0].x, kMax);  // not a number counts as 0
        EXPECT_EQ(placed[0].rect.right, kMax);
        EXPECT_EQ(placed[1].x, -1);  // the lowest int, plus the padding
        EXPECT_EQ(placed[1].y, gravity == 0x30 ? -1 : kMax);
        EXPECT_EQ(placed[1].rect.bottom, gravity == 0x30 ? kMax - 1 : kMax);
    }
    const ZvView view = makeView(100, 0x50, 0, 0, kMax, kMax);
    EXPECT_TRUE(placeLines(view, lines.data(), -1).empty());
    EXPECT_TRUE(placeLines(view, lines.data(), kMin).empty());
    EXPECT_TRUE(placeLines(view, nullptr, 3).empty());
}

TEST(LinePlacement, TextShowsOutsideThePaddings) {
    ZvView view;
    view.SetBitmapWidth(100);
    view.SetBitmapHeight(50);
    view.SetPadding(10, 20, 30, 5);
    const auto clip = [&](int gravity) {
        view.gravity = gravity;
        const ZvRect r = textClip(view);
        return std::vector<int>{r.left, r.top, r.right, r.bottom};
    };
    EXPECT_EQ(clip(0x11), (std::vector<int>{10, 20, 70, 45}));
    EXPECT_EQ(clip(ZvView::LEFT | ZvView::TOP), (std::vector<int>{0, 0, 70, 45}));
    EXPECT_EQ(clip(ZvView::RIGHT | ZvView::BOTTOM), (std::vector<int>{10, 20, 100, 50}));
    view.paddingLeft = view.paddingTop = INT_MAX;
    view.paddingRight = view.paddingBottom = INT_MIN;
    EXPECT_EQ(clip(0x11), (std::vector<int>{INT_MAX, INT_MAX, INT_MAX, INT_MAX}));
}

}  // namespace
