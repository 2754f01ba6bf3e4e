// SPDX-License-Identifier: Apache-2.0
#include "scene/Style.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <tuple>

#include "scene/Presets.h"
#include "scene/Scene.h"
#include "scene/Source.h"
#include "tests/scene/Refusal.h"

namespace Zvex::scene {
namespace {

using Json = nlohmann::json;

Scene sceneIn(const Style& style, double size) {
    Scene scene;
    scene.text = "Ag";
    scene.font = "DejaVu Sans:bold";
    scene.style = style;
    scene.style.size = size;
    return scene;
}

// Everything that is drawn of it, at that size.
std::string drawn(Style style, double size) {
    style.size = size;
    fitEffects(style);
    std::string text;
    const auto add = [&](const Fields& fields) {
        for (const Field& field : fields) text += formatValue(field) + " ";
    };
    const auto addLook = [&](Look& look) {
        for (EffectSettings& settings : look.effects) {
            text += std::string("\n") + kindOf(settings).name + " ";
            add(fieldsOf(settings));
        }
    };
    add(fieldsOf(style));
    addLook(style);
    for (LayerSettings& layer : style.layers) {
        text += "\nlayer ";
        add(fieldsOf(layer));
        addLook(layer);
    }
    return text;
}

TEST(Style, AsItIsPrintedAPresetDrawsTheSamePictureAtAnySize) {
    for (const Preset& preset : presets()) {
        const Style style = styleFromPreset(preset.name), again = styleFromText(writeStyle(style));
        EXPECT_EQ(again.notes.description, style.notes.description) << preset.name;
        for (const double size : {11.5, 48.0, 96.0, 300.0}) EXPECT_EQ(drawn(again, size), drawn(style, size));
        EXPECT_EQ(render(sceneIn(again, 75)).picture.pixels, render(sceneIn(style, 75)).picture.pixels)
            << preset.name;
    }
    const Style gold = styleFromPreset("gold");
    EXPECT_EQ(render(sceneIn(styleFromText(writeStyle(gold)), 300)).picture.pixels,
              render(sceneIn(gold, 300)).picture.pixels);
}

// A style of anything, with sizes of its own for its effects.
class AnyStyle {
public:
    explicit AnyStyle(unsigned seed) : mRandom(seed) {}

    Style make() {
        Style style;
        fill(fieldsOf(style));
        for (unsigned layer = pick(4); layer > 0; --layer) {
            fill(fieldsOf(style.layers.emplace_back()));
            fillLook(style.layers.back());
            style.layers.back().clip &= layer > 1;
        }
        if (style.layers.empty()) fillLook(style);
        style.layersDesignedFor = designedFor();
        return style;
    }

private:
    unsigned pick(unsigned below) { return static_cast<unsigned>(mRandom() % below); }
    double designedFor() { return std::array<double, 4>{0, 0, 100, 33.3}[pick(4)]; }

    void fillLook(Look& look) {
        for (const EffectKind& kind : effectKinds()) {
            if (pick(3) != 0) continue;
            EffectSettings settings = kind.defaults;
            fill(fieldsOf(settings));
            const double designed = designedFor();
            look.add(std::move(settings));
            if (pick(2) != 0) look.designedFor[kind.defaults.index()] = designed;
        }
    }

    void fill(const Fields& fields) {
        for (const Field& field : fields) std::visit([&](const auto& kind) { set(kind); }, field.value);
    }

    void set(const NumberField& field) {
        const NumberRange& range = field.range;
        const double low = std::isfinite(range.low) ? range.low : -1e6,
                     high = std::isfinite(range.low) ? range.high : 1e6;
        const double value = low + (high - low) * (1 + pick(1 << 20)) / (1 << 20);
        field.set(range.whole ? std::round(value) : pick(2) != 0 ? std::ceil(value) : value);
    }
    void set(const ChoiceField& field) { field.set(field.choices[pick(field.choices.size())].second); }
    void set(const FlagField& field) { *field.value = pick(2) != 0; }
    void set(const OptionalFlagField& field) {
        if (pick(2) != 0) *field.value = pick(2) != 0;
    }
    void set(const ColorField& field) { *field.value = mRandom(); }
    void set(const OptionalColorField& field) {
        if (pick(2) != 0) *field.value = mRandom();
    }
    void set(const OffsetField& field) { fill(fieldsOf(*field.value)); }
    void set(const TintField& field) { fill(fieldsOf(*field.value)); }
    void set(const StopsField& field) {
        for (double position = 0; position <= 100; position += pick(60))
            field.value->push_back({static_cast<uint32_t>(mRandom()), position, pick(3) / 2.0});
    }
    void set(const TextField& field) { *field.value = "smcp, \"ss01\" 1"; }
    void set(const FileField& field) { *field.value = "/tmp/a b.png"; }
    void set(const CanvasField& field) {
        EffectSettings fill = RadialGradientSettings();
        this->fill(fieldsOf(fill));
        if (pick(2) != 0) *field.value = pick(2) != 0 ? Canvas{fill} : Canvas{uint32_t{0xFF123456}};
    }
    template <typename Other>
    void set(const Other&) {}

