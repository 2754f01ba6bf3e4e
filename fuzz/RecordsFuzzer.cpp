// SPDX-License-Identifier: Apache-2.0
// The settings' records: what constructors make of any numbers, the layer key against a writer of its own,
// and the copies that layers keep.
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "effect/ZvEffect.h"
#include "effect/ZvProperty.h"
#include "fuzz/Input.h"
#include "raster/ZvBitmap.h"
#include "tests/effect/PropertyFields.h"

namespace {

using namespace Zvex;

// The whole part, held within the ints; of no number, 0.
int64_t whole(double value) {
    if (std::isnan(value)) return 0;
    return static_cast<int64_t>(std::trunc(std::fmin(std::fmax(value, INT_MIN), INT_MAX)));
}

double hundredths(float value) {
    return static_cast<double>(value) * 100.0;
}

// A part of the key: what it holds, and as which field it is written, by the letters of its class.
class Key {
public:
    explicit Key(char letter) : text(1, letter) {}
    Key& small(double value) { return put(whole(value)); }
    Key& byte(double value) { return digits(whole(value), 2); }
    Key& word(double value) { return digits(whole(value), 4); }
    Key& color(uint32_t value) { return digits(value, 8); }
    Key& angle(double value) {
        const int64_t degrees = (whole(value) % 360 + 360) % 360;
        return put(degrees / 128).put(degrees);
    }
    Key& stops(const ZvGradient* stops, int count) {
        for (int i = 0; stops != nullptr && i < count; ++i)
            color(stops[i].color).small(hundredths(stops[i].position));
        return *this;
    }

    std::string text;

private:
    Key& put(int64_t bits) {
        text += static_cast<char>(static_cast<unsigned char>((bits & 127) + 128));
        return *this;
    }
    Key& digits(int64_t value, int count) {
        for (int i = count - 1; i >= 0; --i) put(value >> 4 * i & 15);
        return *this;
    }
};

std::string expectedKey(const ZvTextProperty& p) {
    return Key('T').color(p.color).text;
}
std::string expectedKey(char letter, const ZvShadowProperty& p) {
    return Key(letter).angle(p.angle).small(p.distance).small(p.size).color(p.color).text;
}
std::string expectedKey(const ZvOuterShadowProperty& p) {
    return expectedKey('S', p);
}
std::string expectedKey(const ZvInnerShadowProperty& p) {
    return expectedKey('I', p);
}
std::string expectedKey(const ZvStrokeProperty& p) {
    return Key('K').small(p.width).color(p.color).small(p.kind).small(p.position).text;
}
std::string expectedKey(const ZvOuterGlowProperty& p) {
    return Key('G').small(p.size).color(p.color).stops(p.stops, p.count).text;
}
std::string expectedKey(const ZvInnerGlowProperty& p) {
    return Key('N').small(p.size).color(p.color).stops(p.stops, p.count).text;
}
std::string expectedKey(const ZvLinearGradientProperty& p) {
    return Key('L').angle(p.angle).byte(hundredths(p.scale)).stops(p.stops, p.count).text;
}
std::string expectedKey(const ZvRadialGradientProperty& p) {
    return Key('D').angle(p.angle).byte(hundredths(p.scale)).stops(p.stops, p.count).text;
}
std::string expectedKey(char letter, const ZvReliefProperty& p) {
    Key key(letter);
    key.small(p.style)
        .byte(p.size)
        .word(hundredths(p.depth))
        .small(p.direction)
        .small(p.technique)
        .small(p.soften);
    return key.angle(p.angle).small(p.altitude).color(p.shadowColor).color(p.highlightColor).text;
}
std::string expectedKey(const ZvBevelProperty& p) {
    return expectedKey('B', p);
}
std::string expectedKey(const ZvEmbossProperty& p) {
    return expectedKey('E', p);
}
std::string expectedKey(const ZvPatternProperty& p) {
    const auto address = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(p.bitmap));
    return Key('P').color(address).word(hundredths(p.scale)).word(hundredths(p.opacity)).text;
}

std::string keyOf(ZvProperty& record) {
    const auto length = static_cast<size_t>(record.getSequentialCharLength());
    const std::unique_ptr<char[]> memory(new char[length + 1]);
    char* cursor = memory.get();
    FUZZ_CHECK(record.toSequentialChar(&cursor) == 1);
    FUZZ_CHECK(cursor <= memory.get() + length && *cursor == '\0');
    return std::string(memory.get(), cursor);
}

