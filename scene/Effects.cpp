// SPDX-License-Identifier: Apache-2.0
#include "scene/Effects.h"

#include <cmath>
#include <limits>

#include "raster/ZvBitmap.h"
#include "scene/Failure.h"
#include "scene/Png.h"
#include "scene/TextInput.h"

namespace Zvex::scene {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr NumberRange kAngle = {-kInfinity, kInfinity, "deg"};
constexpr NumberRange kAltitude = {0, 89, "deg"};
constexpr NumberRange kPixels = {0, 100, "px", false, true};
constexpr NumberRange kSoften = {0, 16, "px", false, true};
constexpr NumberRange kDepth = {0, 10};
constexpr NumberRange kGradientScale = {0, 2};
constexpr NumberRange kPatternScale = {0, 10, "", false, true};  // pixels for each of the file

// --- The table: keys in the order in which help and style files list them

// A stem is the main stroke of a letter. Where a sentence names a width in stems or a number, it was measured
// on DejaVu Sans Bold, whose stems are a fifth of the text's size.
constexpr char kEffectOpacity[] =
    "How opaque the effect is, multiplied by the colour's alpha. At 0 it does not show";
constexpr char kFillOpacity[] = "How opaque the effect is. At 0 it does not show";

template <typename Shadow>
Fields shadowFields(Shadow& s, const char* distanceHelp, const char* sizeHelp) {
    return {{"angle", NumberField{&s.angle, kAngle},
             "Where the light comes from: 0 is the right, 90 the top. If distance is 0, it changes nothing"},
            {"distance", NumberField{&s.distance, kPixels}, distanceHelp},
            {"size", NumberField{&s.size, kPixels}, sizeHelp},
            {"color", ColorField{&s.color}, "The shadow's colour"},
            {"opacity", NumberField{&s.opacity, kShare}, kEffectOpacity}};
}

template <typename Glow>
Fields glowFields(Glow& s, const char* sizeHelp) {
    return {{"size", NumberField{&s.size, kPixels}, sizeHelp},
            {"color", ColorField{&s.color}, "Colour of the glow, if it has no stops"},
            {"opacity", NumberField{&s.opacity, kShare}, kEffectOpacity},
            {"stops", StopsField{&s.stops},
             "Several colours instead of one, from the edge to the far end of the glow. Two at the same "
             "position make a sharp border"}};
}

Field stopsField(std::vector<Stop>& stops) {
    return required(
        {"stops", StopsField{&stops},
         "The colours and their positions along the gradient. Two at the same position make a sharp border"});
}

struct ReliefHelp {
    const char *style, *size, *depth, *altitude;
};

template <typename Relief>
Fields reliefFields(Relief& s, ChoiceField style, const ReliefHelp& help) {
    return {
        {"style", std::move(style), help.style},
        {"technique", ChoiceField{&s.technique, {{"soft", 0}, {"hard", 1}}},
         "Whether the slopes are rounded or cut sharply. Soft ones fade at large sizes"},
        {"direction", ChoiceField{&s.direction, {{"up", 1}, {"down", 0}}},
         "Whether the text is raised or sunk. Down is the same as the light from the opposite side"},
        {"size", NumberField{&s.size, kPixels}, help.size},
        {"depth", NumberField{&s.depth, kDepth}, help.depth},
        {"angle", NumberField{&s.angle, kAngle},
         "Where the light comes from: 0 is the right, 90 the top. The nearer altitude is to 90, the less it "
         "changes"},
        {"altitude", NumberField{&s.altitude, kAltitude}, help.altitude},
        {"soften", NumberField{&s.soften, kSoften},
         "How far the finished relief is blurred; below 1 not at all. If soften is twice size, half of the "
         "relief is left"},
        {"highlight", TintField{&s.highlight}, "The colour of slopes that face the light"},
        {"shadow", TintField{&s.shadow}, "The colour of slopes that face away from the light"},
        {"opacity", NumberField{&s.opacity, kShare}, kFillOpacity}};
}

struct FieldsOf {
    Fields operator()(OuterShadowSettings& s) const {
        return shadowFields(
            s,
            "How far the shadow is moved, away from the light. If distance and size are 0, opaque text hides "
            "it",
            "How far its edges are blurred; 0 is a sharp edge. Beyond half a stem it fades, and at "
            "two stems it is half as dark");
    }
    Fields operator()(InnerShadowSettings& s) const {
        return shadowFields(
            s,
            "How far the shadow is moved into the letters, away from the light. Well beyond a stem, the "
            "letters are all shadow",
            "How far its edges are blurred; 0 is a sharp edge. The further beyond a stem, the more "
            "evenly it darkens the letters");
    }
    Fields operator()(OuterGlowSettings& s) const {
        return glowFields(s,
                          "How far the light reaches from the edge; below 1 there is none. Beyond half the "
                          "gap between letters, their glows merge");
    }
    Fields operator()(InnerGlowSettings& s) const {
        return glowFields(s,
                          "How far the light reaches from the edge; below 1 there is none. At one stem it "
                          "fills the letters, and larger values change nothing");
    }
    Fields operator()(LinearGradientSettings& s) const {
        return {{"angle", NumberField{&s.angle, kAngle},
                 "Direction of the colours: 0 to the right, 90 to the top"},
                {"scale", NumberField{&s.scale, kGradientScale},
                 "Length of the gradient; 1 spans the text. Below 1 the first and last colour fill the rest, "
                 "above 1 they lie outside the text; below 0.1 nothing is drawn"},
                {"opacity", NumberField{&s.opacity, kShare}, kFillOpacity},
                stopsField(s.stops)};
    }
    Fields operator()(RadialGradientSettings& s) const {
        return {{"scale", NumberField{&s.scale, kGradientScale},
                 "The circle's diameter; 1 is the text's width. Outside it is the last colour; below 0.1 "
                 "nothing is drawn"},
                {"opacity", NumberField{&s.opacity, kShare}, kFillOpacity},
                stopsField(s.stops)};
    }
    Fields operator()(StrokeSettings& s) const {
        return {{"width", NumberField{&s.width, kPixels},
                 "How wide the line is; below 1 there is none. Inside the edge, it fills the letters from "
                 "half a stem on"},
                {"color", ColorField{&s.color}, "The line's colour"},
                {"position",
                 ChoiceField{&s.position,
                             {{"outside", Zvex::ZV_STROKE_OUTSIDE},
                              {"inside", Zvex::ZV_STROKE_INSIDE},
                              {"center", Zvex::ZV_STROKE_CENTER}}},
                 "On which side of the edge the line lies; center puts half of it on each side"},
                {"opacity", NumberField{&s.opacity, kShare}, kEffectOpacity}};
    }
    Fields operator()(PatternSettings& s) const {
        return {required({"file", FileField{&s.file, &s.source},
                          "The PNG whose copies fill the text. In a style file, it must lie in the file's "
                          "folder or below"}),
                {"scale", NumberField{&s.scale, kPatternScale},
                 "Scale of the PNG. Above 1 its pixels blend into each other; below 0.1 nothing is drawn"},
                {"opacity", NumberField{&s.opacity, kShare}, kFillOpacity}};
    }
    Fields operator()(BevelSettings& s) const {
        return reliefFields(
            s, {&s.style, {{"inner", 1}, {"outer", 0}}},
            {"Whether the slopes lie inside or outside the edge. Both widen the picture by size",
             "How wide the slopes are. Inner slopes are strongest at half a stem: above that, soft ones fade "
             "and are nearly flat at three stems, while hard ones do not change",
             "How strongly light and shadow differ. Values above 3 look nearly alike, values up to 0.1 "
             "exactly alike",
             "How high the light stands above the picture. Near 0 it darkens the slopes, near 90 it bleaches "
             "them"});
    }
    Fields operator()(EmbossSettings& s) const {
        return reliefFields(
            s, {&s.style, {{"single", 1}, {"double", 3}}},
            {"Whether the light comes from one side or from both",
             "How wide the slopes are, half on each side of the edge. They are strongest at about a stem: "
             "above that, soft ones fade, while hard ones do not change within the letters",
             "How strongly light and shadow differ. Values above 3 look nearly alike, values up to 0.2 "
             "exactly alike",
             "How high the light stands above the picture. Near 0 it brightens the letters, near 90 it "
             "darkens them"});
    }
};

// --- Into the library's adders

// The library uses whole degrees. Whole turns are removed first, so that no angle is too large for a float.
float degrees(double angle) {
    return static_cast<float>(std::fmod(angle, 360));
}

float opacityOf(uint32_t color, double opacity) {
    return static_cast<float>(opacity * (color >> 24) / 255);
}

// The library cuts positions to hundredths after a multiplication in single precision: 53 / 100 would become
// 52. The next float above becomes 53.
float stopPosition(double percent) {
    auto position = static_cast<float>(percent / 100);
    if (std::floor(position * 100.0f) < std::floor(percent)) position = std::nextafter(position, 2.0f);
    return position;
}

std::vector<Zvex::ZvGradient> stopsOf(const std::vector<Stop>& stops) {
    std::vector<Zvex::ZvGradient> result;
    result.reserve(stops.size());
    for (const Stop& stop : stops) {
        result.push_back({stop.color, opacityOf(stop.color, stop.opacity), stopPosition(stop.position)});
    }
    return result;
}

// Each returns the adder's result: the layer's id, or -1.
constexpr size_t kMaxPngBytes = size_t{512} << 20;

Picture readPicture(const PatternSettings& s) {
    const std::string option = "--pattern", path = s.file == "-" ? "./-" : s.file;
    return decodePng(option + ": '" + s.file + "'", *orDefault(s.source).read(option, path, kMaxPngBytes));
}

// The pixels as the effect reads them: 4 bytes each, alpha, red, green, blue, straight.
Zvex::ZvBitmap patternBitmap(const Picture& picture) {
    Zvex::ZvBitmap bitmap(static_cast<unsigned>(picture.width), static_cast<unsigned>(picture.height), 4);
    if (bitmap.pixels == nullptr) throw std::bad_alloc();
    uint8_t* target = bitmap.pixels;
    for (const uint32_t pixel : picture.pixels) {
        for (int shift = 24; shift >= 0; shift -= 8) *target++ = static_cast<uint8_t>(pixel >> shift);
    }
    return bitmap;
}

struct AddTo {
    Zvex::ZvEffect& stack;

