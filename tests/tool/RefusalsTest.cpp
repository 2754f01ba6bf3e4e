// SPDX-License-Identifier: Apache-2.0
// Tests refusals.txt: settings, styles (with the schema too), batch lines, command lines.
#include <nlohmann/json.hpp>

#include "scene/Effects.h"
#include "scene/Style.h"
#include "scene/StyleSchema.h"
#include "tests/scene/Refusal.h"
#include "tests/tool/Program.h"

namespace {

using Json = nlohmann::json;
using Zvex::scene::refusal;

class Refusals : public Program {
protected:
    void expectMessage(std::string found, const Row& row, const std::string& before = "") const {
        const std::string message = before + expanded(row.answer);
        if (!row.whole) found.resize(std::min(found.size(), message.size()));
        EXPECT_EQ(found, message) << row.input.substr(0, 200);
    }
};

TEST_F(Refusals, OfSettingsAndNoneOfGoodOnes) {
    const auto spelled = [](const std::string& kind, const std::string& text) {
        auto settings = Zvex::scene::parseEffect("--" + kind, *Zvex::scene::findEffectKind(kind), text);
        std::string all;
        for (const Zvex::scene::Field& field : fieldsOf(settings)) {
            all += (all.empty() ? "" : ",") + std::string(field.name) + "=" + formatValue(field);
        }
        return all;
    };
    for (const Row& row : rows("answers", "settings")) {
        const std::string kind = row.input.substr(0, row.input.find(' '));
        EXPECT_EQ(spelled(kind, row.input.substr(kind.size() + 1)), row.answer) << row.input;
        EXPECT_EQ(spelled(kind, row.answer), row.answer) << "what is spelled reads back";
    }
    for (const Row& row : rows("refusals", "effects")) {
        const std::string kind = row.input.substr(0, row.input.find(' '));
        expectMessage(refusal([&] { spelled(kind, row.input.substr(kind.size() + 1)); }), row, "--" + kind);
    }
}

// The schema accepts what the program accepts.
TEST_F(Refusals, OfStyles) {
    const Json schema = Json::parse(slurp(fs::path(ZVTEXT_SOURCE) / "docs/style.schema.json"));
    EXPECT_EQ(Json::parse(Zvex::scene::styleSchema()), schema)
        << "make it anew: zvtext schema > docs/style.schema.json";
    write("check.py",
          "import json, jsonschema, sys\n"
          "schema = json.load(open(sys.argv[1]))\n"
          "def check(part):  # strict validators want a property for each required one\n"
          "    if isinstance(part, list): part = dict(enumerate(part))\n"
          "    if not isinstance(part, dict): return\n"
          "    assert set(part.get('required', [])) <= set(part.get('properties', [])), part\n"
          "    for inner in part.values(): check(inner)\n"
          "check(schema)\n"
          "valid = jsonschema.Draft202012Validator(schema).is_valid\n"
          "for line in open(sys.argv[2], encoding='utf-8'): print(int(valid(json.loads(line))))\n");
    std::string values, accepted;  // a line and a digit each
    const auto check = [&](const std::string& json) {
        return refusal([&] {
            Zvex::scene::Style style;
            Zvex::scene::readStyleText("--style", json, style);
        });
    };
    for (const Row& row : rows("refusals", "styles")) {
        const bool unknown = row.input[0] == '~';
        const std::string json = row.input.substr(unknown ? 1 : 0);
        expectMessage(check(json), row, "--style: ");
        const Json value = Json::parse(json, nullptr, false, true);
        if (value.is_discarded()) continue;
        values += value.dump() + "\n";
        accepted += unknown ? "1\n" : "0\n";
    }
    std::vector<std::string> right = {
        "{}",
        R"({"$schema": "x", "description": "", "designed-for": 0.5, "size": 10000, "opacity": 0, /**/
            "color": "#fff", "background": "#80aabbcc", "letter-spacing": -1, "features": "smcp"})",
        R"({"effects": [{"type": "linear-gradient", "angle": -1e9, "scale": 2, "stops": [
            {"color": "#fff", "position": 50}]}, {"type": "emboss", "style": "double", "technique": "hard",
            "direction": "down", "size": 100, "depth": 10, "altitude": 89, "soften": 16, "highlight":
            {"color": "#000", "opacity": 1}, "opacity": 0.5}, {"type": "pattern", "file": "/dev/null",
            "scale": 10}, {"type": "outer-glow", "stops": [{"color": "#fff", "position": 100}]}]})",
        R"({"canvas": "#fff", "layers": [{"spread": -100, "offset": [-1000, 1000], "blend": "color-dodge",
            "clip": true, "knockout": true, "opacity": 0, "effects": []}, {"color": "#80ffffff"}]})",
        R"({"canvas": {"type": "radial-gradient", "stops": [{"color": "#fff", "position": 0}]}})",
        R"({"extends": "gold", "size": null, "layers": null, "effects": [{"stroke": null}, {"type":
            "linear-gradient", "designed-for": 0}, {"type": "bevel", "style": null, "shadow": {"opacity": 1},
            "highlight": null}]})",
        R"~({"color": "navy", "background": "rgb(0 0 0 / 50%)"})~",
        R"({"color": "Navy", "background": "BLACK", "canvas": "linear-gradient:stops=#fd5:#e31", "features": ""})",
        R"~({"canvas": "HSLA(1, 2%, 3%, 0.5)"})~",
        R"({"extends": "triple", "layers": [null, {"color": null, "effects": null}]})"};
    for (const auto& file : fs::directory_iterator(fs::path(ZVTEXT_SOURCE) / "examples/styles")) {
        right.push_back(slurp(file.path()));
    }
    for (const std::string& json : right) {
        EXPECT_EQ(check(json), "") << json;
        values += Json::parse(json, nullptr, true, true).dump() + "\n";
        accepted += "1\n";
    }
    write("values", values);
    const std::string judge =
        "/usr/bin/python3 $DIR/check.py $SOURCE/docs/style.schema.json $DIR/values >$DIR/judged";
    ASSERT_EQ(std::system(expanded(judge).c_str()), 0) << "scripts/setup installs python3-jsonschema";
    EXPECT_EQ(slurp(file("judged")), accepted) << values;
}

