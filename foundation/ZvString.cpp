// SPDX-License-Identifier: Apache-2.0
#include "foundation/ZvString.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <cwchar>
#include <memory>
#include <new>

#include "foundation/Error.h"
#include "foundation/ZvStringImpl.h"

// Fails an operation: reports the code with the line it stands on and returns `result`.
#define ZV_FAIL(code, result)        \
    do {                             \
        ZV_REPORT_ERROR(kTag, code); \
        return (result);             \
    } while (false)

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvString";

using Wide = std::unique_ptr<wchar_t[]>;

// Lengths are ints throughout the interface; longer text counts as INT_MAX characters.
int lengthOf(const wchar_t* text) {
    if (text == nullptr) return 0;
    const size_t length = std::wcslen(text);
    return length > INT_MAX ? INT_MAX : static_cast<int>(length);
}

// Length of at most n characters; reads no further.
size_t lengthUpTo(const wchar_t* text, size_t n) {
    size_t length = 0;
    while (length < n && text[length] != L'\0') ++length;
    return length;
}

// The first `length` characters as a text of their own; null if memory is short.
Wide copyOf(const wchar_t* text, size_t length) {
    Wide copy(new (std::nothrow) wchar_t[length + 1]);
    if (copy == nullptr) return copy;
    if (length > 0) std::wmemcpy(copy.get(), text, length);
    copy[length] = L'\0';
    return copy;
}

// wcsncmp, with a missing buffer as the empty text.
int compare(const wchar_t* a, const wchar_t* b, size_t n) {
    return std::wcsncmp(a != nullptr ? a : L"", b != nullptr ? b : L"", n);
}

bool standsAt(const wchar_t* text, int position, const wchar_t* pattern, int length) {
    return std::wcsncmp(text + position, pattern, static_cast<size_t>(length)) == 0;
}

}  // namespace

ZvString::~ZvString() {
    delete mImpl;
}

int ZvString::adopt(wchar_t* text) {
    Wide owned(text);
    if (mImpl == nullptr && Construct() == 0) return 0;
    delete[] mImpl->buffer;
    mImpl->buffer = owned.release();
    return 1;
}

int ZvString::insertAt(int position, const wchar_t* source) {
    const wchar_t* const old = mImpl->buffer;
    const size_t before = static_cast<size_t>(position);
    const size_t added = std::wcslen(source);
    const size_t after = old != nullptr ? std::wcslen(old) - before : 0;
    Wide text(new (std::nothrow) wchar_t[before + added + after + 1]);
    if (text == nullptr) ZV_FAIL(ZV_ERROR_PLATFORM, 0);
    if (before > 0) std::wmemcpy(text.get(), old, before);
    if (added > 0) std::wmemcpy(text.get() + before, source, added);
    if (after > 0) std::wmemcpy(text.get() + before + added, old + before, after);
    text[before + added + after] = L'\0';
    return adopt(text.release());
}

int ZvString::Construct() {
    if (mImpl != nullptr) ZV_FAIL(ZV_ERROR_ALREADY_CONSTRUCTED, 0);
    mImpl = new (std::nothrow) ZvStringImpl;
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_PLATFORM, 0);
    return 1;
}

int ZvString::Construct(const ZvString* source) {
    if (mImpl != nullptr) ZV_FAIL(ZV_ERROR_ALREADY_CONSTRUCTED, 0);
    if (source == nullptr || source->mImpl == nullptr) ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, 0);
    return source->mImpl->buffer != nullptr ? Construct(source->mImpl->buffer) : Construct();
}

int ZvString::Construct(const wchar_t* source) {
    if (mImpl != nullptr) ZV_FAIL(ZV_ERROR_ALREADY_CONSTRUCTED, 0);
    if (source == nullptr) ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, 0);
    Wide text = copyOf(source, std::wcslen(source));
    if (text == nullptr) ZV_FAIL(ZV_ERROR_PLATFORM, 0);
    return adopt(text.release());
}

int ZvString::Construct(const char* source) {
    if (mImpl != nullptr) ZV_FAIL(ZV_ERROR_ALREADY_CONSTRUCTED, 0);
    if (source == nullptr) ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, 0);
    Wide text(ZvStringImpl::WidenUTF8(source));
    if (text == nullptr) ZV_FAIL(ZV_ERROR_PLATFORM, 0);
    return adopt(text.release());
}

int ZvString::Construct(const ZvString* source, int n) {
    if (mImpl != nullptr) ZV_FAIL(ZV_ERROR_ALREADY_CONSTRUCTED, 0);
    if (source == nullptr || source->mImpl == nullptr) ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, 0);
    return Construct(source->mImpl->buffer != nullptr ? source->mImpl->buffer : L"", n);
}

