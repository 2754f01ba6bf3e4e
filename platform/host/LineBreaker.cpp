// SPDX-License-Identifier: Apache-2.0
#include "platform/host/LineBreaker.h"

#include <unicode/ubrk.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>

namespace host {

namespace {

using Breaks = std::unique_ptr<UBreakIterator, void (*)(UBreakIterator*)>;

Breaks openBreaks(UBreakIteratorType type, const char* locale, const uint16_t* text, int length) {
    UErrorCode status = U_ZERO_ERROR;
    Breaks breaks(ubrk_open(type, locale, reinterpret_cast<const UChar*>(text), length, &status), ubrk_close);
    if (U_FAILURE(status))
        throw std::runtime_error(std::string("line breaking failed: ") + u_errorName(status));
    return breaks;
}

bool isLineEnding(uint16_t unit) {
    return unit == '\n' || unit == '\r' || unit == 0x2028 || unit == 0x2029;
}

// Blanks that are trimmed at the end of a line; no-break spaces are not.
bool isTrimmed(uint16_t unit) {
    if (unit == 0x00A0 || unit == 0x2007 || unit == 0x202F) return false;
    return unit == 0x200B || u_isUWhiteSpace(unit);
}

int trimBlanks(const uint16_t* text, int start, int end) {
    while (end > start && isTrimmed(text[end - 1])) --end;
    return end;
}

// Fills lines from one paragraph (text without line endings).
class Wrapper {
public:
    Wrapper(const uint16_t* text, int length, float width, const MeasureText& measure, const char* locale)
        : mText(text),
          mWidth(width),
          mMeasure(measure),
          mWords(openBreaks(UBRK_LINE, locale, text, length)),
          mClusters(openBreaks(UBRK_CHARACTER, locale, text, length)) {}

    void wrap(int begin, int end, std::vector<LineRange>& lines) {
        int start = begin;
        do {
            const int next = trimBlanks(mText, start, end) == start ? end : lineEnd(start, end);
            lines.push_back({start, trimBlanks(mText, start, next), next});
            start = next;
        } while (start < end);
    }

private:
    bool fits(int start, int end) const { return widthOf(start, trimBlanks(mText, start, end)) <= mWidth; }

    // For a piece far too long for a line, returns the width of a part of it, which exceeds the line.
    // Otherwise text without a break would be measured to its end for each line.
    float widthOf(int start, int end) const {
        constexpr int kStep = 256;
        float sum = 0;
        for (int at = start; end - at > kStep;) {
            const int next = nextIn(mClusters.get(), at + kStep, end);
            sum += mMeasure(at, next);
            if (sum > 2 * mWidth) return sum;
            at = next;
        }
        return mMeasure(start, end);
    }

    int nextIn(UBreakIterator* breaks, int position, int end) const {
        const int next = ubrk_following(breaks, position);
        return next == UBRK_DONE ? end : std::min(next, end);
    }

    // The longest prefix of [start, end) that ends at a break of `breaks` and fits; `start` if there is none.
    // First adds up the widths of single pieces, which is nearly exact, then shapes the whole line only to
    // settle the last few pieces. So the cost stays linear in a paragraph's length.
    int longestFit(UBreakIterator* breaks, int start, int end) const {
        std::vector<int> ends;
        float sum = 0;
        for (int position = start; position < end && sum <= mWidth;) {
            const int next = nextIn(breaks, position, end);
            sum += widthOf(position, next);
            ends.push_back(next);
            position = next;
        }
        size_t count = ends.size();
        while (count > 0 && !fits(start, ends[count - 1])) --count;
        // Kerning or a joining form may make room for one more piece than the sum suggested.
        while (count == ends.size() && count > 0 && ends.back() < end) {
            const int next = nextIn(breaks, ends.back(), end);
            if (!fits(start, next)) break;
            ends.push_back(next);
            ++count;
        }
        return count == 0 ? start : ends[count - 1];
    }

    int lineEnd(int start, int end) const {
        const int words = longestFit(mWords.get(), start, end);
        if (words > start) return words;
        const int clusters = longestFit(mClusters.get(), start, nextIn(mWords.get(), start, end));
        return clusters > start ? clusters : nextIn(mClusters.get(), start, end);
    }

    const uint16_t* mText;
    float mWidth;
    const MeasureText& mMeasure;
    Breaks mWords, mClusters;
};

}  // namespace

std::vector<LineRange> breakLines(const uint16_t* text, int length, float width, const MeasureText& measure,
                                  const char* locale) {
    std::vector<LineRange> lines;
    std::unique_ptr<Wrapper> wrapper;
    if (width > 0) wrapper = std::make_unique<Wrapper>(text, length, width, measure, locale);
    int start = 0;
    for (;;) {
        int end = start;
        while (end < length && !isLineEnding(text[end])) ++end;
        const size_t first = lines.size();
        if (wrapper) {
            wrapper->wrap(start, end, lines);
        } else {
            lines.push_back({start, trimBlanks(text, start, end), end});
        }
        if (end >= length) break;
        const bool pair = text[end] == '\r' && end + 1 < length && text[end + 1] == '\n';
        start = end + (pair ? 2 : 1);
        if (lines.size() > first) lines.back().end = start;
    }
    return lines;
}

}  // namespace host
