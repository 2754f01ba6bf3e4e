// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>
#include <regex>

#include "tests/tool/Program.h"

namespace {

using Json = nlohmann::json;

// Validates against the keywords that the schema uses; another one is a failure of the test.
class Validator {
public:
    explicit Validator(const Json& schema) : mRoot(schema) {}

    bool accepts(const Json& value) const { return accepts(mRoot, value); }

private:
    bool accepts(const Json& schema, const Json& value) const {
        for (const auto& [keyword, operand] : schema.items()) {
            if (!holds(schema, keyword, operand, value)) return false;
        }
        return true;
    }

    size_t countAccepted(const Json& schema, const Json& values) const {
        return static_cast<size_t>(std::count_if(values.begin(), values.end(),
                                                 [&](const Json& value) { return accepts(schema, value); }));
    }

    // Keywords for one type hold for values of any other.
    bool holds(const Json& schema, const std::string& keyword, const Json& operand, const Json& value) const {
        static const char* const kNotes[] = {"$schema",     "$defs",   "title",
                                             "description", "default", "minContains"};
        for (const char* note : kNotes) {
            if (keyword == note) return true;
        }
        if (keyword == "$ref") {
            return accepts(mRoot.at(Json::json_pointer(operand.get<std::string>().substr(1))), value);
        }
        if (keyword == "const") return value == operand;
        if (keyword == "enum") return std::count(operand.begin(), operand.end(), value) > 0;
        if (keyword == "not") return !accepts(operand, value);
        if (operand == "integer") return value.is_number() && value == std::floor(value.get<double>());
        if (keyword == "type") return operand == (value.is_number() ? "number" : value.type_name());
        if (keyword == "minimum") return !value.is_number() || value >= operand;
        if (keyword == "maximum") return !value.is_number() || value <= operand;
        if (keyword == "exclusiveMinimum") return !value.is_number() || value > operand;
        if (keyword == "minLength") return !value.is_string() || value.get<std::string>().size() >= operand;
        if (keyword == "maxLength") return !value.is_string() || value.get<std::string>().size() <= operand;
        if (keyword == "minItems") return !value.is_array() || value.size() >= operand;
        if (keyword == "maxItems") return !value.is_array() || value.size() <= operand;
        if (keyword == "pattern") {
            return !value.is_string() ||
                   std::regex_search(value.get<std::string>(), std::regex(operand.get<std::string>()));
        }
        if (keyword == "items") return !value.is_array() || countAccepted(operand, value) == value.size();
        if (keyword == "contains") {
            return !value.is_array() || countAccepted(operand, value) <= schema.at("maxContains");
        }
        if (keyword == "maxContains") return schema.contains("contains");
        if (keyword == "oneOf" || keyword == "allOf") {
            const auto count = std::count_if(operand.begin(), operand.end(),
                                             [&](const Json& part) { return accepts(part, value); });
            return static_cast<size_t>(count) == (keyword == "oneOf" ? 1 : operand.size());
        }
        if (!value.is_object())
            return keyword == "properties" || keyword == "required" || keyword == "additionalProperties";
        if (keyword == "required") {
            return std::all_of(operand.begin(), operand.end(),
                               [&](const Json& key) { return value.contains(key.get<std::string>()); });
        }
        if (keyword == "additionalProperties") {
            return std::all_of(value.items().begin(), value.items().end(), [&](const auto& member) {
                return schema.at("properties").contains(member.key());
            });
        }
        if (keyword == "properties") {
            return std::all_of(value.items().begin(), value.items().end(), [&](const auto& member) {
                return !operand.contains(member.key()) || accepts(operand.at(member.key()), member.value());
            });
        }
        ADD_FAILURE() << "no such keyword here: " << keyword;
        return false;
    }

    const Json& mRoot;
};

class Schema : public Program {
protected:
    const Json mSchema = Json::parse(slurp(fs::path(ZVTEXT_SOURCE) / "docs/style.schema.json"));

