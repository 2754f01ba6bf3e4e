// SPDX-License-Identifier: Apache-2.0
// The wide string against std::wstring with decoders and encoders of its own: UTF-8 in, UTF-8 and UTF-16 out,
// and the operations that change the text.
#include "foundation/ZvString.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "foundation/ZvStringImpl.h"
#include "fuzz/Input.h"

static_assert(sizeof(wchar_t) == 4, "the model has one wchar_t a character");

namespace {

using Zvex::ZvString;

// As many bytes as the count of leading ones says, at least two; 1 for ASCII; 0 for what opens no sequence.
size_t sequenceLength(unsigned char lead) {
    size_t ones = 0;
    while (ones < 8 && (lead & (0x80 >> ones)) != 0) ++ones;
    return ones == 0 ? 1 : ones >= 2 && ones <= 6 ? ones : 0;
}

size_t encodedLength(uint32_t c) {
    constexpr uint32_t kEnds[] = {0x80, 0x800, 0x10000, 0x200000, 0x4000000, 0x80000000u};
    return static_cast<size_t>(std::find_if(kEnds, kEnds + 6, [c](uint32_t end) { return c < end; }) -
                               kEnds) +
           1;
}

// UTF-8 up to the first NUL or what is none; pairs of surrogates are one character.
std::wstring decode(const std::string& bytes) {
    std::wstring text;
    for (size_t at = 0; at < bytes.size() && bytes[at] != 0;) {
        const auto lead = static_cast<unsigned char>(bytes[at]);
        const size_t length = sequenceLength(lead);
        if (length == 0 || length > bytes.size() - at) break;
        uint32_t c = length == 1 ? lead : lead & ((1u << (7 - length)) - 1);
        bool wellFormed = true;
        for (size_t i = 1; i < length; ++i) {
            const auto byte = static_cast<unsigned char>(bytes[at + i]);
            wellFormed = wellFormed && byte / 64 == 2;
            c = c * 64 + byte % 64;
        }
        if (!wellFormed || encodedLength(c) != length) break;
        at += length;
        // A character made of a pair is no surrogate, so it joins nothing.
        const uint32_t last = text.empty() ? 0 : static_cast<uint32_t>(text.back());
        if (last >= 0xD800 && last < 0xDC00 && c >= 0xDC00 && c < 0xE000) {
            text.back() = static_cast<wchar_t>(0x10000 + (last - 0xD800) * 1024 + (c - 0xDC00));
        } else {
            text += static_cast<wchar_t>(c);
        }
    }
    return text;
}

// Up to the first negative character.
std::string encode(const std::wstring& text) {
    std::string bytes;
    for (const wchar_t wide : text) {
        const auto c = static_cast<uint32_t>(wide);
        if (c >= 0x80000000u) break;
        const size_t length = encodedLength(c);
        if (length == 1) {
            bytes += static_cast<char>(c);
            continue;
        }
        for (size_t i = length; i-- > 0;) {
            const uint32_t six = c >> (6 * i) & 63;
            bytes += static_cast<char>(i + 1 == length ? (0xFF00u >> length & 0xFF) | six : 0x80 | six);
        }
    }
    return bytes;
}

// Of the encoder's bytes. The pairs are right in the first plane behind the basic one only.
std::vector<uint16_t> toUtf16(const std::wstring& text) {
    std::vector<uint16_t> units;
    for (const wchar_t wide : text) {
        const auto c = static_cast<uint32_t>(wide);
        if (c >= 0x80000000u) break;
        if (c < 0x10000) {
            units.push_back(static_cast<uint16_t>(c));
        } else if (c < 0x200000) {
            units.push_back(static_cast<uint16_t>(0xD800 | (c & 0xFFFF) >> 10));
            units.push_back(static_cast<uint16_t>(0xDC00 | (c & 0x3FF)));
        } else {
            units.push_back(0x25A1);
        }
    }
    return units;
}

// -1 for each character that has no UTF-8 form.
int64_t announcedSize(const std::wstring& text) {
    int64_t size = 1;
    for (const wchar_t c : text)
        size += c < 0 ? -1 : static_cast<int64_t>(encodedLength(static_cast<uint32_t>(c)));
    return size;
}

class StringAndModel {
public:
    StringAndModel() { ZVEX_FUZZ_CHECK(mString.Construct() == 1); }

