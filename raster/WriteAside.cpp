// SPDX-License-Identifier: Apache-2.0
#include "raster/WriteAside.h"

#include <cstring>

#include "raster/Intrinsics.h"

namespace Zvex {

#if defined(__SSE2__)

namespace {

constexpr size_t kLine = 64;  // only a line that is written whole is not read first

// Writes whole lines with line(offset), the bytes before and after them with part(offset, count).
template <typename Line, typename Part>
void writeLines(const uint8_t* to, size_t count, Line line, Part part) {
    const size_t before = (kLine - reinterpret_cast<uintptr_t>(to) % kLine) % kLine;
    if (count < before + kLine) return part(0, count);
    part(0, before);
    const size_t end = before + (count - before) / kLine * kLine;
    for (size_t i = before; i < end; i += kLine) line(i);
    _mm_sfence();
    part(end, count - end);
}

}  // namespace

void clearAside(uint8_t* bytes, size_t count) {
    const __m128i zero = _mm_setzero_si128();
    writeLines(
        bytes, count,
        [&](size_t at) {
            for (size_t i = at; i < at + kLine; i += 16)
                _mm_stream_si128(reinterpret_cast<__m128i*>(bytes + i), zero);
        },
        [&](size_t at, size_t n) { std::memset(bytes + at, 0, n); });
}

void copyAside(uint8_t* to, const uint8_t* from, size_t count) {
    writeLines(
        to, count,
        [&](size_t at) {
            for (size_t i = at; i < at + kLine; i += 16) {
                const __m128i word = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i));
                _mm_stream_si128(reinterpret_cast<__m128i*>(to + i), word);
            }
        },
        [&](size_t at, size_t n) { std::memcpy(to + at, from + at, n); });
}

#else

void clearAside(uint8_t* bytes, size_t count) {
    std::memset(bytes, 0, count);
}

void copyAside(uint8_t* to, const uint8_t* from, size_t count) {
    std::memcpy(to, from, count);
}

#endif

}  // namespace Zvex
