// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/Progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace zvtext {

namespace {

// "1:05", "2:03:00"
std::string clockText(double seconds) {
    const auto whole = static_cast<long long>(std::min(seconds, 1e9));
    char text[32];
    if (whole >= 3600) {
        std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60, whole % 60);
    } else {
        std::snprintf(text, sizeof text, "%lld:%02lld", whole / 60, whole % 60);
    }
    return text;
}

size_t terminalColumns() {
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

}  // namespace

Progress::Progress(bool quiet) {
    const char* terminal = std::getenv("TERM");
    const bool dumb = terminal != nullptr && std::strcmp(terminal, "dumb") == 0;
    mShown = !quiet && !dumb && isatty(STDERR_FILENO) == 1;
}

void Progress::update(uint64_t done, uint64_t errors, double share) {
    const Clock::time_point now = Clock::now();
    if (!mShown || (!mWiped && now - mLast < std::chrono::milliseconds(100))) return;
    mLast = now;
    const double seconds = std::chrono::duration<double>(now - mBegin).count();
    std::string text;
    if (share >= 0) {
        constexpr size_t kCells = 20;
        const auto full = static_cast<size_t>(share * kCells);
        text = "[" + std::string(full, '#') + std::string(kCells - full, '.') + "] ";
    }
    char counts[128];
    std::snprintf(counts, sizeof counts, "%" PRIu64 " done, %.1f/s, %" PRIu64 " %s", done,
                  static_cast<double>(done) / seconds, errors, errors == 1 ? "error" : "errors");
    text += counts;
    if (share > 0) text += ", " + clockText(seconds * (1 - share) / share) + " left";
    const size_t columns = terminalColumns();
    if (text.size() >= columns) text.resize(columns - 1);
    std::fprintf(stderr, "\r%s\x1b[K", text.c_str());
    mDrawn = true;
    mWiped = false;
}

void Progress::clear() {
    if (!mDrawn) return;
    std::fputs("\r\x1b[K", stderr);
    mDrawn = false;
    mWiped = true;
}

}  // namespace zvtext
