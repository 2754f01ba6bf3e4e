// SPDX-License-Identifier: Apache-2.0
#include "platform/host/WordShaper.h"

#include <android/log.h>
#include <hwui/MinikinSkia.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <map>
#include <new>
#include <utility>

#include "platform/host/Clusters.h"
#include "platform/host/ShapingFont.h"

namespace host {
namespace {

constexpr uint32_t kNoFont = UINT32_MAX;
constexpr float kFixedOne = 256;           // 24.8 fixed point
constexpr float kLigatureSpacing = 0.03f;  // ems; letters further apart do not form ligatures
constexpr double kMaxSpacing = 1 << 20;    // pixels
// HarfBuzz aborts the process if a mark comes more than this many glyphs after its base. It makes at most 64
// glyphs of one character, but uses as many as its memory holds, up to half as much again.
constexpr unsigned kMaxAttachedGlyphs = 32767;
constexpr size_t kHarmlessUnits = 340;
static_assert(kHarmlessUnits * 64 * 3 / 2 + 32 <= kMaxAttachedGlyphs);
// Longer runs are shaped in pieces, cut where it does not show.
constexpr size_t kPieceUnits = 8192;
constexpr unsigned kKeptGlyphs = 1u << 16;  // larger buffers are not kept

// Clamped so that HarfBuzz's sums do not overflow; only malicious fonts state such advances.
hb_position_t toFixed(float pixels) {
    const float limit = 1 << 28;
    return static_cast<hb_position_t>(std::clamp(std::floor(pixels * kFixedOne + 0.5f), -limit, limit));
}
float fromFixed(hb_position_t position) {
    return static_cast<float>(position) / kFixedOne;
}

// Letter spacing would tear apart letters that join or hang from a line.
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

// Space before and after each cluster, in pixels.
struct Spacing {
    double before = 0, after = 0;
};

Spacing spacingFor(const LayoutRequest& request, hb_script_t script) {
    double space = static_cast<double>(request.letterSpacing) * static_cast<double>(request.glyph.size) *
                   static_cast<double>(request.glyph.scaleX);
    if (!std::isfinite(space) || !takesLetterSpacing(script)) return Spacing();
    space = std::clamp(space, -kMaxSpacing, kMaxSpacing);
    if (!request.glyph.linear) space = std::round(space);
    const double before = request.glyph.linear ? space * 0.5 : std::floor(space * 0.5);
    return Spacing{before, space - before};
}

// One buffer for each thread, so that a line of text allocates none.
class ThreadBuffer {
public:
    ~ThreadBuffer() { hb_buffer_destroy(mBuffer); }

    hb_buffer_t* get() {
        if (!mBuffer) {
            hb_buffer_t* made = hb_buffer_create();
            if (!hb_buffer_allocation_successful(made)) throw std::bad_alloc();
            mBuffer = made;
        }
        return mBuffer;
    }
    void release() {
        if (hb_buffer_get_length(mBuffer) <= kKeptGlyphs) return;
        hb_buffer_destroy(mBuffer);
        mBuffer = nullptr;
    }

private:
    hb_buffer_t* mBuffer = nullptr;
};

// HarfBuzz calls this for its steps. Refuses, and records, steps that attach marks when there are too many
// glyphs.
hb_bool_t refuseToAttach(hb_buffer_t* buffer, hb_font_t*, const char* step, void* refused) {
    const bool attaches = std::strncmp(step, "start table GPOS", 16) == 0 ||
                          std::strncmp(step, "start subtable", 14) == 0;  // of kern and kerx
    if (!attaches || hb_buffer_get_length(buffer) <= kMaxAttachedGlyphs) return 1;
    *static_cast<bool*>(refused) = true;
    return 0;
}

// The last place in [start, end), the buffer's text, where it can be cut without changing its glyphs. Keeps a
// syllable or two away from the end, because the text continues there. `start` if there is none.
size_t lastSafeCut(hb_buffer_t* buffer, size_t start, size_t end) {
    constexpr size_t kUnsettled = 64;
    unsigned count = 0;
    const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer, &count);
    size_t cut = start;
    for (unsigned i = 0; i < count; i++) {
        const bool safe = (hb_glyph_info_get_glyph_flags(&infos[i]) & HB_GLYPH_FLAG_UNSAFE_TO_BREAK) == 0;
        if (safe && infos[i].cluster + kUnsettled <= end) cut = std::max<size_t>(cut, infos[i].cluster);
    }
    return cut;
}

// Where to end the text from `start` on if a cluster is not a letter but a sequence of hundreds of marks;
// these take time with the square of their number. `end` if there is none.
size_t endBeforeRowOfMarks(const uint16_t* text, size_t start, size_t end) {
    for (size_t at = start, next; at < end; at = next) {
        next = clusterEnd(text, at, end);
        if (next - at <= kHarmlessUnits) continue;
        if (at > start) return at;
        const size_t cut = start + kHarmlessUnits;
        return (text[cut - 1] & 0xFC00) == 0xD800 && (text[cut] & 0xFC00) == 0xDC00 ? cut - 1 : cut;
    }
    return end;
}

}  // namespace

