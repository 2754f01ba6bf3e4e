// SPDX-License-Identifier: Apache-2.0
#include "platform/host/PaintGraph.h"

#include <algorithm>
#include <cmath>
#include FT_OUTLINE_H
#include FT_TRIGONOMETRY_H

#include "platform/host/GlyphOutline.h"
#include "platform/host/OutlineFill.h"
#include "platform/host/PixelMath.h"
#include "platform/host/WordComposite.h"

namespace host {

namespace {

constexpr int kMaxDepth = 64;
constexpr int kMaxPaints = 16384;
// How many pixels a graph may fill: kMaxFills times those of the glyph, and kFreePixels in any case.
constexpr uint64_t kMaxFills = 128, kFreePixels = uint64_t{1} << 22;
constexpr size_t kMaxPixels = kMaxGlyphBytes / 4;
// The pixels that a paint and those above it may hold at once.
constexpr size_t kMaxHeld = 4 * kMaxPixels;
// Pixels from the pen; up to this distance 26.6 fits 32 bits.
constexpr double kFarthest = 1 << 23;

// One in 2.14 fixed point.
constexpr double kUnit = 16384;

GlyphBox meet(const GlyphBox& a, const GlyphBox& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}
size_t areaOf(const GlyphBox& box) {
    return box.empty()
               ? 0
               : static_cast<size_t>(box.right - box.left) * static_cast<size_t>(box.bottom - box.top);
}
GlyphBox boxOf(const ColorImage& image) {
    return {image.left, image.top, image.left + image.width, image.top + image.height};
}

uint32_t* rowOf(ColorImage& image, int x, int y) {
    return image.pixels.data() + static_cast<size_t>(y - image.top) * static_cast<size_t>(image.width) +
           static_cast<size_t>(x - image.left);
}

// The picture, extended to a larger box.
ColorImage grown(ColorImage image, const GlyphBox& box) {
    if (areaOf(box) == image.pixels.size()) return image;
    ColorImage result = blankPicture(box);
    for (int y = image.top; y < image.top + image.height; ++y) {
        std::copy_n(rowOf(image, image.left, y), image.width, rowOf(result, image.left, y));
    }
    return result;
}

// Degrees in 16.16, from half turns in 2.14.
FT_Angle angleOf(int32_t halfTurns) {
    return halfTurns * (180 * 4);
}
double tangent(FT_Angle angle) {
    return static_cast<double>(FT_Sin(angle)) / static_cast<double>(FT_Cos(angle));
}

Affine around(double x, double y, const Affine& matrix) {
    return Affine{1, 0, 0, 1, x, y} * matrix * Affine{1, 0, 0, 1, -x, -y};
}

}  // namespace

void PaintGraph::open(hb_face_t* face) {
    mTable.reset(hb_face_reference_table(face, HB_TAG('C', 'O', 'L', 'R')));
    unsigned length = 0;
    mBytes = reinterpret_cast<const uint8_t*>(hb_blob_get_data(mTable.get(), &length));
    mSize = length;
    if (word(0, 2) != 1) mSize = 0;
}

uint32_t PaintGraph::word(size_t at, int bytes) const {
    if (at > mSize || static_cast<size_t>(bytes) > mSize - at) return 0;
    uint32_t value = 0;
    for (int i = 0; i < bytes; ++i) value = value << 8 | mBytes[at + static_cast<size_t>(i)];
    return value;
}

int32_t PaintGraph::number(size_t at, int bytes) const {
    const uint32_t value = word(at, bytes);
    return bytes == 2 ? static_cast<int16_t>(value) : static_cast<int32_t>(value);
}

size_t PaintGraph::placeOf(size_t base, size_t field, int bytes) const {
    const uint32_t offset = word(base + field, bytes);
    return offset == 0 || offset >= mSize ? 0 : base + offset;
}

size_t PaintGraph::rootOf(uint32_t glyph) const {
    const size_t list = placeOf(0, 14, 4);
    if (list == 0) return 0;
    size_t begin = 0, end = std::min<size_t>(word(list, 4), mSize / 6);
    while (begin < end) {
        const size_t middle = (begin + end) / 2, record = list + 4 + 6 * middle;
        const uint32_t found = word(record, 2);
        if (found == glyph) {
            const size_t offset = word(record + 2, 4);
            return offset == 0 || offset >= mSize ? 0 : list + offset;
        }
        if (found < glyph) {
            begin = middle + 1;
        } else {
            end = middle;
        }
    }
    return 0;
}

size_t PaintGraph::clipOf(uint32_t glyph) const {
    const size_t list = placeOf(0, 22, 4);
    if (list == 0) return 0;
    const size_t count = std::min<size_t>(word(list + 1, 4), mSize / 7);
    for (size_t record = list + 5; record < list + 5 + 7 * count; record += 7) {
        if (word(record, 2) <= glyph && glyph <= word(record + 2, 2)) {
            const size_t offset = word(record + 4, 3);
            return offset == 0 ? 0 : list + offset;
        }
    }
    return 0;
}

size_t PaintGraph::layerAt(uint32_t index) const {
    const size_t list = placeOf(0, 18, 4);
    if (list == 0 || index >= word(list, 4) || index >= mSize / 4) return 0;
    return placeOf(list, 4 + 4 * static_cast<size_t>(index), 4);
}

class PaintGraph::Painter {
public:
    Painter(const PaintGraph& graph, FreeTypeFace& font, const GlyphStyle& style, int quarterX)
        : mGraph(graph), mFont(font), mAntiAlias(style.antiAlias) {
        const double unit = static_cast<double>(style.size) / font.face()->units_per_EM;
        mRoot = {unit * static_cast<double>(style.scaleX),
                 -unit * static_cast<double>(style.skewX),
                 0,
                 -unit,
                 quarterX * 0.25,
                 0};
    }

