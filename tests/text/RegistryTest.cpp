// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "TextScene.h"
#include "foundation/Error.h"
#include "foundation/ZvLog.h"
#include "text/ZvTextInstanceManager.h"
#include "text/ZvTextObject.h"

using namespace Zvex;
using Registry = ZvTextInstanceManager;

namespace {

// A text object that records its name when it is deleted.
class Probe : public ZvTextObject {
public:
    Probe(char name, std::string* deletedNames) : mName(name), mDeletedNames(deletedNames) { Construct(); }
    ~Probe() override { *mDeletedNames += mName; }

private:
    char mName;
    std::string* mDeletedNames;
};

TEST(Registry, HandlesGrowAndAreNeverUsedAgain) {
    std::string deleted;
    auto* first = new Probe('a', &deleted);
    const int handle = first->GetRuntimeHandle();
    EXPECT_GE(handle, 1);
    EXPECT_EQ(Registry::Register(first), handle);
    EXPECT_EQ(Registry::FindZvTextHandle(first), handle);
    EXPECT_EQ(ZvTextObject::FindZvTextObject(handle), first);

    EXPECT_EQ(Registry::Unregister(handle), 0);
    EXPECT_EQ(Registry::FindZvTextHandle(first), -1);
    EXPECT_EQ(Registry::FindZvTextObject(handle), nullptr);
    EXPECT_EQ(Registry::Unregister(handle), 0);
    EXPECT_EQ(Registry::Register(first), handle + 1);
    // The object still has its first handle and does not return to the second one.
    EXPECT_EQ(Registry::Unregister(handle + 1), 0);
    delete first;

    Probe second('b', &deleted);
    EXPECT_EQ(second.GetRuntimeHandle(), handle + 2);
}

TEST(Registry, LastReleaseDeletesUnlessToldNotTo) {
    std::string deleted;
    auto* object = new Probe('a', &deleted);
    const int handle = object->GetRuntimeHandle();
    Registry::Bind(object);
    EXPECT_TRUE(Registry::Release(object, false));  // leaves a count of zero
    Registry::Bind(object);
    Registry::Bind(object);
    EXPECT_TRUE(Registry::Release(object, true));
    EXPECT_EQ(deleted, "");
    EXPECT_TRUE(Registry::Release(handle));
    EXPECT_EQ(deleted, "a");
    EXPECT_EQ(Registry::FindZvTextObject(handle), nullptr);
}

TEST(Registry, UnknownObjectsAndHandlesAreReported) {
    std::string deleted;
    Probe unbound('a', &deleted);
    host::LogCapture log;
    for (const bool byObject : {true, false}) {
        Error::SetError(0);
        EXPECT_FALSE(byObject ? Registry::Release(&unbound, true) : Registry::Release(1 << 30));
        EXPECT_EQ(Error::GetError(), 9u);
    }
    for (const std::string& line : text_test::errorLines(log)) {
        EXPECT_EQ(line.rfind("ZvTextInstanceManager: @ Native Error 9 : ", 0), 0u) << line;
    }
    EXPECT_EQ(text_test::errorLines(log).size(), 2u);
}

TEST(Registry, LockDefersLastReleasesAndUnlockMakesThemUpBackwards) {
    std::string deleted;
    Probe* objects[4];
    for (int i = 0; i < 4; ++i) {
        objects[i] = new Probe(static_cast<char>('a' + i), &deleted);
        Registry::Bind(objects[i]);
    }
    Registry::Lock();
    for (Probe* object : objects) EXPECT_TRUE(Registry::Release(object, true));
    EXPECT_EQ(deleted, "");
    EXPECT_FALSE(Registry::Release(objects[0], true));  // it is no longer counted
    Registry::Bind(objects[1]);
    Registry::Unlock();
    EXPECT_EQ(deleted, "dca");
    EXPECT_TRUE(Registry::Release(objects[1], true));
    EXPECT_EQ(deleted, "dcab");
}

// Another object at the address of one that was deleted directly starts without its references, and nothing
// is deleted twice.
TEST(Registry, AnObjectDeletedDirectlyLeavesNothingBehind) {
    std::string deleted;
    alignas(Probe) char place[sizeof(Probe)];
    auto* bound = new (place) Probe('a', &deleted);
    Registry::Bind(bound);
    Registry::Bind(bound);
    Registry::Unregister(bound->GetRuntimeHandle());
    const int second = Registry::Register(bound);
    bound->~Probe();
    EXPECT_EQ(Registry::FindZvTextObject(second), nullptr);
    auto* next = new (place) Probe('b', &deleted);
    EXPECT_FALSE(Registry::Release(next, false));

    Registry::Lock();
    Registry::Bind(next);
    EXPECT_TRUE(Registry::Release(next, true));
    next->~Probe();
    Registry::Unlock();
    EXPECT_EQ(deleted, "ab");
}

TEST(RegistryDeathTest, HandlesBeginAtOneAndEndAtTheLargestInt) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto useThemUp = [] {
        ZvTextObject first, last, none;
        const bool one = first.Construct() && first.GetRuntimeHandle() == 1;
        Registry::SkipHandles(2147483646);
        const bool lastOne = last.Construct() && last.GetRuntimeHandle() == 2147483647;
        Error::SetError(0);
        const bool refused = !none.Construct() && Error::GetError() == 3 && !none.Construct();
        std::_Exit(one && lastOne && refused && Registry::FindZvTextHandle(&none) == -1 ? 7 : 8);
    };
    EXPECT_EXIT(useThemUp(), ::testing::ExitedWithCode(7), "all handles are used up");
}

}  // namespace