    int operator()(const OuterShadowSettings& s) const {
        return stack.addOuterShadowText(degrees(s.angle), pixels(s.distance), pixels(s.size), s.color,
                                        opacityOf(s.color, s.opacity));
    }
    int operator()(const InnerShadowSettings& s) const {
        return stack.addInnerShadowText(degrees(s.angle), pixels(s.distance), pixels(s.size), s.color,
                                        opacityOf(s.color, s.opacity));
    }
    int operator()(const OuterGlowSettings& s) const {
        std::vector<Zvex::ZvGradient> stops = stopsOf(s.stops);
        return stack.addOuterGlowText(pixels(s.size), s.color, opacityOf(s.color, s.opacity),
                                      static_cast<int>(stops.size()), stops.data());
    }
    int operator()(const InnerGlowSettings& s) const {
        std::vector<Zvex::ZvGradient> stops = stopsOf(s.stops);
        return stack.addInnerGlowText(pixels(s.size), s.color, opacityOf(s.color, s.opacity),
                                      static_cast<int>(stops.size()), stops.data());
    }
    int operator()(const LinearGradientSettings& s) const {
        std::vector<Zvex::ZvGradient> stops = stopsOf(s.stops);
        return stack.addLinearGradientText(degrees(s.angle), static_cast<float>(s.scale),
                                           static_cast<float>(s.opacity), static_cast<int>(stops.size()),
                                           stops.data());
    }
    int operator()(const RadialGradientSettings& s) const {
        std::vector<Zvex::ZvGradient> stops = stopsOf(s.stops);
        return stack.addRadialGradientText(static_cast<float>(s.scale), static_cast<float>(s.opacity),
                                           static_cast<int>(stops.size()), stops.data());
    }
    int operator()(const StrokeSettings& s) const {
        return stack.addStrokeText(pixels(s.width), s.color, opacityOf(s.color, s.opacity), 0, s.position);
    }
    int operator()(const PatternSettings& s) const {
        const Picture picture = readPicture(s);
        Zvex::ZvBitmap bitmap = patternBitmap(picture);
        return stack.addPatternText(&bitmap, static_cast<float>(s.scale), static_cast<float>(s.opacity));
    }
    int operator()(const BevelSettings& s) const { return addRelief(&Zvex::ZvEffect::addBevelText, s); }
    int operator()(const EmbossSettings& s) const { return addRelief(&Zvex::ZvEffect::addEmbossText, s); }

private:
    static float pixels(double value) { return static_cast<float>(value); }

