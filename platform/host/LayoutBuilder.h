// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_LAYOUTBUILDER_H_
#define ZVEX_PLATFORM_HOST_LAYOUTBUILDER_H_

#include <hb.h>
#include <minikin/Layout.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "platform/host/FontFace.h"
#include "platform/host/FontFallback.h"
#include "platform/host/LocaleLists.h"

namespace host {

// What a paint and a typeface ask of a layout.
struct LayoutRequest {
    const minikin::FontCollection* collection = nullptr;
    minikin::FontStyle style;
    GlyphStyle glyph;         // before what a font lacks of the style is added
    float letterSpacing = 0;  // ems
    bool linearText = false;  // advances and letter spacing keep their fractions
    uint32_t localeListId = 0;
    minikin::FontFamily::Variant variant = minikin::FontFamily::Variant::DEFAULT;
    std::string features;
};

// Makes one layout: runs of one direction, one font and one script, each shaped by HarfBuzz at 24.8 fixed
// point.
class LayoutBuilder {
public:
    explicit LayoutBuilder(const LayoutRequest& request);
    ~LayoutBuilder();
    LayoutBuilder(const LayoutBuilder&) = delete;
    LayoutBuilder& operator=(const LayoutBuilder&) = delete;

    // Called once. start <= end <= size <= INT32_MAX.
    minikin::Layout build(minikin::Bidi bidi, const uint16_t* text, size_t start, size_t end, size_t size);

private:
    // A font at the request's size; what HarfBuzz's callbacks get.
    struct SizedFont {
        const FontFace* face = nullptr;
        GlyphStyle glyph;
        hb_font_t* hbFont = nullptr;
    };
    struct ScriptRun {
        size_t start, end;
        hb_script_t script;
    };

    static hb_font_funcs_t* fontFunctions();
    static void readAdvances(hb_font_t*, void* fontData, unsigned count, const hb_codepoint_t* glyphs,
                             unsigned glyphStride, hb_position_t* advances, unsigned advanceStride, void*);

    void layFontRun(const FontRun& run, bool rightToLeft);
    uint32_t faceIndexOf(size_t family);
    std::vector<ScriptRun> scriptRuns(size_t start, size_t end) const;
    void shape(const ScriptRun& run, uint32_t face, bool rightToLeft);
    void place(hb_buffer_t* buffer, uint32_t face, hb_script_t script);
    hb_language_t languageFor(hb_script_t script) const;

    const LayoutRequest& mRequest;
    const LocaleList& mLocales;
    FontFallback mFallback;
    std::vector<hb_feature_t> mFeatures;
    std::deque<SizedFont> mFonts;         // as mLayout.mFaces
    std::vector<uint32_t> mFaceOfFamily;  // index into mFonts, or kNoFace
    const uint16_t* mText = nullptr;
    size_t mSize = 0;
    minikin::Layout mLayout;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_LAYOUTBUILDER_H_
