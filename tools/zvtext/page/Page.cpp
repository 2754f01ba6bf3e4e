// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/page/Page.h"

#include <algorithm>
#include <cstdint>
#include <map>

namespace zvtext {

extern const char kPage[];  // page.html

void Page::beginSection(const std::string& name, const std::string& title, const std::string& introduction,
                        const std::string& classes) {
    links += "<a href=\"#" + escaped(name) + "\">" + escaped(title) + "</a>\n";
    sections += "<section id=\"" + escaped(name) + "\"" +
                (classes.empty() ? "" : " class=\"" + classes + "\"") + ">\n<header>\n<h2>" + escaped(title) +
                "</h2>\n<p>" + escaped(introduction) + "</p>\n</header>\n";
}

std::string Page::html() const {
    const std::map<std::string, const std::string&> parts = {
        {"$TITLE$", title}, {"$INTRODUCTION$", introduction}, {"$HEAD$", head}, {"$CONTROLS$", controls},
        {"$LINKS$", links}, {"$SECTIONS$", sections}};
    const std::string frame = kPage;
    std::string html;
    for (size_t at = 0; at < frame.size();) {
        const size_t mark = std::min(frame.find('$', at), frame.size());
        const size_t end = std::min(frame.find('$', mark + 1), frame.size() - 1) + 1;
        html += frame.substr(at, mark - at);
        if (mark < end) html += parts.at(frame.substr(mark, end - mark));
        at = end;
    }
    return html;
}

std::string escaped(const std::string& text) {
    static const std::map<char, std::string> kEntities = {
        {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}};
    std::string result;
    for (const char c : text) {
        const auto entity = kEntities.find(c);
        result += entity != kEntities.end() ? entity->second : std::string(1, c);
    }
    return result;
}

std::string dataAddress(const std::string& mediaType, const std::string& bytes) {
    static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string address = "data:" + mediaType + ";base64,";
    for (size_t at = 0; at < bytes.size(); at += 3) {
        uint32_t three = 0;
        for (size_t i = at; i < at + 3; ++i)
            three = three << 8 | (i < bytes.size() ? static_cast<uint8_t>(bytes[i]) : 0);
        for (size_t digit = 0; digit < 4; ++digit)
            address += at + digit > bytes.size() ? '=' : kDigits[three >> (18 - 6 * digit) & 63];
    }
    return address;
}

}  // namespace zvtext
