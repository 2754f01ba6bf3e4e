// SPDX-License-Identifier: Apache-2.0
#include "text/DrawnLines.h"

#include <cstring>
#include <new>
#include <utility>

#include "effect/ZvGlyph.h"
#include "foundation/ZvString.h"

namespace Zvex {

namespace {

bool sameString(const ZvString* a, const ZvString* b) {
    if (a == nullptr || b == nullptr) return a == b;
    return a->CompareTo(b) == 0;
}

// Compares all that layout and drawing read of a paint. The colour counts: coverage takes its alpha, and a
// platform may adapt a glyph's contrast to the colour's lightness. A size that is not a number equals
// nothing, so the line is drawn again.
bool drawsAlike(const android::Paint& a, const android::Paint& b) {
    return a.getTextSize() == b.getTextSize() && a.getTextScaleX() == b.getTextScaleX() &&
           a.getTextSkewX() == b.getTextSkewX() && a.getFlags() == b.getFlags() &&
           a.getColor() == b.getColor() && a.getLetterSpacing() == b.getLetterSpacing() &&
           a.getFontFeatureSettings() == b.getFontFeatureSettings() &&
           a.getMinikinLocaleListId() == b.getMinikinLocaleListId() &&
           a.getFamilyVariant() == b.getFamilyVariant();
}

bool sameRange(const DrawnLines::Range& a, const DrawnLines::Range& b) {
    return a.start == b.start && a.end == b.end && a.rightToLeft == b.rightToLeft;
}

size_t byteCount(const ZvGlyph& image) {
    return size_t{image.width} * image.height;
}

}  // namespace

DrawnLines::DrawnLines() = default;

DrawnLines::~DrawnLines() = default;

void DrawnLines::freeImage(ZvGlyph* image) {
    if (image == nullptr) return;
    delete[] image->pixels;
    delete image;
}

const android::Typeface* DrawnLines::findTypeface(const TypefaceSource& source) {
    if (mTypeface != nullptr && mItalic == source.italic && mFontGeneration == source.fontGeneration &&
        sameString(mFontPath.get(), source.fontPath)) {
        return mTypeface.get();
    }
    forgetTypeface();
    return nullptr;
}

void DrawnLines::forgetTypeface() {
    mTypeface.reset();
    mFamilies.clear();
    mLinesFromTypeface = false;
}

void DrawnLines::keepTypeface(const TypefaceSource& source,
                              std::vector<std::shared_ptr<minikin::FontFamily>> families,
                              std::unique_ptr<const android::Typeface> typeface) {
    mFamilies = std::move(families);
    mTypeface = std::move(typeface);
    mFontPath.reset();
    if (source.fontPath != nullptr) {
        mFontPath.reset(new (std::nothrow) ZvString);
        // Without a copy of the path nothing matches, so the next drawing makes the typeface again.
        if (mFontPath != nullptr && mFontPath->Construct(source.fontPath) == 0) mFontPath.reset();
    }
    mItalic = source.italic;
    mFontGeneration = source.fontGeneration;
}

bool DrawnLines::isFrom(const LineSource& source) const {
    return mLinesFromTypeface && mText != nullptr && mLength == source.length &&
           std::memcmp(mText.get(), source.text, source.length * sizeof(uint16_t)) == 0 &&
           drawsAlike(mPaint, *source.paint);
}

void DrawnLines::beginLines(const LineSource& source, size_t count) {
    if (!isFrom(source)) {
        forgetLines();
        mText.reset(new (std::nothrow) uint16_t[source.length]);
        if (mText == nullptr) return;
        std::memcpy(mText.get(), source.text, source.length * sizeof(uint16_t));
        mLength = source.length;
        mPaint = *source.paint;
        mLinesFromTypeface = true;
    }
    for (size_t i = count; i < mLines.size(); ++i) drop(mLines[i]);
    mLines.resize(count);
}

ZvGlyph* DrawnLines::findLine(size_t index, const Range& range, float* advance) {
    if (index >= mLines.size() || mLines[index].image == nullptr) return nullptr;
    const Line& line = mLines[index];
    if (!sameRange(line.range, range)) return nullptr;
    *advance = line.advance;
    mLast = line.image.get();
    return line.image.get();
}

bool DrawnLines::keepLine(size_t index, const Range& range, float advance, ZvGlyph* image, size_t limit) {
    mLast = nullptr;
    if (index >= mLines.size()) return false;
    Line& line = mLines[index];
    drop(line);
    if (byteCount(*image) > limit || mImageBytes > limit - byteCount(*image)) return false;
    line.image.reset(image);
    line.range = range;
    line.advance = advance;
    mImageBytes += byteCount(*image);
    mLast = image;
    return true;
}

void DrawnLines::drop(Line& line) {
    if (line.image == nullptr) return;
    mImageBytes -= byteCount(*line.image);
    line.image.reset();
}

void DrawnLines::forgetLines() {
    for (Line& line : mLines) drop(line);
    mLines.clear();
    mText.reset();
    mLast = nullptr;
    mLinesFromTypeface = false;
}

}  // namespace Zvex
