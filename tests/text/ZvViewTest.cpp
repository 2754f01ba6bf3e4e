// SPDX-License-Identifier: Apache-2.0
#include "text/ZvView.h"

#include <gtest/gtest.h>

#include "foundation/Error.h"
#include "platform/host/LogCapture.h"

using namespace Zvex;

TEST(ZvView, RefusesNegativeSizesAndKeepsTheOldOnes) {
    ZvView view;
    EXPECT_EQ(view.gravity, 3);
    ASSERT_TRUE(view.SetSize(30, 20));
    ASSERT_TRUE(view.SetBitmapWidth(40));
    ASSERT_TRUE(view.SetBitmapHeight(50));
    Error::SetError(0);

    host::LogCapture log;
    EXPECT_FALSE(view.SetSize(-1, 10));
    EXPECT_FALSE(view.SetSize(10, -1));
    EXPECT_FALSE(view.SetBitmapWidth(-2));
    EXPECT_FALSE(view.SetBitmapHeight(-3));

    EXPECT_EQ(view.GetWidth(), 30);
    EXPECT_EQ(view.GetHeight(), 20);
    int size[2] = {0, 0};
    view.GetDrawingBitmapSize(size);
    EXPECT_EQ(size[0], 40);
    EXPECT_EQ(size[1], 50);

    const auto lines = log.lines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0].text, "SetSize() - size invalid");
    EXPECT_EQ(lines[2].text, "SetBitmapWidht() - width[-2] is invalid");
    EXPECT_EQ(lines[3].text, "SetBitmapHeight() - height[-3] is invalid");
    for (const auto& line : lines) {
        EXPECT_EQ(line.priority, 6);
        EXPECT_EQ(line.tag, "ZvView");
    }
    EXPECT_EQ(Error::GetError(), 0u);
}
