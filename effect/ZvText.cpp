// SPDX-License-Identifier: Apache-2.0
#include "effect/ZvText.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

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

// The text's colour within the glyphs. What the layers in front have drawn beside them (a gradient fills its
// box, an inside stroke its surroundings) must not show in a single picture.
class TextRows : public LayerRows {
public:
    TextRows(const ZvECore::ParamPostProcessing& param, uint32_t color)
        : mask_(*param.mask),
          covered_(pictureRect(param.mask->width, param.mask->height)),
          drawn_(pictureRect(param.target->width, param.target->height)),
          single_(param.layerMode != 1),
          cuts_(single_ && param.overLayers),
          color_(color) {
        if (param.drawnArea == nullptr || param.textRect == nullptr) return;
        covered_ = intersected(covered_, *param.textRect);
        drawn_ = intersected(drawn_, *param.drawnArea);
    }

    void draw(RowRange rows, const PictureStrip& target, const PictureStrip*) override {
        if (cuts_) {
            cutRows(rows, target);
        } else {
            fillRows(rows, target);
        }
    }
    ZvRect reach() const override { return cuts_ ? drawn_ : covered_; }

private:
    const uint8_t* coverageAt(int x, int y) const {
        return mask_.pixels + static_cast<size_t>(y) * mask_.width + x;
    }

    void cutRows(RowRange rows, const PictureStrip& target) const {
        const RowRange part = rows.within(0, drawn_.bottom);
        const int begin = std::clamp(covered_.left, drawn_.left, drawn_.right);
        const int end = std::clamp(covered_.right, begin, drawn_.right);
        const auto clear = [](uint8_t* row, int from, int to) {
            std::memset(row + ptrdiff_t{from} * 4, 0, static_cast<size_t>(to - from) * 4);
        };
        for (int y = std::max(part.begin, drawn_.top); y < part.end; ++y) {
            uint8_t* row = target.at(0, y);
            if (y < covered_.top || y >= covered_.bottom) {
                clear(row, drawn_.left, drawn_.right);
                continue;
            }
            clear(row, drawn_.left, begin);
            cutRowToGlyphs(row + ptrdiff_t{begin} * 4, coverageAt(begin, y), static_cast<size_t>(end - begin),
                           color_);
            clear(row, end, drawn_.right);
        }
    }

    void fillRows(RowRange rows, const PictureStrip& target) const {
        const RowRange part = rows.within(covered_.top, heightOf(covered_));
        if (part.count() <= 0 || covered_.left >= covered_.right) return;
        const int y = covered_.top + part.begin;
        const auto blend = single_ ? ZvBlender::blendDstOverSA8To32 : ZvBlender::blendDstOver8To32NSA;
        blend(covered_.left, y - target.top, &target, coverageAt(covered_.left, y), widthOf(covered_),
              part.count(), static_cast<int>(mask_.width), color_);
    }

    const ZvBitmap& mask_;
    ZvRect covered_;  // outside of it is no coverage
    ZvRect drawn_;    // outside of it the target is transparent, or none
    bool single_;     // picture: the coverage counts, not only whether there is any
    bool cuts_;
    uint32_t color_;
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

    // The line that the blender has for these blends: one for the text, in however many pieces it is drawn.
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
