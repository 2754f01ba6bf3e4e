// SPDX-License-Identifier: Apache-2.0
#include "scene/Json.h"

#include <algorithm>
#include <cstdio>
#include <set>
#include <vector>

#include "scene/Failure.h"

namespace Zvex::scene {

namespace {

constexpr size_t kLineWidth = 110;
constexpr size_t kMaxDepth = 16;  // the stops of a layer in the style of a line are at level eight
// Of the parser, which walks over earlier values time and again. Four effects full of stops make about 8000.
constexpr size_t kMaxEvents = 20'000;

// The parser would keep the last of two equal keys; this callback finds them instead.
class KeyWatch {
public:
    explicit KeyWatch(const std::string& name) : mName(name) {}

    bool operator()(int, Json::parse_event_t event, Json& parsed) {
        using Event = Json::parse_event_t;
        if (++mEvents > kMaxEvents) throw UsageError(mName + " has too many keys and values");
        if (event == Event::object_end || event == Event::array_end) {
            mLevels.pop_back();
        } else if (event == Event::key) {
            mLevels.back().key = parsed.get<std::string>();
            if (!mLevels.back().keys.insert(mLevels.back().key).second)
                throw UsageError(place() + ": is given twice");
        } else {
            if (!mLevels.empty()) ++mLevels.back().count;
            if (event == Event::value) return true;
            mLevels.push_back({event == Event::array_start, "", 0, {}});
            if (mLevels.size() > kMaxDepth) throw UsageError(mName + " is nested too deeply");
        }
        return true;
    }

private:
    struct Level {
        bool array;
        std::string key;
        size_t count;  // elements begun
        std::set<std::string> keys;
    };

    std::string place() const {
        std::string text;
        for (const Level& level : mLevels) {
            text = level.array ? element(text, level.count - 1) : member(text, level.key);
        }
        return text;
    }

    const std::string& mName;
    std::vector<Level> mLevels;
    size_t mEvents = 0;
};

// The end of the blanks and comments that begin at `at`.
size_t skipBlank(const std::string& text, size_t at) {
    for (; at < text.size(); ++at) {
        if (text.compare(at, 2, "//") == 0) {
            at = std::min(text.find('\n', at), text.size() - 1);
        } else if (text.compare(at, 2, "/*") == 0) {
            at = std::min(text.find("*/", at + 2), text.size() - 2) + 1;
        } else if (text[at] != ' ' && text[at] != '\t' && text[at] != '\n' && text[at] != '\r') {
            return at;
        }
    }
    return at;
}

// Blanks in the place of commas before a closing bracket, so that the parser's places stay right.
std::string withoutTrailingCommas(std::string text) {
    char before = '[';
    for (size_t at = skipBlank(text, 0); at < text.size(); at = skipBlank(text, at + 1)) {
        const char c = text[at];
        if (c == ',') {
            const size_t next = skipBlank(text, at + 1);
            const bool last = next < text.size() && (text[next] == ']' || text[next] == '}');
            if (last && before != '[' && before != '{' && before != ',' && before != ':') text[at] = ' ';
        } else if (c == '"') {
            for (++at; at < text.size() && text[at] != '"'; ++at) at += text[at] == '\\';
        }
        before = c;
    }
    return text;
}

}  // namespace

bool beginsObject(const std::string& text) {
    const size_t start = skipBlank(text, 0);
    return start < text.size() && text[start] == '{';
}

std::string member(const std::string& place, const std::string& key) {
    return place.empty() ? key : place + "." + key;
}

std::string element(const std::string& place, size_t index) {
    return place + "[" + std::to_string(index) + "]";
}

Json parseJson(const std::string& text, const std::string& name) {
    try {
        KeyWatch watch(name);
        return Json::parse(
            withoutTrailingCommas(text),
            [&](int depth, Json::parse_event_t event, Json& parsed) { return watch(depth, event, parsed); },
            true, true);
    } catch (const Json::exception& error) {
        // "[json.exception.parse_error.101] parse error at line 3, column 5: ..."; the only line is not
        // named.
        std::string what = error.what();
        what.erase(0, what.find("] ") + 2);
        const std::string line = "line 1, ";
        const size_t at = what.find(line);
        if (at != std::string::npos && text.find('\n') == std::string::npos) what.erase(at, line.size());
        throw UsageError(name + " is not JSON: " + what);
    }
}

Json numberJson(double value) {
    const auto whole = static_cast<int64_t>(std::clamp(value, -1e15, 1e15));
    return static_cast<double>(whole) == value ? Json(whole) : Json(value);
}

std::string dumpJson(const Json& json, int indent) {
    const std::string text = json.dump(indent, ' ', false, Json::error_handler_t::replace);
    std::string safe;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        const bool pair = byte == 0xC2 && next < 0xA0;
        if (byte != 0x7F && !pair) {
            safe += text[i];
            continue;
        }
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04x", pair ? next : byte);
        safe += escape;
        i += pair;
    }
    return safe;
}

namespace {

std::string layOut(const Json& json, size_t indent, size_t before, bool oneLine) {
    if (json.empty() || !json.is_structured()) return dumpJson(json);
    if (!oneLine) {
        std::string text = layOut(json, 0, 0, true);
        if (before + text.size() < kLineWidth && indent > 0) return text;
    }
    const bool array = json.is_array();
    const std::string space = oneLine ? "" : "\n" + std::string(indent + 2, ' ');
    std::string text;
    for (const auto& [key, value] : json.items()) {
        const std::string name = array ? "" : dumpJson(key) + ": ";
        text += (text.empty() ? space
                 : oneLine    ? ", "
                              : "," + space) +
                name + layOut(value, indent + 2, indent + 2 + name.size(), oneLine);
    }
    if (!oneLine) text += "\n" + std::string(indent, ' ');
    return array ? "[" + text + "]" : "{" + text + "}";
}

}  // namespace

std::string layOutJson(const Json& json) {
    return layOut(json, 0, 0, false) + "\n";
}

std::string plainText(const Json& json) {
    return json.is_string() ? json.get<std::string>() : dumpJson(json);
}

}  // namespace Zvex::scene