bool isEmpty(const minikin::MinikinRect& box) {
    return !(box.mLeft < box.mRight && box.mTop < box.mBottom);
}

void join(minikin::MinikinRect* bounds, const minikin::MinikinRect& ink) {
    if (isEmpty(ink)) return;
    if (isEmpty(*bounds)) {
        *bounds = ink;
        return;
    }
    bounds->mLeft = std::min(bounds->mLeft, ink.mLeft);
    bounds->mTop = std::min(bounds->mTop, ink.mTop);
    bounds->mRight = std::max(bounds->mRight, ink.mRight);
    bounds->mBottom = std::max(bounds->mBottom, ink.mBottom);
}

namespace {

// Calls visit(feature) for each entry of the settings; the feature is null if it cannot be read, or is
// for a part of the text.
template <typename Visit>
void forEachFeature(const std::string& settings, Visit visit) {
    for (size_t begin = 0; begin < settings.size();) {
        const size_t comma = std::min(settings.find(',', begin), settings.size());
        hb_feature_t feature;
        const bool read =
            hb_feature_from_string(settings.data() + begin, static_cast<int>(comma - begin), &feature) &&
            feature.start == HB_FEATURE_GLOBAL_START && feature.end == HB_FEATURE_GLOBAL_END;
        visit(read ? &feature : nullptr);
        begin = comma + 1;
    }
}

}  // namespace

bool areFeatures(const std::string& settings) {
    // HarfBuzz lets values overflow; with so many digits none is of use.
    constexpr size_t kMaxDigits = 9;
    size_t digits = 0;
    for (const char c : settings) {
        digits = c >= '0' && c <= '9' ? digits + 1 : 0;
        if (digits > kMaxDigits) return false;
    }
    bool all = true;
    forEachFeature(settings, [&](const hb_feature_t* feature) { all = all && feature != nullptr; });
    return all;
}

// HarfBuzz sorts the list recursively, so its length is limited.
std::vector<hb_feature_t> featuresOf(const LayoutRequest& request) {
    std::map<hb_tag_t, uint32_t> values;
    if (std::fabs(request.letterSpacing) > kLigatureSpacing) {
        values[HB_TAG('l', 'i', 'g', 'a')] = values[HB_TAG('c', 'l', 'i', 'g')] = 0;
    }
    // Later entries win, so a setting can turn ligatures on again.
    bool tooMany = false;
    forEachFeature(request.features, [&](const hb_feature_t* feature) {
        if (feature == nullptr) return;
        if (values.size() < kMaxFeatures || values.count(feature->tag) != 0) {
            values[feature->tag] = feature->value;
        } else {
            tooMany = true;
        }
    });
    static std::atomic<bool> said{false};
    if (tooMany && !said.exchange(true)) {
        __android_log_print(ANDROID_LOG_ERROR, "Minikin",
                            "font feature settings of more than %zu tags: the others are left out",
                            kMaxFeatures);
    }
    std::vector<hb_feature_t> features;
    for (const auto& [tag, value] : values) {
        features.push_back({tag, value, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END});
    }
    return features;
}

void WordShaper::readAdvances(hb_font_t*, void* fontData, unsigned count, const hb_codepoint_t* glyphs,
                              unsigned glyphStride, hb_position_t* advances, unsigned advanceStride, void*) {
    const auto* font = static_cast<const SizedFont*>(fontData);
    const auto* glyph = reinterpret_cast<const char*>(glyphs);
    auto* advance = reinterpret_cast<char*>(advances);
    for (; count > 0; count--, glyph += glyphStride, advance += advanceStride) {
        const hb_codepoint_t id = *reinterpret_cast<const hb_codepoint_t*>(glyph);
        float pixels = 0;
        try {
            pixels = font->face->advance(id, font->glyph);
        } catch (const std::bad_alloc&) {
            font->exhausted = true;
        }
        *reinterpret_cast<hb_position_t*>(advance) = toFixed(pixels);
    }
}

