// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/Digest.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace zvtext {

void Digest::mix(uint64_t word) {
    mFirst = (mFirst ^ word) * 0xFF51AFD7ED558CCDu;
    mFirst ^= mFirst >> 32;
    mSecond = ((mSecond << 29 | mSecond >> 35) + word) * 0xC4CEB9FE1A85EC53u;
    mSecond ^= mSecond >> 33;
}

Digest& Digest::add(const std::string& text) {
    mix(text.size());
    for (size_t i = 0; i < text.size(); i += sizeof(uint64_t)) {
        uint64_t word = 0;
        std::memcpy(&word, text.data() + i, i + sizeof word <= text.size() ? sizeof word : text.size() - i);
        mix(word);
    }
    mix(0);
    return *this;
}

std::string Digest::hex() const {
    char digits[33];
    std::snprintf(digits, sizeof digits, "%016" PRIx64 "%016" PRIx64, mFirst, mSecond);
    return digits;
}

}  // namespace zvtext
