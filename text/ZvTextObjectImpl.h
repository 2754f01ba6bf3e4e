// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_ZVTEXTOBJECTIMPL_H_
#define ZVEX_TEXT_ZVTEXTOBJECTIMPL_H_

#include <hwui/Paint.h>

#include <cstdint>

namespace Zvex {

class List;
class ZvBitmap;
class ZvEffect;
class ZvFontDrawing;
class ZvString;
class ZvTextObject;
class ZvView;

// The bits of ZvTextObjectImpl::style.
enum ZvTextStyle : uint32_t {
    ZV_TEXT_STYLE_BOLD = 1,
    ZV_TEXT_STYLE_ITALIC = 2,
};

// What a text object holds once constructed. ZvTextObject.h has the contract.
class ZvTextObjectImpl {
public:
    explicit ZvTextObjectImpl(ZvTextObject* ownerObject);
    virtual ~ZvTextObjectImpl();
    ZvTextObjectImpl(const ZvTextObjectImpl&) = delete;
    ZvTextObjectImpl& operator=(const ZvTextObjectImpl&) = delete;

    // Frees the line records and empties the list.
    void clearLineInfo();

    // Gives `result` that size, with unset pixels, or null pixels if they could not be allocated. False, with
    // the old picture in place, if not even its record could be allocated.
    bool resizeResult(unsigned int width, unsigned int height);

    bool isComplete() const;  // whether there was memory for all parts
    bool drawsBackground() const;
    // Draw text, effects and background over the whole result, as straight words 0xAARRGGBB. Without a
    // background no second picture is needed.
    void renderOverBackground();
    void renderAlone();

    // Clip, background and effects make the picture, of whatever it held. `effectImage` holds straight words
    // 0xAARRGGBB, and so does the picture then; both have pixels.
    void compose(const ZvBitmap& effectImage, ZvBitmap& picture) const;

    ZvTextObject* owner;         // not owned
    ZvString* text;              // owned; null until a text is set
    ZvFontDrawing* fontDrawing;  // owned
    ZvEffect* effect;            // owned
    List* lineInfo;              // owned; of ZvLineInfo*, owned too
    int32_t runtimeHandle = -1;
    uint32_t style = 0;          // ZvTextStyle bits
    ZvBitmap* result = nullptr;  // owned; the last picture
    ZvView* view;                // owned
    android::Paint paint;
    uint32_t backgroundColor = 0;  // straight 0xAARRGGBB
    bool backgroundEnabled = false;
    uint32_t textColor = 0xFF000000u;  // straight 0xAARRGGBB
};

}  // namespace Zvex

#endif  // ZVEX_TEXT_ZVTEXTOBJECTIMPL_H_