    GlyphBox measure(uint32_t glyph) {
        if (const size_t clip = mGraph.clipOf(glyph); clip != 0) return clipBox(clip, mRoot);
        mMeasures = true;
        paint(mGraph.rootOf(glyph), mRoot, kAnywhere);
        return mShapes;
    }

    ColorImage draw(uint32_t glyph, const PaletteColors& palette, const GlyphBox& box) {
        mPalette = &palette;
        mPixelsLeft = kFreePixels + kMaxFills * areaOf(box);
        return paint(mGraph.rootOf(glyph), mRoot, box);
    }

private:
    static constexpr GlyphBox kAnywhere = {-(1 << 24), -(1 << 24), 1 << 24, 1 << 24};

    bool spend(uint64_t pixels) {
        const bool enough = pixels <= mPixelsLeft;
        mPixelsLeft = enough ? mPixelsLeft - pixels : 0;
        return enough;
    }

    double at(size_t place) const { return mGraph.number(place, 2); }
    double share(size_t place) const { return at(place) / kUnit; }

    GlyphBox clipBox(size_t clip, const Affine& toPixels) const {
        const double xs[] = {at(clip + 1), at(clip + 5)}, ys[] = {at(clip + 3), at(clip + 7)};
        double left = kFarthest, right = -kFarthest, top = kFarthest, bottom = -kFarthest;
        for (const double x : xs) {
            for (const double y : ys) {
                const double pixelX = toPixels.xx * x + toPixels.xy * y + toPixels.x0;
                const double pixelY = toPixels.yy * y + toPixels.y0;
                left = std::min(left, pixelX);
                right = std::max(right, pixelX);
                top = std::min(top, pixelY);
                bottom = std::max(bottom, pixelY);
            }
        }
        const auto whole = [](double v) {
            return static_cast<int64_t>(std::clamp(v, -2 * kFarthest - 1, 2 * kFarthest + 1));
        };
        return nearBox(whole(std::floor(left)), whole(std::floor(top)), whole(std::ceil(right)),
                       whole(std::ceil(bottom)));
    }

