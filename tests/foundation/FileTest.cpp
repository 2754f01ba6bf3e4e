// SPDX-License-Identifier: Apache-2.0
#include "foundation/File.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "foundation/ZvString.h"
#include "tests/foundation/Outcome.h"

namespace Zvex {
namespace {

// Syncs since a test set it to 0: the program's own fsync replaces the C library's.
int syncs = 0;
extern "C" int fsync(int) {
    ++syncs;
    return 0;
}

class FileTest : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = testing::TempDir() + "zvex-file-XXXXXX";
        ASSERT_NE(mkdtemp(&pattern[0]), nullptr);
        mFolder = pattern;
        mPath = mFolder + "/gr\xC3\xBC\xC3\x9F.txt";
        ASSERT_EQ(mWide.Construct(mPath.c_str()), 1);
        syncs = 0;
        Error::SetError(0);
    }
    void TearDown() override {
        unlink(mPath.c_str());
        rmdir(mFolder.c_str());
    }
    void write(const char* text) {
        File file;
        ASSERT_TRUE(file.Construct(mPath.c_str(), "w"));
        ASSERT_EQ(file.Write(text, 1, std::strlen(text)), std::strlen(text));
    }

    std::string mFolder, mPath;
    ZvString mWide;
};

TEST_F(FileTest, WritesSeeksAndReads) {
    EXPECT_EQ(File::IsAccessible(&mWide, R_OK), -1);
    write("hello");
    EXPECT_EQ(File::IsAccessible(&mWide, R_OK) + File::IsAccessible(mPath.c_str(), R_OK), 0);
    File file;
    ASSERT_TRUE(file.Construct(&mWide, "r+", false));
    EXPECT_EQ(file.Seek(1, SEEK_SET) + file.Eof() + file.Error(), 0);
    EXPECT_EQ(file.Tell(), 1);
    char buffer[8] = "";
    EXPECT_EQ(file.Read(buffer, 1, 8), 4u);
    EXPECT_STREQ(buffer, "ello");
    EXPECT_NE(file.Eof(), 0);
    EXPECT_EQ(file.GetFileDescriptor(), fileno(file.GetFilePointer()));
    EXPECT_OUTCOMES(ZV_ERROR_INVALID_ARGUMENT, 0, "ZV_File", of(static_cast<long>(file.Read(nullptr, 1, 1))));
    const std::string other = mFolder + "/\xE6\x96\x87";
    ZvString wideOther;
    ASSERT_EQ(wideOther.Construct(other.c_str()), 1);
    EXPECT_EQ(File::Rename(&mWide, &wideOther), 0);
    EXPECT_EQ(File::IsAccessible(&mWide, F_OK), -1);
    EXPECT_EQ(File::Rename(other.c_str(), mPath.c_str()) + File::Unlink(&mWide), 0);
    EXPECT_EQ(File::Unlink(mPath.c_str()), -1) << "gone already";
}

TEST_F(FileTest, SyncsWhatWasOpenedToWriteOrAppend) {
    for (const char* mode : {"w", "a", "w+", "ab", "r", "r+"}) {
        syncs = 0;
        File file;
        ASSERT_TRUE(file.Construct(mPath.c_str(), mode)) << mode;
        file.Close();
        EXPECT_EQ(syncs, mode[0] != 'r' ? 1 : 0) << mode;
        file.Close();
        EXPECT_EQ(syncs, mode[0] != 'r' ? 1 : 0) << "closed once";
        EXPECT_EQ(file.GetFilePointer(), nullptr);
    }
    syncs = 0;
    write("x");
    EXPECT_EQ(syncs, 1) << "the destructor closes";
    FILE* stream = nullptr;
    {
        File kept;
        ASSERT_TRUE(kept.Construct(&mWide, "w", true));
        kept.Close();
        stream = kept.GetFilePointer();
    }
    EXPECT_EQ(syncs, 1);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fclose(stream), 0);
}

TEST_F(FileTest, FailuresLeaveACodeAndALine) {
    const char* const none = nullptr;
    const ZvString* const noString = nullptr;
    File file;
    ZvString empty, x;
    ASSERT_EQ(empty.Construct(L"") + x.Construct("xy"), 2);
    EXPECT_OUTCOMES(ZV_ERROR_INVALID_ARGUMENT, 0, nullptr, of(file.Construct(none, "r")),
                    of(file.Construct(noString, "r", false)), of(file.Construct(mPath.c_str(), none)));
    EXPECT_OUTCOMES(ZV_ERROR_INVALID_ARGUMENT, -1, nullptr, of(File::IsAccessible(none, 0)),
                    of(File::Unlink(none)), of(File::Rename(none, "x")), of(File::IsAccessible(noString, 0)),
                    of(File::Unlink(noString)), of(File::Rename(&x, noString)));
    host::LogCapture capture;
    EXPECT_THAT(
        (Outcomes{of(file.Construct(&empty, "r", false) ? 0 : -1), of(File::IsAccessible(&empty, F_OK)),
                  of(File::Unlink(&empty)), of(File::Rename(&empty, &x)), of(File::Rename(&x, &empty))}),
        testing::Each(Outcome(-1, ZV_ERROR_INVALID_ARGUMENT)));
    EXPECT_EQ(of(File().Construct((mFolder + "/missing").c_str(), "r")), Outcome(0, ZV_ERROR_OPEN_FILE));
    // A failed open leaves the object constructed, without a stream.
    EXPECT_EQ(of(file.Construct(mPath.c_str(), "w")), Outcome(0, ZV_ERROR_ALREADY_CONSTRUCTED));
    std::vector<std::string> texts;
    for (const host::LogLine& line : capture.lines()) texts.push_back(line.text);
    EXPECT_THAT(texts,
                testing::ElementsAre(
                    "OpenFile() - pathSize < 0", "IsAccessible() - pathSize < 0", "Unlink() - pathSize < 0",
                    "Rename() - pathSize < 0 : old 0, new 2", "Rename() - pathSize < 0 : old 2, new 0",
                    "OpenFile - Fail to open file. errno = " + std::to_string(ENOENT),
                    testing::StartsWith("@ Native Error 11 : "), testing::StartsWith("@ Native Error 4 : ")));
}

TEST_F(FileTest, WithoutAStreamOperationsFailWithEight) {
    write("x");
    File unconstructed, closed;
    ASSERT_TRUE(closed.Construct(mPath.c_str(), "r"));
    closed.Close();
    char byte = 0;
    for (File* file : {&unconstructed, &closed}) {
        EXPECT_OUTCOMES(ZV_ERROR_NOT_CONSTRUCTED, 0, "ZV_File",
                        of(static_cast<long>(file->Read(&byte, 1, 1))),
                        of(static_cast<long>(file->Write(&byte, 1, 1))));
        EXPECT_OUTCOMES(ZV_ERROR_NOT_CONSTRUCTED, -1, "ZV_File", of(file->Seek(0, SEEK_SET)),
                        of(file->Tell()), of(file->Eof()), of(file->Error()), of(file->GetFileDescriptor()));
        EXPECT_EQ(of(file->GetFilePointer()), Outcome(0, 0));
    }
}

}  // namespace
}  // namespace Zvex
