// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_EFFECT_RANDOMLAYER_H_
#define ZVEX_TESTS_EFFECT_RANDOMLAYER_H_

#include "effect/ZvEffect.h"
#include "raster/ZvBitmap.h"
#include "tests/effect/TestPictures.h"

constexpr int LAYER_KINDS = 11;  // of layers; the last is the text alone

// Adds a layer of the kind, below LAYER_KINDS, with settings from their whole ranges. Random numbers are
// drawn one after the other: a call's arguments are evaluated in any order.
inline void addLayer(Zvex::ZvEffect& stack, int kind, Random& random) {
    const auto number = [&](int end, float unit) { return static_cast<float>(random.below(end)) * unit; };
    const uint32_t color = random.color(), other = random.color();
    const float angle = number(720, 0.5f), size = number(400, 0.1f), distance = number(300, 0.1f);
    const float share = number(101, 0.01f), share2 = number(101, 0.01f), depth = number(80, 0.125f);
    const float scale = number(40, 0.05f), altitude = number(90, 1);
    const int a = random.below(2), b = random.below(2), c = random.below(2), soften = random.below(17);
    const int position = random.below(3), count = random.below(4);
    const Zvex::ZvGradient stops[] = {{color, share2, 0.1f}, {other, 1, 0.53f}, {color ^ other, share, 1}};
    const int tileWidth = random.between(1, 9), tileHeight = random.between(1, 9);
    Zvex::ZvBitmap pattern = makeTarget(TargetKind::Partly, tileWidth, tileHeight, random);
    switch (kind) {
        case 0:
            stack.addOuterShadowText(angle, distance, size, color, share);
            break;
        case 1:
            stack.addInnerShadowText(angle, distance, size, color, share);
            break;
        case 2:
            stack.addOuterGlowText(size, color, share, count, const_cast<Zvex::ZvGradient*>(stops));
            break;
        case 3:
            stack.addInnerGlowText(size, color, share, count, const_cast<Zvex::ZvGradient*>(stops));
            break;
        case 4:
            stack.addLinearGradientText(angle, scale, share, count, const_cast<Zvex::ZvGradient*>(stops));
            break;
        case 5:
            stack.addRadialGradientText(scale, share, count, const_cast<Zvex::ZvGradient*>(stops));
            break;
        case 6:
            stack.addStrokeText(size, color, share, 0, position);
            break;
        case 7:
            stack.addPatternText(&pattern, scale * 3, share);
            break;
        case 8:
            stack.addBevelText(a, size, depth, b, c, soften, share, angle, altitude, color, share, other,
                               share2);
            break;
        case 9:
            stack.addEmbossText(a == 0 ? 1 : 3, size, depth, b, c, soften, share, angle, altitude, color,
                                share, other, share2);
            break;
        default:
            break;
    }
}

#endif  // ZVEX_TESTS_EFFECT_RANDOMLAYER_H_
