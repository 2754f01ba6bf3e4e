// SPDX-License-Identifier: Apache-2.0
#include "platform/host/BidiRuns.h"

#include <unicode/ubidi.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace host {
namespace {

using minikin::Bidi;

// A thread keeps a paragraph of up to this many units for its next line.
constexpr size_t kKeptUnits = size_t{1} << 22;

// The characters of bidirectional class B; all are below U+10000.
bool separatesParagraphs(uint16_t unit) {
    return unit == 0x0A || unit == 0x0D || (unit >= 0x1C && unit <= 0x1E) || unit == 0x85 || unit == 0x2029;
}

// Whether the unit may belong to a right-to-left character, or to a control that makes others right-to-left.
// The ranges are the blocks that default to right-to-left; of those above U+FFFF, U+10800..10FFF and
// U+1E800..1EFFF.
bool mayReadRightToLeft(uint16_t unit) {
    if (unit < 0x0590) return false;
    return unit <= 0x08FF || (unit >= 0xFB1D && unit <= 0xFDFF) || (unit >= 0xFE70 && unit <= 0xFEFC) ||
           unit == 0x200F || unit == 0x202B || unit == 0x202E || unit == 0x2067 ||
           (unit >= 0xD802 && unit <= 0xD803) || (unit >= 0xD83A && unit <= 0xD83B);
}

// Whether a paragraph ends after the unit at `at`. A line feed after a carriage return still belongs to it.
bool endsParagraph(const uint16_t* text, size_t at, size_t size) {
    return separatesParagraphs(text[at]) && !(text[at] == 0x0D && at + 1 < size && text[at + 1] == 0x0A);
}

size_t paragraphBegin(const uint16_t* text, size_t at) {
    const size_t size = at + 1;
    while (at > 0 && !endsParagraph(text, at - 1, size)) at--;
    return at;
}

size_t paragraphEnd(const uint16_t* text, size_t at, size_t size) {
    while (at < size && !endsParagraph(text, at, size)) at++;
    return std::min(at + 1, size);
}

bool isAsciiLetter(uint16_t unit) {
    return (unit | 0x20) >= 'a' && (unit | 0x20) <= 'z';
}

// Whether the paragraph needs no analysis. Without a letter it takes the default direction, and letters
// within isolates do not count. The scan recognises only ASCII letters.
bool readsLeftToRight(const uint16_t* begin, const uint16_t* end, Bidi bidi) {
    if (bidi == Bidi::RTL) return false;
    bool rightToLeft = false, letter = false, isolate = false;
    for (const uint16_t* unit = begin; unit < end; unit++) {
        rightToLeft |= mayReadRightToLeft(*unit);
        letter |= isAsciiLetter(*unit);
        isolate |= *unit == 0x2066 || *unit == 0x2068;
    }
    return !rightToLeft && (bidi != Bidi::DEFAULT_RTL || (letter && !isolate));
}

UBiDiLevel paragraphLevel(Bidi bidi) {
    switch (bidi) {
        case Bidi::RTL:
            return 1;
        case Bidi::DEFAULT_LTR:
            return UBIDI_DEFAULT_LTR;
        case Bidi::DEFAULT_RTL:
            return UBIDI_DEFAULT_RTL;
        default:
            return 0;
    }
}

// The levels of the paragraphs in which the calling thread last laid out a line.
class Paragraphs {
public:
    ~Paragraphs() {
        if (mBidi) ubidi_close(mBidi);
    }

    // Makes levelAt() valid for [start, end). False if the whole range reads from left to right.
    bool analyse(const uint16_t* text, size_t start, size_t end, size_t size, Bidi bidi) {
        if (!holds(text, start, end, size, bidi)) renew(text, start, end, size, bidi);
        return !mLevels.empty();
    }

    UBiDiLevel levelAt(size_t at) const { return mLevels[at - mBegin]; }

