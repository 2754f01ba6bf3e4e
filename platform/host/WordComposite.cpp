// SPDX-License-Identifier: Apache-2.0
#include "platform/host/WordComposite.h"

#include <algorithm>
#include <iterator>

#include "platform/host/PixelMath.h"
#include "raster/LayerBlend.h"

namespace host {

namespace {

using Zvex::LayerBlend;

// From Plus on.
constexpr LayerBlend kBlends[] = {
    LayerBlend::PlusLighter, LayerBlend::Screen,     LayerBlend::Overlay,   LayerBlend::Darken,
    LayerBlend::Lighten,     LayerBlend::ColorDodge, LayerBlend::ColorBurn, LayerBlend::HardLight,
    LayerBlend::SoftLight,   LayerBlend::Difference, LayerBlend::Exclusion, LayerBlend::Multiply,
    LayerBlend::Hue,         LayerBlend::Saturation, LayerBlend::Color,     LayerBlend::Luminosity,
};

// The weights of the source and of the backdrop, of 255.
struct Shares {
    uint32_t source, backdrop;
};
Shares sharesOf(Composite mode, uint32_t source, uint32_t backdrop) {
    switch (mode) {
        case Composite::Source:
            return {255, 0};
        case Composite::Backdrop:
            return {0, 255};
        case Composite::SourceOver:
            return {255, 255 - source};
        case Composite::BackdropOver:
            return {255 - backdrop, 255};
        case Composite::SourceIn:
            return {backdrop, 0};
        case Composite::BackdropIn:
            return {0, source};
        case Composite::SourceOut:
            return {255 - backdrop, 0};
        case Composite::BackdropOut:
            return {0, 255 - source};
        case Composite::SourceAtop:
            return {backdrop, 255 - source};
        case Composite::BackdropAtop:
            return {255 - backdrop, source};
        case Composite::Xor:
            return {255 - backdrop, 255 - source};
        default:
            return {0, 0};
    }
}

uint32_t joined(uint32_t backdrop, uint32_t source, Composite mode) {
    const uint32_t sourceAlpha = source >> 24, backdropAlpha = backdrop >> 24;
    const Shares shares = sharesOf(mode, sourceAlpha, backdropAlpha);
    const uint32_t above = sourceAlpha * shares.source, below = backdropAlpha * shares.backdrop;
    const uint32_t sum = above + below;  // at most 255 * 255
    const uint32_t alpha = nearestQuotient(sum, 255);
    if (alpha == 0) return 0;
    uint32_t word = alpha << 24;
    for (int shift = 0; shift < 24; shift += 8) {
        word |= nearestQuotient((source >> shift & 255) * above + (backdrop >> shift & 255) * below, sum)
                << shift;
    }
    return word;
}

void blendWords(uint32_t* backdrop, const uint32_t* source, size_t count, LayerBlend blend) {
    namespace rows = Zvex::JoinRows;
    for (size_t at = 0; at < count; at += rows::kPiece) {
        const size_t here = std::min(rows::kPiece, count - at);
        uint32_t below[rows::kPiece] = {}, above[rows::kPiece] = {};
        std::copy_n(backdrop + at, here, below);
        std::copy_n(source + at, here, above);
        rows::Piece piece;
        float alpha[rows::kPiece];
        rows::takeWords(&piece, below);
        rows::takeAlpha(alpha, above, 1);
        rows::join(&piece, above, alpha, blend);
        rows::giveWords(below, piece, 1);
        std::copy_n(below, here, backdrop + at);
    }
}

}  // namespace

void compositeWords(uint32_t* backdrop, const uint32_t* source, size_t count, Composite mode) {
    if (mode >= Composite::Plus) {
        const auto blend = static_cast<size_t>(mode) - static_cast<size_t>(Composite::Plus);
        if (blend < std::size(kBlends)) blendWords(backdrop, source, count, kBlends[blend]);
        return;
    }
    for (size_t i = 0; i < count; ++i) {
        if (mode == Composite::SourceOver && (source[i] >> 24 == 0 || source[i] >> 24 == 255)) {
            if (source[i] >> 24 != 0) backdrop[i] = source[i];
            continue;
        }
        backdrop[i] = joined(backdrop[i], source[i], mode);
    }
}

}  // namespace host
