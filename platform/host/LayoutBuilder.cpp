// SPDX-License-Identifier: Apache-2.0
#include "platform/host/LayoutBuilder.h"

#include <hwui/MinikinSkia.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>

#include "platform/host/BidiRuns.h"
#include "platform/host/Clusters.h"
#include "platform/host/ShapingFont.h"

namespace host {
namespace {

constexpr uint32_t kNoFace = UINT32_MAX;
constexpr float kFixedOne = 256;           // 24.8 fixed point
constexpr float kLigatureSpacing = 0.03f;  // ems; letters further apart than this do not join into one shape
constexpr double kMaxSpacing = 1 << 20;    // pixels
// HarfBuzz gives the process up over a mark more than 32767 glyphs after its base, and takes time with the
// square of a row of marks. A font may make many glyphs of a character: HarfBuzz ends at 64 for each, but
// fills the memory it has, up to half as much again.
constexpr size_t kShapedUnits = 340;
static_assert(kShapedUnits * 64 * 3 / 2 + 32 <= 32767);
constexpr unsigned kKeptGlyphs = 1u << 16;  // a buffer that grew beyond this is not kept

// Cut to what leaves HarfBuzz room for sums; only a font made to hurt states such advances.
hb_position_t toFixed(float pixels) {
    const float limit = 1 << 28;
    return static_cast<hb_position_t>(std::clamp(std::floor(pixels * kFixedOne + 0.5f), -limit, limit));
}
float fromFixed(hb_position_t position) {
    return static_cast<float>(position) / kFixedOne;
}

// Letters that join or hang from a line would be torn apart.
bool takesLetterSpacing(hb_script_t script) {
    switch (script) {
        case HB_SCRIPT_ARABIC:
        case HB_SCRIPT_NKO:
        case HB_SCRIPT_PSALTER_PAHLAVI:
        case HB_SCRIPT_MANDAIC:
        case HB_SCRIPT_MONGOLIAN:
        case HB_SCRIPT_PHAGS_PA:
        case HB_SCRIPT_DEVANAGARI:
        case HB_SCRIPT_BENGALI:
        case HB_SCRIPT_GURMUKHI:
        case HB_SCRIPT_MODI:
        case HB_SCRIPT_SHARADA:
        case HB_SCRIPT_SYLOTI_NAGRI:
        case HB_SCRIPT_TIRHUTA:
        case HB_SCRIPT_OGHAM:
            return false;
        default:
            return true;
    }
}

std::vector<hb_feature_t> featuresOf(const LayoutRequest& request) {
    std::vector<hb_feature_t> features;
    if (std::fabs(request.letterSpacing) > kLigatureSpacing) {
        for (const hb_tag_t tag : {HB_TAG('l', 'i', 'g', 'a'), HB_TAG('c', 'l', 'i', 'g')}) {
            features.push_back({tag, 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END});
        }
    }
    // Later entries win, so a setting can bring the ligatures back.
    const std::string& settings = request.features;
    for (size_t begin = 0; begin < settings.size();) {
        const size_t comma = std::min(settings.find(',', begin), settings.size());
        hb_feature_t feature;
        if (hb_feature_from_string(settings.data() + begin, static_cast<int>(comma - begin), &feature) &&
            feature.start == HB_FEATURE_GLOBAL_START && feature.end == HB_FEATURE_GLOBAL_END) {
            features.push_back(feature);
        }
        begin = comma + 1;
    }
    return features;
}

// What goes before and after each cluster, in pixels.
struct Spacing {
    float before = 0, after = 0;
};

Spacing spacingFor(const LayoutRequest& request, hb_script_t script) {
    double space = static_cast<double>(request.letterSpacing) * request.glyph.size * request.glyph.scaleX;
    if (!std::isfinite(space) || !takesLetterSpacing(script)) return Spacing();
    space = std::clamp(space, -kMaxSpacing, kMaxSpacing);
    if (!request.linearText) space = std::round(space);
    const double before = std::floor(space * 0.5);
    return Spacing{static_cast<float>(before), static_cast<float>(space - before)};
}

// Where to end a piece of [start, end) that can be shaped at once: after a space, as words shape alike on
// either side of it, else between clusters, and within a cluster only if it is longer than a piece.
size_t pieceEnd(const uint16_t* text, size_t start, size_t end) {
    if (end - start <= kShapedUnits) return end;
    const size_t limit = start + kShapedUnits;
    for (size_t at = limit; at > start; at--) {
        if (text[at - 1] == ' ' && clusterEnd(text, at - 1, limit + 1) == at) return at;
    }
    size_t piece = start;
    for (size_t at = start; at <= limit; at = clusterEnd(text, at, limit + 1)) piece = at;
    if (piece > start) return piece;
    const bool withinPair = (text[limit - 1] & 0xFC00) == 0xD800 && (text[limit] & 0xFC00) == 0xDC00;
    return withinPair ? limit - 1 : limit;
}

// A buffer for the thread, so that a line of text allocates none.
class ThreadBuffer {
public:
    ~ThreadBuffer() { hb_buffer_destroy(mBuffer); }

