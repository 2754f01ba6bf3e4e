// SPDX-License-Identifier: Apache-2.0
#include "platform/host/LinearLight.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace host {

namespace {

// The least light of each level from 1 on. The platform converts back with a rational approximation of the
// square root, (c + t (b + a t)) / (d + t) with t = 1 / sqrt(light), using its processor's approximate
// reciprocals. These are the resulting steps, within 0.0005 of the sRGB curve's.
constexpr float kLevelSteps[256] = {
    0x1.3e456ap-13f, 0x1.dd681cp-12f, 0x1.8dd6c4p-11f, 0x1.167cbap-10f,
    0x1.660e18p-10f, 0x1.b59f6ep-10f, 0x1.029866p-9f,  0x1.2a6112p-9f,
    0x1.5229c2p-9f,  0x1.79f26cp-9f,  0x1.a1bb1ap-9f,  0x1.c983c6p-9f,
    0x1.f14c74p-9f,  0x1.0c8a9p-8f,   0x1.206ee8p-8f,  0x1.559p-8f,
    0x1.6dap-8f,     0x1.873p-8f,     0x1.a22p-8f,     0x1.be6p-8f,
    0x1.dc4p-8f,     0x1.fb8p-8f,     0x1.0ep-7f,      0x1.1f2p-7f,
    0x1.30fp-7f,     0x1.438p-7f,     0x1.56fp-7f,     0x1.6bp-7f,
    0x1.7fep-7f,     0x1.95bp-7f,     0x1.ac2p-7f,     0x1.c3ap-7f,
    0x1.dbap-7f,     0x1.f4ep-7f,     0x1.073p-6f,     0x1.148p-6f,
    0x1.225p-6f,     0x1.308p-6f,     0x1.3f2p-6f,     0x1.4e3p-6f,
    0x1.5d9p-6f,     0x1.6d7p-6f,     0x1.7ddp-6f,     0x1.8e7p-6f,
    0x1.9fap-6f,     0x1.b16p-6f,     0x1.c3ap-6f,     0x1.d62p-6f,
    0x1.e8cp-6f,     0x1.fc3p-6f,     0x1.08p-5f,      0x1.123p-5f,
    0x1.1cap-5f,     0x1.273p-5f,     0x1.32p-5f,      0x1.3d2p-5f,
    0x1.486p-5f,     0x1.53fp-5f,     0x1.5fap-5f,     0x1.6b9p-5f,
    0x1.77cp-5f,     0x1.845p-5f,     0x1.91p-5f,      0x1.9dbp-5f,
    0x1.aaep-5f,     0x1.b87p-5f,     0x1.c6p-5f,      0x1.d3dp-5f,
    0x1.e2p-5f,      0x1.f02p-5f,     0x1.feep-5f,     0x1.06ep-4f,
    0x1.0e6p-4f,     0x1.161p-4f,     0x1.1dfp-4f,     0x1.25bp-4f,
    0x1.2dcp-4f,     0x1.35dp-4f,     0x1.3e4p-4f,     0x1.469p-4f,
    0x1.4efp-4f,     0x1.57cp-4f,     0x1.607p-4f,     0x1.697p-4f,
    0x1.726p-4f,     0x1.7b7p-4f,     0x1.84bp-4f,     0x1.8e1p-4f,
    0x1.978p-4f,     0x1.a14p-4f,     0x1.ab2p-4f,     0x1.b4cp-4f,
    0x1.befp-4f,     0x1.c92p-4f,     0x1.d37p-4f,     0x1.dd9p-4f,
    0x1.e82p-4f,     0x1.f2ep-4f,     0x1.fdbp-4f,     0x1.046p-3f,
    0x1.09fp-3f,     0x1.0f7p-3f,     0x1.152p-3f,     0x1.1aep-3f,
    0x1.20cp-3f,     0x1.269p-3f,     0x1.2c9p-3f,     0x1.329p-3f,
    0x1.389p-3f,     0x1.3e9p-3f,     0x1.44ep-3f,     0x1.4b2p-3f,
    0x1.518p-3f,     0x1.57cp-3f,     0x1.5e4p-3f,     0x1.64ep-3f,
    0x1.6b7p-3f,     0x1.722p-3f,     0x1.78ep-3f,     0x1.7fcp-3f,
    0x1.86bp-3f,     0x1.8d8p-3f,     0x1.94bp-3f,     0x1.9b8p-3f,
    0x1.a2ep-3f,     0x1.aap-3f,      0x1.b14p-3f,     0x1.b8ep-3f,
    0x1.c03p-3f,     0x1.c7dp-3f,     0x1.cf6p-3f,     0x1.d7p-3f,
    0x1.deap-3f,     0x1.e6ap-3f,     0x1.ee6p-3f,     0x1.f66p-3f,
    0x1.fe6p-3f,     0x1.034p-2f,     0x1.076p-2f,     0x1.0b7p-2f,
    0x1.0fbp-2f,     0x1.13dp-2f,     0x1.181p-2f,     0x1.1c6p-2f,
    0x1.20bp-2f,     0x1.251p-2f,     0x1.296p-2f,     0x1.2dfp-2f,
    0x1.322p-2f,     0x1.36cp-2f,     0x1.3b8p-2f,     0x1.3ffp-2f,
    0x1.449p-2f,     0x1.492p-2f,     0x1.4dfp-2f,     0x1.52bp-2f,
    0x1.576p-2f,     0x1.5c4p-2f,     0x1.612p-2f,     0x1.66p-2f,
    0x1.6adp-2f,     0x1.6ffp-2f,     0x1.74dp-2f,     0x1.79ep-2f,
    0x1.7edp-2f,     0x1.843p-2f,     0x1.895p-2f,     0x1.8e7p-2f,
    0x1.93cp-2f,     0x1.992p-2f,     0x1.9e4p-2f,     0x1.a3dp-2f,
    0x1.a92p-2f,     0x1.ae9p-2f,     0x1.b4p-2f,      0x1.b9ap-2f,
    0x1.bf1p-2f,     0x1.c4cp-2f,     0x1.ca7p-2f,     0x1.d02p-2f,
    0x1.d5cp-2f,     0x1.dbcp-2f,     0x1.e17p-2f,     0x1.e75p-2f,
    0x1.ed5p-2f,     0x1.f33p-2f,     0x1.f93p-2f,     0x1.ff6p-2f,
    0x1.02ap-1f,     0x1.05cp-1f,     0x1.08cp-1f,     0x1.0bfp-1f,
    0x1.0efp-1f,     0x1.125p-1f,     0x1.155p-1f,     0x1.187p-1f,
    0x1.1bbp-1f,     0x1.1eep-1f,     0x1.223p-1f,     0x1.259p-1f,
    0x1.28cp-1f,     0x1.2c2p-1f,     0x1.2f7p-1f,     0x1.32dp-1f,
    0x1.362p-1f,     0x1.39bp-1f,     0x1.3dp-1f,      0x1.408p-1f,
    0x1.44p-1f,      0x1.478p-1f,     0x1.4bp-1f,      0x1.4e8p-1f,
    0x1.521p-1f,     0x1.55cp-1f,     0x1.596p-1f,     0x1.5cfp-1f,
    0x1.60bp-1f,     0x1.644p-1f,     0x1.67ep-1f,     0x1.6bbp-1f,
    0x1.6f9p-1f,     0x1.737p-1f,     0x1.772p-1f,     0x1.7aep-1f,
    0x1.7ecp-1f,     0x1.82bp-1f,     0x1.868p-1f,     0x1.8a8p-1f,
    0x1.8e5p-1f,     0x1.925p-1f,     0x1.965p-1f,     0x1.9a5p-1f,
    0x1.9e8p-1f,     0x1.a28p-1f,     0x1.a6bp-1f,     0x1.aabp-1f,
    0x1.aeep-1f,     0x1.b31p-1f,     0x1.b74p-1f,     0x1.bb7p-1f,
    0x1.bfap-1f,     0x1.c3dp-1f,     0x1.c86p-1f,     0x1.ccap-1f,
    0x1.d0ap-1f,     0x1.d53p-1f,     0x1.d96p-1f,     0x1.de3p-1f,
    0x1.e26p-1f,     0x1.e6ep-1f,     0x1.ebap-1f,     0x1.fp-1f,
    0x1.f4ap-1f,     0x1.f92p-1f,     0x1.fdap-1f,     std::numeric_limits<float>::infinity()};

// Tables: light by level, bytes as fractions of 255, and the level at which to start the search, by the upper
// bits of a light. 7 fraction bits leave at most two steps to search.
constexpr uint32_t kLeastBits = 0x3900, kMostBits = 0x3F80;  // 2^-13, below the first step, and 1
struct Tables {
    float light[256], share[256];
    uint8_t level[kMostBits - kLeastBits];