    template <typename Adder, typename Relief>
    int addRelief(Adder adder, const Relief& s) const {
        return (stack.*adder)(s.style, pixels(s.size), static_cast<float>(s.depth), s.direction, s.technique,
                              static_cast<int>(s.soften), static_cast<float>(s.opacity), degrees(s.angle),
                              static_cast<float>(s.altitude), s.shadow.color,
                              opacityOf(s.shadow.color, s.shadow.opacity), s.highlight.color,
                              opacityOf(s.highlight.color, s.highlight.opacity));
    }
};

}  // namespace

Fields fieldsOf(EffectSettings& settings) {
    return std::visit(FieldsOf{}, settings);
}

const std::vector<EffectKind>& effectKinds() {
    static const std::vector<EffectKind> kinds = {
        {"outer-shadow", "A blurred shadow behind the text, away from the light", OuterShadowSettings()},
        {"inner-shadow", "A shadow within the glyphs, as if they were cut out", InnerShadowSettings()},
        {"outer-glow", "A halo around the glyphs; stops run outwards", OuterGlowSettings()},
        {"inner-glow", "Light along the edges within the glyphs; stops run inwards", InnerGlowSettings()},
        {"linear-gradient", "Colours along a line; 0deg is left to right, 90deg bottom to top",
         LinearGradientSettings()},
        {"radial-gradient", "Colours from the centre outwards", RadialGradientSettings()},
        {"stroke", "An outline; short form: WIDTH[:COLOR[:POSITION]]", StrokeSettings(), "STROKE"},
        {"pattern", "A tiled PNG; file= may be left out if FILE comes first", PatternSettings(), "FILE,..."},
        {"bevel", "Raised edges, lit from the angle", BevelSettings()},
        {"emboss", "A relief on both sides of the edge, as if pressed from a sheet", EmbossSettings()}};
    return kinds;
}

