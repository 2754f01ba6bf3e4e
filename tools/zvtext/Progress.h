// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_PROGRESS_H_
#define ZVEX_TOOLS_ZVTEXT_PROGRESS_H_

#include <chrono>
#include <cstdint>

namespace zvtext {

// One line on a terminal's standard error that says how far a batch is. Nothing where standard error is no
// terminal. Whoever writes to the terminal takes the line away first; the next update draws it again.
class Progress {
public:
    explicit Progress(bool quiet);
    ~Progress() { clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    bool shown() const { return mShown; }

    // Draws the line, anew at most ten times a second. `share` of the work is done, negative: nobody knows.
    void update(uint64_t done, uint64_t errors, double share);

    // Takes the line away, where it is there.
    void clear();

private:
    using Clock = std::chrono::steady_clock;

    bool mShown;
    bool mDrawn = false, mWiped = false;
    Clock::time_point mBegin = Clock::now(), mLast = mBegin;
};

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_PROGRESS_H_
