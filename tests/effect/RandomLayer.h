// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_EFFECT_RANDOMLAYER_H_
#define ZVEX_TESTS_EFFECT_RANDOMLAYER_H_

#include "tests/effect/LayerSettings.h"
#include "tests/effect/TestPictures.h"

// Adds a layer of the kind, an index into kLayerTypes; nothing for the text, which the callers add. Draws
// each random number in a statement of its own, because a call's arguments may be evaluated in any order.
inline void addLayer(Zvex::ZvEffect& stack, int kind, Random& random) {
    const auto number = [&](int end, float unit) { return static_cast<float>(random.below(end)) * unit; };
    LayerSettings s;
    s.color = random.color(), s.highlight = random.color();
    s.angle = number(720, 0.5f), s.size = number(400, 0.1f), s.distance = number(300, 0.1f);
    s.opacity = s.shadowOpacity = number(101, 0.01f), s.highlightOpacity = number(101, 0.01f);
    s.depth = number(80, 0.125f), s.scale = number(40, 0.05f), s.altitude = number(90, 1);
    s.style = random.below(2), s.direction = random.below(2), s.technique = random.below(2);
    s.soften = random.below(17), s.position = random.below(3);
    s.stops = {
        {s.color, s.highlightOpacity, 0.1f}, {s.highlight, 1, 0.53f}, {s.color ^ s.highlight, s.opacity, 1}};
    s.stops.resize(static_cast<size_t>(random.below(4)));
    const int tileWidth = random.between(1, 9), tileHeight = random.between(1, 9);
    s.pattern = makeTarget(TargetKind::Partly, tileWidth, tileHeight, random);
    const int type = kLayerTypes[kind];
    if (type == Zvex::ZV_EFFECT_PATTERN) s.scale *= 3;
    if (type == Zvex::ZV_EFFECT_EMBOSS) s.style = 1 + 2 * s.style;
    if (type != Zvex::ZV_EFFECT_TEXT) s.addTo(stack, type);
}

#endif  // ZVEX_TESTS_EFFECT_RANDOMLAYER_H_