    // The part of the paint's picture within `clip`. A composite without bounds of its own fills the clip.
    ColorImage paint(size_t place, const Affine& toPixels, const GlyphBox& clip) {
        if (place == 0 || clip.empty() || mDepth == kMaxDepth || mPaints == kMaxPaints) return {};
        const size_t held = mMeasures ? 0 : 2 * areaOf(clip);
        if (held > kMaxHeld - mHeld) return {};
        ++mPaints;
        ++mDepth;
        mHeld += held;
        ColorImage picture = paintKind(place, toPixels, clip);
        mHeld -= held;
        --mDepth;
        return picture;
    }

    ColorImage paintKind(size_t place, const Affine& toPixels, const GlyphBox& clip) {
        const uint32_t format = mGraph.word(place, 1);
        // An odd format is the even one before it with deltas, except for two.
        const uint32_t kind = format == 1 || format == 11 ? format : format & ~1u;
        switch (kind) {
            case 1:
                return layers(place, toPixels, clip);
            case 2:
            case 4:
            case 6:
            case 8:
                return fill(place, toPixels, clip);
            case 10:
                return shape(place, toPixels, clip);
            case 11:
                return glyph(mGraph.word(place + 1, 2), toPixels, clip);
            case 32:
                return composite(place, toPixels, clip);
            default:
                if (kind < 12 || kind > 30) return {};
                return paint(child(place, 1), toPixels * transform(place, kind), clip);
        }
    }

    size_t child(size_t place, size_t field) const { return mGraph.placeOf(place, field, 3); }

    Affine transform(size_t place, uint32_t format) const {
        const size_t value = place + 4;
        switch (format) {
            case 12: {
                const size_t matrix = mGraph.placeOf(place, 4, 3);
                const auto field = [&](size_t i) {
                    return matrix == 0 ? 0 : mGraph.number(matrix + 4 * i, 4) / 65536.0;
                };
                return {field(0), field(2), field(1), field(3), field(4), field(5)};
            }
            case 14:
                return {1, 0, 0, 1, at(value), at(value + 2)};
            case 16:
                return {share(value), 0, 0, share(value + 2), 0, 0};
            case 18:
                return around(at(value + 4), at(value + 6), {share(value), 0, 0, share(value + 2), 0, 0});
            case 20:
                return {share(value), 0, 0, share(value), 0, 0};
            case 22:
                return around(at(value + 2), at(value + 4), {share(value), 0, 0, share(value), 0, 0});
            case 24:
                return rotation(value);
            case 26:
                return around(at(value + 2), at(value + 4), rotation(value));
            case 28:
                return slant(value);
            default:
                return around(at(value + 4), at(value + 6), slant(value));
        }
    }
    Affine rotation(size_t place) const {
        const FT_Angle angle = angleOf(mGraph.number(place, 2));
        const double cosine = static_cast<double>(FT_Cos(angle)) / 65536;
        const double sine = static_cast<double>(FT_Sin(angle)) / 65536;
        return {cosine, -sine, sine, cosine, 0, 0};
    }
    Affine slant(size_t place) const {
        return {1,
                -tangent(angleOf(mGraph.number(place, 2))),
                tangent(angleOf(mGraph.number(place + 2, 2))),
                1,
                0,
                0};
    }

    // Each layer lies over those before it.
    ColorImage layers(size_t place, const Affine& toPixels, const GlyphBox& clip) {
        ColorImage all;
        const uint32_t count = mGraph.word(place + 1, 1), first = mGraph.word(place + 2, 4);
        for (uint32_t i = 0; i < count; ++i) {
            all =
                join(std::move(all), paint(mGraph.layerAt(first + i), toPixels, clip), Composite::SourceOver);
        }
        return all;
    }

    // The limits end a glyph that paints itself. A box that is rotated or slanted does not clip.
    ColorImage glyph(uint32_t number, const Affine& toPixels, const GlyphBox& clip) {
        const size_t box = mMeasures ? 0 : mGraph.clipOf(number);
        const GlyphBox all = box == 0 || toPixels.yx != 0 ? clip : meet(clip, clipBox(box, toPixels));
        return paint(mGraph.rootOf(number), toPixels, all);
    }