    std::mt19937 mRandom;
};

TEST(Style, AnyStyleIsTheSameWhenItIsPrinted) {
    for (unsigned seed = 1; seed <= 200; ++seed) {
        const Style style = AnyStyle(seed).make();
        const std::string written = writeStyle(style);
        const Style again = styleFromText(written);
        for (const double size : {style.size, 7.0, 300.0, 4000.0})
            ASSERT_EQ(drawn(again, size), drawn(style, size)) << "seed " << seed << "\n" << written;
        ASSERT_EQ(writeStyle(again), written) << "seed " << seed;
    }
}

TEST(Style, LengthsFitTheSizeOfTheText) {
    const std::string effects =
        R"({"designed-for": 100, "effects": [{"type": "stroke", "width": 3.4},
        {"type": "bevel", "size": 60, "soften": 9, "depth": 3}, {"type": "outer-shadow", "distance": 0.2,
        "size": 1, "angle": 30}, {"type": "pattern", "file": "a.png", "scale": 2.5},
        {"type": "inner-glow", "size": 10, "designed-for": 50}, {"type": "inner-shadow", "size": 9,
        "designed-for": 0}]})";
    const std::string layers = R"({"designed-for": 60, "layers": [{"spread": -3, "offset": [5, -7]},
        {"spread": 1, "effects": [{"type": "stroke", "width": 2}]}]})";
    // Whole pixels, at least one where there was one, at most what an effect takes; halves go away from 0.
    const std::tuple<std::string, double, std::map<std::string, std::string>> cases[] = {
        {effects,
         200,
         {{"0/width", "7"},
          {"1/size", "100"},
          {"1/soften", "16"},
          {"1/depth", "3"},
          {"2/distance", "0"},
          {"2/size", "2"},
          {"2/angle", "30"},
          {"3/scale", "5"},
          {"4/size", "40"},
          {"5/size", "9"}}},
        {effects,
         10,
         {{"0/width", "1"},
          {"1/size", "6"},
          {"1/soften", "1"},
          {"2/size", "1"},
          {"3/scale", "0.25"},
          {"4/size", "2"},
          {"5/size", "9"}}},
        {layers, 90, {{"0/spread", "-5"}, {"0/offset", "[8,-11]"}, {"1/effects/0/width", "3"}}}};
    for (const auto& [text, size, expected] : cases) {
        Style style = styleFromText(text);
        style.size = size;
        fitEffects(style);
        const Json written = Json::parse(writeStyle(style));
        for (const auto& [pointer, value] : expected) {
            const Json& list = written.contains("layers") ? written["layers"] : written["effects"];
            EXPECT_EQ(list.at(Json::json_pointer("/" + pointer)).dump(), value) << pointer << " at " << size;
        }
    }
}

