// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_DIGEST_H_
#define ZVEX_TOOLS_ZVTEXT_DIGEST_H_

#include <cstdint>
#include <string>

namespace zvtext {

// 128 bits that tell whether strings are those of before. Two independent 64-bit mixers; every step of each
// is one to one in its state. Against chance, not against somebody who looks for equal ones.
class Digest {
public:
    // Lengths count, so that "ab", "c" is not "a", "bc".
    Digest& add(const std::string& text);

    uint64_t word() const { return mFirst; }
    std::string hex() const;  // 32 digits

private:
    void mix(uint64_t word);

    uint64_t mFirst = 0x9E3779B97F4A7C15u, mSecond = 0xC2B2AE3D27D4EB4Fu;
};

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_DIGEST_H_
