// SPDX-License-Identifier: Apache-2.0
#include "scene/ColorRun.h"

#include <hb-ot.h>
#include <hwui/MinikinUtils.h>

#include <algorithm>
#include <new>

#include "foundation/SafeConvert.h"
#include "platform/host/LayoutGlyphs.h"
#include "platform/host/WordComposite.h"
#include "raster/Rects.h"

namespace Zvex::scene {

namespace {

// Where the run's image lies in a picture of that size.
ZvRect boxOf(const PlacedRun& placed, int width, int height) {
    const ColorRun& run = *placed.run;
    const int64_t top = int64_t{placed.y} - run.baseline;
    return ZvRect(std::max(placed.x, 0), static_cast<int>(std::clamp<int64_t>(top, 0, height)),
                  static_cast<int>(std::clamp<int64_t>(int64_t{placed.x} + run.width, 0, width)),
                  static_cast<int>(std::clamp<int64_t>(top + run.height, 0, height)));
}

uint32_t* wordsAt(const Zvex::ColorGlyphLayer& glyphs, int x, int y) {
    return reinterpret_cast<uint32_t*>(glyphs.picture.pixels) +
           static_cast<size_t>(y - glyphs.y) * glyphs.picture.width + static_cast<size_t>(x - glyphs.x);
}

// Of a glyph's own picture; larger ones are blank.
constexpr float kMostPixels = static_cast<float>(host::kMaxGlyphBytes / 4);

bool hasSvgPicture(const host::FontFace& face, uint32_t glyph) {
    hb_blob_t* picture = hb_ot_color_glyph_reference_svg(face.hbFace(), glyph);
    const bool has = hb_blob_get_length(picture) > 0;
    hb_blob_destroy(picture);
    return has;
}

void drawGlyph(const ColorRun::Glyph& glyph, const PlacedRun& placed, const ZvRect& clip, uint32_t textColor,
               Zvex::ColorGlyphLayer& target) {
    const host::ColorImage image =
        glyph.face->colorImage(glyph.id, glyph.style, glyph.pen.quarterX, textColor);
    const int left = placed.x + glyph.pen.x + image.left;
    const int top = placed.y - placed.run->baseline + glyph.pen.y + image.top;
    const int begin = std::max(left, clip.left), end = std::min(left + image.width, clip.right);
    for (int y = std::max(top, clip.top); begin < end && y < std::min(top + image.height, clip.bottom); ++y) {
        const uint32_t* source = image.pixels.data() +
                                 static_cast<size_t>(y - top) * static_cast<size_t>(image.width) +
                                 static_cast<size_t>(begin - left);
        host::compositeWords(wordsAt(target, begin, y), source, static_cast<size_t>(end - begin),
                             host::Composite::SourceOver);
    }
}

}  // namespace

void addGlyphs(ColorRun& run, const SkPaint& font, size_t count,
               const std::function<ColorRun::Candidate(size_t)>& glyphAt) {
    const host::FontFace* face = font.getTypeface()->face().get();
    const bool svg = hb_ot_color_has_svg(face->hbFace()) != 0;
    if (!face->hasColors() && !svg) return;
    const host::GlyphStyle style = host::glyphStyleOf(font);
    for (size_t i = 0; i < count; ++i) {
        const ColorRun::Candidate glyph = glyphAt(i);
        const float width = glyph.ink.mRight - glyph.ink.mLeft, height = glyph.ink.mBottom - glyph.ink.mTop;
        host::GlyphPen pen;
        if (!(width > 0) || !host::placePen(glyph.x, glyph.y, style, &pen)) continue;
        if (svg) run.hasSvg = run.hasSvg || hasSvgPicture(*face, glyph.id);
        if (!face->hasColors()) continue;
        run.hasLarge = run.hasLarge || width * height > kMostPixels;
        run.glyphs.push_back({face, glyph.id, style, pen});
    }
}

ColorRun colorRunOf(const minikin::Layout& layout, const minikin::MinikinRect& ink,
                    const android::Paint& paint) {
    ColorRun run;
    run.width = static_cast<int>(truncateToUnsigned(layout.getAdvance()));
    run.height = static_cast<int>(truncateToUnsigned(ink.mBottom - ink.mTop));
    run.baseline = truncateToInt(-ink.mTop);
    android::Paint font(paint);
    const auto addRun = [&](size_t start, size_t end) {
        addGlyphs(run, font, end - start, [&](size_t i) {
            const int index = static_cast<int>(start + i);
            return ColorRun::Candidate{layout.getGlyphId(index), layout.getX(index) - ink.mLeft,
                                       layout.getY(index) - ink.mTop,
                                       host::LayoutGlyphs::inkOf(layout, index)};
        });
    };
    android::MinikinUtils::forFontRun(layout, &font, addRun);
    return run;
}

Zvex::ColorGlyphLayer drawColorGlyphs(const std::vector<PlacedRun>& runs, uint32_t textColor, int width,
                                      int height) {
    Zvex::ColorGlyphLayer glyphs;
    ZvRect all;
    for (const PlacedRun& placed : runs) {
        const ZvRect box = boxOf(placed, width, height);
        if (placed.run->glyphs.empty() || isEmpty(box)) continue;
        all = isEmpty(all) ? box : joined(all, box);
    }
    if (isEmpty(all)) return glyphs;
    glyphs.x = all.left;
    glyphs.y = all.top;
    glyphs.picture = ZvBitmap(static_cast<unsigned>(widthOf(all)), static_cast<unsigned>(heightOf(all)), 4);
    if (glyphs.picture.pixels == nullptr) throw std::bad_alloc();
    for (const PlacedRun& placed : runs) {
        const ZvRect box = boxOf(placed, width, height);
        for (const ColorRun::Glyph& glyph : placed.run->glyphs) {
            drawGlyph(glyph, placed, box, textColor, glyphs);
        }
    }
    return glyphs;
}

void raiseCoverage(Zvex::TextCoverage& coverage, const Zvex::ColorGlyphLayer& glyphs) {
    const ZvRect& box = coverage.box;
    const int left = std::max(box.left, glyphs.x);
    const int right = std::min(box.right, glyphs.x + static_cast<int>(glyphs.picture.width));
    const int bottom = std::min(box.bottom, glyphs.y + static_cast<int>(glyphs.picture.height));
    for (int y = std::max(box.top, glyphs.y); y < bottom && coverage.mask.pixels != nullptr; ++y) {
        uint8_t* mask = coverage.mask.pixels + static_cast<size_t>(y - box.top) * coverage.mask.width;
        for (int x = left; x < right; ++x) {
            const auto alpha = static_cast<uint8_t>(*wordsAt(glyphs, x, y) >> 24);
            mask[x - box.left] = std::max(mask[x - box.left], alpha);
        }
    }
}

}  // namespace Zvex::scene
