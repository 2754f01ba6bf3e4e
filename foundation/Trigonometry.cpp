// SPDX-License-Identifier: Apache-2.0
//
// Sine and cosine: the polynomials of Arm's optimized routines (Wilco Dijkstra, 2018), in double precision.
// Tangent: the polynomial of fdlibm (Sun, 1993) in single precision, as its float version by Ian Taylor has
// it.
#include "foundation/Trigonometry.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace Zvex {

namespace {

constexpr double kQuarterTurn = 0x1.921FB54442D18p0, kTurn = 4 * kQuarterTurn;
constexpr double kQuarterTurnsOfRadian = 0x1.45F306DC9C883p-1;
constexpr float kMostForSine = 120, kMostForTangent = 200;

// For |x| <= pi/4.
double sineNearZero(double x) {
    const double x2 = x * x, x3 = x * x2;
    const double low = x + x3 * -0x1.555545995a603p-3;
    return low + x3 * x2 * (0x1.1107605230bc4p-7 + x2 * -0x1.994eb3774cf24p-13);
}

double cosineNearZero(double x) {
    const double x2 = x * x, x4 = x2 * x2;
    const double low = 1 + x2 * -0x1.ffffffd0c621cp-2 + x4 * 0x1.55553e1068f19p-5;
    return low + x4 * x2 * (-0x1.6c087e89a359dp-10 + x2 * 0x1.99343027bf8c3p-16);
}

float withinTurns(float x, float most) {
    return std::fabs(x) < most ? x : static_cast<float>(std::fmod(static_cast<double>(x), kTurn));
}

// The sine of x plus a number of quarter turns.
float sineAfter(float angle, int quarters) {
    if (!std::isfinite(angle)) return angle - angle;
    const double x = static_cast<double>(withinTurns(angle, kMostForSine));
    const int nearest = static_cast<int>(std::floor(x * kQuarterTurnsOfRadian + 0.5));
    const double rest = x - nearest * kQuarterTurn;
    quarters += nearest;
    const double value = (quarters & 1) != 0 ? cosineNearZero(rest) : sineNearZero(rest);
    return static_cast<float>((quarters & 2) != 0 ? -value : value);
}

uint32_t bitsOf(float x) {
    uint32_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    return bits;
}

// Without the lower half of its digits, so that products with it are exact.
float upperHalf(float x) {
    const uint32_t bits = bitsOf(x) & 0xFFFFF000u;
    std::memcpy(&x, &bits, sizeof bits);
    return x;
}

// An angle of at most pi/4 as the sum of two floats.
struct Angle {
    float high, low;
};

// x minus whole quarter turns, whose number is added to `quarters`. Quarter turns are sums of floats of few
// digits, so that their products with a number of turns are exact; the third is needed close to a multiple.
Angle reduced(float x, int* quarters) {
    constexpr float kFirst = 1.5707855225e+00f, kFirstRest = 1.0804334124e-05f;
    constexpr float kSecond = 1.0804273188e-05f, kSecondRest = 6.0770999344e-11f;
    constexpr float kThird = 6.0770943833e-11f, kThirdRest = 6.1232342629e-17f;
    const float size = std::fabs(x);
    const int count = static_cast<int>(size * 6.3661980629e-01f + 0.5f);
    const auto turns = static_cast<float>(count);
    const auto exponentOf = [](float v) { return static_cast<int>(bitsOf(v) >> 23 & 0xFF); };
    float rest = size - turns * kFirst, correction = turns * kFirstRest;
    float high = rest - correction;
    // Close to the first multiples the digits of the angle show it.
    const uint32_t shown = bitsOf(size) ^ bitsOf(static_cast<float>(count * kQuarterTurn));
    const bool close = count >= 32 || shown < (count == 1 ? 0x10u : 0x100u);
    if (close && exponentOf(size) - exponentOf(high) > 8) {
        float before = rest, part = turns * kSecond;
        rest = before - part;
        correction = turns * kSecondRest - ((before - rest) - part);
        high = rest - correction;
        if (exponentOf(size) - exponentOf(high) > 25) {
            before = rest;
            part = turns * kThird;
            rest = before - part;
            correction = turns * kThirdRest - ((before - rest) - part);
            high = rest - correction;
        }
    }
    const float low = (rest - high) - correction;
    *quarters = x < 0 ? -count : count;
    return x < 0 ? Angle{-high, -low} : Angle{high, low};
}

// The tangent, or with `inverted` minus its inverse.
float tangentOf(Angle angle, bool inverted) {
    constexpr float kTerms[] = {3.3333334327e-01f, 1.3333334029e-01f, 5.3968254477e-02f, 2.1869488060e-02f,
                                8.8632395491e-03f, 3.5920790397e-03f, 1.4562094584e-03f, 5.8804126456e-04f,
                                2.4646313977e-04f, 7.8179444245e-05f, 7.1407252108e-05f, -1.8558637748e-05f,
                                2.5907305826e-05f};
    constexpr float kEighthTurn = 7.8539812565e-01f, kEighthTurnRest = 3.7748947079e-08f;
    float x = angle.high, y = angle.low;
    const bool negative = std::signbit(x);
    if (std::fabs(x) < 0x1p-12f) return inverted ? -1 / x : x;
    const bool large = std::fabs(x) >= 0x1.59428p-1f;
    if (large) {  // there the tangent is that of the angle's distance to an eighth of a turn
        if (negative) {
            x = -x;
            y = -y;
        }
        x = (kEighthTurn - x) + (kEighthTurnRest - y);
        y = 0;
        if (std::fabs(x) < 0x1p-13f) {
            const float sign = inverted ? -1.0f : 1.0f;
            return (negative ? -1.0f : 1.0f) * sign * (1 - 2 * sign * x);
        }
    }
    const float z = x * x, w = z * z;
    float odd = kTerms[11], even = kTerms[12];
    for (int i = 9; i > 0; i -= 2) {
        odd = kTerms[i] + w * odd;
        even = kTerms[i + 1] + w * even;
    }
    const float s = z * x;
    float r = y + z * (s * (odd + z * even) + y);
    r += kTerms[0] * s;
    const float sum = x + r;
    if (large) {
        const float sign = inverted ? -1.0f : 1.0f;
        return (negative ? -1.0f : 1.0f) * (sign - 2 * (x - (sum * sum / (sum + sign) - r)));
    }
    if (!inverted) return sum;
    const float upper = upperHalf(sum), lower = r - (upper - x), inverse = -1 / sum, t = upperHalf(inverse);
    return t + inverse * ((1 + t * upper) + t * lower);
}

}  // namespace

float sine(float radians) {
    if (std::fabs(radians) < 0x1p-12f) return radians;
    return sineAfter(radians, 0);
}

float cosine(float radians) {
    return sineAfter(radians, 1);
}

float tangent(float radians) {
    if (!std::isfinite(radians)) return radians - radians;
    const float x = withinTurns(radians, kMostForTangent);
    if (std::fabs(x) <= 0x1.921fb4p-1f) return tangentOf({x, 0}, false);
    int quarters = 0;
    const Angle angle = reduced(x, &quarters);
    return tangentOf(angle, (quarters & 1) != 0);
}

}  // namespace Zvex