int ZvString::Construct(const wchar_t* source, int n) {
    if (mImpl != nullptr) ZV_FAIL(ZV_ERROR_ALREADY_CONSTRUCTED, 0);
    if (source == nullptr || n < 0) ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, 0);
    Wide text = copyOf(source, lengthUpTo(source, static_cast<size_t>(n)));
    if (text == nullptr) ZV_FAIL(ZV_ERROR_PLATFORM, 0);
    return adopt(text.release());
}

int ZvString::Set(const ZvString* source) {
    return Set(source != nullptr && source->mImpl != nullptr ? source->mImpl->buffer : nullptr);
}

int ZvString::Set(const wchar_t* source) {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, 0);
    if (source == nullptr) return Clear();
    // Copied before the old text is freed, since it may be part of it.
    Wide text = copyOf(source, std::wcslen(source));
    if (text == nullptr) ZV_FAIL(ZV_ERROR_PLATFORM, 0);
    return adopt(text.release());
}

int ZvString::Set(const char* source) {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, 0);
    if (source == nullptr) return Clear();
    Wide text(ZvStringImpl::WidenUTF8(source));
    if (text == nullptr) ZV_FAIL(ZV_ERROR_PLATFORM, 0);
    return adopt(text.release());
}

int ZvString::Clear() {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, 0);
    return adopt(nullptr);
}

int ZvString::Append(const ZvString* source) {
    return Append(source != nullptr && source->mImpl != nullptr ? source->mImpl->buffer : nullptr);
}

int ZvString::Append(const wchar_t* source) {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, 0);
    if (source == nullptr) return 1;
    return insertAt(lengthOf(mImpl->buffer), source);
}

int ZvString::Append(const char* source) {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, 0);
    if (source == nullptr) return 1;
    const Wide text(ZvStringImpl::WidenUTF8(source));
    if (text == nullptr) ZV_FAIL(ZV_ERROR_PLATFORM, 0);
    return Append(text.get());
}

int ZvString::Insert(const wchar_t* source, int position) {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, 0);
    if (position < 0 || position > lengthOf(mImpl->buffer)) ZV_FAIL(ZV_ERROR_OUT_OF_RANGE, 0);
    if (source == nullptr || *source == L'\0') ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, 0);
    return insertAt(position, source);
}

int ZvString::Insert(const ZvString* source, int position) {
    return Insert(source != nullptr && source->mImpl != nullptr ? source->mImpl->buffer : nullptr, position);
}

int ZvString::Remove(int position, int count) {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, 0);
    const int length = lengthOf(mImpl->buffer);
    if (position < 0 || position >= length) ZV_FAIL(ZV_ERROR_OUT_OF_RANGE, 0);
    if (count < 0 || count > length - position) ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, 0);
    wchar_t* const hole = mImpl->buffer + position;
    std::wmemmove(hole, hole + count, std::wcslen(hole + count) + 1);
    return 1;
}

int ZvString::SetSubstring(const ZvString* source, int begin, int end) {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, 0);
    if (source == nullptr || source->mImpl == nullptr || source->mImpl->buffer == nullptr) {
        ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, 0);
    }
    const int first = std::max(begin, 0);
    const int last = std::min(end, lengthOf(source->mImpl->buffer) - 1);
    const size_t count = first <= last ? static_cast<size_t>(last - first) + 1 : 0;
    Wide text = copyOf(count > 0 ? source->mImpl->buffer + first : L"", count);
    if (text == nullptr) ZV_FAIL(ZV_ERROR_PLATFORM, 0);
    return adopt(text.release());
}

int ZvString::GetLength() const {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, -1);
    return lengthOf(mImpl->buffer);
}

wchar_t* ZvString::GetPointer() const {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, nullptr);
    return mImpl->buffer;
}

int ZvString::GetChar(int index, wchar_t* out) const {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, 0);
    if (index < 0 || index >= lengthOf(mImpl->buffer)) ZV_FAIL(ZV_ERROR_OUT_OF_RANGE, 0);
    if (out == nullptr) ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, 0);
    *out = mImpl->buffer[index];
    return 1;
}

int ZvString::CompareTo(const ZvString* other) const {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, -1);
    if (other == nullptr || other->mImpl == nullptr) ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, -1);
    const int length = lengthOf(mImpl->buffer);
    const int otherLength = lengthOf(other->mImpl->buffer);
    if (length != otherLength) return length > otherLength ? 1 : -1;
    return compare(mImpl->buffer, other->mImpl->buffer, static_cast<size_t>(length));
}

