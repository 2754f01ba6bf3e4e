// SPDX-License-Identifier: Apache-2.0
#include "platform/host/ShapingFont.h"

#include <hwui/MinikinSkia.h>

#include <new>
#include <utility>

namespace host {
namespace {

hb_font_t* immutableFont(const FontFace& face) {
    hb_font_t* font = hb_font_create(face.hbFace());
    if (font == hb_font_get_empty()) throw std::bad_alloc();
    face.setAxes(font);
    hb_font_make_immutable(font);
    return font;
}

bool hasTable(hb_face_t* face, hb_tag_t tag) {
    hb_blob_t* table = hb_face_reference_table(face, tag);
    const bool has = hb_blob_get_length(table) > 0;
    hb_blob_destroy(table);
    return has;
}

}  // namespace

std::shared_ptr<const ShapingFont> ShapingFont::open(const minikin::MinikinFont* font) {
    if (!font) return nullptr;
    std::shared_ptr<FontFace> face;
    if (const auto* skia = dynamic_cast<const android::MinikinFontSkia*>(font)) {
        if (skia->GetSkTypeface()) face = skia->GetSkTypeface()->face();
    } else {
        face = FontFace::open(font->GetFontData(), font->GetFontSize(), font->GetFontIndex());
    }
    return face ? std::make_shared<const ShapingFont>(std::move(face)) : nullptr;
}

ShapingFont::ShapingFont(std::shared_ptr<FontFace> fontFace)
    : face(std::move(fontFace)),
      hbFont(immutableFont(*face)),
      colorBitmaps(hasTable(face->hbFace(), HB_TAG('C', 'B', 'D', 'T'))) {}

ShapingFont::~ShapingFont() {
    hb_font_destroy(hbFont);
}

}  // namespace host
