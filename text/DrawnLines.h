// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_DRAWNLINES_H_
#define ZVEX_TEXT_DRAWNLINES_H_

#include <hwui/Paint.h>
#include <hwui/Typeface.h>
#include <minikin/FontFamily.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace Zvex {

class ZvString;
struct ZvGlyph;

// What one drawing of a text made and the next can use again: the typeface, and the coverage images of the
// lines. They are kept for as long as all that they were made from is the same. So a text that is drawn again
// with other effects, colours or places is neither laid out nor rasterised again.
//
// The typeface keeps its fonts alive until the next drawing, or for as long as this object lives. A failed
// allocation keeps nothing.
class DrawnLines {
public:
    // What a typeface is made from.
    struct TypefaceSource {
        const ZvString* fontPath = nullptr;  // not owned
        bool italic = false;                 // of the text style
        uint64_t fontGeneration = 0;         // FontManager::GetGeneration
    };
    // What the image of a line depends on besides: the text, which is context too, and the paint. None owned.
    struct LineSource {
        const uint16_t* text = nullptr;         // UTF-16
        size_t length = 0;                      // units
        const android::Paint* paint = nullptr;  // as set by the caller
    };
    // The part of the text that a line shows.
    struct Range {
        int start;         // units of the text
        int end;           // likewise, one past the last
        bool rightToLeft;  // the line's direction
    };

    DrawnLines();
    ~DrawnLines();
    DrawnLines(const DrawnLines&) = delete;
    DrawnLines& operator=(const DrawnLines&) = delete;

    // The typeface, if it was made from `source`. Null: it has to be made and kept, and no line is kept any
    // longer.
    const android::Typeface* findTypeface(const TypefaceSource& source);
    // `families` are those that the typeface points into.
    void keepTypeface(const TypefaceSource& source,
                      std::vector<std::shared_ptr<minikin::FontFamily>> families,
                      std::unique_ptr<const android::Typeface> typeface);

    // Before the lines of a drawing of `count` lines, after findTypeface: forgets those that were made from
    // anything else. Frees images, so nobody else may hold one.
    void beginLines(const LineSource& source, size_t count);

    // The image of line `index` (not owned) and the line's advance, if the line is kept and covers the range.
    ZvGlyph* findLine(size_t index, const Range& range, float* advance);
    // Takes the image over when that leaves all images together within `limit` bytes; else false, and it
    // stays the caller's. An image that the line had before goes.
    bool keepLine(size_t index, const Range& range, float advance, ZvGlyph* image, size_t limit);

    // Whether this is the image found or kept last.
    bool ownsLast(const ZvGlyph* image) const { return image != nullptr && image == mLast; }

    static void freeImage(ZvGlyph* image);  // the record and its pixels; null is ignored

private:
    struct Line {
        ZvGlyph* image = nullptr;  // owned; null when the line is not kept
        Range range{};
        float advance = 0;
    };

    bool isFrom(const LineSource& source) const;
    void drop(Line& line);
    void forgetLines();

    std::vector<std::shared_ptr<minikin::FontFamily>>
        mFamilies;  // go after mTypeface, which points into them
    std::unique_ptr<const android::Typeface> mTypeface;
    std::unique_ptr<ZvString> mFontPath;  // of mTypeface; null when there was none
    bool mItalic = false;
    uint64_t mFontGeneration = 0;

    bool mLinesFromTypeface = false;  // otherwise they are out of date
    std::unique_ptr<uint16_t[]> mText;
    size_t mLength = 0;
    android::Paint mPaint;
    std::vector<Line> mLines;
    size_t mImageBytes = 0;          // of all images
    const ZvGlyph* mLast = nullptr;  // only compared
};

}  // namespace Zvex

#endif  // ZVEX_TEXT_DRAWNLINES_H_
