// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_DIGEST_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_DIGEST_H_

#include <xxhash.h>

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace zvtext {

// A 128-bit digest to detect changed strings: XXH3. It guards against chance, not against attackers.
class Digest {
public:
    Digest() { XXH3_128bits_reset(mState.get()); }

    // Lengths are included, so that "ab", "c" differs from "a", "bc".
    Digest& add(const std::string& text) {
        const uint64_t size = text.size();
        XXH3_128bits_update(mState.get(), &size, sizeof size);
        XXH3_128bits_update(mState.get(), text.data(), text.size());
        return *this;
    }

    uint64_t word() const { return XXH3_128bits_digest(mState.get()).low64; }
    std::string hex() const {  // 32 digits
        const XXH128_hash_t hash = XXH3_128bits_digest(mState.get());
        char digits[33];
        std::snprintf(digits, sizeof digits, "%016" PRIx64 "%016" PRIx64, hash.high64, hash.low64);
        return digits;
    }

private:
    std::unique_ptr<XXH3_state_t, XXH_errorcode (*)(XXH3_state_t*)> mState{XXH3_createState(),
                                                                           XXH3_freeState};
};

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_DIGEST_H_
