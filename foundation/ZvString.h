// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_ZVSTRING_H_
#define ZVEX_FOUNDATION_ZVSTRING_H_

#include <cstdint>

namespace Zvex {

class ZvStringImpl;

// A NUL-terminated wide string, constructed in two phases, one wchar_t per character.
//
// Results: 1 on success, 0 on failure; -1 for failed counts, positions and comparisons. A failure writes one
// report under the tag "ZvString" and sets the thread's last error: 3 index out of range, 4 already
// constructed, 7 invalid argument, 8 not constructed, 1 no memory. A failed operation does not change the
// text.
//
// Text in: `const char*` is UTF-8, whatever the process's locale. Surrogates written as two three-byte
// sequences, as in Java's native strings, become the character they encode; an unpaired surrogate is kept.
// The five- and six-byte forms of old UTF-8 are read too. Conversion ends at the first invalid byte (a stray
// or missing continuation byte, an overlong form, 0xFE, 0xFF); the text before it is kept and no error is
// set.
//
// Text out: GetUTF8 writes 1 to 6 bytes a character, the inverse of the above, and ends at a negative
// character, which has no UTF-8 form.
//
// Where wchar_t has 16 bits, characters above 0xFFFF are stored as surrogate pairs, and those without a pair
// as U+25A1.
//
// A source that is an unconstructed ZvString counts as null. A source may be the string itself or part of it.
// One thread at a time.
class ZvString {
public:
    ZvString() = default;
    ~ZvString();
    ZvString(const ZvString&) = delete;
    ZvString& operator=(const ZvString&) = delete;

    // Without a buffer, or with a copy of the source; a null source fails with 7 and leaves the string
    // unconstructed.
    int Construct();
    int Construct(const ZvString* source);
    int Construct(const wchar_t* source);
    int Construct(const char* source);
    int Construct(const ZvString* source, int n);  // the first n characters at most; n < 0 fails with 7
    int Construct(const wchar_t* source, int n);

    // Replace the text; null clears it and succeeds.
    int Set(const ZvString* source);
    int Set(const wchar_t* source);
    int Set(const char* source);

    // Frees the buffer.
    int Clear();

    // Null succeeds and changes nothing.
    int Append(const ZvString* source);
    int Append(const wchar_t* source);
    int Append(const char* source);

    // Puts the source before the character at `position`, 0 to the length (else 3); a null or empty source
    // fails with 7.
    int Insert(const wchar_t* source, int position);
    int Insert(const ZvString* source, int position);

    // Removes `count` characters from position on, 0 to length - 1 (else 3). A negative count, or one past
    // the end, fails with 7.
    int Remove(int position, int count);

    // Sets the text to the source's characters begin to end, both included, as far as they exist. A source
    // that is null or has no buffer fails with 7.
    int SetSubstring(const ZvString* source, int begin, int end);

    int GetLength() const;        // characters before the NUL
    wchar_t* GetPointer() const;  // the buffer, owned by the string; null when there is none
    // Writes the character at index to *out; beyond the text fails with 3, a null out with 7.
    int GetChar(int index, wchar_t* out) const;

    // Length first: 1 when this text is longer, -1 when it is shorter, whatever the characters; equal lengths
    // compare by characters as wcsncmp does. A null source gives -1 with code 7.
    int CompareTo(const ZvString* other) const;
    // The length compared is the UTF-8 text's length in BYTES, so that text outside ASCII rarely equals its
    // own UTF-8 form here.
    int CompareTo(const char* other) const;
    // Compares the first n characters as wcsncmp does, without the length rule. A negative n gives -1 with
    // code 7.
    int CompareTo(const char* other, int n) const;

    // First position of the pattern, trying 0 to length - n - 1 (n: its length), or -1. One short on purpose:
    // a pattern that occurs only at the very end is not found. Null gives -1 with code 7.
    int Find(const wchar_t* pattern) const;
    int Find(const char* pattern) const;
    // Last position of the pattern, trying length - n down to 0, or -1.
    int ReverseFind(const wchar_t* pattern) const;
    int ReverseFind(const char* pattern) const;

    // Bytes of the UTF-8 form with its NUL. A negative character counts -1, so the result may be 0 or less;
    // such a text converts to the empty string.
    int GetUTF8Size() const;

    // Writes the UTF-8 form into `target`, which has `size` bytes: whole characters in at most size - 1
    // bytes, a NUL after them and one in the last byte. Without a buffer only target[0] is written. A null
    // target or a size below 1 fails with 7 and writes nothing.
    int GetUTF8(char* target, int size) const;

    // The text as UTF-16 with a NUL, in a new array that the caller frees with delete[]; `count` is the
    // number of units before the NUL. Made from the UTF-8 form by ZvStringImpl::Mbstowcs with its
    // peculiarities. Without a buffer the array holds only the NUL and `count` is not changed. Null on
    // failure, with `count` unchanged.
    uint16_t* GetUTF16(int& count) const;

private:
    int adopt(wchar_t* text);                           // takes the array as the new buffer
    int insertAt(int position, const wchar_t* source);  // position within the text, source not null

    ZvStringImpl* mImpl = nullptr;  // null: not constructed
};

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_ZVSTRING_H_
