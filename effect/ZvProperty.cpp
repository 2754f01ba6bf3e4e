// SPDX-License-Identifier: Apache-2.0
#include "effect/ZvProperty.h"

#include <climits>

#include "effect/Numbers.h"

namespace Zvex {

namespace {

// Writes one record's part of the key; its destructor writes the closing NUL.
class KeyWriter {
public:
    KeyWriter(char** cursor, char tag) : mCursor(cursor) { *(*mCursor)++ = tag; }
    ~KeyWriter() { **mCursor = '\0'; }
    KeyWriter(const KeyWriter&) = delete;
    KeyWriter& operator=(const KeyWriter&) = delete;

    void color(uint32_t value) { nibbles(value, 8); }
    void byteValue(int value) { nibbles(static_cast<uint32_t>(value), 2); }
    void byteValue(float value) { byteValue(truncateToInt(value)); }
    void wordValue(int value) { nibbles(static_cast<uint32_t>(value), 4); }
    void small(int value) { put(static_cast<uint32_t>(value) & 0x7F); }
    void small(float value) { small(truncateToInt(value)); }
    void angle(float degrees) {
        const uint32_t whole = static_cast<uint32_t>(positiveRemainder(degrees, 360));
        put(whole >> 7);
        put(whole & 0x7F);
    }

private:
    // Most significant first.
    void nibbles(uint32_t value, int count) {
        for (int shift = 4 * (count - 1); shift >= 0; shift -= 4) put((value >> shift) & 0xF);
    }

    // The top bit keeps the byte from being NUL.
    void put(uint32_t bits) { *(*mCursor)++ = static_cast<char>(static_cast<unsigned char>(bits | 0x80)); }

