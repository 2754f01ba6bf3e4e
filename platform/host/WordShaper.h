// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_WORDSHAPER_H_
#define ZVEX_PLATFORM_HOST_WORDSHAPER_H_

#include <hb.h>
#include <minikin/MinikinFont.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "platform/host/FontFace.h"
#include "platform/host/FontFallback.h"
#include "platform/host/LocaleLists.h"

namespace host {

// The settings of a paint and a typeface that affect a layout.
struct LayoutRequest {
    const minikin::FontCollection* collection = nullptr;
    minikin::FontStyle style;
    GlyphStyle glyph;         // before adding what a font lacks of the style
    float letterSpacing = 0;  // ems
    uint32_t localeListId = 0;
    minikin::FontFamily::Variant variant = minikin::FontFamily::Variant::DEFAULT;
    std::string features;
};

// The glyphs of a word in visual order, with positions from the word's origin.
struct Word {
    struct Glyph {
        uint32_t family;  // of the collection
        uint32_t id;
        float x, y;
        uint32_t cluster;  // offset in the shaped text
        minikin::MinikinRect ink;
    };

    std::vector<Glyph> glyphs;
    minikin::MinikinRect bounds;
    float advance = 0;
};

// The features that a request turns on or off, each tag once: from its settings, where the last entry of a
// tag wins, and those that its letter spacing turns off. At most kMaxFeatures tags; the first time that some
// are left out, it is logged.
constexpr size_t kMaxFeatures = 1024;

// Whether every entry of the settings can be read, or there is none.
bool areFeatures(const std::string& settings);
std::vector<hb_feature_t> featuresOf(const LayoutRequest& request);

bool isEmpty(const minikin::MinikinRect& box);
// Makes `bounds` the union of both; empty boxes add nothing.
void join(minikin::MinikinRect* bounds, const minikin::MinikinRect& ink);

// Shapes words with HarfBuzz at 24.8 fixed point, in runs of one font, each split into runs of one script.
// Make one for each layout; the references must outlive it.
class WordShaper {
public:
    WordShaper(const LayoutRequest& request, const std::vector<hb_feature_t>& features,
               FontFallback& fallback);
    ~WordShaper();
    WordShaper(const WordShaper&) = delete;
    WordShaper& operator=(const WordShaper&) = delete;

    // Shapes the word [start, end) of a text of `size` units. The rest of the text is context for joining
    // letters.
    Word shape(const uint16_t* text, size_t start, size_t end, size_t size, bool rightToLeft);

private:
    // A font at the request's size; passed to HarfBuzz's callbacks.
    struct SizedFont {
        const FontFace* face = nullptr;
        GlyphStyle glyph;
        hb_font_t* hbFont = nullptr;
        mutable bool exhausted = false;  // no memory for an advance; HarfBuzz must not see exceptions
    };
    struct ScriptRun {
        size_t start, end;
        hb_script_t script;
        uint32_t family;
    };

    static hb_font_funcs_t* fontFunctions();
    static void readAdvances(hb_font_t*, void* fontData, unsigned count, const hb_codepoint_t* glyphs,
                             unsigned glyphStride, hb_position_t* advances, unsigned advanceStride, void*);

    const SizedFont& fontOf(size_t family);
    std::vector<ScriptRun> scriptRuns(const FontRun& run) const;
    void layScriptRun(const ScriptRun& run);
    size_t pieceEnd(hb_buffer_t* buffer, const ScriptRun& whole, size_t start);
    size_t endOfFew(hb_buffer_t* buffer, const ScriptRun& whole, size_t start, size_t end);
    bool shapeInto(hb_buffer_t* buffer, const ScriptRun& run);
    void place(hb_buffer_t* buffer, const ScriptRun& run);
    hb_language_t languageFor(hb_script_t script) const;

    const LayoutRequest& mRequest;
    const LocaleList& mLocales;
    const std::vector<hb_feature_t>& mFeatures;
    FontFallback& mFallback;
    std::deque<SizedFont> mFonts;         // never moved: HarfBuzz holds pointers
    std::vector<uint32_t> mFontOfFamily;  // index into mFonts, or none yet
    const uint16_t* mText = nullptr;
    size_t mSize = 0;
    bool mRightToLeft = false;
    Word mWord;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_WORDSHAPER_H_
