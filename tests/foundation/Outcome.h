// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_FOUNDATION_OUTCOME_H_
#define ZVEX_TESTS_FOUNDATION_OUTCOME_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/Error.h"
#include "platform/host/LogCapture.h"

namespace Zvex {

// A call's result (for a pointer, whether there is one) and the code it left; the code is reset.
using Outcome = std::pair<long, unsigned long>;
using Outcomes = std::vector<Outcome>;

inline Outcome of(long result) {
    const Outcome outcome(result, Error::GetError());
    Error::SetError(0);
    return outcome;
}
inline Outcome of(const void* result) {
    return of(result != nullptr ? 1L : 0L);
}

// Every call must give that result and code, and one report line under the tag; without a tag no line at all.
#define EXPECT_OUTCOMES(code, result, tag, ...) \
    expectOutcomes(                             \
        code, result, tag, [&] { return Outcomes{__VA_ARGS__}; }, #__VA_ARGS__)
inline void expectOutcomes(unsigned long code, long result, const char* tag,
                           const std::function<Outcomes()>& calls, const char* what) {
    SCOPED_TRACE(what);
    Error::SetError(0);
    host::LogCapture capture;
    const Outcomes outcomes = calls();
    EXPECT_THAT(outcomes, testing::Each(Outcome(result, code)));
    const auto lines = capture.lines();
    EXPECT_EQ(lines.size(), tag != nullptr ? outcomes.size() : 0);
    for (const host::LogLine& line : lines) {
        EXPECT_EQ(line.tag, tag);
        EXPECT_EQ(line.priority, ANDROID_LOG_ERROR);
        EXPECT_EQ(line.text.rfind("@ Native Error " + std::to_string(code) + " : ", 0), 0u) << line.text;
    }
}

}  // namespace Zvex

#endif  // ZVEX_TESTS_FOUNDATION_OUTCOME_H_
