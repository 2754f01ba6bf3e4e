// SPDX-License-Identifier: Apache-2.0
//
// A piece of a row goes through all layers before the next piece begins. It stays in words until a pixel must
// be mixed; text on a plain ground mixes only along its edges. That does not change the bytes: splitting a
// pixel and joining it again gives the same pixel, and where nothing is mixed the formulas give one of the
// two pixels exactly. The plain form is tests/reference/LayerJoinReference.h.

#include "effect/LayerJoin.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "effect/Numbers.h"

namespace Zvex {

namespace {

using JoinRows::kPiece;

bool hasPixels(const ZvBitmap* bitmap, uint32_t depth) {
    return bitmap != nullptr && bitmap->pixels != nullptr && bitmap->bytesPerPixel == depth;
}

// Copies `count` pixels of a row of the bitmap from (x, y) on, where the bitmap's top-left is at (left, top);
// 0 outside. False, with nothing written, if all of them lie outside.
bool copyPixels(void* pixels, const ZvBitmap& bitmap, int64_t left, int64_t top, int64_t x, int64_t y,
                size_t count) {
    const int64_t begin = std::max(x, left);
    const int64_t end = std::min(x + static_cast<int64_t>(count), left + bitmap.width);
    if (begin >= end || y < top || y >= top + bitmap.height) return false;
    const size_t depth = bitmap.bytesPerPixel;
    if (end - begin < static_cast<int64_t>(kPiece)) std::memset(pixels, 0, kPiece * depth);
    const size_t at = static_cast<size_t>(y - top) * bitmap.width + static_cast<size_t>(begin - left);
    std::memcpy(static_cast<uint8_t*>(pixels) + static_cast<size_t>(begin - x) * depth,
                bitmap.pixels + at * depth, static_cast<size_t>(end - begin) * depth);
    return true;
}

// A piece of a row with the layers joined so far.
class JoinedPiece {
public:
    // Starts with `count` pixels, followed by transparent ones.
    JoinedPiece(const uint8_t* pixels, size_t count, int64_t x, int64_t y) : mCount(count), mX(x), mY(y) {
        if (count < kPiece) std::memset(mWords, 0, sizeof mWords);
        std::memcpy(mWords, pixels, count * 4);
    }

    // `isBase`: the layer in front of it is clipped to it.
    void join(const JoinedLayer& layer, bool isBase);
    void give(uint8_t* pixels, float opacity);

private:
    void joinSource(const JoinedLayer& layer, const uint32_t* source, float opacity, bool isBase);

    size_t mCount;
    int64_t mX, mY;
    bool mIsMixed = false;  // the pixels are in the piece, else in the words
    uint32_t mWords[kPiece];
    JoinRows::Piece mPiece;
    bool mHasBase = false;  // else the base is empty here
    float mBase[kPiece];    // alpha
};

void JoinedPiece::join(const JoinedLayer& layer, bool isBase) {
    if (!layer.clipped) mHasBase = false;
    const float opacity = clampFloat(layer.opacity, 0.0f, 1.0f);
    if (opacity == 0.0f || (layer.clipped && !mHasBase) || !hasPixels(layer.picture, 4)) return;
    uint32_t source[kPiece];
    if (!copyPixels(source, *layer.picture, layer.x, layer.y, mX, mY, mCount)) return;
    if (!JoinRows::isTransparent(source)) joinSource(layer, source, opacity, isBase);
}

void JoinedPiece::joinSource(const JoinedLayer& layer, const uint32_t* source, float opacity, bool isBase) {
    uint8_t coverage[kPiece];
    const bool isKnockedOut =
        hasPixels(layer.knockout, 1) &&
        copyPixels(coverage, *layer.knockout, layer.knockoutX, layer.knockoutY, mX, mY, mCount);
    const bool isPlain = !isKnockedOut && !layer.clipped && opacity == 1.0f;
    const bool isNormal = layer.blend == LayerBlend::Normal;
    const bool isJoined = !mIsMixed && isPlain && JoinRows::joinWords(mWords, source, isNormal);
    if (isJoined && !isBase) return;

    float alpha[kPiece];
    JoinRows::takeAlpha(alpha, source, opacity);
    if (isKnockedOut) JoinRows::knockOut(alpha, coverage);
    if (layer.clipped) {
        JoinRows::clip(alpha, mBase);
    } else if (isBase) {
        std::memcpy(mBase, alpha, sizeof alpha);
        mHasBase = true;
    }
    if (isJoined) return;
    if (!mIsMixed) JoinRows::takeWords(&mPiece, mWords);
    mIsMixed = true;
    JoinRows::join(&mPiece, source, alpha, layer.blend);
}

void JoinedPiece::give(uint8_t* pixels, float opacity) {
    if (!mIsMixed && opacity != 1.0f) JoinRows::takeWords(&mPiece, mWords);
    if (mIsMixed || opacity != 1.0f) {
        JoinRows::giveWords(mWords, mPiece, opacity);
    } else {
        for (uint32_t& word : mWords) word = word >> 24 != 0 ? word : 0;
    }
    std::memcpy(pixels, mWords, mCount * 4);
}

}  // namespace

void joinLayers(ZvBitmap* picture, const JoinedLayer* layers, size_t count, float opacity) {
    if (!hasPixels(picture, 4) || (layers == nullptr && count > 0)) return;
    const float shown = clampFloat(opacity, 0.0f, 1.0f);
    for (size_t y = 0; y < picture->height; ++y) {
        uint8_t* const row = picture->pixels + y * picture->width * 4;
        for (size_t x = 0; x < picture->width; x += kPiece) {
            JoinedPiece piece(row + x * 4, std::min(kPiece, picture->width - x), static_cast<int64_t>(x),
                              static_cast<int64_t>(y));
            for (size_t i = 0; i < count; ++i) piece.join(layers[i], i + 1 < count && layers[i + 1].clipped);
            piece.give(row + x * 4, shown);
        }
    }
}

}  // namespace Zvex
