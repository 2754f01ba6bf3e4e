// SPDX-License-Identifier: Apache-2.0
#include "platform/host/FontFallback.h"

#include <unicode/unorm2.h>

#include <algorithm>

#include "platform/host/Clusters.h"
#include "platform/host/LocaleLists.h"
#include "platform/host/ShapingFont.h"

namespace host {
namespace {

constexpr size_t kNone = SIZE_MAX;     // no family covers it
constexpr size_t kAny = SIZE_MAX - 1;  // shows nothing, any family will do
constexpr uint32_t kTextSelector = 0xFE0E;
constexpr uint32_t kEmojiSelector = 0xFE0F;

// Longer clusters are no letters; ordering their marks could take time with the square of their number.
constexpr size_t kNormalizedLength = 64;

// A cluster composed or decomposed; empty when that changes nothing.
std::vector<uint32_t> normalized(const std::vector<uint32_t>& cluster, bool compose) {
    if (cluster.size() > kNormalizedLength) return {};
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* form = compose ? unorm2_getNFCInstance(&status) : unorm2_getNFDInstance(&status);
    if (U_FAILURE(status)) return {};
    std::vector<UChar> source;
    for (const uint32_t c : cluster) {
        if (c >= 0x10000) source.push_back(static_cast<UChar>(0xD7C0 + (c >> 10)));
        source.push_back(static_cast<UChar>(c >= 0x10000 ? 0xDC00 | (c & 0x3FF) : c));
    }
    // A character decomposes into at most four units for each of its own.
    std::vector<UChar> target(source.size() * 4 + 4);
    const int32_t length = unorm2_normalize(form, source.data(), static_cast<int32_t>(source.size()),
                                            target.data(), static_cast<int32_t>(target.size()), &status);
    if (U_FAILURE(status)) return {};
    std::vector<uint32_t> result;
    const auto* units = reinterpret_cast<const uint16_t*>(target.data());
    for (size_t at = 0; at < static_cast<size_t>(length);) {
        result.push_back(nextCodePoint(units, &at, static_cast<size_t>(length)));
    }
    return result == cluster ? std::vector<uint32_t>() : result;
}

}  // namespace

FontFallback::FontFallback(const minikin::FontCollection& collection, minikin::FontStyle style,
                           uint32_t localeListId, minikin::FontFamily::Variant variant)
    : mCollection(collection),
      mStyle(style),
      mLocaleListId(localeListId),
      mVariant(variant),
      mCandidates(collection.families().size()) {}

// Most texts never look beyond the first family, so the others are read when they are first asked.
const FontFallback::Candidate& FontFallback::candidate(size_t family) {
    Candidate& entry = mCandidates[family];
    if (!entry.face) {
        const minikin::FontFamily& source = *mCollection.families()[family];
        const LocaleList& locales = localeListOf(source.localeListId());
        entry.font = source.getClosestMatch(mStyle);
        entry.face = entry.font.font->shaping()->face.get();
        entry.localeScore = localeScore(localeListOf(mLocaleListId), locales);
        entry.variantFits = source.variant() == mVariant;
        for (const Locale& locale : locales) {
            entry.emoji |= locale.presentation == Presentation::kEmoji;
            entry.symbols |= locale.presentation == Presentation::kText;
        }
    }
    return entry;
}

std::vector<FontRun> FontFallback::cut(const uint16_t* text, size_t start, size_t end) {
    std::vector<FontRun> runs;
    if (mCandidates.empty()) return runs;
    for (size_t at = start; at < end;) {
        const size_t next = clusterEnd(text, at, end);
        const size_t family = familyOfCluster(text, at, next);
        if (runs.empty() && family != kAny) {
            runs.push_back({start, next, family});  // takes what showed nothing before it along
        } else if (!runs.empty() && (family == kAny || family == runs.back().family)) {
            runs.back().end = next;
        } else if (!runs.empty()) {
            runs.push_back({at, next, family});
        }
        at = next;
    }
    if (runs.empty() && start < end) runs.push_back({start, end, 0});
    return runs;
}

size_t FontFallback::familyOfCluster(const uint16_t* text, size_t start, size_t end) {
    size_t at = start;
    const uint32_t first = nextCodePoint(text, &at, end);
    if (at == end) {
        if (candidate(0).face->covers(first)) return isDefaultIgnorable(first) ? kAny : 0;
        if (isDefaultIgnorable(first)) return kAny;
    }
    mCluster.assign(1, first);
    while (at < end) mCluster.push_back(nextCodePoint(text, &at, end));

    size_t family = choose(mCluster);
    // Shaping composes and decomposes by what the font has, so equivalent spellings are as good.
    if (family == kNone) family = choose(normalized(mCluster, true));
    if (family == kNone) family = choose(normalized(mCluster, false));
    return family == kNone ? 0 : family;
}

size_t FontFallback::choose(const std::vector<uint32_t>& cluster) {
    if (cluster.empty()) return kNone;
    const auto base = std::find_if_not(cluster.begin(), cluster.end(), isDefaultIgnorable);
    if (base == cluster.end()) return kAny;
    const bool selected = base + 1 != cluster.end() && isVariationSelector(base[1]);
    const size_t family = familyOf(*base, selected ? base[1] : 0);
    if (family == kNone || cluster.size() == 1 || coversAll(*candidate(family).face, cluster)) return family;
    for (size_t other = 0; other < mCandidates.size(); other++) {
        if (coversAll(*candidate(other).face, cluster)) return other;
    }
    return family;
}

size_t FontFallback::familyOf(uint32_t base, uint32_t selector) {
    const FontFace& first = *candidate(0).face;
    if (selector != 0 ? first.coversVariation(base, selector) : first.covers(base)) return 0;
    size_t best = kNone;
    uint32_t bestScore = 0;
    for (size_t family = 0; family < mCandidates.size(); family++) {
        const uint32_t here = score(candidate(family), base, selector);
        if (here > bestScore) {
            best = family;
            bestScore = here;
        }
    }
    return best;
}

// 0 when the font does not cover the base. The presentation outweighs the locales, these the variant.
uint32_t FontFallback::score(const Candidate& font, uint32_t base, uint32_t selector) const {
    const bool ownGlyph = selector != 0 && font.face->coversVariation(base, selector);
    if (!ownGlyph && !font.face->covers(base)) return 0;
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

bool FontFallback::coversAll(const FontFace& face, const std::vector<uint32_t>& cluster) {
    const auto covered = [&face](uint32_t c) { return isDefaultIgnorable(c) || face.covers(c); };
    if (std::all_of(cluster.begin(), cluster.end(), covered)) return true;
    const std::vector<uint32_t> composed = normalized(cluster, true);
    return !composed.empty() && std::all_of(composed.begin(), composed.end(), covered);
}

}  // namespace host
