// SPDX-License-Identifier: Apache-2.0
#include "scene/Json.h"

#include <algorithm>
#include <cstdio>

namespace Zvex::scene {

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

std::string plainText(const Json& json) {
    return json.is_string() ? json.get<std::string>() : dumpJson(json);
}

}  // namespace Zvex::scene
