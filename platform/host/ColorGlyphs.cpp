// SPDX-License-Identifier: Apache-2.0
#include "platform/host/ColorGlyphs.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include FT_COLOR_H

#include "platform/host/GlyphOutline.h"
#include "platform/host/PixelMath.h"
#include "platform/host/ResampleAlpha.h"
#include "platform/host/StrikeFilter.h"
#include "platform/host/WordComposite.h"

namespace host {

namespace {

// Further layers are not drawn; real glyphs have a few dozen.
constexpr int kMaxLayers = 1024;

// Index of alpha in a strike's pixels, after blue, green and red.
constexpr int kAlpha = 3;

// The start of a layer's row in the image that holds it.
template <typename Image>
size_t placeWithin(const Image& image, const GlyphImage& layer, int y) {
    return static_cast<size_t>(layer.top + y - image.top) * static_cast<size_t>(image.width) +
           static_cast<size_t>(layer.left - image.left);
}

}  // namespace

struct ColorGlyphs::Strike {
    const FT_Bitmap* bitmap;
    int left, top;                // the bitmap's top left corner from the pen, in its own pixels, y upwards
    double perPixelX, perPixelY;  // perPixelX is negative in mirrored styles
    StrikePlace place;            // for the phone: position of the bitmap from the pen
};

void ColorGlyphs::open(FreeTypeFace& font, hb_face_t* hbFace) {
    const FT_Face face = font.face();
    mHasStrikes = FT_HAS_COLOR(face) && face->num_fixed_sizes > 0;
    FT_Palette_Data palettes;
    FT_Color* palette = nullptr;
    if (FT_Palette_Data_Get(face, &palettes) == 0 && FT_Palette_Select(face, 0, &palette) == 0 &&
        palette != nullptr) {
        for (int i = 0; i < palettes.num_palette_entries; ++i) {
            mPalette.push_back(uint32_t{palette[i].alpha} << 24 | uint32_t{palette[i].red} << 16 |
                               uint32_t{palette[i].green} << 8 | palette[i].blue);
        }
    }
    mGraph.open(hbFace);
}

// Loads the glyph's colour bitmap from the smallest strike that is not smaller than the style, else from the
// largest one. With metricsOnly, loads only its sides and position. False if the font has none for the glyph.
bool ColorGlyphs::loadStrike(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, bool metricsOnly,
                             Strike* strike) const {
    if (!mHasStrikes) return false;
    const FT_Face face = font.face();
    const FT_Bitmap_Size* sizes = face->available_sizes;
    int best = 0;
    for (int i = 1; i < face->num_fixed_sizes; ++i) {
        const float wanted = style.size * 64;
        const bool enough = static_cast<float>(sizes[i].y_ppem) >= wanted;
        const bool bestEnough = static_cast<float>(sizes[best].y_ppem) >= wanted;
        const bool smaller = sizes[i].y_ppem < sizes[best].y_ppem;
        if (enough ? !bestEnough || smaller : !bestEnough && !smaller) best = i;
    }
    if (sizes[best].x_ppem <= 0 || sizes[best].y_ppem <= 0 || !font.setStrike(best)) return false;
    const int flags = FT_LOAD_COLOR | FT_LOAD_NO_HINTING | FT_LOAD_IGNORE_TRANSFORM |
                      (metricsOnly ? FT_LOAD_BITMAP_METRICS_ONLY : 0);
    if (FT_Load_Glyph(face, glyph, flags) != 0 || face->glyph->format != FT_GLYPH_FORMAT_BITMAP) return false;
    const FT_Bitmap& bitmap = face->glyph->bitmap;
    if (bitmap.pixel_mode != FT_PIXEL_MODE_BGRA || bitmap.width == 0 || bitmap.rows == 0) return false;
    if (bitmap.width > kMaxGlyphSide || bitmap.rows > kMaxGlyphSide) return false;
    if (!metricsOnly && bitmap.buffer == nullptr) return false;
    strike->bitmap = &bitmap;
    strike->left = face->glyph->bitmap_left;
    strike->top = face->glyph->bitmap_top;
    const PhoneScale scale = phoneScale(style);
    const float x = scale.width / static_cast<float>(face->size->metrics.x_ppem);
    const float y = scale.height / static_cast<float>(face->size->metrics.y_ppem);
    const auto left = static_cast<float>(strike->left), top = static_cast<float>(-strike->top);
    strike->place.xx = scale.xx * x;
    strike->place.xy = scale.xy * y;
    strike->place.yy = scale.yy * y;
    strike->place.x0 = strike->place.xx * left + strike->place.xy * top;
    strike->place.y0 = strike->place.yy * top;
    const double size = style.size;
    strike->perPixelX =
        static_cast<double>(sizes[best].x_ppem) / 64 / (size * static_cast<double>(style.scaleX));
    strike->perPixelY = static_cast<double>(sizes[best].y_ppem) / 64 / size;
    return true;
}

GlyphBox ColorGlyphs::strikeBox(const Strike& strike, const GlyphStyle& style, int quarterX) {
    static constexpr double kFar = 1e9;  // beyond the limits, but safe to convert
    const auto whole = [](double v) { return static_cast<int64_t>(std::min(std::max(v, -kFar), kFar)); };
    if (style.rendering == Rendering::Phone) {
        const StrikePlace& p = strike.place;
        const float right = p.xx * static_cast<float>(strike.bitmap->width);
        const float slant = p.xy * static_cast<float>(strike.bitmap->rows);
        const float left = p.x0 + static_cast<float>(quarterX) * 0.25f;
        return nearBox(whole(std::floor(left + std::min(right, 0.0f) + std::min(slant, 0.0f))),
                       whole(std::floor(p.y0)),
                       whole(std::ceil(left + std::max(right, 0.0f) + std::max(slant, 0.0f))),
                       whole(std::ceil(p.y0 + p.yy * static_cast<float>(strike.bitmap->rows))));
    }
    const double top = -strike.top / strike.perPixelY;
    const double bottom = (static_cast<double>(strike.bitmap->rows) - strike.top) / strike.perPixelY;
    const double edges[] = {strike.left / strike.perPixelX,
                            (static_cast<double>(strike.bitmap->width) + strike.left) / strike.perPixelX};
    const double slants[] = {static_cast<double>(style.skewX) * top,
                             static_cast<double>(style.skewX) * bottom};
    const double left = std::min(edges[0], edges[1]) + std::min(slants[0], slants[1]) + quarterX * 0.25;
    const double right = std::max(edges[0], edges[1]) + std::max(slants[0], slants[1]) + quarterX * 0.25;
    return nearBox(whole(std::floor(left)), whole(std::floor(top)), whole(std::ceil(right)),
                   whole(std::ceil(bottom)));
}

void ColorGlyphs::drawStrike(const Strike& strike, const GlyphStyle& style, int quarterX, int channel,
                             GlyphImage& image) {
    if (style.rendering == Rendering::Phone) {
        StrikePlace place = strike.place;
        place.x0 += static_cast<float>(quarterX) * 0.25f - static_cast<float>(image.left);
        place.y0 -= static_cast<float>(image.top);
        filterStrike(strike.bitmap->buffer + channel, static_cast<int>(strike.bitmap->width),
                     static_cast<int>(strike.bitmap->rows), strike.bitmap->pitch, 4, place,
                     image.coverage.data(), image.width, image.height);
        return;
    }
    // Maps a pixel centre (x, y) from the pen, without slant and quarter, to the strike's pixels from its top
    // left corner.
    const auto fixed = [](double v) { return static_cast<int64_t>(std::llround(v * 65536)); };
    const double y = image.top + 0.5;
    const double x = image.left + 0.5 - quarterX * 0.25 - static_cast<double>(style.skewX) * y;
    ResampleParam p;
    p.source = strike.bitmap->buffer + channel;
    p.sourceWidth = static_cast<int>(strike.bitmap->width);
    p.sourceHeight = static_cast<int>(strike.bitmap->rows);
    p.sourceStride = strike.bitmap->pitch;
    p.sourceStep = 4;
    p.target = image.coverage.data();
    p.targetWidth = image.width;
    p.targetHeight = image.height;
    p.x = fixed(x * strike.perPixelX - strike.left);
    p.xStep = fixed(strike.perPixelX);
    p.xShear = fixed(-static_cast<double>(style.skewX) * strike.perPixelX);
    p.y = fixed(y * strike.perPixelY + strike.top);
    p.yStep = fixed(strike.perPixelY);
    resampleAlpha(p);
}

namespace {

// A strike's alpha without anti-alias, in Plain.
uint8_t wholeOrNothing(uint8_t alpha) {
    return alpha >= 128 ? 255 : 0;
}
bool isCut(const GlyphStyle& style) {
    return style.rendering == Rendering::Plain && !style.antiAlias;
}

}  // namespace

ColorImage ColorGlyphs::paintStrike(const Strike& strike, const GlyphStyle& style, int quarterX) {
    const GlyphBox box = strikeBox(strike, style, quarterX);
    ColorImage image = blankPicture(box);
    if (image.pixels.empty()) return image;
    GlyphImage plane = blankImage(box);
    std::vector<uint8_t> alphas = plane.coverage;
    drawStrike(strike, style, quarterX, kAlpha, plane);
    alphas.swap(plane.coverage);
    for (int channel = 0; channel < kAlpha; ++channel) {
        std::fill(plane.coverage.begin(), plane.coverage.end(), uint8_t{0});
        drawStrike(strike, style, quarterX, channel, plane);
        for (size_t i = 0; i < alphas.size(); ++i) {
            if (alphas[i] == 0) continue;
            const uint32_t color = nearestQuotient(plane.coverage[i] * 255u, alphas[i]);
            image.pixels[i] |= std::min(color, 255u) << (8 * channel);
        }
    }
    for (size_t i = 0; i < alphas.size(); ++i) {
        const uint32_t alpha = isCut(style) ? wholeOrNothing(alphas[i]) : alphas[i];
        image.pixels[i] = alpha == 0 ? 0 : image.pixels[i] | alpha << 24;
    }
    return image;
}

// Calls visit(layer's glyph, number of its colour) for each layer, the lowest first.
template <typename Visit>
bool ColorGlyphs::forEachLayer(FreeTypeFace& font, uint32_t glyph, Visit visit) const {
    FT_LayerIterator iterator;
    std::memset(&iterator, 0, sizeof iterator);
    FT_UInt layerGlyph = 0, color = 0;
    int count = 0;
    while (count < kMaxLayers &&
           FT_Get_Color_Glyph_Layer(font.face(), glyph, &layerGlyph, &color, &iterator) != 0) {
        ++count;
        visit(layerGlyph, color);
    }
    return count > 0;
}

bool ColorGlyphs::layersBox(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                            GlyphBox* box) const {
    GlyphBox all;
    const bool layered = forEachLayer(font, glyph, [&](uint32_t layerGlyph, uint32_t) {
        if (loadOutline(font, layerGlyph, style, quarterX)) {
            all = unionOf(all, outlineBox(font));
        }
    });
    *box = all;
    return layered;
}

// Calls visit(the layer's coverage, number of its colour) for each layer, the lowest first.
template <typename Visit>
void ColorGlyphs::drawEachLayer(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                                Visit visit) const {
    forEachLayer(font, glyph, [&](uint32_t layerGlyph, uint32_t color) {
        if (!loadOutline(font, layerGlyph, style, quarterX)) return;
        const GlyphBox box = outlineBox(font);
        GlyphImage layer = blankImage(box);
        if (!box.empty() && rasterise(font, style, exactLevels(), layer)) visit(layer, color);
    });
}

// One layer over the other: the alphas of the picture that paintLayers makes.
void ColorGlyphs::drawLayers(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                             GlyphImage& image) const {
    drawEachLayer(font, glyph, style, quarterX, [&](const GlyphImage& layer, uint32_t color) {
        const uint32_t alpha = PaletteColors{&mPalette, 0xFF000000}.at(color) >> 24;
        const uint8_t* source = layer.coverage.data();
        for (int y = 0; y < layer.height; ++y) {
            uint8_t* target = image.coverage.data() + placeWithin(image, layer, y);
            for (int x = 0; x < layer.width; ++x, ++target) {
                *target = coverageOver(static_cast<uint8_t>(multiplyBytes(*source++, alpha)), *target);
            }
        }
    });
}

ColorImage ColorGlyphs::paintLayers(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                                    uint32_t textColor) const {
    GlyphBox box;
    layersBox(font, glyph, style, quarterX, &box);
    ColorImage image = blankPicture(box);
    if (image.pixels.empty()) return image;
    std::vector<uint32_t> row;
    drawEachLayer(font, glyph, style, quarterX, [&](const GlyphImage& layer, uint32_t number) {
        const uint32_t color = PaletteColors{&mPalette, textColor}.at(number);
        const uint8_t* source = layer.coverage.data();
        row.resize(static_cast<size_t>(layer.width));
        for (int y = 0; y < layer.height; ++y) {
            for (uint32_t& word : row) word = withAlpha(color, multiplyBytes(*source++, color >> 24));
            compositeWords(image.pixels.data() + placeWithin(image, layer, y), row.data(), row.size(),
                           Composite::SourceOver);
        }
    });
    return image;
}

bool ColorGlyphs::isGraphOnly(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style) const {
    return mGraph.has(glyph) && !loadOutline(font, glyph, style, 0);
}

bool ColorGlyphs::box(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                      GlyphBox* box) const {
    Strike strike;
    if (loadStrike(font, glyph, style, true, &strike)) {
        *box = strikeBox(strike, style, quarterX);
        return true;
    }
    if (layersBox(font, glyph, style, quarterX, box)) return true;
    if (!isGraphOnly(font, glyph, style)) return false;
    *box = mGraph.box(font, glyph, style, quarterX);
    return true;
}

float ColorGlyphs::advance(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style) const {
    Strike strike;
    if (loadStrike(font, glyph, style, true, &strike)) {
        // Scales as FreeType's own matrix would.
        const auto factor = static_cast<FT_Fixed>(65536 / strike.perPixelX);
        return static_cast<float>(FT_MulFix(font.face()->glyph->advance.x, factor)) / 64;
    }
    return loadGlyph(font, glyph, style) ? slotAdvance(font, style) : 0;
}

bool ColorGlyphs::draw(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                       GlyphImage* image) const {
    Strike strike;
    if (loadStrike(font, glyph, style, false, &strike)) {
        *image = blankImage(strikeBox(strike, style, quarterX));
        if (!image->coverage.empty()) drawStrike(strike, style, quarterX, kAlpha, *image);
        if (isCut(style)) {
            for (uint8_t& level : image->coverage) level = wholeOrNothing(level);
        }
        return true;
    }
    GlyphBox layers;
    if (layersBox(font, glyph, style, quarterX, &layers)) {
        *image = blankImage(layers);
        if (!image->coverage.empty()) drawLayers(font, glyph, style, quarterX, *image);
        return true;
    }
    if (!isGraphOnly(font, glyph, style)) return false;
    const ColorImage painted = mGraph.draw(font, glyph, style, quarterX, {&mPalette, 0xFF000000});
    *image =
        blankImage({painted.left, painted.top, painted.left + painted.width, painted.top + painted.height});
    std::transform(painted.pixels.begin(), painted.pixels.end(), image->coverage.begin(),
                   [](uint32_t word) { return static_cast<uint8_t>(word >> 24); });
    return true;
}

ColorImage ColorGlyphs::paint(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                              uint32_t textColor) const {
    Strike strike;
    if (loadStrike(font, glyph, style, false, &strike)) return paintStrike(strike, style, quarterX);
    if (mGraph.has(glyph)) return mGraph.draw(font, glyph, style, quarterX, {&mPalette, textColor});
    return paintLayers(font, glyph, style, quarterX, textColor);
}

}  // namespace host
