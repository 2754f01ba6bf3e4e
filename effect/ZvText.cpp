// SPDX-License-Identifier: Apache-2.0
#include "effect/ZvText.h"

#include <algorithm>
#include <cstring>

#include "effect/Composite.h"
#include "effect/LayerRows.h"
#include "foundation/OutOfMemory.h"
#include "foundation/ZvLog.h"
#include "raster/Rects.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "Blender";

// The text's colour within the glyphs. In a single picture, what the layers in front have drawn beside the
// glyphs must not show (a gradient fills its box, an inside stroke its surroundings).
class TextRows : public LayerRows {
public:
    TextRows(const ZvECore::ParamPostProcessing& param, uint32_t color)
        : mMask(*param.mask),
          mCovered(pictureRect(param.mask->width, param.mask->height)),
          mDrawn(pictureRect(param.target->width, param.target->height)),
          mSingle(param.layerMode != 1),
          mCuts(mSingle && param.overLayers),
          mColor(color) {
        if (param.drawnArea == nullptr || param.textRect == nullptr) return;
        mCovered = intersected(mCovered, *param.textRect);
        mDrawn = intersected(mDrawn, *param.drawnArea);
    }

    void draw(RowRange rows, const PictureStrip& target, const PictureStrip*) override {
        if (mCuts) {
            cutRows(rows, target);
        } else {
            fillRows(rows, target);
        }
    }
    ZvRect reach() const override { return mCuts ? mDrawn : mCovered; }

private:
    const uint8_t* coverageAt(int x, int y) const {
        return mMask.pixels + static_cast<size_t>(y) * mMask.width + x;
    }

    void cutRows(RowRange rows, const PictureStrip& target) const {
        const RowRange part = rows.within(0, mDrawn.bottom);
        const int begin = std::clamp(mCovered.left, mDrawn.left, mDrawn.right);
        const int end = std::clamp(mCovered.right, begin, mDrawn.right);
        const auto clear = [](uint8_t* row, int from, int to) {
            std::memset(row + ptrdiff_t{from} * 4, 0, static_cast<size_t>(to - from) * 4);
        };
        for (int y = std::max(part.begin, mDrawn.top); y < part.end; ++y) {
            uint8_t* row = target.at(0, y);
            if (y < mCovered.top || y >= mCovered.bottom) {
                clear(row, mDrawn.left, mDrawn.right);
                continue;
            }
            clear(row, mDrawn.left, begin);
            cutRowToGlyphs(row + ptrdiff_t{begin} * 4, coverageAt(begin, y), static_cast<size_t>(end - begin),
                           mColor);
            clear(row, end, mDrawn.right);
        }
    }

    void fillRows(RowRange rows, const PictureStrip& target) const {
        const RowRange part = rows.within(mCovered.top, heightOf(mCovered));
        if (part.count() <= 0 || mCovered.left >= mCovered.right) return;
        const int y = mCovered.top + part.begin;
        const auto blend = mSingle ? ZvBlender::blendDstOverSA8To32 : ZvBlender::blendDstOver8To32NSA;
        blend(mCovered.left, y - target.top, &target, coverageAt(mCovered.left, y), widthOf(mCovered),
              part.count(), static_cast<int>(mMask.width), mColor);
    }

    const ZvBitmap& mMask;
    ZvRect mCovered;  // there is no coverage outside
    ZvRect mDrawn;    // the target is transparent outside
    bool mSingle;     // one picture: coverage scales; two: any coverage counts as full
    bool mCuts;
    uint32_t mColor;
};

}  // namespace

ZvText::ZvText() {
    style = ZV_EFFECT_TEXT;
}

ZvText::~ZvText() {
    delete property;
}

int ZvText::doPostProcessing(ParamPostProcessing* param) {
    if (param == nullptr || property == nullptr || param->target == nullptr || param->mask == nullptr)
        return 0;
    const ZvBitmap* target = param->target;
    const ZvBitmap* mask = param->mask;
    if (target->pixels == nullptr || target->bytesPerPixel != 4 || mask->pixels == nullptr) return 0;

    // The blender logs a line for this blend. Here the text logs it once, however many strips it is drawn in.
    ZV_DEBUG_LOG(kTag,
                 param->layerMode != 1 ? "Blender - ZVE_BLEND_OTHER" : "Blender - ZVE_BLEND_DST_OVER_NSA");
    drawLayer(param, tryMake<TextRows>(*param, property->color));
    return 0;
}

void ZvText::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    replaceProperty(*static_cast<const ZvTextProperty*>(newProperty), &property);
}

ZvProperty* ZvText::getProperty() {
    return property;
}

}  // namespace Zvex