    void step(fuzz::Input& input) {
        const int kind = input.between(0, 9);
        const int at = input.byte() < 16 ? input.integer() : input.between(-1, 12);
        const int count = input.byte() < 16 ? input.integer() : input.between(-1, 12);
        // Characters of its own choice, or what some bytes say.
        const bool wide = input.flag();
        const std::string bytes = input.text(40);
        std::wstring source = decode(bytes);
        if (wide) {
            source.clear();
            for (size_t i = 0; i + 4 <= bytes.size(); i += 4) {
                uint32_t c;
                std::memcpy(&c, bytes.data() + i, 4);
                c >>= c % 29;
                if (c != 0) source += static_cast<wchar_t>(c);
            }
        }
        if (mModel.size() > 2000) mModel.clear(), mString.Set(L"");
        const bool fits = at >= 0 && static_cast<size_t>(at) <= mModel.size();
        const auto begin = static_cast<size_t>(fits ? at : 0);
        ZvString other;
        other.Construct(source.c_str());
        switch (kind) {
            case 0:
                ZVEX_FUZZ_CHECK((wide ? mString.Set(source.c_str()) : mString.Set(bytes.c_str())) == 1);
                mModel = source;
                break;
            case 1:
                ZVEX_FUZZ_CHECK((wide ? mString.Append(source.c_str()) : mString.Append(bytes.c_str())) == 1);
                mModel += source;
                break;
            case 2: {
                const bool can = fits && !source.empty();
                ZVEX_FUZZ_CHECK(mString.Insert(source.c_str(), at) == (can ? 1 : 0));
                if (can) mModel.insert(begin, source);
                break;
            }
            case 3: {
                const bool can = fits && begin < mModel.size() && count >= 0 &&
                                 static_cast<size_t>(count) <= mModel.size() - begin;
                ZVEX_FUZZ_CHECK(mString.Remove(at, count) == (can ? 1 : 0));
                if (can) mModel.erase(begin, static_cast<size_t>(count));
                break;
            }
            case 4: {  // both ends included, as far as they exist
                ZVEX_FUZZ_CHECK(mString.SetSubstring(&other, at, count) == 1);
                const int64_t first = std::max(at, 0);
                const int64_t last = std::min<int64_t>(count, static_cast<int64_t>(source.size()) - 1);
                mModel = first <= last ? source.substr(static_cast<size_t>(first),
                                                       static_cast<size_t>(last - first + 1))
                                       : std::wstring();
                break;
            }
            case 5:  // of itself, from within
                if (!fits || mString.GetPointer() == nullptr) break;
                ZVEX_FUZZ_CHECK(mString.Append(mString.GetPointer() + begin) == 1);
                mModel += mModel.substr(begin);
                break;
            case 6: {
                ZvString part;
                ZVEX_FUZZ_CHECK(part.Construct(&other, count) == (count >= 0 ? 1 : 0));
                if (count < 0) break;
                ZVEX_FUZZ_CHECK(mString.Set(&part) == 1);
                mModel = source.substr(0, static_cast<size_t>(count));
                break;
            }
            default:
                search(source);
        }
    }