    char** mCursor;
};

// In double precision: 0.29f is a little less than 0.29 and gives 28.
int hundredths(float value) {
    return truncateToInt(static_cast<double>(value) * 100.0);
}

constexpr int kStopLength = 10;  // announced for each stop; 9 bytes are written, a colour and a small integer

// Limits the count so that `fixed` bytes and the stops fit an int.
int countedStops(int count, int fixed) {
    return clampInt(count, 0, (INT_MAX - fixed) / kStopLength);
}

void writeStops(KeyWriter& key, const ZvGradient* stops, int count) {
    for (int i = 0; stops != nullptr && i < count; ++i) {
        key.color(stops[i].color);
        key.small(hundredths(stops[i].position));
    }
}

int writeShadow(char** cursor, char tag, const ZvShadowProperty& shadow) {
    KeyWriter key(cursor, tag);
    key.angle(shadow.angle);
    key.small(shadow.distance);
    key.small(shadow.size);
    key.color(shadow.color);
    return 1;
}

constexpr int kGlowLength = 10;

int writeGlow(char** cursor, char tag, const ZvGlowProperty& glow) {
    KeyWriter key(cursor, tag);
    key.small(glow.size);
    key.color(glow.color);
    writeStops(key, glow.stops, countedStops(glow.count, kGlowLength));
    return 1;
}

constexpr int kGradientLength = 5;

int writeGradient(char** cursor, char tag, const ZvGradientFillProperty& gradient) {
    KeyWriter key(cursor, tag);
    key.angle(gradient.angle);
    key.byteValue(hundredths(gradient.scale));
    writeStops(key, gradient.stops, countedStops(gradient.count, kGradientLength));
    return 1;
}

int writeRelief(char** cursor, char tag, const ZvReliefProperty& relief) {
    KeyWriter key(cursor, tag);
    key.small(relief.style);
    key.byteValue(relief.size);
    key.wordValue(hundredths(relief.depth));
    key.small(relief.direction);
    key.small(relief.technique);
    key.small(relief.soften);
    key.angle(relief.angle);
    key.small(relief.altitude);
    key.color(relief.shadowColor);
    key.color(relief.highlightColor);
    return 1;
}

}  // namespace

ZvProperty::ZvProperty(unsigned int color_, float opacity_) : color(color_), opacity(opacity_) {}
ZvProperty::~ZvProperty() = default;

ZvTextProperty::ZvTextProperty(unsigned int color_, float opacity_) : ZvProperty(color_, opacity_) {}

int ZvTextProperty::getSequentialCharLength() {
    return 9;
}

int ZvTextProperty::toSequentialChar(char** cursor) {
    KeyWriter(cursor, 'T').color(color);
    return 1;
}

ZvShadowProperty::ZvShadowProperty(float angle_, float distance_, float size_, unsigned int color_,
                                   float opacity_)
    : ZvProperty(color_, opacity_), angle(angle_), distance(distance_), size(size_) {}

int ZvShadowProperty::getSequentialCharLength() {
    return 13;
}

ZvOuterShadowProperty::ZvOuterShadowProperty(float angle_, float distance_, float size_, unsigned int color_,
                                             float opacity_)
    : ZvShadowProperty(angle_, distance_, size_, color_, opacity_) {}

int ZvOuterShadowProperty::toSequentialChar(char** cursor) {
    return writeShadow(cursor, 'S', *this);
}

ZvInnerShadowProperty::ZvInnerShadowProperty(float angle_, float distance_, float size_, unsigned int color_,
                                             float opacity_)
    : ZvShadowProperty(static_cast<float>(signedRemainder(angle_, 360)), distance_, size_, color_, opacity_) {
}

int ZvInnerShadowProperty::toSequentialChar(char** cursor) {
    return writeShadow(cursor, 'I', *this);
}

ZvStrokeProperty::ZvStrokeProperty(float width_, unsigned int color_, float opacity_, int kind_,
                                   int position_)
    : ZvProperty(color_, opacity_), width(width_), kind(kind_), position(position_) {}

int ZvStrokeProperty::getSequentialCharLength() {
    return 12;
}

int ZvStrokeProperty::toSequentialChar(char** cursor) {
    KeyWriter key(cursor, 'K');
    key.small(width);
    key.color(color);
    key.small(kind);
    key.small(position);
    return 1;
}

ZvGlowProperty::ZvGlowProperty(float size_, unsigned int color_, float opacity_, int count_,
                               ZvGradient* stops_)
    : ZvProperty(color_, opacity_), size(size_), count(count_), stops(stops_) {}

int ZvGlowProperty::getSequentialCharLength() {
    return kGlowLength + kStopLength * countedStops(count, kGlowLength);
}

ZvOuterGlowProperty::ZvOuterGlowProperty(float size_, unsigned int color_, float opacity_, int count_,
                                         ZvGradient* stops_)
    : ZvGlowProperty(size_, color_, opacity_, count_, stops_) {}

int ZvOuterGlowProperty::toSequentialChar(char** cursor) {
    return writeGlow(cursor, 'G', *this);
}

ZvInnerGlowProperty::ZvInnerGlowProperty(float size_, unsigned int color_, float opacity_, int count_,
                                         ZvGradient* stops_)
    : ZvGlowProperty(size_, color_, opacity_, count_, stops_) {}

int ZvInnerGlowProperty::toSequentialChar(char** cursor) {
    return writeGlow(cursor, 'N', *this);
}

ZvGradientFillProperty::ZvGradientFillProperty(float angle_, float scale_, float opacity_, int count_,
                                               ZvGradient* stops_)
    : ZvProperty(0, opacity_),
      angle(static_cast<float>(signedRemainder(angle_, 360))),
      scale(clampFloat(scale_, 0.0f, 2.0f)),
      count(count_),
      stops(stops_) {}

int ZvGradientFillProperty::getSequentialCharLength() {
    return kGradientLength + kStopLength * countedStops(count, kGradientLength);
}

ZvLinearGradientProperty::ZvLinearGradientProperty(float angle_, float scale_, float opacity_, int count_,
                                                   ZvGradient* stops_)
    : ZvGradientFillProperty(angle_, scale_, opacity_, count_, stops_) {}

int ZvLinearGradientProperty::toSequentialChar(char** cursor) {
    return writeGradient(cursor, 'L', *this);
}

ZvRadialGradientProperty::ZvRadialGradientProperty(float angle_, float scale_, float opacity_, int count_,
                                                   ZvGradient* stops_)
    : ZvGradientFillProperty(angle_, scale_, opacity_, count_, stops_) {}

int ZvRadialGradientProperty::toSequentialChar(char** cursor) {
    return writeGradient(cursor, 'D', *this);
}

ZvReliefProperty::ZvReliefProperty(int style_, float size_, float depth_, int direction_, int technique_,
                                   int soften_, float opacity_, float angle_, float altitude_,
                                   unsigned int shadowColor_, float shadowOpacity_,
                                   unsigned int highlightColor_, float highlightOpacity_)
    : ZvProperty(0, opacity_),
      style(style_),
      size(size_),
      depth(clampFloat(depth_, 0.0f, 10.0f)),
      direction(direction_),
      technique(technique_),
      soften(clampInt(soften_, 0, 16)),
      angle(static_cast<float>(signedRemainder(angle_, 360))),
      altitude(static_cast<float>(signedRemainder(altitude_, 90))),
      shadowColor(shadowColor_),
      shadowOpacity(shadowOpacity_),
      highlightColor(highlightColor_),
      highlightOpacity(highlightOpacity_) {}

int ZvReliefProperty::getSequentialCharLength() {
    return 30;
}

ZvBevelProperty::ZvBevelProperty(int style_, float size_, float depth_, int direction_, int technique_,
                                 int soften_, float opacity_, float angle_, float altitude_,
                                 unsigned int shadowColor_, float shadowOpacity_,
                                 unsigned int highlightColor_, float highlightOpacity_)
    : ZvReliefProperty(style_, size_, depth_, direction_, technique_, soften_, opacity_, angle_, altitude_,
                       shadowColor_, shadowOpacity_, highlightColor_, highlightOpacity_) {}

int ZvBevelProperty::toSequentialChar(char** cursor) {
    return writeRelief(cursor, 'B', *this);
}

ZvEmbossProperty::ZvEmbossProperty(int style_, float size_, float depth_, int direction_, int technique_,
                                   int soften_, float opacity_, float angle_, float altitude_,
                                   unsigned int shadowColor_, float shadowOpacity_,
                                   unsigned int highlightColor_, float highlightOpacity_)
    : ZvReliefProperty(style_, size_, depth_, direction_, technique_, soften_, opacity_, angle_, altitude_,
                       shadowColor_, shadowOpacity_, highlightColor_, highlightOpacity_) {}

int ZvEmbossProperty::toSequentialChar(char** cursor) {
    return writeRelief(cursor, 'E', *this);
}

ZvPatternProperty::ZvPatternProperty(ZvBitmap* bitmap_, float scale_, float opacity_)
    : ZvProperty(0, opacity_), bitmap(bitmap_), scale(clampFloat(scale_, 0.0f, 10.0f)) {}

int ZvPatternProperty::getSequentialCharLength() {
    return 17;
}

int ZvPatternProperty::toSequentialChar(char** cursor) {
    KeyWriter key(cursor, 'P');
    key.color(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(bitmap)));
    key.wordValue(hundredths(scale));
    key.wordValue(hundredths(opacity));
    return 1;
}

}  // namespace Zvex
