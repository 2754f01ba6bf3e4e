// SPDX-License-Identifier: Apache-2.0
#include "raster/ClearPixels.h"

#include <cstring>

#include "raster/Intrinsics.h"

namespace Zvex {

#if defined(__SSE2__)

void clearAside(uint8_t* bytes, size_t count) {
    constexpr size_t kLine = 64;  // only a line that is written whole is not read first
    const size_t before = (kLine - reinterpret_cast<uintptr_t>(bytes) % kLine) % kLine;
    if (count < before + kLine) {
        std::memset(bytes, 0, count);
        return;
    }
    std::memset(bytes, 0, before);
    const size_t end = before + (count - before) / kLine * kLine;
    const __m128i zero = _mm_setzero_si128();
    for (size_t i = before; i < end; i += 16) _mm_stream_si128(reinterpret_cast<__m128i*>(bytes + i), zero);
    _mm_sfence();
    std::memset(bytes + end, 0, count - end);
}

#else

void clearAside(uint8_t* bytes, size_t count) {
    std::memset(bytes, 0, count);
}

#endif

}  // namespace Zvex
