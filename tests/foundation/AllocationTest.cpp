// SPDX-License-Identifier: Apache-2.0
// Makes the N-th allocation of an operation fail, for every N it makes.
#include <gtest/gtest.h>
#include <pthread.h>

#include <cerrno>
#include <functional>
#include <memory>
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

// If any of its allocations fails, the operation reports code 1 and leaks nothing.
void expectReports(const std::function<bool()>& operation) {
    { const host::LogCapture once; }  // allocates the log
    forEachFailingAllocation([&](bool fails) {
        Error::SetError(0);
        EXPECT_EQ(operation(), !fails);
        EXPECT_EQ(Error::GetError(), fails ? ZV_ERROR_PLATFORM : ZV_ERROR_NONE);
    });
}

TEST(Allocation, StringsKeepTheirText) {
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
        expectReports([&] {
            ZvString string;
            if (string.Construct("old") == 0) return false;
            const bool done = edit(&string) == 1;
            EXPECT_TRUE(done || std::wstring(string.GetPointer()) == L"old");
            return done;
        });
    }
}

TEST(Allocation, ListsMutexesAndFilesReport) {
    int items[3];
    void* pointers[] = {&items[0], &items[1], &items[2]};
    expectReports([&] {
        List source, list;
        if (source.Construct(pointers, 3) == 0 || list.Construct(pointers, 2) == 0) return false;
        const bool added = list.Add(&source) == 1;
        EXPECT_EQ(list.GetCount(), added ? 5 : 2) << "all or nothing";
        return added && list.Insert(&items[0], 1) == 1 && list.BeginTraversal() > 0;
    });
    expectReports([] { return Mutex().Construct(); });
    expectReports([] { return File().Construct("/dev/null", "r"); });
    Mutex refused;
    systemRefusesMutexes = true;
    EXPECT_OUTCOMES(ZV_ERROR_PLATFORM, 0, "ZV_Mutex", of(refused.Construct()));
    systemRefusesMutexes = false;
    EXPECT_OUTCOMES(ZV_ERROR_ALREADY_CONSTRUCTED, 0, "ZV_Mutex", of(refused.Construct()));
    refused.Lock();
    refused.Unlock();
}

}  // namespace
}  // namespace Zvex
