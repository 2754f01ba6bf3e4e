// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_JSON_H_
#define ZVEX_SCENE_JSON_H_

#include <nlohmann/json.hpp>
#include <string>

namespace Zvex::scene {

// Objects keep the order of their keys.
using Json = nlohmann::ordered_json;

// The text's value; comments and trailing commas are allowed. Throws UsageError if the text is not JSON, if
// an object has a key twice, and if it is nested more deeply or holds more than styles and lines of a batch
// need. The message begins with the place in the text ("effects[2].size") or with its `name`.
Json parseJson(const std::string& text, const std::string& name = "it");

// Whether the first thing after blanks and comments is the { of an object.
bool beginsObject(const std::string& text);

// "effects[2].size": the names of a member and an element of what stands at `place`.
std::string member(const std::string& place, const std::string& key);
std::string element(const std::string& place, size_t index);

// A number; written without a fraction if it has none.
Json numberJson(double value);

// As JSON, in several lines with an `indent`, or in one line if it is below 0. Strings may hold anything:
// invalid UTF-8 is replaced, and control characters are escaped, also U+007F to U+009F.
std::string dumpJson(const Json& json, int indent = -1);

// In several lines; what fits into a line of 110 characters stands in one.
std::string layOutJson(const Json& json);

// For people: a string as it is, anything else as JSON.
std::string plainText(const Json& json);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_JSON_H_
