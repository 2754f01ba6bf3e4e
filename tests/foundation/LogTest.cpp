// SPDX-License-Identifier: Apache-2.0
#include "foundation/ZvLog.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "foundation/Error.h"
#include "foundation/ZvString.h"
#include "platform/host/LogCapture.h"

namespace Zvex {
namespace {

class Log : public testing::Test {
protected:
    ~Log() override { ZvLog::setPrintLogLevel(0xFF); }
    host::LogCapture mCapture;
};

TEST(Error, BelongsToItsThreadAndStaysUntilReplaced) {
    Error::SetError(3);
    unsigned long fresh = 99, own = 99;
    std::thread([&] {
        fresh = Error::GetError();
        Error::SetError(static_cast<unsigned long>(0x100000007ull));
        own = Error::GetError();
    }).join();
    EXPECT_EQ(fresh, 0u);
    EXPECT_EQ(own, 7u) << "32 bits are kept";
    EXPECT_EQ(Error::GetError(), 3u);
    ZvString string;
    EXPECT_EQ(string.Construct(), 1);
    EXPECT_EQ(Error::GetError(), 3u) << "success clears nothing";
}

TEST_F(Log, LinesCarryTheFileNameAndThePriorityOfTheirLevel) {
    const struct { int level, priority; } levels[] = {{1, 3}, {2, 4}, {4, 5}, {8, 6}, {16, 4}, {3, 4}};
    for (const auto& row : levels) {
        EXPECT_EQ(ZvLog::printLog(static_cast<ZvLogLevel>(row.level), "Some.File.cpp", "%d of %s", 5, "six"),
                  0);
        const auto lines = mCapture.lines();
        EXPECT_EQ(lines.back().priority, row.priority) << "level " << row.level;
        EXPECT_EQ(lines.back().tag, "zveffect");
        EXPECT_EQ(lines.back().text, "[Some.File] 5 of six \n");
    }
    ZvLog::printLog(ZV_LOG_INFO, "NoExtension", "x");
    EXPECT_EQ(mCapture.lines().back().text, "[NoExtension] x \n");
}

TEST_F(Log, WritesNothingWhenSwitchedOffOrWithoutFormatOrWithAnEndlessFileName) {
    const char* noFormat = nullptr;
    ZvLog::printLog(ZV_LOG_ERROR, "F.cpp", noFormat, 1);
    ZvLog::printLog(ZV_LOG_ERROR, nullptr, "x");
    ZvLog::printLog(ZV_LOG_ERROR, std::string(256, 'f').c_str(), "x");
    ZvLog::printLog(static_cast<ZvLogLevel>(0), "F.cpp", "x");
    ZvLog::setPrintLogLevel(0xFF & ~ZV_LOG_WARNING);
    ZvLog::printLog(ZV_LOG_WARNING, "F.cpp", "x");
    EXPECT_TRUE(mCapture.lines().empty());
    ZvLog::printLog(ZV_LOG_ERROR, "F.cpp", "x");
    EXPECT_EQ(mCapture.lines().size(), 1u);
}

TEST_F(Log, LongTextsAreCutToTheirBuffers) {
    const std::string name(255, 'f'), message(5000, 'm');
    ZvLog::printLog(ZV_LOG_INFO, name.c_str(), "%s", message.c_str());
    EXPECT_EQ(mCapture.lines().back().text, "[" + name + "] " + std::string(1023, 'm') + " \n");
    ZvLog::printTime("F.cpp", "label", 1, "%s", message.c_str());
    EXPECT_EQ(mCapture.lines().back().text.size(), std::string("[F] ").size() + 1023 + 2);
}

TEST_F(Log, TimesAreInMillisecondsAndInformational) {
    for (const int off : {int{ZV_LOG_TIME}, int{ZV_LOG_INFO}, 0}) {
        ZvLog::setPrintLogLevel(static_cast<unsigned char>(0xFF & ~off));
        ZvLog::printTime("Blur.cpp", "rows", 1234567);
        ZvLog::printTime("Blur.cpp", "rows", 20, "r=%d", 4);
        EXPECT_EQ(mCapture.lines().size(), off != 0 ? 0u : 2u);
    }
    EXPECT_EQ(mCapture.lines()[0].text, "[Blur] [Time] rows 1234.567ms \n");
    EXPECT_EQ(mCapture.lines()[0].priority, ANDROID_LOG_INFO);
    EXPECT_EQ(mCapture.lines()[1].text, "[Blur] [Time] rows 0.020ms r=4 \n");
}

// One test, because the build type of a process is decided once.
TEST_F(Log, BuildTypeIsDecidedByTheFirstCallAndSwitchesDebugLines) {
    const bool checked = ZvLog::isCheckedBuildType, engineering = ZvLog::isBuildTypeEngMode;
    ZvLog::isCheckedBuildType = false;
    ZvLog::isBuildTypeEngMode = true;
    EXPECT_EQ(ZvLog::IsAllLogEnable(), ZvLog::DEBUG_ENABLE);
    int evaluated = 0;
    ZV_DEBUG_LOG("Tag", "number %d", ++evaluated);
    EXPECT_EQ(evaluated, ZvLog::DEBUG_ENABLE ? 1 : 0);
    EXPECT_EQ(mCapture.lines().size(), ZvLog::DEBUG_ENABLE ? 1u : 0u);

    ZvLog::SetBuildType(false);
    EXPECT_TRUE(ZvLog::IsCheckedBuildType());
    ZvLog::SetBuildType(true);
    EXPECT_FALSE(ZvLog::IsBuildTypeEngMode());
    EXPECT_FALSE(ZvLog::IsAllLogEnable());
    ZvLog::isCheckedBuildType = checked;
    ZvLog::isBuildTypeEngMode = engineering;
}

TEST_F(Log, ConvertLogShowsTextThatFits) {
    EXPECT_STREQ(ZvLog::ConvertLog(nullptr), "[### null ###]");
    ZvString string;
    ASSERT_EQ(string.Construct("h\xC3\xA9llo"), 1);
    EXPECT_STREQ(ZvLog::ConvertLog(&string), "h\xC3\xA9llo");
    const std::string longest(511, 'x');
    string.Set(longest.c_str());
    EXPECT_EQ(ZvLog::ConvertLog(&string), longest);
    string.Append("x");
    EXPECT_STREQ(ZvLog::ConvertLog(&string), "[### string is too long ###]");
    string.Clear();
    EXPECT_STREQ(ZvLog::ConvertLog(&string), "");
}

}  // namespace
}  // namespace Zvex
