// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/FontFile.h"

#include <hb.h>

#include <algorithm>
#include <memory>

#include "platform/host/FontFace.h"
#include "tools/zvtext/Failure.h"
#include "tools/zvtext/TextInput.h"

namespace zvtext {

namespace {
constexpr size_t kMaxFontBytes = size_t{1} << 30;
}

FontFacts checkFont(const std::string& option, const std::string& path) {
    if (path.empty()) throw Failure(option + ": the path is empty");
    // readFile takes "-" for standard input; a font is always a file.
    const std::string content = readFile(option, path == "-" ? "./-" : path, kMaxFontBytes);
    if (content.empty()) throw Failure(option + ": '" + path + "' is empty");
    const std::shared_ptr<host::FontFace> face = host::FontFace::open(content.data(), content.size(), 0);
    if (face == nullptr)
        throw Failure(option + ": '" + path + "' is no font that can be read (or a damaged one)");

    std::unique_ptr<hb_font_t, void (*)(hb_font_t*)> font(hb_font_create(face->hbFace()), hb_font_destroy);
    hb_font_extents_t extents = {};
    hb_font_get_h_extents(font.get(), &extents);
    const auto em = static_cast<float>(face->unitsPerEm());
    FontFacts facts;
    facts.ascent = static_cast<float>(extents.ascender) / em;
    facts.descent = static_cast<float>(extents.line_gap - extents.descender) / em;
    const float weight = hb_style_get_value(font.get(), HB_STYLE_TAG_WEIGHT);
    facts.weight = static_cast<int>(std::clamp(weight, 1.0f, 1000.0f));
    facts.italic = hb_style_get_value(font.get(), HB_STYLE_TAG_ITALIC) > 0;
    return facts;
}

}  // namespace zvtext
