// SPDX-License-Identifier: Apache-2.0
#include "text/ZvView.h"

#include <gtest/gtest.h>

#include "TextScene.h"
#include "foundation/Error.h"

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
    EXPECT_EQ(
        text_test::errorLines(log),
        (std::vector<std::string>{"ZvView: SetSize() - size invalid", "ZvView: SetSize() - size invalid",
                                  "ZvView: SetBitmapWidht() - width[-2] is invalid",
                                  "ZvView: SetBitmapHeight() - height[-3] is invalid"}));
    EXPECT_EQ(Error::GetError(), 0u);
    int size[2] = {0, 0};
    view.GetDrawingBitmapSize(size);
    EXPECT_EQ(view.GetWidth(), 30);
    EXPECT_EQ(view.GetHeight(), 20);
    EXPECT_EQ(size[0], 40);
    EXPECT_EQ(size[1], 50);
}
