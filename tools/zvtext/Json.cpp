// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/Json.h"

#include <algorithm>

namespace zvtext {

Json numberJson(double value) {
    const auto whole = static_cast<int64_t>(std::clamp(value, -1e15, 1e15));
    return static_cast<double>(whole) == value ? Json(whole) : Json(value);
}

std::string dumpJson(const Json& json, int indent) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

std::string plainText(const Json& json) {
    return json.is_string() ? json.get<std::string>() : dumpJson(json);
}

}  // namespace zvtext
