// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_LIMITS_TIMELIMIT_H_
#define ZVEX_TESTS_LIMITS_TIMELIMIT_H_

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <utility>

// Fails the test if its block uses more than `seconds` of processor time. That is ten times what it needs, so
// only unbounded work fails. Other programs do not count.
class TimeLimit {
public:
    explicit TimeLimit(double seconds, std::string name = "")
        : mSeconds(seconds * kSlowness), mName(std::move(name)) {}
    TimeLimit(const TimeLimit&) = delete;
    TimeLimit& operator=(const TimeLimit&) = delete;
    ~TimeLimit() {
        EXPECT_LT(static_cast<double>(std::clock() - mStart) / CLOCKS_PER_SEC, mSeconds) << mName;
    }

    // Factor for the sanitizers.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    static constexpr double kSlowness = 20;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
    static constexpr double kSlowness = 20;
#else
    static constexpr double kSlowness = 1;
#endif
#else
    static constexpr double kSlowness = 1;
#endif

private:
    double mSeconds;
    std::string mName;
    std::clock_t mStart = std::clock();
};

#endif  // ZVEX_TESTS_LIMITS_TIMELIMIT_H_