// The port supplies the advances; everything else comes from the parent font, scaled. Never destroyed.
hb_font_funcs_t* WordShaper::fontFunctions() {
    static hb_font_funcs_t* const functions = [] {
        hb_font_funcs_t* made = hb_font_funcs_create();
        hb_font_funcs_set_glyph_h_advances_func(made, readAdvances, nullptr, nullptr);
        hb_font_funcs_make_immutable(made);
        return made;
    }();
    return functions;
}

WordShaper::WordShaper(const LayoutRequest& request, const std::vector<hb_feature_t>& features,
                       FontFallback& fallback)
    : mRequest(request),
      mLocales(localeListOf(request.localeListId)),
      mFeatures(features),
      mFallback(fallback),
      mFontOfFamily(request.collection->families().size(), kNoFont) {}

WordShaper::~WordShaper() {
    for (const SizedFont& font : mFonts) hb_font_destroy(font.hbFont);
}

Word WordShaper::shape(const uint16_t* text, size_t start, size_t end, size_t size, bool rightToLeft) {
    mText = text;
    mSize = size;
    mRightToLeft = rightToLeft;
    mWord = Word();
    std::vector<FontRun> runs = mFallback.cut(text, start, end);
    if (rightToLeft) std::reverse(runs.begin(), runs.end());
    for (const FontRun& run : runs) {
        for (const ScriptRun& script : scriptRuns(run)) layScriptRun(script);
    }
    return std::move(mWord);
}

const WordShaper::SizedFont& WordShaper::fontOf(size_t family) {
    uint32_t& index = mFontOfFamily[family];
    if (index != kNoFont) return mFonts[index];
    const minikin::FakedFont& chosen = mFallback.fontOf(family);
    const ShapingFont& parent = *chosen.font->shaping();

    SizedFont font;
    font.face = parent.face.get();
    font.glyph = mRequest.glyph;
    font.glyph.fakeBold |= chosen.fakery.isFakeBold();
    if (chosen.fakery.isFakeItalic()) font.glyph.skewX += android::MinikinFontSkia::kFakeItalicSkew;
    const float width = font.glyph.size * font.glyph.scaleX;
    font.hbFont = hb_font_create_sub_font(parent.hbFont);
    if (font.hbFont == hb_font_get_empty()) throw std::bad_alloc();
    hb_font_set_scale(font.hbFont, toFixed(width), toFixed(font.glyph.size));
    const auto whole = [](float v) { return static_cast<unsigned>(std::min(std::fabs(v), 65535.0f)); };
    hb_font_set_ppem(font.hbFont, whole(width), whole(font.glyph.size));
    index = static_cast<uint32_t>(mFonts.size());
    mFonts.push_back(font);
    // The phone uses the file's advances for fonts with colour strikes.
    if (!parent.colorBitmaps || font.glyph.rendering != Rendering::Phone) {
        hb_font_set_funcs(font.hbFont, fontFunctions(), &mFonts.back(), nullptr);
    }
    return mFonts.back();
}

// Common and inherited characters join the script before them; at the start, the one after them. In visual
// order.
std::vector<WordShaper::ScriptRun> WordShaper::scriptRuns(const FontRun& run) const {
    hb_unicode_funcs_t* unicode = hb_unicode_funcs_get_default();
    const auto family = static_cast<uint32_t>(run.family);
    std::vector<ScriptRun> runs;
    for (size_t at = run.start; at < run.end;) {
        const size_t here = at;
        hb_script_t script = hb_unicode_script(unicode, nextCodePoint(mText, &at, run.end));
        const bool shared = script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED;
        if (runs.empty()) {
            runs.push_back({here, at, shared ? HB_SCRIPT_COMMON : script, family});
        } else if (shared || script == runs.back().script || runs.back().script == HB_SCRIPT_COMMON) {
            runs.back().end = at;
            if (!shared) runs.back().script = script;
        } else {
            runs.push_back({here, at, script, family});
        }
    }
    if (mRightToLeft) std::reverse(runs.begin(), runs.end());
    return runs;
}

hb_language_t WordShaper::languageFor(hb_script_t script) const {
    for (const Locale& locale : mLocales) {
        if (locale.writesIn(script)) return locale.hbLanguage;
    }
    return mLocales.empty() ? HB_LANGUAGE_INVALID : mLocales[0].hbLanguage;
}

