// SPDX-License-Identifier: Apache-2.0
// The conversions between wide text, UTF-8 and UTF-16. They do not use the C library, because its locale must
// not change what a text says.
#include "foundation/ZvStringImpl.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>
#include <type_traits>

namespace Zvex {

namespace {

constexpr uint32_t kNoCharacter = 0xFFFFFFFFu;
constexpr uint32_t kWhiteSquare = 0x25A1;

bool isHighSurrogate(uint32_t c) {
    return c >= 0xD800 && c < 0xDC00;
}

bool isLowSurrogate(uint32_t c) {
    return c >= 0xDC00 && c < 0xE000;
}

uint32_t paired(uint32_t high, uint32_t low) {
    return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

// A wchar_t as an unsigned value; a negative one has the top bit set, whether or not the type is signed.
uint32_t unsignedOf(wchar_t c) {
    return static_cast<std::make_unsigned_t<wchar_t>>(c);
}

// The next character of wide text, which must not be at the NUL.
uint32_t nextWide(const wchar_t*& text) {
    const uint32_t c = unsignedOf(*text++);
    if constexpr (sizeof(wchar_t) == 2) {
        const uint32_t following = unsignedOf(*text);
        if (isHighSurrogate(c) && isLowSurrogate(following)) {
            ++text;
            return paired(c, following);
        }
    }
    return c;
}

// Bytes that the UTF-8 form of a character takes; 0 for a negative one, which has none.
int utf8Length(uint32_t c) {
    if (c < 0x80) return 1;
    if (c < 0x800) return 2;
    if (c < 0x10000) return 3;
    if (c < 0x200000) return 4;
    if (c < 0x4000000) return 5;
    if (c < 0x80000000u) return 6;
    return 0;
}

// Length of the sequence that a lead byte starts; 0 for other bytes.
int sequenceLength(uint8_t lead) {
    if (lead < 0x80) return 1;
    if (lead < 0xC0) return 0;
    if (lead < 0xE0) return 2;
    if (lead < 0xF0) return 3;
    if (lead < 0xF8) return 4;
    if (lead < 0xFC) return 5;
    return lead < 0xFE ? 6 : 0;
}

// Reads one well-formed sequence of 1 to 6 bytes, or returns kNoCharacter without advancing. The NUL is not a
// continuation byte, so nothing beyond it is read.
uint32_t nextUTF8(const uint8_t*& bytes) {
    const int length = sequenceLength(bytes[0]);
    if (length == 0) return kNoCharacter;
    uint32_t c = length == 1 ? bytes[0] : bytes[0] & (0x7F >> length);
    for (int i = 1; i < length; ++i) {
        if ((bytes[i] & 0xC0) != 0x80) return kNoCharacter;
        c = (c << 6) | (bytes[i] & 0x3F);
    }
    if (utf8Length(c) != length) return kNoCharacter;  // overlong
    bytes += length;
    return c;
}

// As nextUTF8, with two surrogates in a row as the character they stand for.
uint32_t nextUTF8Character(const uint8_t*& bytes) {
    const uint32_t c = nextUTF8(bytes);
    if (c == kNoCharacter || !isHighSurrogate(c)) return c;
    const uint8_t* following = bytes;
    const uint32_t low = nextUTF8(following);
    if (low == kNoCharacter || !isLowSurrogate(low)) return c;
    bytes = following;
    return paired(c, low);
}

wchar_t* appendWide(wchar_t* target, uint32_t c) {
    if constexpr (sizeof(wchar_t) == 2) {
        if (c > 0x10FFFF) c = kWhiteSquare;
        if (c > 0xFFFF) {
            *target++ = static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
            c = 0xDC00 + ((c - 0x10000) & 0x3FF);
        }
    }
    *target++ = static_cast<wchar_t>(c);
    return target;
}

// Walks UTF-8 by its lead bytes and passes every unit to `emit`; returns the number of units.
template <typename Emit>
int decode(const char* utf8, int byteCount, Emit emit) {
    const uint8_t* bytes = reinterpret_cast<const uint8_t*>(utf8);
    int units = 0;
    for (int left = byteCount; left > 0;) {
        const int length = sequenceLength(bytes[0]);
        if (length == 0 || length > left) break;
        const uint32_t b1 = length > 1 ? bytes[1] & 0x3F : 0;
        const uint32_t b2 = length > 2 ? bytes[2] & 0x3F : 0;
        const uint32_t b3 = length > 3 ? bytes[3] & 0x3F : 0;
        switch (length) {
            case 1:
                emit(units++, bytes[0]);
                break;
            case 2:
                emit(units++, ((bytes[0] & 0x1Fu) << 6) | b1);
                break;
            case 3:
                emit(units++, (uint32_t{bytes[0]} << 12) | (b1 << 6) | b2);
                break;
            case 4:
                // The lead byte's bits are ignored and 0x10000 is not subtracted, on purpose. That is right
                // for U+10000 to U+1FFFF and wrong above. What b2 << 6 has above ten bits is set in 0xDC00
                // anyway.
                emit(units++, 0xD800 | ((((uint32_t{bytes[1]} << 12) | (b2 << 6)) & 0xFC00) >> 10));
                emit(units++, 0xDC00 | (b2 << 6) | b3);
                break;
            default:
                emit(units++, kWhiteSquare);
                break;
        }
        bytes += length;
        left -= length;
    }
    return units;
}

}  // namespace

int ZvStringImpl::GetUTF8Size(const wchar_t* text) {
    if (text == nullptr) return 1;
    int64_t sum = 1;
    while (*text != L'\0') {
        const int length = utf8Length(nextWide(text));
        sum += length > 0 ? length : -1;
    }
    return static_cast<int>(std::min<int64_t>(std::max<int64_t>(sum, INT_MIN), INT_MAX));
}

int ZvStringImpl::Wcstombs(char* target, const wchar_t* text, int capacity) {
    int written = 0;
    while (*text != L'\0') {
        const uint32_t c = nextWide(text);
        const int length = utf8Length(c);
        if (length == 0 || length > capacity - written) break;
        // Six bits a byte from the end; the lead byte has as many high bits set as the sequence has bytes.
        uint32_t rest = c;
        for (int i = length - 1; i > 0; --i, rest >>= 6) {
            target[written + i] = static_cast<char>(0x80 | (rest & 0x3F));
        }
        const uint32_t mark = length == 1 ? 0 : 0xFF00u >> length;
        target[written] = static_cast<char>(mark | rest);
        written += length;
    }
    return written;
}

wchar_t* ZvStringImpl::WidenUTF8(const char* utf8) {
    // A wide character, or a pair of 16-bit ones, never outnumbers the bytes it came from.
    wchar_t* const wide = new (std::nothrow) wchar_t[std::strlen(utf8) + 1];
    if (wide == nullptr) return nullptr;
    const uint8_t* bytes = reinterpret_cast<const uint8_t*>(utf8);
    wchar_t* end = wide;
    while (*bytes != 0) {
        const uint32_t c = nextUTF8Character(bytes);
        if (c == kNoCharacter) break;
        end = appendWide(end, c);
    }
    *end = L'\0';
    return wide;
}

int ZvStringImpl::GetUTF16Size(const char* utf8, int byteCount) {
    return decode(utf8, byteCount, [](int, uint32_t) {});
}

int ZvStringImpl::Mbstowcs(uint16_t* target, const char* utf8, int byteCount) {
    const int units = decode(
        utf8, byteCount, [target](int index, uint32_t unit) { target[index] = static_cast<uint16_t>(unit); });
    target[units] = 0;
    return units;
}

}  // namespace Zvex
