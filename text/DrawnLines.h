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

// Keeps what the next drawing of a text can reuse: the typeface and the lines' coverage images, as long as
// everything they were made from stays the same. A text drawn again with other effects, colours or positions
// is neither laid out nor rasterised again.
//
// The typeface keeps its fonts alive until the next drawing, or for as long as this object lives. After a
// failed allocation nothing is kept.
class DrawnLines {
public:
    // What a typeface is made from.
    struct TypefaceSource {
        const ZvString* fontPath = nullptr;  // not owned
        bool italic = false;                 // of the text style
        uint64_t fontGeneration = 0;         // FontManager::GetGeneration
    };
    // What a line's image also depends on: the whole text, which is its context, and the paint. None owned.
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

    // The typeface, if it was made from `source`. Null: the caller makes it and calls keepTypeface; all lines
    // are forgotten.
    const android::Typeface* findTypeface(const TypefaceSource& source);
    // The lines drawn so far are of another typeface than the next.
    void forgetTypeface();
    // `families` are those that the typeface points into.
    void keepTypeface(const TypefaceSource& source,
                      std::vector<std::shared_ptr<minikin::FontFamily>> families,
                      std::unique_ptr<const android::Typeface> typeface);

    // Call after findTypeface, before the `count` lines are drawn: forgets the lines that were made from
    // anything else. Frees images, so nobody else may hold one.
    void beginLines(const LineSource& source, size_t count);

    // The image of line `index` (not owned) and the line's advance, if the line is kept and covers the range.
    ZvGlyph* findLine(size_t index, const Range& range, float* advance);
    // Takes ownership of the image if all images together then stay within `limit` bytes; else returns false.
    // The line's earlier image is freed.
    bool keepLine(size_t index, const Range& range, float advance, ZvGlyph* image, size_t limit);

    // Whether this is the image found or kept last.
    bool ownsLast(const ZvGlyph* image) const { return image != nullptr && image == mLast; }

    static void freeImage(ZvGlyph* image);  // the record and its pixels; null is ignored
    // Owns an image: the record with its pixels.
    struct ImageDeleter {
        // As freeImage.
        void operator()(ZvGlyph* image) const { freeImage(image); }
    };
    // An owned image.
    using Image = std::unique_ptr<ZvGlyph, ImageDeleter>;

private:
    struct Line {
        Image image;  // null when the line is not kept
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