TEST_F(Refusals, OfLinesWhichFailAlone) {
    std::string lines;
    const std::vector<Row> refused = rows("refusals", "lines");
    for (const Row& row : refused) lines += row.input + "\n";
    const Result result = zvtext("batch -f $FONT --output-dir $DIR/out --jobs 2", lines);
    EXPECT_EQ(result.status, 1);
    std::stringstream results(result.out);
    size_t count = 0;
    for (std::string line; std::getline(results, line); ++count) {
        const Json json = Json::parse(line);
        EXPECT_EQ(json.value("line", 0u), count + 1);
        expectMessage(json.value("error", ""), refused.at(count));
        EXPECT_EQ(fs::exists(file("out") / (std::to_string(count + 1) + ".png")),
                  count + 1 == refused.size());
    }
    EXPECT_EQ(count, refused.size());
}

TEST_F(Refusals, OfCommandLinesWhichLeaveFilesAlone) {
    const std::string font = slurp(kFont);
    write("empty", "");
    write("garbage", std::string(5000, 'z'));
    write("cut.ttf", font.substr(0, 200));
    write("woff2", "wOF2....");
    write("nul", std::string("a\0b", 3));
    write("bad.json", R"({"size": 0})");
    fs::create_symlink(kFont, file("a-Bold"));
    write("out.png", "an older picture");
    fs::create_hard_link(file("out.png"), file("same.png"));
    for (const Row& row : sampled(rows("refusals", "commands"))) {
        expectRefused(row.input.substr(2), row.input[0] - '0', row.answer + (row.whole ? "\n" : ""));
        ASSERT_EQ(slurp(file("out.png")), "an older picture") << row.input;
    }
}

}  // namespace
