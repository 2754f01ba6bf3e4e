// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_ZVSTRINGIMPL_H_
#define ZVEX_FOUNDATION_ZVSTRINGIMPL_H_

#include <cstdint>

namespace Zvex {

// The record behind a ZvString, and the conversions it is built on. No operation reports errors, and none
// reads past a NUL or past the byte count it was given.
class ZvStringImpl {
public:
    ZvStringImpl() = default;
    ~ZvStringImpl() { delete[] buffer; }
    ZvStringImpl(const ZvStringImpl&) = delete;
    ZvStringImpl& operator=(const ZvStringImpl&) = delete;

    wchar_t* buffer = nullptr;  // owned, allocated with array new, NUL-terminated; null when cleared

    // Bytes of the UTF-8 form with its NUL: 1 for null or empty text; a character counts 1 to 6 bytes by its
    // magnitude and a negative one -1. Sums that overflow int are clamped.
    static int GetUTF8Size(const wchar_t* text);

    // Whole characters of `text` as UTF-8 in at most `capacity` bytes, without a NUL; ends at a negative
    // character or at the first that does not fit. Returns the bytes written. `capacity` 0 or less writes
    // nothing.
    static int Wcstombs(char* target, const wchar_t* text, int capacity);

    // Converts UTF-8 to a new wide text by the rules in ZvString.h; the caller frees it with delete[]. Null
    // if memory is short. `utf8` must not be null.
    static wchar_t* WidenUTF8(const char* utf8);

    // UTF-16 units that Mbstowcs makes of `byteCount` bytes, the NUL not counted.
    static int GetUTF16Size(const char* utf8, int byteCount);

    // Decodes `byteCount` bytes into UTF-16 units and writes a 0 after them; `target` has room for
    // GetUTF16Size(...) + 1 units. Returns the units before the 0. By lead byte:
    //   0xxxxxxx, 110xxxxx, 1110xxxx   one unit
    //   11110xxx                       two units, right for U+10000 to U+1FFFF: the high one is made of the
    //                                  second and third byte alone and keeps the low 16 bits
    //   111110xx, 1111110x             U+25A1, a white square
    //   anything else                  ends the conversion, as does a truncated sequence
    // Continuation bytes are not checked.
    static int Mbstowcs(uint16_t* target, const char* utf8, int byteCount);
};

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_ZVSTRINGIMPL_H_
