// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_EFFECT_PROPERTYFIELDS_H_
#define ZVEX_TESTS_EFFECT_PROPERTYFIELDS_H_

#include <vector>

#include "effect/ZvProperty.h"

// A record's numbers in the order of its constructor, so that one line compares all of them. Of the stops
// only the count is included. The color of a fill, which is no argument of its constructor, comes last.
using Fields = std::vector<double>;

template <typename... Number>
Fields fields(Number... numbers) {
    return {static_cast<double>(numbers)...};
}

inline Fields fieldsOf(const Zvex::ZvTextProperty& p) {
    return fields(p.color, p.opacity);
}
inline Fields fieldsOf(const Zvex::ZvStrokeProperty& p) {
    return fields(p.width, p.color, p.opacity, p.kind, p.position);
}
inline Fields fieldsOf(const Zvex::ZvShadowProperty& p) {
    return fields(p.angle, p.distance, p.size, p.color, p.opacity);
}
inline Fields fieldsOf(const Zvex::ZvGlowProperty& p) {
    return fields(p.size, p.color, p.opacity, p.count);
}
inline Fields fieldsOf(const Zvex::ZvGradientFillProperty& p) {
    return fields(p.angle, p.scale, p.opacity, p.count, p.color);
}
inline Fields fieldsOf(const Zvex::ZvReliefProperty& p) {
    return fields(p.style, p.size, p.depth, p.direction, p.technique, p.soften, p.opacity, p.angle,
                  p.altitude, p.shadowColor, p.shadowOpacity, p.highlightColor, p.highlightOpacity, p.color);
}
inline Fields fieldsOf(const Zvex::ZvPatternProperty& p) {
    return fields(p.scale, p.opacity, p.color);
}
inline Fields fieldsOf(const Zvex::ZvGradient& p) {
    return fields(p.color, p.opacity, p.position);
}

#endif  // ZVEX_TESTS_EFFECT_PROPERTYFIELDS_H_
