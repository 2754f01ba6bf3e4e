// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_SKTEXTBLOB_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_SKTEXTBLOB_H_

#include <memory>
#include <utility>
#include <vector>

#include "SkPaint.h"
#include "SkRect.h"
#include "SkRefCnt.h"
#include "SkScalar.h"
#include "SkTypeface.h"

// Runs of positioned glyphs. Each run has the font settings of the paint it was allocated with (typeface,
// size, scale, skew, anti-alias, fake bold, subpixel). The paint it is drawn with gives the colour.
// Immutable.
class SkTextBlob : public SkRefCnt {
public:
    // The port's own: one run. positions holds an (x, y) pair for each glyph, relative to the blob's origin.
    struct Run {
        SkPaint font;
        std::vector<SkGlyphID> glyphs;
        std::vector<SkScalar> positions;
    };
    // In the order allocated. (Boxed, so that the buffers handed out for one run survive the next.)
    const std::vector<std::unique_ptr<Run>>& runs() const { return mRuns; }

private:
    friend class SkTextBlobBuilder;
    explicit SkTextBlob(std::vector<std::unique_ptr<Run>> runs) : mRuns(std::move(runs)) {}

    std::vector<std::unique_ptr<Run>> mRuns;
};

// Collects runs. Used by one thread.
class SkTextBlobBuilder {
public:
    struct RunBuffer {
        SkGlyphID* glyphs;  // `count` of them, to be filled
        SkScalar* pos;      // `count` (x, y) pairs, to be filled
    };

    // Adds a run of `count` glyphs, all zero until filled; its buffers are valid until make(). Null buffers,
    // and no run, if count is not positive or the paint's text encoding is not glyph ids. The port ignores
    // the bounds, which are a hint.
    const RunBuffer& allocRunPos(const SkPaint& font, int count, const SkRect* bounds = nullptr);

    // The runs so far as a blob; null if there are none. The builder is empty afterwards.
    sk_sp<SkTextBlob> make();

private:
    std::vector<std::unique_ptr<SkTextBlob::Run>> mRuns;
    RunBuffer mCurrent{nullptr, nullptr};
};

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_SKTEXTBLOB_H_
