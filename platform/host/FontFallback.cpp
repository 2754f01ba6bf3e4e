// SPDX-License-Identifier: Apache-2.0
#include "platform/host/FontFallback.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>

#include "platform/host/Clusters.h"
#include "platform/host/LocaleLists.h"
#include "platform/host/ShapingFont.h"

namespace host {
namespace {

constexpr size_t kNone = SIZE_MAX;
constexpr uint32_t kTextSelector = 0xFE0E;
constexpr uint32_t kEmojiSelector = 0xFE0F;

bool isMark(uint32_t c) {
    return c >= 0x300 && (U_GET_GC_MASK(static_cast<UChar32>(c)) & U_GC_M_MASK) != 0;
}

// Characters that stay in the font of the text before them.
bool isSticky(uint32_t c) {
    switch (c) {
        case '!':
        case ',':
        case '-':
        case '.':
        case ':':
        case ';':
        case '?':
        case 0x00A0:
        case 0x2010:
        case 0x2011:
        case 0x202F:
        case 0x2640:
        case 0x2642:
        case 0x2695:
            return true;
        default:
            return isMark(c);
    }
}

bool isEmojiModifier(uint32_t c) {
    return c >= 0x1F3FB && c <= 0x1F3FF;
}
bool isEmojiBase(uint32_t c) {
    return u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_EMOJI_MODIFIER_BASE) != 0;
}

// The first character of the decomposition of `c`; `c` if it has none.
uint32_t firstOfDecomposition(uint32_t c) {
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* form = unorm2_getNFDInstance(&status);
    if (U_FAILURE(status)) return c;
    UChar units[4];
    const int32_t length = unorm2_getRawDecomposition(form, static_cast<UChar32>(c), units, 4, &status);
    if (U_FAILURE(status) || length <= 0) return c;
    size_t at = 0;
    return nextCodePoint(reinterpret_cast<const uint16_t*>(units), &at, static_cast<size_t>(length));
}

}  // namespace

FontFallback::FontFallback(const minikin::FontCollection& collection, minikin::FontStyle style,
                           uint32_t localeListId, minikin::FontFamily::Variant variant)
    : mCollection(collection),
      mStyle(style),
      mLocaleListId(localeListId),
      mVariant(variant),
      mCandidates(collection.families().size()) {}

// Most texts use only the first family, so the others are read when they are first needed.
const FontFallback::Candidate& FontFallback::candidate(size_t family) {
    Candidate& entry = mCandidates[family];
    if (!entry.face) {
        const minikin::FontFamily& source = *mCollection.families()[family];
        const LocaleList& locales = localeListOf(source.localeListId());
        entry.font = source.getClosestMatch(mStyle);
        entry.face = entry.font.font->shaping()->face.get();
        entry.localeScore = localeScore(localeListOf(mLocaleListId), locales);
        using Variant = minikin::FontFamily::Variant;
        const Variant variant = source.variant();
        entry.variantFits = variant == Variant::DEFAULT || variant == mVariant ||
                            (mVariant == Variant::DEFAULT && variant == Variant::COMPACT);
        for (const Locale& locale : locales) {
            entry.emoji |= locale.presentation == Presentation::kEmoji;
            entry.symbols |= locale.presentation == Presentation::kText;
        }
    }
    return entry;
}

std::vector<FontRun> FontFallback::cut(const uint16_t* text, size_t start, size_t end) {
    std::vector<FontRun> runs;
    if (mCandidates.empty() || start >= end) return runs;
    uint32_t previous = 0;
    size_t previousStart = start;
    for (size_t at = start; at < end;) {
        const size_t here = at;
        const uint32_t c = nextCodePoint(text, &at, end);
        const bool anyFont = isDefaultIgnorable(c);
        const bool stays =
            anyFont || (!runs.empty() && isSticky(c) && candidate(runs.back().family).face->covers(c));
        if (!stays) {
            size_t next = at;
            const uint32_t after = next < end ? nextCodePoint(text, &next, end) : 0;
            const size_t family = familyOf(c, selectsVariation(after) ? after : 0);
            if (runs.empty()) {
                runs.push_back({start, at, family});  // includes characters before it that need no font
            } else if (family != runs.back().family) {
                const bool together = isMark(c) || (isEmojiModifier(c) && isEmojiBase(previous));
                size_t from = here;
                if (together && candidate(family).face->covers(previous)) {
                    from = previousStart;
                    runs.back().end = from;
                    if (runs.back().start >= from) runs.pop_back();
                }
                runs.push_back({from, at, family});
            }
        }
        if (!runs.empty()) runs.back().end = at;
        previous = c;
        previousStart = here;
    }
    if (runs.empty()) runs.push_back({start, end, 0});
    return runs;
}

// Returns the first family if none has the character.
size_t FontFallback::familyOf(uint32_t character, uint32_t selector) {
    const FontFace& first = *candidate(0).face;
    if (selector != 0 ? first.coversVariation(character, selector) : first.covers(character)) return 0;
    size_t best = kNone;
    uint32_t bestScore = 0;
    for (size_t family = 0; family < mCandidates.size(); family++) {
        const uint32_t here = score(candidate(family), character, selector);
        if (here > bestScore) {
            best = family;
            bestScore = here;
        }
    }
    if (best != kNone) return best;
    const uint32_t simpler = firstOfDecomposition(character);
    return simpler != character ? familyOf(simpler, selector) : 0;
}

// 0 if the font does not cover the character. The presentation counts more than the locales, and these more
// than the variant.
uint32_t FontFallback::score(const Candidate& font, uint32_t character, uint32_t selector) const {
    const bool ownGlyph = selector != 0 && font.face->coversVariation(character, selector);
    if (!ownGlyph && !font.face->covers(character)) return 0;
    uint32_t presentation = 1;
    if (ownGlyph) {
        presentation = 4;
    } else if (selector == kEmojiSelector) {
        presentation = font.emoji ? 2 : 1;
    } else if (selector == kTextSelector) {
        presentation = font.emoji ? 1 : (font.symbols ? 3 : 2);
    }
    return presentation << 29 | font.localeScore << 1 | (font.variantFits ? 1u : 0u);
}

}  // namespace host