// Compared as bits: what is no number equals itself.
template <typename Record>
auto settingsWithStops(const Record& record, int) -> decltype(record.stops, Fields()) {
    return fieldsWithStops(record);
}
template <typename Record>
Fields settingsWithStops(const Record& record, long) {
    return fieldsOf(record);
}
template <typename Record>
Fields settingsOf(const Record& record) {
    return settingsWithStops(record, 0);
}
bool same(const Fields& a, const Fields& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

// One stack, whose layers' settings come and are replaced, and the numbers that all records are made of.
struct Scene {
    explicit Scene(fuzz::Input& fuzzInput) : input(fuzzInput) {}

    // Gives the layer of the type these settings, then checks the key and the copy.
    template <typename Record>
    void give(int type, Record record) {
        FUZZ_CHECK(keyOf(record) == expectedKey(record));
        const int id = stack.addEffect(type, &record);
        ZvECore* layer = stack.getEffect(type);
        FUZZ_CHECK(layer != nullptr && id >= 0 && layer->getId() == id);
        auto* kept = static_cast<Record*>(layer->getProperty());
        FUZZ_CHECK(kept != &record && same(settingsOf(*kept), settingsOf(record)));
        layer->setProperty(kept);  // its own record
        layer->setProperty(nullptr);
        kept = static_cast<Record*>(layer->getProperty());
        FUZZ_CHECK(same(settingsOf(*kept), settingsOf(record)));
        const std::string key = keyOf(*kept);  // of a pattern it says where the layer's own copy lies
        FUZZ_CHECK(key == expectedKey(*kept));
        for (auto& part : keys) {
            if (part.first != type) continue;
            part.second = key;
            return;
        }
        keys.emplace_back(type, key);
    }

    // Of memory of its own, which is gone when the layers are asked for their keys.
    std::vector<ZvGradient> readStops() {
        std::vector<ZvGradient> stops(
            static_cast<size_t>(input.byte() < 250 ? input.between(0, 5) : input.between(0, 300)));
        for (ZvGradient& stop : stops) stop = {input.word(), input.number(), input.number()};
        return stops;
    }

    void step() {
        const int kind = input.between(0, 10);
        const float a = input.number(), b = input.number(), c = input.number(), opacity = input.number();
        const uint32_t color = input.word();
        if (kind == 0) return give(ZV_EFFECT_TEXT, ZvTextProperty(color, opacity));
        if (kind == 1) return give(ZV_EFFECT_OUTER_SHADOW, ZvOuterShadowProperty(a, b, c, color, opacity));
        if (kind == 2) return give(ZV_EFFECT_INNER_SHADOW, ZvInnerShadowProperty(a, b, c, color, opacity));
        if (kind == 3) {
            const int strokeKind = input.integer(), position = input.integer();
            return give(ZV_EFFECT_STROKE, ZvStrokeProperty(a, color, opacity, strokeKind, position));
        }
        if (kind == 4)
            return give(ZV_EFFECT_PATTERN, ZvPatternProperty(input.flag() ? &bitmap : nullptr, a, opacity));
        if (kind <= 8) {
            std::vector<ZvGradient> stops = readStops();
            const int count = static_cast<int>(stops.size());
            if (kind == 5)
                return give(ZV_EFFECT_OUTER_GLOW,
                            ZvOuterGlowProperty(a, color, opacity, count, stops.data()));
            if (kind == 6)
                return give(ZV_EFFECT_INNER_GLOW,
                            ZvInnerGlowProperty(a, color, opacity, count, stops.data()));
            if (kind == 7) {
                return give(ZV_EFFECT_LINEAR_GRADIENT,
                            ZvLinearGradientProperty(a, b, opacity, count, stops.data()));
            }
            return give(ZV_EFFECT_RADIAL_GRADIENT,
                        ZvRadialGradientProperty(a, b, opacity, count, stops.data()));
        }
        const int style = input.integer(), direction = input.integer(), technique = input.integer();
        const int soften = input.integer();
        const float altitude = input.number(), share = input.number();
        const uint32_t other = input.word();
        if (kind == 9) {
            return give(ZV_EFFECT_BEVEL, ZvBevelProperty(style, a, b, direction, technique, soften, opacity,
                                                         c, altitude, color, share, other, share));
        }
        give(ZV_EFFECT_EMBOSS, ZvEmbossProperty(style, a, b, direction, technique, soften, opacity, c,
                                                altitude, color, share, other, share));
    }

    void compareKeys() {
        std::string expected;
        for (const auto& part : keys) expected += part.second;
        ZvEffect copy(stack);
        for (ZvEffect* effect : {&stack, &copy}) {
            const std::unique_ptr<char[]> key(effect->getMapKey());
            FUZZ_CHECK(expected == key.get() || (effect == &copy && stack.hasEffect(ZV_EFFECT_PATTERN)));
            const int margins[] = {effect->getLeftOffset(), effect->getTopOffset(), effect->getRightOffset(),
                                   effect->getBottomOffset()};
            for (const int margin : margins) FUZZ_CHECK(margin >= 0);
        }
    }

    fuzz::Input& input;
    ZvBitmap bitmap{2, 2, 4};
    ZvEffect stack;
    std::vector<std::pair<int, std::string>> keys;  // of the layers, in order of creation
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    Scene scene(input);
    for (int steps = 0; steps < 40 && input.left() > 0; ++steps) scene.step();
    scene.compareKeys();
    return 0;
}
