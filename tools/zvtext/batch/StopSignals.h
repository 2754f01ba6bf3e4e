// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_STOPSIGNALS_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_STOPSIGNALS_H_

namespace zvtext {

// Catches SIGINT, SIGTERM and SIGHUP, unless they are ignored, for a loop that waits with poll. The second
// signal ends the process. One at a time.
class StopSignals {
public:
    StopSignals();  // throws Failure
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    int number() const;                          // of the last signal; 0: none
    int descriptor() const { return mPipe[0]; }  // readable after a signal, until it is drained
    void drain() const;

private:
    int mPipe[2] = {-1, -1};
};

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_STOPSIGNALS_H_