    hb_buffer_t* cleared() {
        if (!mBuffer) {
            hb_buffer_t* made = hb_buffer_create();
            if (!hb_buffer_allocation_successful(made)) throw std::bad_alloc();
            mBuffer = made;
        }
        hb_buffer_clear_contents(mBuffer);
        return mBuffer;
    }
    // Without memory the text is cut off, and no call says so.
    void throwIfExhausted() const {
        if (!hb_buffer_allocation_successful(mBuffer)) throw std::bad_alloc();
    }
    void release() {
        if (hb_buffer_get_length(mBuffer) <= kKeptGlyphs) return;
        hb_buffer_destroy(mBuffer);
        mBuffer = nullptr;
    }

private:
    hb_buffer_t* mBuffer = nullptr;
};

minikin::MinikinRect boxAt(const InkBox& box, float x, float y) {
    return {box.left + x, box.top + y, box.right + x, box.bottom + y};
}

bool isEmpty(const minikin::MinikinRect& box) {
    return box.mLeft >= box.mRight || box.mTop >= box.mBottom;
}

void join(minikin::MinikinRect* bounds, const minikin::MinikinRect& ink) {
    if (isEmpty(*bounds)) {
        *bounds = ink;
        return;
    }
    bounds->mLeft = std::min(bounds->mLeft, ink.mLeft);
    bounds->mTop = std::min(bounds->mTop, ink.mTop);
    bounds->mRight = std::max(bounds->mRight, ink.mRight);
    bounds->mBottom = std::max(bounds->mBottom, ink.mBottom);
}

}  // namespace

void LayoutBuilder::readAdvances(hb_font_t*, void* fontData, unsigned count, const hb_codepoint_t* glyphs,
                                 unsigned glyphStride, hb_position_t* advances, unsigned advanceStride,
                                 void*) {
    const auto* font = static_cast<const SizedFont*>(fontData);
    const auto* glyph = reinterpret_cast<const char*>(glyphs);
    auto* advance = reinterpret_cast<char*>(advances);
    for (; count > 0; count--, glyph += glyphStride, advance += advanceStride) {
        const hb_codepoint_t id = *reinterpret_cast<const hb_codepoint_t*>(glyph);
        *reinterpret_cast<hb_position_t*>(advance) = toFixed(font->face->advance(id, font->glyph));
    }
}

// Advances are the port's own; everything else comes from the parent font, scaled. Never destroyed.
hb_font_funcs_t* LayoutBuilder::fontFunctions() {
    static hb_font_funcs_t* const functions = [] {
        hb_font_funcs_t* made = hb_font_funcs_create();
        hb_font_funcs_set_glyph_h_advances_func(made, readAdvances, nullptr, nullptr);
        hb_font_funcs_make_immutable(made);
        return made;
    }();
    return functions;
}

LayoutBuilder::LayoutBuilder(const LayoutRequest& request)
    : mRequest(request),
      mLocales(localeListOf(request.localeListId)),
      mFallback(*request.collection, request.style, request.localeListId, request.variant),
      mFeatures(featuresOf(request)),
      mFaceOfFamily(request.collection->families().size(), kNoFace) {}

LayoutBuilder::~LayoutBuilder() {
    for (const SizedFont& font : mFonts) hb_font_destroy(font.hbFont);
}

minikin::Layout LayoutBuilder::build(minikin::Bidi bidi, const uint16_t* text, size_t start, size_t end,
                                     size_t size) {
    mText = text;
    mSize = size;
    if (!mFaceOfFamily.empty()) {
        for (const BidiRun& direction : visualRuns(text, start, end, size, bidi)) {
            std::vector<FontRun> runs = mFallback.cut(text, direction.start, direction.end);
            if (direction.rightToLeft) std::reverse(runs.begin(), runs.end());
            for (const FontRun& run : runs) layFontRun(run, direction.rightToLeft);
        }
    }
    return std::move(mLayout);
}

void LayoutBuilder::layFontRun(const FontRun& run, bool rightToLeft) {
    const uint32_t face = faceIndexOf(run.family);
    std::vector<ScriptRun> scripts = scriptRuns(run.start, run.end);
    if (rightToLeft) std::reverse(scripts.begin(), scripts.end());
    for (const ScriptRun& script : scripts) shape(script, face, rightToLeft);
}

uint32_t LayoutBuilder::faceIndexOf(size_t family) {
    uint32_t& index = mFaceOfFamily[family];
    if (index != kNoFace) return index;
    index = static_cast<uint32_t>(mFonts.size());
    const minikin::FakedFont& chosen = mFallback.fontOf(family);
    const ShapingFont& parent = *chosen.font->shaping();

    mFonts.emplace_back();
    SizedFont& font = mFonts.back();
    font.face = parent.face.get();
    font.glyph = mRequest.glyph;
    font.glyph.fakeBold |= chosen.fakery.isFakeBold();
    if (chosen.fakery.isFakeItalic()) font.glyph.skewX += android::MinikinFontSkia::kFakeItalicSkew;
    const float width = font.glyph.size * font.glyph.scaleX;
    font.hbFont = hb_font_create_sub_font(parent.hbFont);
    if (font.hbFont == hb_font_get_empty()) throw std::bad_alloc();
    hb_font_set_scale(font.hbFont, toFixed(width), toFixed(font.glyph.size));
    hb_font_set_ppem(font.hbFont, static_cast<unsigned>(std::fabs(width)),
                     static_cast<unsigned>(font.glyph.size));
    hb_font_set_funcs(font.hbFont, fontFunctions(), &font, nullptr);

    mLayout.mFaces.push_back({chosen.font->typeface(), chosen.fakery});
    return index;
}

// Common and inherited characters join the script before them, at the start the one after them. Long runs
// come in pieces.
std::vector<LayoutBuilder::ScriptRun> LayoutBuilder::scriptRuns(size_t start, size_t end) const {
    hb_unicode_funcs_t* unicode = hb_unicode_funcs_get_default();
    std::vector<ScriptRun> runs;
    for (size_t at = start; at < end;) {
        const size_t here = at;
        hb_script_t script = hb_unicode_script(unicode, nextCodePoint(mText, &at, end));
        const bool shared = script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED;
        if (runs.empty()) {
            runs.push_back({here, at, shared ? HB_SCRIPT_COMMON : script});
        } else if (shared || script == runs.back().script || runs.back().script == HB_SCRIPT_COMMON) {
            runs.back().end = at;
            if (!shared) runs.back().script = script;
        } else {
            runs.push_back({here, at, script});
        }
    }
    std::vector<ScriptRun> pieces;
    for (const ScriptRun& run : runs) {
        for (size_t at = run.start; at < run.end; at = pieces.back().end) {
            pieces.push_back({at, pieceEnd(mText, at, run.end), run.script});
        }
    }
    return pieces;
}

hb_language_t LayoutBuilder::languageFor(hb_script_t script) const {
    for (const Locale& locale : mLocales) {
        if (locale.writesIn(script)) return locale.hbLanguage;
    }
    return mLocales.empty() ? HB_LANGUAGE_INVALID : mLocales[0].hbLanguage;
}

void LayoutBuilder::shape(const ScriptRun& run, uint32_t face, bool rightToLeft) {
    thread_local ThreadBuffer threadBuffer;
    hb_buffer_t* buffer = threadBuffer.cleared();
    hb_buffer_set_script(buffer, run.script);
    hb_buffer_set_direction(buffer, rightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb_buffer_set_language(buffer, languageFor(run.script));
    hb_buffer_add_utf16(buffer, mText, static_cast<int>(mSize), static_cast<unsigned>(run.start),
                        static_cast<int>(run.end - run.start));
    hb_shape(mFonts[face].hbFont, buffer, mFeatures.data(), static_cast<unsigned>(mFeatures.size()));
    threadBuffer.throwIfExhausted();
    place(buffer, face, run.script);
    threadBuffer.release();
}

void LayoutBuilder::place(hb_buffer_t* buffer, uint32_t face, hb_script_t script) {
    const SizedFont& font = mFonts[face];
    const Spacing spacing = spacingFor(mRequest, script);
    unsigned count = 0;
    const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer, &count);
    const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer, nullptr);

    float pen = mLayout.mAdvance;
    for (unsigned i = 0; i < count; i++) {
        if (i == 0 || infos[i].cluster != infos[i - 1].cluster) pen += spacing.before;
        const float y = 0 - fromFixed(positions[i].y_offset);
        // The paint's own skew alone moves what is raised or lowered, as on the platform: fake italic does
        // not.
        const float x = pen + fromFixed(positions[i].x_offset) + y * mRequest.glyph.skewX;
        const minikin::MinikinRect ink = boxAt(font.face->inkBox(infos[i].codepoint, font.glyph), x, y);
        mLayout.mGlyphs.push_back({face, infos[i].codepoint, x, y, infos[i].cluster, ink});
        if (!isEmpty(ink)) join(&mLayout.mBounds, ink);

        const float advance = fromFixed(positions[i].x_advance);
        pen += mRequest.linearText ? advance : std::round(advance);
        if (i + 1 == count || infos[i + 1].cluster != infos[i].cluster) pen += spacing.after;
    }
    mLayout.mAdvance = pen;
}

}  // namespace host
