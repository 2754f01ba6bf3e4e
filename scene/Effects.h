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

// The settings of each effect, as a person writes them. Distances, sizes, widths and soften are pixels; the
// library drops their fractions, and those of angles (degrees) and stop positions. The alpha of a colour
// multiplies into the opacity beside it. The start values are those that a command line or style leaves out.

struct OuterShadowSettings {
    double angle = 135;  // where the light comes from, counter-clockwise from the right
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
    uint32_t color = 0xFFFFD860;  // used where there are no stops
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
    std::string file;                                // a PNG; as the program finds it from its working folder
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

// One effect as the command line and style files name it.
struct EffectKind {
    const char* name;     // "outer-shadow"
    const char* summary;  // half a line of help
    EffectSettings defaults;
    const char* placeholder = "KEY=VALUE,...";  // for its settings in help
};

// All of them; the place of a kind is the index of its alternative in EffectSettings.
const std::vector<EffectKind>& effectKinds();
const EffectKind& kindOf(const EffectSettings& settings);
const EffectKind* findEffectKind(const std::string& name);  // null when there is none

// Settings from the value of an option: "angle=135,distance=8" for any, "WIDTH[:COLOR[:POSITION]]" for
// strokes and "FILE,scale=2" for patterns as well. `option` opens the message of the UsageError thrown.
EffectSettings parseEffect(const std::string& option, const EffectKind& kind, const std::string& text,
                           const FilePlaces& places = {});

// Puts the settings where an effect of their kind stands, or behind the others: what ZvEffect::addEffect
// does.
void addOrReplace(std::vector<EffectSettings>& effects, EffectSettings settings);

// Adds the effects in their order. Throws Failure, naming the effect, where a pattern's picture cannot be
// read and where the library does not take an effect.
void addEffects(Zvex::ZvEffect& stack, const std::vector<EffectSettings>& effects);

// What each effect takes, several lines for --help.
std::string effectsHelp();

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_EFFECTS_H_
