// SPDX-License-Identifier: Apache-2.0
// The wide string: edits and searches against std::wstring, and what it makes of any bytes.
#include "foundation/ZvString.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "foundation/ZvStringImpl.h"
#include "fuzz/Input.h"

namespace {

using Zvex::ZvString;

std::wstring textOf(const ZvString& string) {
    return string.GetLength() > 0 ? string.GetPointer() : L"";
}

class StringAndModel {
public:
    StringAndModel() { ZVEX_FUZZ_CHECK(mString.Construct() == 1); }

    void step(fuzz::Input& input) {
        const int kind = input.between(0, 7);
        const int at = input.byte() < 16 ? input.integer() : input.between(-1, 12);
        const int count = input.byte() < 16 ? input.integer() : input.between(-1, 12);
        const std::string bytes = input.text(40);
        ZvString other;
        ZVEX_FUZZ_CHECK(other.Construct(bytes.c_str()) == 1);
        const std::wstring source = textOf(other);
        // Two halves of a pair that meet would read back as one character.
        if (std::any_of(source.begin(), source.end(), [](wchar_t c) { return c >> 11 == 0xD800 >> 11; }))
            return;
        if (mModel.size() > 2000) mModel.clear(), mString.Set(L"");
        const bool fits = at >= 0 && static_cast<size_t>(at) <= mModel.size();
        const auto begin = static_cast<size_t>(fits ? at : 0);
        switch (kind) {
            case 0:
                ZVEX_FUZZ_CHECK(mString.Set(bytes.c_str()) == 1);
                mModel = source;
                break;
            case 1:
                ZVEX_FUZZ_CHECK(mString.Append(source.c_str()) == 1);
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
            default:
                search(source);
        }
    }

    void compare(fuzz::Input& input) const {
        ZVEX_FUZZ_CHECK(mString.GetLength() == static_cast<int>(mModel.size()));
        ZVEX_FUZZ_CHECK(textOf(mString) == mModel);
        const int size = mString.GetUTF8Size();
        const std::unique_ptr<char[]> utf8(new char[static_cast<size_t>(size)]);
        ZVEX_FUZZ_CHECK(mString.GetUTF8(utf8.get(), size) == 1);
        ZvString back;
        ZVEX_FUZZ_CHECK(back.Construct(utf8.get()) == 1 && textOf(back) == mModel);
        // In less room, whole characters of it.
        const int room = input.between(1, 64);
        const std::unique_ptr<char[]> part(new char[static_cast<size_t>(room)]);
        ZVEX_FUZZ_CHECK(mString.GetUTF8(part.get(), room) == 1);
        ZVEX_FUZZ_CHECK(back.Set(part.get()) == 1 && mModel.rfind(textOf(back), 0) == 0);
    }

private:
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
