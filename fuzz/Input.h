// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FUZZ_INPUT_H_
#define ZVEX_FUZZ_INPUT_H_

#include <cfloat>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

// The base of every fuzz target: reads values from the fuzzer's bytes, and ends the process if two ways to
// one result differ.

// The entry of a target. Returns 0.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

#define ZVEX_FUZZ_CHECK(condition)                                                              \
    do {                                                                                        \
        if (!(condition)) {                                                                     \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                       \
        }                                                                                       \
    } while (false)

namespace fuzz {

// Reads from the front. Beyond the end everything reads as 0, so every input is complete, and a short one
// does little.
class Input {
public:
    Input(const uint8_t* data, size_t size) : mAt(data), mEnd(data + size) {}

    size_t left() const { return static_cast<size_t>(mEnd - mAt); }
    uint8_t byte() { return mAt < mEnd ? *mAt++ : 0; }
    bool flag() { return (byte() & 1) != 0; }
    // Two bytes, most significant first; all values are read that way.
    uint16_t half() {
        const uint8_t high = byte();
        return static_cast<uint16_t>(high << 8 | byte());
    }
    uint32_t word() {
        uint32_t value = 0;
        for (int i = 0; i < 4; ++i) value = value << 8 | byte();
        return value;
    }

    // Takes one byte if the range allows, so that a changed byte changes one value and keeps those after it.
    int between(int first, int last) {
        const uint32_t range = static_cast<uint32_t>(last) - static_cast<uint32_t>(first) + 1;
        const uint32_t value = range == 0 ? word() : (range <= 256 ? byte() : word()) % range;
        return static_cast<int>(static_cast<int64_t>(first) + value);
    }
    template <typename Value, size_t kCount>
    const Value& pick(const Value (&values)[kCount]) {
        return values[byte() % kCount];
    }

    // Any int: mostly small ones, the ends of the range, any bits.
    int integer() {
        static constexpr int kEnds[] = {INT_MIN, INT_MIN + 1, -65536, -32769, 32768,       65535,
                                        65536,   1 << 24,     -1,     256,    INT_MAX - 1, INT_MAX};
        const uint8_t kind = byte();
        if (kind < 12) return kEnds[kind];
        if (kind >= 32) return int{kind} - 96;
        const auto bits = static_cast<int>(word() & INT_MAX);
        return flag() ? -bits : bits;
    }

    // Any float: mostly usual ones, useless ones, any bits.
    float number() {
        static constexpr float kInfinite = std::numeric_limits<float>::infinity();
        static constexpr float kOdd[] = {std::numeric_limits<float>::quiet_NaN(),
                                         kInfinite,
                                         -kInfinite,
                                         FLT_MAX,
                                         -FLT_MAX,
                                         FLT_MIN / 4,
                                         -0.0f,
                                         2147483648.0f,
                                         -2147483904.0f,
                                         1e9f,
                                         65536.0f,
                                         0.99999994f};
        const uint8_t kind = byte();
        if (kind < 12) return kOdd[kind];
        if (kind < 32) {
            const uint32_t bits = word();
            float value;
            std::memcpy(&value, &bits, sizeof(value));
            return value;
        }
        // Steps of about 0.01 from 0 to 1, or quarters from -32.
        return kind < 128 ? static_cast<float>(kind - 32) * 0.0105f
                          : static_cast<float>(between(-128, 1919)) * 0.25f;
    }

    // At most the next `most` bytes; a length before them gives the number.
    std::string text(size_t most) {
        const size_t length = most < 256 ? byte() : half();
        return take(length % (most + 1));
    }
    std::string rest() { return take(left()); }

    // Makes `count` bytes from a few of the input: noise, runs of the usual values 0 and 255, or one value.
    void fill(uint8_t* target, size_t count) {
        const uint8_t kind = byte();
        uint32_t noise = word() | 1;
        uint32_t run = 0;
        uint8_t value = 0;
        for (size_t i = 0; i < count; ++i) {
            if (run-- == 0) {
                noise ^= noise << 13;
                noise ^= noise >> 17;
                noise ^= noise << 5;
                value = static_cast<uint8_t>(noise >> 8);
                run = 0;
                if (kind % 4 == 1) run = noise >> 16 & 63;
                if (kind % 4 == 1 && (noise & 3) != 0) value = (noise & 1) != 0 ? 255 : 0;
                if (kind % 4 == 2) run = UINT32_MAX;
                if (kind % 4 == 3 && noise % 5 != 0) value = 0;
            }
            target[i] = value;
        }
    }

private:
    std::string take(size_t count) {
        if (count > left()) count = left();
        std::string bytes(reinterpret_cast<const char*>(mAt), count);
        mAt += count;
        return bytes;
    }

    const uint8_t* mAt;
    const uint8_t* mEnd;
};

}  // namespace fuzz

#endif  // ZVEX_FUZZ_INPUT_H_