    void compare(fuzz::Input& input) const {
        ZVEX_FUZZ_CHECK(mString.GetLength() == static_cast<int>(mModel.size()));
        const wchar_t* pointer = mString.GetPointer();
        ZVEX_FUZZ_CHECK(pointer == nullptr ? mModel.empty() : mModel == pointer);
        const int at = input.between(-1, 300);
        wchar_t character = 0;
        const bool within = at >= 0 && static_cast<size_t>(at) < mModel.size();
        ZVEX_FUZZ_CHECK(mString.GetChar(at, &character) == (within ? 1 : 0));
        if (within) ZVEX_FUZZ_CHECK(character == mModel[static_cast<size_t>(at)]);

        const int64_t size = announcedSize(mModel);
        ZVEX_FUZZ_CHECK(mString.GetUTF8Size() == size);
        const std::string utf8 = size < 1 ? std::string() : encode(mModel);
        writeUtf8(utf8, static_cast<int>(std::max<int64_t>(size, 1)));
        writeUtf8(utf8, input.between(1, 64));

        // The units are made of the UTF-8 form in the room that was announced.
        int64_t room = std::max<int64_t>(size, 1) - 1;
        std::wstring shown;
        for (const wchar_t c : mModel) {
            room -= c < 0 ? room + 1 : static_cast<int64_t>(encodedLength(static_cast<uint32_t>(c)));
            if (room < 0) break;
            shown += c;
        }
        int count = 0;
        const std::unique_ptr<uint16_t[]> units(mString.GetUTF16(count));
        ZVEX_FUZZ_CHECK(units != nullptr);
        ZVEX_FUZZ_CHECK(std::vector<uint16_t>(units.get(), units.get() + count) == toUtf16(shown));
        ZVEX_FUZZ_CHECK(units[static_cast<size_t>(count)] == 0);
    }

private:
    // Whole characters in what room there is; nothing is written beyond it.
    void writeUtf8(const std::string& all, int room) const {
        const std::unique_ptr<char[]> target(new char[static_cast<size_t>(room)]);
        ZVEX_FUZZ_CHECK(mString.GetUTF8(target.get(), room) == 1);
        size_t end = 0;
        while (end < all.size()) {
            const size_t length = sequenceLength(static_cast<unsigned char>(all[end]));
            if (end + length > static_cast<size_t>(room) - 1) break;
            end += length;
        }
        ZVEX_FUZZ_CHECK(all.substr(0, end) == target.get());
    }

    void search(const std::wstring& pattern) const {
        const size_t length = mModel.size(), n = pattern.size();
        // A pattern that stands only at the very end is not found from the front.
        int first = -1, last = -1;
        for (size_t i = 0; i + n <= length; ++i) {
            if (mModel.compare(i, n, pattern) != 0) continue;
            if (first < 0 && i + n < length) first = static_cast<int>(i);
            last = static_cast<int>(i);
        }
        ZVEX_FUZZ_CHECK(mString.Find(pattern.c_str()) == first);
        ZVEX_FUZZ_CHECK(mString.ReverseFind(pattern.c_str()) == last);
        ZvString other;
        other.Construct(pattern.c_str());
        const int order = mString.CompareTo(&other);
        const int expected = length != n ? (length > n ? 1 : -1) : mModel.compare(pattern);
        ZVEX_FUZZ_CHECK((order > 0) == (expected > 0) && (order < 0) == (expected < 0));
    }

    ZvString mString;
    std::wstring mModel;
};

// The workers take any bytes: what they announce is what they write.
void convertBytes(const std::string& bytes) {
    const std::vector<char> exact(bytes.begin(), bytes.end());
    const int count = static_cast<int>(exact.size());
    const int units = Zvex::ZvStringImpl::GetUTF16Size(exact.data(), count);
    ZVEX_FUZZ_CHECK(units >= 0 && units <= count);
    const std::unique_ptr<uint16_t[]> target(new uint16_t[static_cast<size_t>(units) + 1]);
    ZVEX_FUZZ_CHECK(Zvex::ZvStringImpl::Mbstowcs(target.get(), exact.data(), count) == units);
    ZVEX_FUZZ_CHECK(target[static_cast<size_t>(units)] == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    StringAndModel both;
    for (int steps = 0; steps < 30 && input.left() > 0; ++steps) both.step(input), both.compare(input);
    convertBytes(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