    void forgetIfLarge() {
        if (mUnits.capacity() <= kKeptUnits) return;
        if (mBidi) ubidi_close(mBidi);
        mBidi = nullptr;
        std::vector<UChar>().swap(mUnits);
        std::vector<UBiDiLevel>().swap(mLevels);
    }

private:
    size_t finish() const { return mBegin + mUnits.size(); }

    // Whether the last analysis was of the same paragraphs at the same place.
    bool holds(const uint16_t* text, size_t start, size_t end, size_t size, Bidi bidi) const {
        if (mUnits.empty() || bidi != mRequest || start < mBegin || end > finish() || finish() > size)
            return false;
        if (mBegin != paragraphBegin(text, mBegin) || finish() != paragraphEnd(text, finish() - 1, size))
            return false;
        return std::memcmp(text + mBegin, mUnits.data(), mUnits.size() * sizeof(UChar)) == 0;
    }

    // Analyses paragraphs one by one. They do not depend on each other, but if ICU gets several at once, the
    // digits at the start of one follow the letters of the one before.
    void renew(const uint16_t* text, size_t start, size_t end, size_t size, Bidi bidi) {
        mRequest = bidi;
        mBegin = paragraphBegin(text, start);
        const auto* units = reinterpret_cast<const UChar*>(text);
        mUnits.assign(units + mBegin, units + paragraphEnd(text, end - 1, size));
        mLevels.clear();
        try {
            for (size_t at = mBegin; at < finish();) {
                const size_t next = paragraphEnd(text, at, size);
                if (!readsLeftToRight(text + at, text + next, bidi)) analyseParagraph(at - mBegin, next - at);
                at = next;
            }
        } catch (const std::bad_alloc&) {
            mUnits.clear();  // invalid until the analysis succeeds
            throw;
        }
    }

    void analyseParagraph(size_t offset, size_t length) {
        if (!mBidi) mBidi = ubidi_open();
        if (!mBidi) throw std::bad_alloc();
        UErrorCode status = U_ZERO_ERROR;
        ubidi_setPara(mBidi, mUnits.data() + offset, static_cast<int32_t>(length), paragraphLevel(mRequest),
                      nullptr, &status);
        const UBiDiLevel* levels = ubidi_getLevels(mBidi, &status);
        if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
        if (U_FAILURE(status)) return;
        mLevels.resize(mUnits.size());
        std::copy(levels, levels + length, mLevels.begin() + static_cast<ptrdiff_t>(offset));
    }

    UBiDi* mBidi = nullptr;
    std::vector<UChar> mUnits;
    std::vector<UBiDiLevel> mLevels;  // empty if all are 0
    size_t mBegin = 0;
    Bidi mRequest = Bidi::LTR;
};

}  // namespace

std::vector<BidiRun> visualRuns(const uint16_t* text, size_t start, size_t end, size_t size, Bidi bidi) {
    if (start >= end) return {};
    if (bidi == Bidi::FORCE_LTR || bidi == Bidi::FORCE_RTL) return {{start, end, bidi == Bidi::FORCE_RTL}};

    thread_local Paragraphs paragraphs;
    const bool leftToRight = !paragraphs.analyse(text, start, end, size, bidi);

    std::vector<BidiRun> logical;
    std::vector<UBiDiLevel> runLevels;
    for (size_t i = start; i < end && !leftToRight; i++) {
        const UBiDiLevel level = paragraphs.levelAt(i);
        if (runLevels.empty() || level != runLevels.back()) {
            logical.push_back({i, i, (level & 1) != 0});
            runLevels.push_back(level);
        }
        logical.back().end = i + 1;
    }
    paragraphs.forgetIfLarge();
    if (leftToRight) return {{start, end, false}};

    std::vector<int32_t> order(logical.size());
    ubidi_reorderVisual(runLevels.data(), static_cast<int32_t>(runLevels.size()), order.data());
    std::vector<BidiRun> visual;
    visual.reserve(logical.size());
    for (const int32_t index : order) visual.push_back(logical[static_cast<size_t>(index)]);
    return visual;
}

}  // namespace host