// What a style says on top of another is as if it were one.
TEST(Style, ExtendsAnother) {
    const char* base = R"({"description": "below", "designed-for": 100, "size": 50, "color": "#123456",
        "canvas": {"type": "linear-gradient", "angle": 5, "stops": [{"color": "#fff", "position": 7}]},
        "effects": [{"type": "stroke", "width": 9, "color": "#f00"},
        {"type": "bevel", "depth": 4, "highlight": {"color": "#0f0", "opacity": 0.1}},
        {"type": "outer-glow", "designed-for": 20}]})";
    const char* layered = R"({"extends": "base.json", "effects": null, "layers": [{"color": "#111",
        "spread": 3, "effects": [{"type": "stroke", "width": 5}]}, {"color": "#222"}, {"color": "#333"}]})";
    const std::string
        glow = R"({"type": "outer-glow", "designed-for": 20}])",
        bevel = R"({"type": "bevel", "depth": 4, "highlight": {"color": "#0f0", "opacity": 0.1}})",
        stroke = R"({"type": "stroke", "width": 9, "color": "#f00"})",
        canvas =
            R"("canvas": {"type": "linear-gradient", "angle": 5, "stops": [{"color": "#fff", "position": 7}]})",
        below = R"({"description": "below", "designed-for": 100, "size": 50, "color": "#123456",)" + canvas;
    const std::pair<std::string, std::string> cases[] = {
        {R"("extends": "base.json")", below + R"(, "effects": [)" + stroke + "," + bevel + "," + glow},
        {R"("extends": "base.json", "color": "#fff", "size": null, "description": "mine", "canvas": null)",
         R"({"description": "mine", "designed-for": 100, "color": "#fff", "effects": [)" + stroke + "," +
             bevel + "," + glow},
        // Key by key; a new effect goes on top; the size is that of all effects that have none.
        {R"("extends": "base.json", "designed-for": 70, "canvas": {"type": "linear-gradient", "angle": null,
            "scale": 2}, "effects": [{"type": "inner-glow", "size": 3}, {"stroke": null},
            {"type": "bevel", "depth": null, "size": 2, "highlight": {"opacity": 0.7}},
            {"type": "outer-glow", "designed-for": null, "color": "#00f"}])",
         R"({"description": "below", "designed-for": 70, "size": 50, "color": "#123456", "canvas":
            {"type": "linear-gradient", "scale": 2, "stops": [{"color": "#fff", "position": 7}]}, "effects": [
            {"type": "bevel", "size": 2, "highlight": {"color": "#0f0", "opacity": 0.7}},
            {"type": "outer-glow", "color": "#00f"}, {"type": "inner-glow", "size": 3}])"},
        // What lies in a folder, through two files.
        {R"("extends": "sub/layered.json", "layers": [{"spread": null, "effects": [{"stroke": null},
            {"type": "emboss"}]}, null, {}, {"color": "#444"}])",
         below +
             R"(, "layers": [{"color": "#111", "effects": [{"type": "emboss"}]}, {"color": "#333"}, {"color": "#444"}])"},
        {R"("extends": "sub/layered.json", "layers": null, "effects": [{"type": "emboss"}])",
         below + R"(, "effects": [{"type": "emboss"}])"}};
    const auto bytes = [](const std::string& text) { return std::make_shared<const std::string>(text); };
    for (const auto& [over, flat] : cases) {
        const auto source = namedBytes({{"base.json", bytes(base)},
                                        {"sub/base.json", bytes(base)},
                                        {"sub/layered.json", bytes(layered)},
                                        {"top", bytes("{" + over + "}")}});
        Style style;
        readStyle("--style", "top", style, source);
        EXPECT_EQ(writeStyle(style), writeStyle(styleFromText(flat + "}"))) << over;
    }
    // Over a style that is there already, its effects replace that one's as a whole.
    Style style = styleFromText(R"({"size": 11, "effects": [{"type": "bevel", "soften": 3}]})");
    readStyleText("", R"({"extends": "gold", "effects": [{"type": "bevel", "depth": 5}]})", style);
    EXPECT_EQ(style.size, 11);
    EXPECT_EQ(std::get<BevelSettings>(style.effects[0]).soften, 0);
    EXPECT_EQ(std::get<BevelSettings>(style.effects[0]).altitude, 40);
}

TEST(Style, RefusalsOfWhatItExtendsNameTheFiles) {
    const std::pair<const char*, const char*> cases[] = {
        {R"({"extends": 1})", "extends: 1 is not the name of a preset or the path of a style file"},
        {R"({"extends": ""})", "extends: '' is not the name of a preset or the path of a style file"},
        {R"({"extends": "golden"})", "extends: 'golden' is not a file, and not one of aurora, "},
        {R"({"extends": "none.json"})", "extends: there is no 'none.json'"},
        {R"({"extends": "-"})", "extends: '-' is not a file"},
        {R"({"extends": "a"})", "extends: 'a': extends: 'b': extends: 'a' extends this style itself"},
        {R"({"extends": "./sub/x"})",
         "extends: 'sub/x': extends: 'sub/y': extends: there is no 'sub/../none'"},
        {R"({"extends": "bad"})", "extends: 'bad': effects[0].width: 101 is not a number from 0 to 100 (px)"},
        {R"({"extends": "gold", "effects": [{"type": "stroke", "width": 101}]})",
         "effects[0].width: 101 is not"},
        {R"({"extends": "gold", "effects": [{"type": "linear-gradient", "stops": null}]})",
         "effects[0].stops: is missing"},
        {R"({"extends": "gold", "layers": [{}]})", "layers: the style that this one extends has effects"},
        {R"({"extends": "triple", "effects": [{"type": "stroke"}]})", "effects: belong into the layers"},
        {R"({"extends": "gold", "effects": [{"strike": null}]})",
         "effects[0]: it is not an object with a type"},
        {R"({"extends": "chain9"})", "extends: more than 8 style files extend one another"}};
    std::map<std::string, Bytes> files;
    const auto add = [&](const std::string& name, const std::string& text) {
        files[name] = std::make_shared<const std::string>(text);
    };
    add("a", R"({"extends": "b"})");
    add("b", R"({"extends": "a"})");
    add("sub/x", R"({"extends": "././y"})");
    add("sub/y", R"({"extends": "../none"})");
    add("bad", R"({"effects": [{"type": "stroke", "width": 101}]})");
    for (int i = 1; i <= 9; ++i)
        add("chain" + std::to_string(i),
            R"({"extends": ")" + (i == 1 ? "gold" : "chain" + std::to_string(i - 1)) + "\"}");
    for (const auto& [json, message] : cases) {
        Style style;
        const std::string found =
            refusal([&, text = std::string(json)] { readStyleText("", text, style, namedBytes(files)); });
        EXPECT_NE(found.find(message), std::string::npos) << json << "\n" << found;
    }
    Style style;
    EXPECT_EQ(refusal([&] { readStyleText("", R"({"extends": "chain8"})", style, namedBytes(files)); }), "");
}

}  // namespace
}  // namespace Zvex::scene
