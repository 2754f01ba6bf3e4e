// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/GroupSync.h"

#include <system_error>

namespace zvtext {

GroupSync::GroupSync() {
    try {
        mThread = std::thread([this] { run(); });
    } catch (const std::system_error&) {  // no more threads: files are synced one by one
    }
}

GroupSync::~GroupSync() {
    {
        const std::lock_guard lock(mMutex);
        mEnds = true;
    }
    mAdded.notify_one();
    if (mThread.joinable()) mThread.join();
}

void GroupSync::add(StagedFiles files, Done done) {
    {
        const std::lock_guard lock(mMutex);
        mNext.files.push_back(std::move(files));
        mNext.done.push_back(std::move(done));
        if (!mThread.joinable()) std::exchange(mNext, {}).commit();
    }
    mAdded.notify_one();
}

void GroupSync::run() {
    std::unique_lock lock(mMutex);
    for (;;) {
        mAdded.wait(lock, [this] { return mEnds || !mNext.files.empty(); });
        if (mNext.files.empty()) return;
        Group group = std::exchange(mNext, {});
        lock.unlock();
        group.commit();
        lock.lock();
    }
}

void GroupSync::Group::commit() {
    const std::vector<std::exception_ptr> errors = commitTogether(files);
    files.clear();  // removes what failed, before that is said
    for (size_t i = 0; i < done.size(); ++i) done[i](errors[i]);
}

}  // namespace zvtext