int ZvString::CompareTo(const char* other) const {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, -1);
    if (other == nullptr) ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, -1);
    // Bytes against characters, on purpose: see the header.
    const size_t length = static_cast<size_t>(lengthOf(mImpl->buffer));
    const size_t bytes = std::strlen(other);
    if (length != bytes) return length > bytes ? 1 : -1;
    return CompareTo(other, static_cast<int>(length));
}

int ZvString::CompareTo(const char* other, int n) const {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, -1);
    if (other == nullptr || n < 0) ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, -1);
    const Wide text(ZvStringImpl::WidenUTF8(other));
    if (text == nullptr) ZV_FAIL(ZV_ERROR_PLATFORM, -1);
    return compare(mImpl->buffer, text.get(), static_cast<size_t>(n));
}

int ZvString::Find(const wchar_t* pattern) const {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, -1);
    if (pattern == nullptr) ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, -1);
    const int patternLength = lengthOf(pattern);
    const int end = lengthOf(mImpl->buffer) - patternLength;
    // The last place where the pattern fits is left out on purpose: see the header.
    for (int i = 0; i < end; ++i) {
        if (standsAt(mImpl->buffer, i, pattern, patternLength)) return i;
    }
    return -1;
}

int ZvString::Find(const char* pattern) const {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, -1);
    if (pattern == nullptr) ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, -1);
    const Wide text(ZvStringImpl::WidenUTF8(pattern));
    if (text == nullptr) ZV_FAIL(ZV_ERROR_PLATFORM, -1);
    return Find(text.get());
}

int ZvString::ReverseFind(const wchar_t* pattern) const {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, -1);
    if (pattern == nullptr) ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, -1);
    if (mImpl->buffer == nullptr) return *pattern == L'\0' ? 0 : -1;
    const int patternLength = lengthOf(pattern);
    for (int i = lengthOf(mImpl->buffer) - patternLength; i >= 0; --i) {
        if (standsAt(mImpl->buffer, i, pattern, patternLength)) return i;
    }
    return -1;
}

int ZvString::ReverseFind(const char* pattern) const {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, -1);
    if (pattern == nullptr) ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, -1);
    const Wide text(ZvStringImpl::WidenUTF8(pattern));
    if (text == nullptr) ZV_FAIL(ZV_ERROR_PLATFORM, -1);
    return ReverseFind(text.get());
}

int ZvString::GetUTF8Size() const {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, -1);
    return ZvStringImpl::GetUTF8Size(mImpl->buffer);
}

int ZvString::GetUTF8(char* target, int size) const {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, 0);
    if (target == nullptr || size < 1) ZV_FAIL(ZV_ERROR_INVALID_ARGUMENT, 0);
    if (mImpl->buffer == nullptr) {
        target[0] = '\0';
        return 1;
    }
    // Negative characters may bring the computed size to 0 or less. The text then converts to nothing
    // whatever the room, so that every caller sees the same text.
    const int room = ZvStringImpl::GetUTF8Size(mImpl->buffer) < 1 ? 0 : size - 1;
    target[ZvStringImpl::Wcstombs(target, mImpl->buffer, room)] = '\0';
    target[size - 1] = '\0';
    return 1;
}

uint16_t* ZvString::GetUTF16(int& count) const {
    if (mImpl == nullptr) ZV_FAIL(ZV_ERROR_NOT_CONSTRUCTED, nullptr);
    if (mImpl->buffer == nullptr) {
        uint16_t* const empty = new (std::nothrow) uint16_t[1]();
        if (empty == nullptr) ZV_FAIL(ZV_ERROR_PLATFORM, nullptr);
        return empty;
    }
    const size_t size = static_cast<size_t>(std::max(ZvStringImpl::GetUTF8Size(mImpl->buffer), 1));
    const std::unique_ptr<char[]> utf8(new (std::nothrow) char[size]);
    if (utf8 == nullptr) ZV_FAIL(ZV_ERROR_PLATFORM, nullptr);
    const int bytes = ZvStringImpl::Wcstombs(utf8.get(), mImpl->buffer, static_cast<int>(size) - 1);

    const size_t units = static_cast<size_t>(ZvStringImpl::GetUTF16Size(utf8.get(), bytes));
    uint16_t* const utf16 = new (std::nothrow) uint16_t[units + 1];
    if (utf16 == nullptr) ZV_FAIL(ZV_ERROR_PLATFORM, nullptr);
    count = ZvStringImpl::Mbstowcs(utf16, utf8.get(), bytes);
    return utf16;
}

}  // namespace Zvex
