// SPDX-License-Identifier: Apache-2.0
// Tests refusals.txt: settings, styles (with the schema too), batch lines, command lines.
#include <cmath>
#include <nlohmann/json.hpp>
#include <regex>

#include "scene/Effects.h"
#include "scene/Style.h"
#include "scene/StyleSchema.h"
#include "tests/scene/Refusal.h"
#include "tests/tool/Program.h"

namespace {

using Json = nlohmann::json;
using Zvex::scene::refusal;

// Validates with the keywords that the schema uses; any other keyword fails the test.
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

    // Counts accepted schemas, or values.
    size_t countAccepted(const Json& schemas, const Json& values) const {
        size_t count = 0;
        for (const Json& schema : schemas) {
            for (const Json& value : values) count += accepts(schema, value);
        }
        return count;
    }

    // Keywords for one type hold for values of any other.
    bool holds(const Json& schema, const std::string& keyword, const Json& operand, const Json& value) const {
        static const std::set<std::string> kNotes = {"$schema", "$defs",       "title",      "description",
                                                     "default", "minContains", "maxContains"};
        const auto list = [](const Json& only) { return Json::array({only}); };
        const bool number = value.is_number(), text = value.is_string(), array = value.is_array();
        const size_t size = text ? value.get_ref<const std::string&>().size() : value.size();
        if (kNotes.count(keyword) > 0) return true;
        if (keyword == "$ref")
            return accepts(mRoot.at(Json::json_pointer(std::string(operand).substr(1))), value);
        if (keyword == "const") return value == operand;
        if (keyword == "enum") return std::count(operand.begin(), operand.end(), value) > 0;
        if (keyword == "not") return !accepts(operand, value);
        if (operand == "integer") return number && value == std::floor(value.get<double>());
        if (keyword == "type") return operand == (number ? "number" : value.type_name());
        if (keyword == "minimum") return !number || value >= operand;
        if (keyword == "maximum") return !number || value <= operand;
        if (keyword == "exclusiveMinimum") return !number || value > operand;
        if (keyword == "minLength") return !text || size >= operand;
        if (keyword == "maxLength") return !text || size <= operand;
        if (keyword == "minItems") return !array || size >= operand;
        if (keyword == "maxItems") return !array || size <= operand;
        if (keyword == "pattern")
            return !text || std::regex_search(std::string(value), std::regex(std::string(operand)));
        if (keyword == "items") return !array || countAccepted(list(operand), value) == size;
        if (keyword == "contains")
            return !array || countAccepted(list(operand), value) <= schema.at("maxContains");
        if (keyword == "oneOf") return countAccepted(operand, list(value)) == 1;
        if (keyword == "allOf") return countAccepted(operand, list(value)) == operand.size();
        static const Json kNone = Json::object();
        const Json& members = value.is_object() ? value : kNone;
        if (keyword == "required") {
            return !value.is_object() || std::all_of(operand.begin(), operand.end(), [&](const Json& key) {
                return members.contains(std::string(key));
            });
        }
        for (const auto& [key, member] : members.items()) {
            const Json& known = schema.at("properties");
            if (keyword == "additionalProperties" && !known.contains(key)) return false;
            if (keyword == "properties" && known.contains(key) && !accepts(known.at(key), member))
                return false;
        }
        EXPECT_TRUE(keyword == "properties" || keyword == "additionalProperties") << keyword;
        return true;
    }

    const Json& mRoot;
};

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
    const Validator validator(schema);
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
        EXPECT_EQ(!value.is_discarded() && validator.accepts(value), unknown) << json.substr(0, 200);
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
        R"({"canvas": {"type": "radial-gradient", "stops": [{"color": "#fff", "position": 0}]}})"};
    for (const auto& file : fs::directory_iterator(fs::path(ZVTEXT_SOURCE) / "examples/styles")) {
        right.push_back(slurp(file.path()));
    }
    for (const std::string& json : right) {
        EXPECT_EQ(check(json), "") << json;
        EXPECT_TRUE(validator.accepts(Json::parse(json, nullptr, true, true))) << json;
    }
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
    for (const Row& row : rows("refusals", "commands")) {
        expectRefused(row.input.substr(2), row.input[0] - '0', row.answer + (row.whole ? "\n" : ""));
        ASSERT_EQ(slurp(file("out.png")), "an older picture") << row.input;
    }
}

}  // namespace
