// SPDX-License-Identifier: Apache-2.0
// zvtext inspect font: describes a font file.
#include <hb-ot.h>
#include <unicode/uchar.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "scene/FontChoice.h"
#include "scene/FontFile.h"
#include "scene/Json.h"
#include "tools/zvtext/Options.h"
#include "tools/zvtext/inspect/InspectCommand.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

using HbFont = std::unique_ptr<hb_font_t, void (*)(hb_font_t*)>;

// The number that the font means: 0.1 is a float there, not the nearest double; and 0 has no sign.
double plain(float value) {
    return std::round(static_cast<double>(value) * 1000) / 1000 + 0.0;
}

Json describeAxes(hb_face_t* face, hb_font_t* font) {
    Json list = Json::array();
    unsigned places = 0;
    const float* place = hb_font_get_var_coords_design(font, &places);
    for (const hb_ot_var_axis_info_t& axis : axesOf(face)) {
        list.push_back(
            {{"tag", tagName(axis.tag)},
             {"name", fontString(face, axis.name_id)},
             {"minimum", plain(axis.min_value)},
             {"default", plain(axis.default_value)},
             {"maximum", plain(axis.max_value)},
             {"value", plain(axis.axis_index < places ? place[axis.axis_index] : axis.default_value)},
             {"hidden", (axis.flags & HB_OT_VAR_AXIS_FLAG_HIDDEN) != 0}});
    }
    return list;
}

Json describeInstances(hb_face_t* face, const Json& axes) {
    constexpr unsigned kMost = 1000;
    Json list = Json::array();
    const unsigned count = std::min(hb_ot_var_get_named_instance_count(face), kMost);
    for (unsigned i = 0; i < count; ++i) {
        std::vector<float> places(axes.size());
        auto length = static_cast<unsigned>(places.size());
        hb_ot_var_named_instance_get_design_coords(face, i, &length, places.data());
        Json values = Json::object();
        for (unsigned a = 0; a < length && a < axes.size(); ++a) {
            values[axes[a]["tag"].get<std::string>()] = plain(places[a]);
        }
        const unsigned nameId = hb_ot_var_named_instance_get_subfamily_name_id(face, i);
        list.push_back({{"name", fontString(face, nameId)}, {"axes", values}});
    }
    return list;
}

ScriptCounts scriptsOf(hb_face_t* face) {
    const std::unique_ptr<hb_set_t, void (*)(hb_set_t*)> set(hb_set_create(), hb_set_destroy);
    hb_face_collect_unicodes(face, set.get());
    ScriptCounts scripts;
    // Damaged fonts map numbers beyond Unicode. These have no script.
    for (hb_codepoint_t c = HB_SET_VALUE_INVALID; hb_set_next(set.get(), &c) != 0 && c <= UCHAR_MAX_VALUE;) {
        ++scripts[scriptOf(c)];
    }
    return scripts;
}

// In ems, y upwards; leaves out what the font does not state.
Json metricsOf(hb_font_t* font, const FontFacts& facts, unsigned unitsPerEm) {
    hb_font_extents_t lines = {};
    hb_font_get_h_extents(font, &lines);
    const auto ems = [&](hb_position_t units) {
        return plain(static_cast<float>(units) / static_cast<float>(unitsPerEm));
    };
    Json metrics = {{"unitsPerEm", unitsPerEm},
                    {"ascent", ems(lines.ascender)},
                    {"descent", ems(-lines.descender)},
                    {"lineGap", ems(lines.line_gap)},
                    {"lineHeight", plain(facts.ascent + facts.descent)}};
    static constexpr std::pair<const char*, hb_ot_metrics_tag_t> kMore[] = {
        {"capHeight", HB_OT_METRICS_TAG_CAP_HEIGHT},
        {"xHeight", HB_OT_METRICS_TAG_X_HEIGHT},
        {"underlineOffset", HB_OT_METRICS_TAG_UNDERLINE_OFFSET},
        {"underlineSize", HB_OT_METRICS_TAG_UNDERLINE_SIZE}};
    for (const auto& [name, tag] : kMore) {
        hb_position_t units = 0;
        if (hb_ot_metrics_get_position(font, tag, &units) != 0) metrics[name] = ems(units);
    }
    return metrics;
}

Json describe(const LoadedFont& loaded) {
    hb_face_t* face = loaded.face->hbFace();
    const HbFont font(hb_font_create(face), hb_font_destroy);
    loaded.face->setAxes(font.get());
    const ScriptCounts scripts = scriptsOf(face);
    const Json axes = describeAxes(face, font.get());
    return {{"file", loaded.choice.path},
            {"index", loaded.choice.index},
            {"fontsInFile", loaded.fontsInFile},
            {"family", loaded.facts.family},
            {"style", loaded.facts.style},
            {"fullName", fontString(face, HB_OT_NAME_ID_FULL_NAME)},
            {"version", fontString(face, HB_OT_NAME_ID_VERSION_STRING)},
            {"weight", loaded.facts.weight},
            {"width", plain(hb_style_get_value(font.get(), HB_STYLE_TAG_WIDTH))},
            {"slant", plain(hb_style_get_value(font.get(), HB_STYLE_TAG_SLANT_ANGLE))},
            {"italic", loaded.facts.italic},
            {"glyphs", loaded.face->glyphCount()},
            {"characters", charactersOf(scripts)},
            {"metrics", metricsOf(font.get(), loaded.facts, loaded.face->unitsPerEm())},
            {"axes", axes},
            {"instances", describeInstances(face, axes)},
            {"scripts", scriptList(scripts)}};
}

void runInspectFont(const InspectFontArguments& arguments) {
    const Font& font = arguments.scene.font;
    printReport(describe(*loadFont("FONT", chooseFont("FONT", font.name), "--axes", font.axes)),
                arguments.json);
}

}  // namespace

void addInspectFont(CLI::App& inspect, InspectFontArguments& a) {
    CLI::App* command =
        inspect.add_subcommand("font", "Describe a font: names, style, metrics, axes, scripts");
    const Fields fields = fieldsOf(a.scene);
    command->add_option("font", a.scene.font.name, findField(fields, "font")->help)
        ->type_name("FONT")
        ->required();
    addSettings(*command, {*findField(fields, "axes")});
    addJsonFlag(*command, a.json);
    command->footer(
        "Examples:\n"
        "  $ zvtext inspect font 'DejaVu Sans:bold'\n"
        "  $ zvtext inspect font Inter --axes wght=650 --json");
    command->callback([&a] { runInspectFont(a); });
}

}  // namespace zvtext