    ColorImage composite(size_t place, const Affine& toPixels, const GlyphBox& clip) {
        const uint32_t mode = mGraph.word(place + 4, 1);
        ColorImage backdrop = paint(child(place, 5), toPixels, clip);
        ColorImage source = paint(child(place, 1), toPixels, clip);
        if (mode >= kComposites) return {};
        return join(std::move(backdrop), std::move(source), static_cast<Composite>(mode));
    }

    ColorImage join(ColorImage backdrop, ColorImage source, Composite mode) {
        if (mode == Composite::SourceOver && backdrop.pixels.empty()) return source;
        if (mode == Composite::SourceOver && source.pixels.empty()) return backdrop;
        const GlyphBox box = unionOf(boxOf(backdrop), boxOf(source));
        const bool whole = mode != Composite::SourceOver;
        if (!spend(areaOf(whole ? box : boxOf(source)))) return backdrop;
        if (areaOf(box) != backdrop.pixels.size() && !spend(areaOf(box))) return backdrop;
        backdrop = grown(std::move(backdrop), box);
        if (whole) source = grown(std::move(source), box);
        for (int y = source.top; y < source.top + source.height; ++y) {
            compositeWords(rowOf(backdrop, source.left, y), rowOf(source, source.left, y),
                           static_cast<size_t>(source.width), mode);
        }
        return backdrop;
    }

    // Fills an outline with what is painted there.
    ColorImage shape(size_t place, const Affine& toPixels, const GlyphBox& clip) {
        if (!loadShape(mGraph.word(place + 4, 2), toPixels)) return {};
        const GlyphBox all = outlineBox(mFont), box = meet(all, clip);
        if (mMeasures) mShapes = unionOf(mShapes, all);
        if (mMeasures || box.empty()) return {};
        const FT_Outline& outline = mFont.face()->glyph->outline;
        if (!spend(areaOf(box) + costOf(outline))) return {};
        GlyphImage mask = blankImage(box);
        if (mask.coverage.empty()) return {};
        fillGlyph(outline, exactLevels(), mask);
        if (!mAntiAlias) {
            for (uint8_t& level : mask.coverage) level = level >= 128 ? 255 : 0;
        }
        ColorImage picture = paint(child(place, 1), toPixels, box);
        for (int y = picture.top; y < picture.top + picture.height; ++y) {
            uint32_t* pixels = rowOf(picture, picture.left, y);
            const uint8_t* coverage = mask.coverage.data() +
                                      static_cast<size_t>(y - box.top) * static_cast<size_t>(mask.width) +
                                      static_cast<size_t>(picture.left - box.left);
            for (int x = 0; x < picture.width; ++x) {
                pixels[x] = withAlpha(pixels[x], multiplyBytes(pixels[x] >> 24, coverage[x]));
            }
        }
        return picture;
    }

    // Loads the shape into the face's slot, in 64ths of a pixel, y upwards.
    bool loadShape(uint32_t glyph, const Affine& toPixels) {
        const FT_Face face = mFont.face();
        const int flags =
            FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP | FT_LOAD_IGNORE_TRANSFORM;
        if (FT_Load_Glyph(face, glyph, flags) != 0 || face->glyph->format != FT_GLYPH_FORMAT_OUTLINE)
            return false;
        FT_Outline& outline = face->glyph->outline;
        if (!spend(static_cast<uint64_t>(outline.n_points))) return false;
        const auto fixed = [](double pixels) {
            const double near = pixels < kFarthest ? std::max(pixels, -kFarthest) : kFarthest;
            return static_cast<FT_Pos>(std::llround(near * 64));
        };
        for (int i = 0; i < outline.n_points; ++i) {
            FT_Vector& point = outline.points[i];
            const auto x = static_cast<double>(point.x), y = static_cast<double>(point.y);
            point.x = fixed(toPixels.xx * x + toPixels.xy * y + toPixels.x0);
            point.y = fixed(-(toPixels.yx * x + toPixels.yy * y + toPixels.y0));
        }
        return outline.n_points > 0;
    }

