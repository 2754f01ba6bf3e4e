// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_EFFECTS_H_
#define ZVEX_SCENE_EFFECTS_H_

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "effect/ZvEffect.h"
#include "scene/Fields.h"

namespace Zvex::scene {

// The settings of each effect, in a user's terms. Distances, sizes, widths and soften are pixels; the library
// drops their fractions, and those of angles (degrees) and stop positions. The alpha of a colour multiplies
// the opacity beside it. The initial values are used for settings that a command line or style leaves out.

struct OuterShadowSettings {
    double angle = 135;  // direction of the light, counter-clockwise from the right
    double distance = 6, size = 8;
    uint32_t color = 0xFF000000;
    double opacity = 0.6;
};

struct InnerShadowSettings {
    double angle = 135;
    double distance = 4, size = 6;
    uint32_t color = 0xFF000000;
    double opacity = 0.6;
};

struct OuterGlowSettings {
    double size = 12;
    uint32_t color = 0xFFFFD860;  // used if there are no stops
    double opacity = 0.8;
    std::vector<Stop> stops = {};  // from the glyphs outwards
};

struct InnerGlowSettings {
    double size = 8;
    uint32_t color = 0xFFFFFFFF;
    double opacity = 0.8;
    std::vector<Stop> stops = {};  // from the edge inwards
};

struct LinearGradientSettings {
    double angle = 90;  // 0: from left to right, 90: from bottom to top
    double scale = 1;   // length relative to the text
    double opacity = 1;
    std::vector<Stop> stops = {};
};

struct RadialGradientSettings {
    double scale = 1;  // diameter relative to the text's width
    double opacity = 1;
    std::vector<Stop> stops = {};  // from the centre outwards
};

struct StrokeSettings {
    double width = 4;
    uint32_t color = 0xFF000000;
    int position = Zvex::ZV_STROKE_OUTSIDE;
    double opacity = 1;
};

struct PatternSettings {
    std::string file;                                // a PNG; relative to the program's working folder
    std::shared_ptr<const Source> source = nullptr;  // of the file; null: see orDefault
    double scale = 1;
    double opacity = 1;
};

struct BevelSettings {
    int style = 1;      // inner; 0 outer
    int technique = 0;  // soft; 1 hard
    int direction = 1;  // up; 0 down
    double size = 8;
    double depth = 1;
    double angle = 135, altitude = 30;  // of the light
    double soften = 0;
    Tint highlight = {0xFFFFFFFF, 0.5}, shadow = {0xFF000000, 0.5};
    double opacity = 1;
};

struct EmbossSettings {
    int style = 1;  // single; 3 double, lit from both sides
    int technique = 0;
    int direction = 1;
    double size = 8;
    double depth = 1;
    double angle = 135, altitude = 30;
    double soften = 0;
    Tint highlight = {0xFFFFFFFF, 0.5}, shadow = {0xFF000000, 0.5};
    double opacity = 1;
};

using EffectSettings = std::variant<OuterShadowSettings, InnerShadowSettings, OuterGlowSettings,
                                    InnerGlowSettings, LinearGradientSettings, RadialGradientSettings,
                                    StrokeSettings, PatternSettings, BevelSettings, EmbossSettings>;

Fields fieldsOf(EffectSettings& settings);

// One effect, as named on the command line and in style files.
struct EffectKind {
    const char* name;     // "outer-shadow"
    const char* summary;  // half a line of help
    EffectSettings defaults;
    const char* placeholder = "KEY=VALUE,...";  // for its settings in help
};

// All of them. The position of a kind is the index of its alternative in EffectSettings.
const std::vector<EffectKind>& effectKinds();
const EffectKind& kindOf(const EffectSettings& settings);
const EffectKind* findEffectKind(const std::string& name);  // null when there is none

// Reads settings from the value of an option: "angle=135,distance=8" for any effect, also
// "WIDTH[:COLOR[:POSITION]]" for strokes and "FILE,scale=2" for patterns. `option` opens the message of the
// UsageError thrown.
EffectSettings parseEffect(const std::string& option, const EffectKind& kind, const std::string& text,
                           const FilePlaces& places = {});

// Replaces the settings of the same kind, or appends them: as ZvEffect::addEffect does.
void addOrReplace(std::vector<EffectSettings>& effects, EffectSettings settings);

// Adds the effects in order. Throws Failure, naming the effect, if a pattern's picture cannot be read or if
// the library does not take an effect.
void addEffects(Zvex::ZvEffect& stack, const std::vector<EffectSettings>& effects);

// The settings of each effect, as several lines for --help.
std::string effectsHelp();

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_EFFECTS_H_
