// SPDX-License-Identifier: Apache-2.0
#include "scene/SceneCheck.h"

#include <algorithm>

#include "scene/Failure.h"
#include "scene/Language.h"
#include "scene/SceneOptions.h"
#include "scene/TextInput.h"

namespace Zvex::scene {

namespace {

[[noreturn]] void refuse(const std::string& place, const std::string& why) {
    throw UsageError(place + ": " + why);
}

void checkFields(const std::string& where, const Fields& fields);

void checkEffect(const std::string& where, EffectSettings settings) {
    checkFields(where + kindOf(settings).name + " ", fieldsOf(settings));
}

struct CheckValue {
    const std::string& place;
    const Field& field;

    void checkLength(const std::string& text) const {
        if (text.size() > kMaxFieldBytes)
            refuse(place, "it is longer than " + std::to_string(kMaxFieldBytes) + " bytes");
        if (text.find('\0') != std::string::npos) refuse(place, "it holds a NUL character");
    }

    void operator()(const NumberField& f) const {
        if (!f.isNone() && !f.range.contains(f.get()))
            refuse(place, formatNumber(f.get()) + " is not " + f.range.wanted());
    }
    void operator()(const ChoiceField& f) const {
        const auto isValue = [&](const auto& choice) { return choice.second == f.get(); };
        if (std::none_of(f.choices.begin(), f.choices.end(), isValue))
            refuse(place, std::to_string(f.get()) + " is not " + wantedBy(field));
    }
    void operator()(const NumbersField& f) const {
        for (size_t i = 0; i < f.value->size(); ++i)
            checkFields(place, {{"", NumberField{&(*f.value)[i], f.each}}});
        if (f.value->size() > kMaxNumbers)
            refuse(place, std::to_string(f.value->size()) + " are more than " + std::to_string(kMaxNumbers));
        if (findUnrisen(*f.value) < f.value->size()) refuse(place, "the numbers must rise");
    }
    void operator()(const OffsetField& f) const { checkFields(place + " ", fieldsOf(*f.value)); }
    void operator()(const CanvasField& f) const {
        const auto* fill = *f.value ? std::get_if<EffectSettings>(&(*f.value)->fill) : nullptr;
        if (fill == nullptr) return;
        if (findCanvasKind(kindOf(*fill).name) == nullptr)
            refuse(place, std::string(kindOf(*fill).name) + " is not one of " + canvasKinds());
        checkEffect(place + " ", *fill);
    }
    void operator()(const TintField& f) const { checkFields(place + " ", fieldsOf(*f.value)); }
    void operator()(const StopsField& f) const {
        const size_t count = f.value->size();
        if (field.required && count == 0) refuse(place, "is missing; it takes " + wantedBy(field));
        if (count > kMaxStops)
            refuse(place, std::to_string(count) + " stops are more than " + std::to_string(kMaxStops));
        for (size_t i = 0; i < count; ++i)
            checkFields(place + "[" + std::to_string(i) + "].", fieldsOf((*f.value)[i]));
        const size_t falling = findFallingStop(*f.value);
        if (falling < count)
            refuse(place + "[" + std::to_string(falling) + "].position", "positions must not fall");
    }
    void operator()(const TextField& f) const {
        checkLength(*f.value);
        if (f.takes != nullptr && !f.takes(*f.value)) refuse(place, "'" + *f.value + "' is not " + f.wanted);
    }
    void operator()(const FileField& f) const {
        if (f.value->empty()) refuse(place, "is missing; it takes " + wantedBy(field));
        checkLength(*f.value);
    }
    template <typename Other>
    void operator()(const Other&) const {}  // every value is good
};

void checkFields(const std::string& where, const Fields& fields) {
    for (const Field& field : fields) std::visit(CheckValue{where + field.name, field}, field.value);
}

void checkDesignedFor(const std::string& place, double size) {
    if (!kEffectDesignedFor.contains(size))
        refuse(place, formatNumber(size) + " is not " + kEffectDesignedFor.wanted());
}

void checkLook(const std::string& where, const Look& look) {
    std::vector<bool> seen(effectKinds().size());
    for (const EffectSettings& settings : look.effects) {
        if (seen[settings.index()])
            refuse(where + kindOf(settings).name, "is there already; several of a kind need layers");
        seen[settings.index()] = true;
        checkEffect(where, settings);
        const auto designed = look.designedFor.find(settings.index());
        if (designed != look.designedFor.end())
            checkDesignedFor(where + kindOf(settings).name + " designed-for", designed->second);
    }
}

void checkPixels(const std::string& place, int value) {
    const NumberRange range = {0, kMaxSide, "px"};
    if (!range.contains(value)) refuse(place, std::to_string(value) + " is not " + range.wanted());
}

// What the fields of the layout hold, and what they need beside them.
void checkLayout(const Scene& scene) {
    Scene layout;  // fields point to values that may change
    layout.align = scene.align;
    layout.direction = scene.direction;
    layout.language = scene.language;
    layout.tabStops = scene.tabStops;
    layout.fit = scene.fit;
    for (const Field& field : fieldsOf(layout)) {
        for (const char* name : {"align", "direction", "language", "tab-stops", "fit"}) {
            if (std::string(name) == field.name) std::visit(CheckValue{name, field}, field.value);
        }
    }
    const bool boxed = scene.width > 0 || scene.height > 0;
    if (!scene.language.empty() && localeOf(scene.language).empty())
        refuse("--language", "'" + scene.language + "' is not " + kWantedLanguage);
    if (scene.align == Scene::Align::Justify && scene.width == 0)
        refuse("--align", "justify needs --width, which the lines are to fill");
    if (scene.ellipsis && scene.maxLines == 0 && scene.height == 0)
        refuse("--ellipsis", "it needs --max-lines or --height; without them all of the text shows");
    if (scene.fit > 0 && !boxed) refuse("--fit", "it needs --width or --height, which the text is to fit");
    if (scene.fit > scene.style.size) {
        refuse("--fit", formatNumber(scene.fit) + " px is above --size, " + formatNumber(scene.style.size) +
                            " px, from which the text shrinks");
    }
}

}  // namespace

void checkLayers(const Style& style) {
    if (style.layers.empty() || style.effects.empty()) return;
    throw UsageError(std::string("--") + kindOf(style.effects[0]).name +
                     ": the style has layers, and effects belong into one of them");
}

void checkClips(const std::vector<LayerSettings>& layers) {
    if (layers.empty() || !layers.back().clip) return;
    refuse("layers[" + std::to_string(layers.size() - 1) + "].clip",
           "there is no layer behind it to clip it to");
}

void checkStyle(const Style& style) {
    Style copy = style;  // fields point to values that may change
    checkFields("", fieldsOf(copy));
    checkLook("", copy);
    checkLayers(copy);
    if (copy.layers.size() > kMaxLayers)
        refuse("layers", std::to_string(copy.layers.size()) + " are more than " + std::to_string(kMaxLayers));
    for (size_t i = 0; i < copy.layers.size(); ++i) {
        const std::string where = "layers[" + std::to_string(i) + "].";
        checkFields(where, fieldsOf(copy.layers[i]));
        checkLook(where, copy.layers[i]);
    }
    checkClips(copy.layers);
    checkDesignedFor("designed-for", copy.layersDesignedFor);
}

void checkScene(const Scene& scene) {
    const std::string why = faultOf(scene.text);
    if (!why.empty()) throw UsageError("TEXT: " + why);
    checkStyle(scene.style);
    checkPixels("width", scene.width);
    checkPixels("height", scene.height);
    for (const int side : {scene.padding.left, scene.padding.top, scene.padding.right, scene.padding.bottom})
        checkPixels("padding", side);
    if (scene.maxLines < 0) refuse("max-lines", std::to_string(scene.maxLines) + " is below 0");
    checkLayout(scene);
}

}  // namespace Zvex::scene
