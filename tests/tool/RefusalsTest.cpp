// SPDX-License-Identifier: Apache-2.0
// What is refused, in refusals.txt: settings, styles (by the schema too), lines of a batch, command lines.
#include <cmath>
#include <map>
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

    // Of the schemas, or of the values.
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

struct Refused {
    std::string input, message;
    bool whole;  // the message, not how it begins
};

class Refusals : public Program {
protected:
    // The section's lines.
    std::vector<Refused> section(const std::string& name) const {
        std::vector<Refused> rows;
        std::vector<std::pair<std::string, std::string>> names;
        std::stringstream file(slurp(fs::path(ZVTEXT_SOURCE) / "tests/tool/refusals.txt"));
        bool here = false;
        for (std::string line; std::getline(file, line);) {
            if (line.empty() || line[0] == '#') continue;
            if (line[0] == '=') here = line.rfind("== " + name, 0) == 0;
            const size_t equals = line[0] == '$' ? line.find(" = ") : std::string::npos;
            const size_t arrow = line.find(" =>");
            if (equals != std::string::npos && arrow == std::string::npos) {
                names.emplace_back(line.substr(0, equals), line.substr(equals + 3));
            } else if (here && arrow != std::string::npos) {
                for (auto replaced = names.rbegin(); replaced != names.rend(); ++replaced) {
                    for (size_t at; (at = line.find(replaced->first)) != std::string::npos;)
                        line.replace(at, replaced->first.size(), replaced->second);
                }
                const size_t end = line.find(" =>");
                std::string message = unpacked(line.substr(std::min(end + 4, line.size())));
                const bool whole = message.size() < 3 || message.compare(message.size() - 3, 3, "...") != 0;
                if (!whole) message.resize(message.size() - 3);
                rows.push_back({unpacked(line.substr(0, end)), message, whole});
            }
        }
        EXPECT_GT(rows.size(), 30u) << name;
        return rows;
    }

    // With the repetitions and bytes written out.
    static std::string unpacked(std::string text) {
        for (size_t at; (at = text.find("<<")) != std::string::npos;) {
            const size_t bar = text.find('|', at), end = text.find(">>", at);
            const std::string part = text.substr(bar + 1, end - bar - 1);
            std::string many;
            for (int i = std::atoi(text.c_str() + at + 2); i > 0; --i) many += part;
            text.replace(at, end + 2 - at, many);
        }
        for (size_t at = 0; (at = text.find("\\x", at)) != std::string::npos; ++at) {
            text.replace(at, 4, 1, static_cast<char>(std::stoi(text.substr(at + 2, 2), nullptr, 16)));
        }
        return text;
    }

    void expectMessage(std::string found, const Refused& row, const std::string& before = "") const {
        const std::string message = before + expanded(row.message);
        if (!row.whole) found.resize(std::min(found.size(), message.size()));
        EXPECT_EQ(found, message) << row.input.substr(0, 200);
    }
};

TEST_F(Refusals, OfSettings) {
    for (const Refused& row : section("effects")) {
        const std::string kind = row.input.substr(0, row.input.find(' '));
        const std::string found = refusal([&] {
            Zvex::scene::parseEffect("--" + kind, *Zvex::scene::findEffectKind(kind),
                                     row.input.substr(kind.size() + 1));
        });
        expectMessage(found, row, "--" + kind);
    }
}

// The schema takes what the program takes.
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
    for (const Refused& row : section("styles")) {
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
    const std::vector<Refused> rows = section("lines");
    for (const Refused& row : rows) lines += row.input + "\n";
    const Result result = zvtext("batch -f $FONT --output-dir $DIR/out --jobs 2", lines);
    EXPECT_EQ(result.status, 1);
    std::stringstream results(result.out);
    size_t count = 0;
    for (std::string line; std::getline(results, line); ++count) {
        const Json json = Json::parse(line);
        EXPECT_EQ(json.value("line", 0u), count + 1);
        expectMessage(json.value("error", ""), rows.at(count));
        EXPECT_EQ(fs::exists(file("out") / (std::to_string(count + 1) + ".png")), count + 1 == rows.size());
    }
    EXPECT_EQ(count, rows.size());
}

TEST_F(Refusals, OfCommandLinesWhichLeaveFilesAlone) {
    const std::string font = slurp(kFont);
    write("empty", "");
    write("garbage", std::string(5000, 'z'));
    write("cut.ttf", font.substr(0, 200));
    write("woff2", "wOF2....");
    write("nul", std::string("a\0b", 3));
    write("bad.json", R"({"size": 0})");
    write("out.png", "an older picture");
    fs::create_hard_link(file("out.png"), file("same.png"));
    for (const Refused& row : section("commands")) {
        expectRefused(row.input.substr(2), row.input[0] - '0', row.message + (row.whole ? "\n" : ""));
        ASSERT_EQ(slurp(file("out.png")), "an older picture") << row.input;
    }
}

}  // namespace
