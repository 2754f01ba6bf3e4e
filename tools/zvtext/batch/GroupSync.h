// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_GROUPSYNC_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_GROUPSYNC_H_

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "tools/zvtext/render/OutputFile.h"

namespace zvtext {

// Brings files to the disk on a thread of its own, in groups: while one group is synced, the next gathers. So
// rendering does not wait for the disk, and a fast disk makes small groups.
class GroupSync {
public:
    // Gets what the files have thrown, null if they have their names and all is on the disk.
    using Done = std::function<void(std::exception_ptr)>;

    GroupSync();
    ~GroupSync();  // waits for all files
    GroupSync(const GroupSync&) = delete;
    GroupSync& operator=(const GroupSync&) = delete;

    // Without streams among the files. `done` is called later by the thread, in the order of the calls; where
    // no thread could be started, it is called at once.
    void add(StagedFiles files, Done done);

private:
    struct Group {
        std::vector<StagedFiles> files;
        std::vector<Done> done;
        void commit();
    };

    void run();

    std::mutex mMutex;
    std::condition_variable mAdded;
    Group mNext;
    bool mEnds = false;
    std::thread mThread;
};

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_GROUPSYNC_H_
