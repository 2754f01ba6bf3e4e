// SPDX-License-Identifier: Apache-2.0
// Makes the N-th allocation of an operation fail, for every N it makes.
#include <gtest/gtest.h>
#include <pthread.h>

#include <cerrno>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "foundation/Error.h"
#include "foundation/File.h"
#include "foundation/List.h"
#include "foundation/Mutex.h"
#include "foundation/ZvString.h"
#include "tests/FailingAllocations.h"
#include "tests/foundation/Outcome.h"

namespace {
bool systemRefusesMutexes = false;
}

// Calls of pthread_mutex_init in this program come here.
extern "C" int __real_pthread_mutex_init(pthread_mutex_t*, const pthread_mutexattr_t*);
extern "C" int __wrap_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) {
    return systemRefusesMutexes ? EAGAIN : __real_pthread_mutex_init(mutex, attributes);
}

namespace Zvex {
namespace {

// `attempt` prepares fresh objects, calls arm(), runs its operation and says whether that succeeded. It must
// fail with code 1 for each allocation that fails, and succeed once all are granted.
void failEachAllocation(const std::function<bool(const std::function<void()>& arm)>& attempt) {
    for (int n = 0; n < 100; ++n) {
        SCOPED_TRACE("allocation " + std::to_string(n));
        Error::SetError(0);
        std::optional<FailingAllocations> failing;
        const bool succeeded = attempt([&] { failing.emplace(n); });
        EXPECT_EQ(succeeded, failing->made() <= n);
        if (succeeded) {
            EXPECT_GT(n, 0) << "nothing was allocated";
            return;
        }
        EXPECT_EQ(Error::GetError(), ZV_ERROR_PLATFORM);
    }
    FAIL() << "never succeeded";
}

TEST(Allocation, StringsKeepTheirText) {
    failEachAllocation([](const auto& arm) {
        ZvString string;
        arm();
        const bool done = string.Construct("text") == 1;
        EXPECT_EQ(string.Construct(), done ? 0 : 1) << "a failed construction leaves it unconstructed";
        return done;
    });
    const std::function<int(ZvString*)> edits[] = {
        [](ZvString* s) { return s->Set(L"new"); },
        [](ZvString* s) { return s->Set("new"); },
        [](ZvString* s) { return s->Append("new"); },
        [](ZvString* s) { return s->Insert(L"new", 1); },
        [](ZvString* s) { return s->SetSubstring(s, 1, 2); },
        [](ZvString* s) { return s->Find("o") >= 0 ? 1 : 0; },
        [](ZvString* s) {
            int count = -1;
            const std::unique_ptr<uint16_t[]> units(s->GetUTF16(count));
            EXPECT_EQ(count, units != nullptr ? 3 : -1);
            return units != nullptr ? 1 : 0;
        },
    };
    for (const auto& edit : edits) {
        failEachAllocation([&](const auto& arm) {
            ZvString string;
            EXPECT_EQ(string.Construct(L"old"), 1);
            arm();
            const bool done = edit(&string) == 1;
            EXPECT_TRUE(done || std::wstring(string.GetPointer()) == L"old");
            return done;
        });
    }
}

TEST(Allocation, ListsAddAllOrNothing) {
    int items[3];
    void* pointers[] = {&items[0], &items[1], &items[2]};
    failEachAllocation([&](const auto& arm) {
        List source, list;
        EXPECT_EQ(source.Construct(pointers, 3) + list.Construct(pointers, 2), 2);
        arm();
        const bool done = list.Add(&source) == 1;
        EXPECT_EQ(list.GetCount(), done ? 5 : 2);
        EXPECT_EQ(list.Get(1), pointers[1]);
        return done;
    });
    failEachAllocation([&](const auto& arm) {
        List list;
        arm();
        const bool done = list.Construct(pointers, 3) == 1;
        const unsigned long code = Error::GetError();
        EXPECT_EQ(list.GetCount(), done ? 3 : -1) << "a failed construction leaves the list unconstructed";
        Error::SetError(code);
        return done;
    });
    failEachAllocation([&](const auto& arm) {
        List list;
        EXPECT_EQ(list.Construct(pointers, 3), 1);
        arm();
        return list.Insert(&items[0], 1) == 1 && list.BeginTraversal() > 0;
    });
}

TEST(Allocation, MutexAndFileReport) {
    failEachAllocation([](const auto& arm) {
        Mutex mutex;
        arm();
        return mutex.Construct();
    });
    Mutex refused;
    systemRefusesMutexes = true;
    EXPECT_OUTCOMES(ZV_ERROR_PLATFORM, 0, "ZV_Mutex", of(refused.Construct()));
    systemRefusesMutexes = false;
    EXPECT_OUTCOMES(ZV_ERROR_ALREADY_CONSTRUCTED, 0, "ZV_Mutex", of(refused.Construct()));
    refused.Lock();
    refused.Unlock();
    failEachAllocation([](const auto& arm) {
        File file;
        arm();
        return file.Construct("/dev/null", "r");
    });
}

}  // namespace
}  // namespace Zvex