    // An upper limit for the rasteriser's steps along an outline: the pixels along its control points.
    static uint64_t costOf(const FT_Outline& outline) {
        uint64_t length = 0;
        for (int i = 1; i < outline.n_points; ++i) {
            const FT_Vector &a = outline.points[i - 1], &b = outline.points[i];
            length += static_cast<uint64_t>(std::abs(b.x - a.x) + std::abs(b.y - a.y)) / 64;
        }
        return 2 * length;  // contours are closed
    }

    uint32_t color(size_t place) const {
        const uint32_t color = mPalette->at(mGraph.word(place, 2));
        const double alpha = std::clamp(share(place + 2), 0.0, 1.0) * (color >> 24);
        return withAlpha(color, static_cast<uint32_t>(alpha + 0.5));
    }

    ColorLine colorLine(size_t place, bool variable) {
        std::vector<ColorLine::Stop> stops;
        const size_t line = child(place, 1), size = variable ? 10 : 6;
        const uint32_t count = line == 0 ? 0 : mGraph.word(line + 1, 2), extend = mGraph.word(line, 1);
        if (!spend(count)) return {{}, ColorLine::Extend::Pad};
        for (size_t stop = line + 3; stop < line + 3 + size * count && stop < mGraph.mSize; stop += size) {
            stops.push_back({share(stop), color(stop + 2)});
        }
        return {std::move(stops),
                extend > 2 ? ColorLine::Extend::Pad : static_cast<ColorLine::Extend>(extend)};
    }

    ColorImage fill(size_t place, const Affine& toPixels, const GlyphBox& clip) {
        Affine fromPixels;
        if (mMeasures || !spend(areaOf(clip))) return {};
        const uint32_t format = mGraph.word(place, 1);
        ColorImage picture = blankPicture(clip);
        if (format <= 3) {
            std::fill(picture.pixels.begin(), picture.pixels.end(), color(place + 1));
            return picture;
        }
        if (!toPixels.invert(&fromPixels)) return {};
        const ColorLine line = colorLine(place, format % 2 != 0);
        const auto each = [&](const auto& gradient) {
            for (int y = clip.top; y < clip.bottom; ++y) {
                uint32_t* pixels = rowOf(picture, clip.left, y);
                for (int x = clip.left; x < clip.right; ++x) {
                    const double pixelX = x + 0.5, pixelY = y + 0.5;
                    *pixels++ =
                        line.at(gradient.at(fromPixels.xx * pixelX + fromPixels.xy * pixelY + fromPixels.x0,
                                            fromPixels.yx * pixelX + fromPixels.yy * pixelY + fromPixels.y0));
                }
            }
        };
        const size_t field = place + 4;
        if (format <= 5) {
            each(LinearGradient(at(field), at(field + 2), at(field + 4), at(field + 6), at(field + 8),
                                at(field + 10)));
        } else if (format <= 7) {
            const auto radius = [&](size_t of) { return static_cast<double>(mGraph.word(of, 2)); };
            each(RadialGradient{at(field), at(field + 2), radius(field + 4), at(field + 6), at(field + 8),
                                radius(field + 10)});
        } else {
            // 0 is half a turn, so that two bytes cover a full circle.
            const auto degrees = [&](size_t of) { return (share(of) + 1) * 180; };
            each(SweepGradient{at(field), at(field + 2), degrees(field + 4), degrees(field + 6)});
        }
        return picture;
    }

    const PaintGraph& mGraph;
    FreeTypeFace& mFont;
    const bool mAntiAlias;
    Affine mRoot;
    const PaletteColors* mPalette = nullptr;
    bool mMeasures = false;
    GlyphBox mShapes;
    int mDepth = 0, mPaints = 0;
    size_t mHeld = 0;
    uint64_t mPixelsLeft = kFreePixels;
};

GlyphBox PaintGraph::box(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX) const {
    return Painter(*this, font, style, quarterX).measure(glyph);
}

ColorImage PaintGraph::draw(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                            const PaletteColors& palette) const {
    const GlyphBox whole = limitedBox(box(font, glyph, style, quarterX));
    if (whole.empty() || areaOf(whole) > kMaxPixels) return {};
    return Painter(*this, font, style, quarterX).draw(glyph, palette, whole);
}

}  // namespace host