    // Whether the schema takes it, which has to be whether the program does.
    bool taken(const std::string& style) const {
        const Result result = run({"render", "--print-style", "--style", "-"}, style);
        const bool valid = Validator(mSchema).accepts(Json::parse(style, nullptr, true, true));
        EXPECT_EQ(result.status, valid ? 0 : 1) << style << "\n" << result.err;
        return valid;
    }
};

TEST_F(Schema, IsThatOfTheProgram) {
    EXPECT_EQ(run({"schema"}).out, slurp(fs::path(ZVTEXT_SOURCE) / "docs/style.schema.json"))
        << "make it anew: zvtext schema > docs/style.schema.json";
}

TEST_F(Schema, TakesWhatTheProgramTakes) {
    for (const auto& file : fs::directory_iterator(fs::path(ZVTEXT_SOURCE) / "examples/styles")) {
        EXPECT_TRUE(taken(slurp(file.path()))) << file.path();
    }
    const auto effect = [](const std::string& content) {
        return R"({"effects": [{"type": )" + content + "}]}";
    };
    const std::string stop = R"({"color": "#fff", "position": 50})";
    const std::string right[] = {
        "{}",
        R"({"$schema": "x", "description": "", "designed-for": 0.5, "size": 10000, "opacity": 0, /**/
            "color": "#fff", "background": "#80aabbcc", "letter-spacing": -1, "features": "smcp"})",
        effect(R"("linear-gradient", "angle": -1e9, "scale": 2, "stops": [)" + stop + "]"),
        effect(
            R"("emboss", "style": "double", "technique": "hard", "direction": "down", "size": 100, "depth": 10,
            "altitude": 89, "soften": 16, "highlight": {"color": "#000", "opacity": 1}, "opacity": 0.5)"),
        effect(R"("pattern", "file": ")" + write("a.txt", "").string() + R"(", "scale": 10)"),
        effect(R"("stroke"}, {"type": "outer-glow", "stops": [)" + stop + "]"),
        R"({"canvas": "#fff", "layers": [{"spread": -100, "offset": [-1000, 1000], "blend": "color-dodge",
            "clip": true, "knockout": true, "opacity": 0, "effects": []}, {"color": "#80ffffff"}]})",
        R"({"canvas": {"type": "radial-gradient", "stops": [)" + stop + "]}}"};
    for (const std::string& style : right) EXPECT_TRUE(taken(style)) << style;
    std::string manyStops = stop;
    for (int i = 0; i < 256; ++i) manyStops += "," + stop;
    const std::string wrong[] = {"[]",
                                 R"({"size": 0})",
                                 R"({"size": 10001})",
                                 R"({"size": "1"})",
                                 R"({"designed-for": 0})",
                                 R"({"description": 1})",
                                 R"({"text": ""})",
                                 R"({"color": "#ffff"})",
                                 R"({"color": "fff"})",
                                 R"({"opacity": 1.1})",
                                 R"({"letter-spacing": -2})",
                                 R"({"effects": {}})",
                                 R"({"effects": [], "layers": [{}]})",
                                 R"({"layers": []})",
                                 R"({"layers": [{"spread": 0.5}]})",
                                 R"({"layers": [{"spread": 101}]})",
                                 R"({"layers": [{"offset": [1]}]})",
                                 R"({"layers": [{"offset": [1, 2000]}]})",
                                 R"({"layers": [{"blend": "add"}]})",
                                 R"({"layers": [{"knockout": 1}]})",
                                 R"({"layers": [{"layers": []}]})",
                                 R"({"canvas": "white"})",
                                 R"({"canvas": {"type": "stroke"}})",
                                 R"({"effects": [1]})",
                                 R"({"effects": [{}]})",
                                 effect(R"("blur")"),
                                 effect(R"("stroke"}, {"type": "bevel"}, {"type": "stroke")"),
                                 effect(R"("stroke", "size": 1)"),
                                 effect(R"("stroke", "width": 101)"),
                                 effect(R"("stroke", "position": "under")"),
                                 effect(R"("bevel", "style": "double")"),
                                 effect(R"("bevel", "altitude": 90)"),
                                 effect(R"("bevel", "shadow": "#fff")"),
                                 effect(R"("bevel", "shadow": {"opacity": 1})"),
                                 effect(R"("pattern")"),
                                 effect(R"("pattern", "file": "")"),
                                 R"({"description": ")" + std::string(4097, 'x') + "\"}",
                                 effect(R"("radial-gradient")"),
                                 effect(R"("radial-gradient", "angle": 1, "stops": [)" + stop + "]"),
                                 effect(R"("inner-glow", "stops": [])"),
                                 effect(R"("inner-glow", "stops": [)" + manyStops + "]"),
                                 effect(R"("inner-glow", "stops": [{"color": "#fff"}])"),
                                 effect(R"("inner-glow", "stops": [{"color": "#fff", "position": 101}])")};
    for (const std::string& style : wrong) EXPECT_FALSE(taken(style)) << style;
}

}  // namespace
