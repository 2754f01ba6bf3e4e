// SPDX-License-Identifier: Apache-2.0
#include "fuzz/Fonts.h"

#include <hb-subset.h>
#include <hb.h>

#include <cstdio>
#include <cstdlib>

#include "platform/host/FontFace.h"

namespace fuzz {
namespace {

struct Source {
    const char* path;
    int index;
    const char32_t* characters;
};

constexpr Source kSources[] = {
    {"/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf", 0,
     U"AVfix.e\u0301\u0308\u0327 \u00E9\u05D0\u05B8\u0628\u0644"},
    {"/usr/share/fonts/truetype/noto/NotoNaskhArabic-Regular.ttf", 0,
     U"\u0628\u0644\u0627\u0645\u0647\u064E\u0651 \u0661\u200D"},
    {"/usr/share/fonts/truetype/noto/NotoSansDevanagari-Regular.ttf", 0,
     U"\u0915\u094D\u0937\u093F\u0930\u0902\u0947 \u0967\u200C"},
    {"/usr/share/fonts/truetype/noto/NotoSansThai-Regular.ttf", 0, U"\u0E01\u0E33\u0E48\u0E35\u0E4E \u0E34"},
    {"/usr/share/fonts/truetype/inter-vf/Inter-roman.var.ttf", 0, U"AVa1. \u00C5"},
    {"/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc", 2,
     U"\u4E16\u754Cg\u3042\u3001\u1112\u1161\u11AB"},
    {"/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf", 0,
     U"\U0001F600\U0001F468\u200D\u2764\uFE0F\U0001F1E9\U0001F1EA"},
};

// The port's own table gives the axis values of the variable font.
void setAxes(hb_face_t* face) {
    static constexpr char kValues[] = "wght\x02\x8A\x00\x00slnt\xFF\xFC\x00\x00";
    hb_blob_t* table =
        hb_blob_create(kValues, sizeof(kValues) - 1, HB_MEMORY_MODE_READONLY, nullptr, nullptr);
    hb_face_builder_add_table(face, host::kAxesTable, table);
    hb_blob_destroy(table);
}

// Empty if the file is missing or is no font.
std::string subset(const Source& source) {
    std::string bytes;
    hb_blob_t* file = hb_blob_create_from_file(source.path);
    hb_face_t* face = hb_face_create(file, static_cast<unsigned>(source.index));
    hb_subset_input_t* input = hb_subset_input_create_or_fail();
    if (hb_face_get_glyph_count(face) > 0 && input != nullptr) {
        hb_set_t* wanted = hb_subset_input_unicode_set(input);
        for (const char32_t* c = source.characters; *c != 0; ++c) hb_set_add(wanted, *c);
        if (hb_face_t* part = hb_subset_or_fail(face, input)) {
            if (hb_face_get_upem(part) > 0 && std::string(source.path).find(".var.") != std::string::npos)
                setAxes(part);
            hb_blob_t* blob = hb_face_reference_blob(part);
            unsigned length = 0;
            const char* data = hb_blob_get_data(blob, &length);
            bytes.assign(data, length);
            hb_blob_destroy(blob);
            hb_face_destroy(part);
        }
    }
    hb_subset_input_destroy(input);
    hb_face_destroy(face);
    hb_blob_destroy(file);
    return bytes;
}

}  // namespace

const std::vector<Font>& fonts() {
    static const auto* const all = [] {
        auto* made = new std::vector<Font>;
        for (const Source& source : kSources) {
            const std::string bytes = subset(source);
            const bool opens = host::FontFace::open(bytes.data(), bytes.size(), 0) != nullptr;
            if (opens) made->push_back({source.path, bytes, source.characters});
            if (!opens) std::fprintf(stderr, "no font, run scripts/setup: %s\n", source.path);
        }
        if (made->empty()) std::abort();
        return made;
    }();
    return *all;
}

}  // namespace fuzz