void WordShaper::layScriptRun(const ScriptRun& whole) {
    thread_local ThreadBuffer threadBuffer;
    hb_buffer_t* buffer = threadBuffer.get();
    if (whole.end - whole.start <= kHarmlessUnits) {
        shapeInto(buffer, whole);
        place(buffer, whole);
    } else {
        std::vector<ScriptRun> pieces;
        for (size_t at = whole.start; at < whole.end; at = pieces.back().end) {
            pieces.push_back({at, pieceEnd(buffer, whole, at), whole.script, whole.family});
        }
        if (mRightToLeft) std::reverse(pieces.begin(), pieces.end());
        for (const ScriptRun& piece : pieces) {
            shapeInto(buffer, piece);
            place(buffer, piece);
        }
    }
    threadBuffer.release();
}

// The end of the piece of a long run that starts at `start`.
size_t WordShaper::pieceEnd(hb_buffer_t* buffer, const ScriptRun& whole, size_t start) {
    const size_t most = std::min<size_t>(whole.end, start + kMaxAttachedGlyphs);
    const size_t limit = endBeforeRowOfMarks(mText, start, most);
    for (size_t end = std::min(limit, start + kPieceUnits);; end = std::min(limit, end + (end - start))) {
        if (end == whole.end || (end == limit && limit < most)) return endOfFew(buffer, whole, start, end);
        ScriptRun piece = {start, end, whole.script, whole.family};
        const bool few = shapeInto(buffer, piece);
        const size_t cut = few ? lastSafeCut(buffer, start, end) : start;
        if (cut > start) return cut;
        if (!few || end == limit) return endOfFew(buffer, whole, start, end);
    }
}

// `end`, or an earlier place so that few enough glyphs result for marks to find their bases.
size_t WordShaper::endOfFew(hb_buffer_t* buffer, const ScriptRun& whole, size_t start, size_t end) {
    while (end - start > kHarmlessUnits && !shapeInto(buffer, {start, end, whole.script, whole.family})) {
        end = start + (end - start) / 2;
    }
    return end;
}

// False if the run has too many glyphs for marks to find their bases.
bool WordShaper::shapeInto(hb_buffer_t* buffer, const ScriptRun& run) {
    // By name, because otherwise the environment could change it.
    static const char* const kShapers[] = {"ot", nullptr};
    bool refused = false;
    const bool harmless = run.end - run.start <= kHarmlessUnits;
    hb_buffer_clear_contents(buffer);
    hb_buffer_set_message_func(buffer, harmless ? nullptr : refuseToAttach, &refused, nullptr);
    hb_buffer_set_script(buffer, run.script);
    hb_buffer_set_direction(buffer, mRightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb_buffer_set_language(buffer, languageFor(run.script));
    hb_buffer_add_utf16(buffer, mText, static_cast<int>(mSize), static_cast<unsigned>(run.start),
                        static_cast<int>(run.end - run.start));
    const SizedFont& font = fontOf(run.family);
    hb_shape_full(font.hbFont, buffer, mFeatures.data(), static_cast<unsigned>(mFeatures.size()), kShapers);
    // If memory is short, the text is cut off without an error from HarfBuzz.
    const bool exhausted = std::exchange(font.exhausted, false);
    if (exhausted || !hb_buffer_allocation_successful(buffer)) throw std::bad_alloc();
    return !refused;
}

void WordShaper::place(hb_buffer_t* buffer, const ScriptRun& run) {
    const SizedFont& font = fontOf(run.family);
    const Spacing spacing = spacingFor(mRequest, run.script);
    unsigned count = 0;
    const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer, &count);
    const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer, nullptr);

    if (mWord.glyphs.empty()) mWord.glyphs.reserve(count);
    float pen = mWord.advance;
    const auto space = [&pen](double pixels) { pen = static_cast<float>(static_cast<double>(pen) + pixels); };
    for (unsigned i = 0; i < count; i++) {
        if (i == 0) {
            space(spacing.before);
        } else if (infos[i].cluster != infos[i - 1].cluster) {
            space(spacing.before + spacing.after);
        }
        const float y = 0 - fromFixed(positions[i].y_offset);
        // Only the paint's own skew moves raised or lowered glyphs, as on the platform; fake italic does not.
        const float x = pen + (fromFixed(positions[i].x_offset) + y * mRequest.glyph.skewX);
        const InkBox box = font.face->inkBox(infos[i].codepoint, font.glyph);
        const minikin::MinikinRect ink = {box.left + x, box.top + y, box.right + x, box.bottom + y};
        mWord.glyphs.push_back({run.family, infos[i].codepoint, x, y, infos[i].cluster, ink});
        join(&mWord.bounds, ink);
        const float advance = fromFixed(positions[i].x_advance);
        pen += mRequest.glyph.linear ? advance : std::round(advance);
    }
    if (count > 0) space(spacing.after);
    mWord.advance = pen;
}

}  // namespace host