    Tables() {
        for (int i = 0; i < 256; ++i) {
            const float s = static_cast<float>(i) * (1 / 255.0f);
            share[i] = s;
            light[i] = s < 0.055f ? s * (1 / 12.92f) : std::fma(s * s, std::fma(s, 0.3f, 0.6975f), 0.0025f);
        }
        int reached = 0;
        for (uint32_t bits = kLeastBits; bits < kMostBits; ++bits) {
            const uint32_t word = bits << 16;
            float least;
            std::memcpy(&least, &word, sizeof least);
            while (least >= kLevelSteps[reached]) ++reached;
            level[bits - kLeastBits] = static_cast<uint8_t>(reached);
        }
    }
};
const Tables& tables() {
    static const Tables theTables;
    return theTables;
}

uint8_t levelOf(const Tables& t, float light) {
    uint32_t bits;
    std::memcpy(&bits, &light, sizeof bits);
    bits >>= 16;
    if (bits < kLeastBits) return 0;
    if (bits >= kMostBits) return 255;
    unsigned level = t.level[bits - kLeastBits];
    while (light >= kLevelSteps[level]) ++level;
    return static_cast<uint8_t>(level);
}

// a * b + c in double precision, rounded to single. It can differ from a fused multiply-add only through the
// second rounding.
float multiplyAdd(float a, float b, float c) {
    return static_cast<float>(static_cast<double>(a) * static_cast<double>(b) + static_cast<double>(c));
}

}  // namespace

float lightOf(uint8_t level) {
    return tables().light[level];
}
uint8_t levelOf(float light) {
    return levelOf(tables(), light);
}

LightSource lightSource(uint8_t red, uint8_t green, uint8_t blue, uint8_t alpha) {
    const Tables& t = tables();
    const float share = t.share[alpha];
    return {t.light[red] * share, t.light[green] * share, t.light[blue] * share, share};
}

void lightOver(uint8_t* pixel, const LightSource& source, float share) {
    const Tables& t = tables();
    const float alpha = source.alpha * share;
    if (alpha == 0) return;
    const float below = t.share[pixel[3]], kept = 1 - alpha;
    const float sum = multiplyAdd(below, kept, alpha), straight = 1 / sum;
    const float channels[3] = {source.red * share, source.green * share, source.blue * share};
    for (int i = 0; i < 3; ++i) {
        pixel[i] = levelOf(t, multiplyAdd(t.light[pixel[i]] * below, kept, channels[i]) * straight);
    }
    pixel[3] = static_cast<uint8_t>(sum * 255 + 0.5f);
}

}  // namespace host