const EffectKind& kindOf(const EffectSettings& settings) {
    return effectKinds()[settings.index()];
}

const EffectKind* findEffectKind(const std::string& name) {
    for (const EffectKind& kind : effectKinds()) {
        if (name == kind.name) return &kind;
    }
    return nullptr;
}

EffectSettings parseEffect(const std::string& option, const EffectKind& kind, const std::string& text,
                           const FilePlaces& places) {
    EffectSettings settings = kind.defaults;
    const Fields fields = fieldsOf(settings);
    const bool shortStroke =
        std::holds_alternative<StrokeSettings>(settings) && text.find('=') == std::string::npos;
    if (!shortStroke) {
        readKeyValues(option, fields, text, places);
        return settings;
    }
    const std::vector<std::string> parts = split(text, ':');
    if (parts.size() > 3) {
        throw UsageError(option + ": '" + text +
                         "' is not a stroke; write WIDTH[:COLOR[:outside|inside|center]] or " +
                         namesOf(fields) + " as KEY=VALUE,KEY=VALUE");
    }
    for (size_t i = 0; i < parts.size(); ++i)
        readValue(option + " " + fields[i].name, fields[i], parts[i], places);
    return settings;
}

void addOrReplace(std::vector<EffectSettings>& effects, EffectSettings settings) {
    for (EffectSettings& present : effects) {
        if (present.index() != settings.index()) continue;
        present = std::move(settings);
        return;
    }
    effects.push_back(std::move(settings));
}

void addEffects(Zvex::ZvEffect& stack, const std::vector<EffectSettings>& effects) {
    for (const EffectSettings& settings : effects) {
        if (std::visit(AddTo{stack}, settings) < 0) {
            throw Failure(std::string("--") + kindOf(settings).name +
                          ": the effect could not be added: the library lacks it, or memory is short");
        }
    }
}

namespace {

constexpr size_t kHelpIndent = 29, kHelpWidth = 110;

// As lines of that width, indented from the second on.
std::string wrapped(const std::string& text) {
    std::string lines;
    size_t begin = 0;
    for (size_t room = kHelpWidth; text.size() - begin > room; room = kHelpWidth - kHelpIndent) {
        const size_t end = text.rfind(' ', begin + room);
        if (end == std::string::npos || end <= begin + kHelpIndent) break;
        lines += text.substr(begin, end - begin) + "\n" + std::string(kHelpIndent, ' ');
        begin = end + 1;
    }
    return lines + text.substr(begin) + "\n";
}

}  // namespace

std::string effectsHelp() {
    std::string help;
    for (const EffectKind& kind : effectKinds()) {
        help += std::string("  --") + kind.name + "\n";
        EffectSettings settings = kind.defaults;
        for (const Field& field : fieldsOf(settings)) {
            std::string key = std::string("      ") + field.name + "=" + formatValue(field);
            if (key.size() < kHelpIndent - 1) key.resize(kHelpIndent - 1, ' ');
            help += wrapped(key + " " + field.help + ". Takes " + wantedBy(field) +
                            (field.required ? "; required" : ""));
        }
    }
    return help;
}

}  // namespace Zvex::scene
