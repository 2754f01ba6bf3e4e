// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_ZVVIEW_H_
#define ZVEX_TEXT_ZVVIEW_H_

#include <cstdint>

namespace Zvex {

// The view a text is shown in: its size, padding, gravity and line limits, and the size of the picture made
// for it. All lengths are pixels. A plain record without locks; it belongs to one text object.
class ZvView {
public:
    // The bits of `gravity` that matter here, as the view system defines them.
    enum Gravity : int32_t {
        HORIZONTAL_MASK = 0x07,
        VERTICAL_MASK = 0x70,
        LEFT = 0x03,
        RIGHT = 0x05,
        TOP = 0x30,
        BOTTOM = 0x50,
        CENTER_VERTICAL = 0x10,
        FILL_VERTICAL = 0x70,
    };

    // Stores both. If either is negative, stores neither and returns false with an error line but no error
    // code.
    bool SetSize(int w, int h);
    int GetWidth() const { return width; }
    int GetHeight() const { return height; }

    // The size of the output picture: the view's and the effects' margins around it. A negative value is
    // refused with false and an error line, no error code.
    bool SetBitmapWidth(int w);
    bool SetBitmapHeight(int h);
    int GetBitmapWidth() const { return bitmapWidth; }
    int GetBitmapHeight() const { return bitmapHeight; }

    // Takes any values; always true.
    bool SetPadding(int left, int top, int right, int bottom);

    // Writes bitmapWidth to out[0] and bitmapHeight to out[1]; null writes nothing.
    void GetDrawingBitmapSize(int* out) const;

    // What the setters above store.
    int32_t width = 0;
    int32_t height = 0;
    int32_t bitmapWidth = 0;
    int32_t bitmapHeight = 0;
    int32_t paddingLeft = 0;
    int32_t paddingTop = 0;
    int32_t paddingRight = 0;
    int32_t paddingBottom = 0;
    int32_t gravity = LEFT;  // Gravity bits; others are kept
    int32_t lines = 0;       // a fixed number of lines, 0 for none; wins over maxLines
    int32_t maxLines = 0;    // the view's own limit, below 1 for none
};

}  // namespace Zvex

#endif  // ZVEX_TEXT_ZVVIEW_H_
