// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_FONTFALLBACK_H_
#define ZVEX_PLATFORM_HOST_FONTFALLBACK_H_

#include <minikin/FontCollection.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/host/FontFace.h"

namespace host {

// Text of one font: [start, end) in UTF-16 units, `family` indexes the collection's families.
struct FontRun {
    size_t start = 0;
    size_t end = 0;
    size_t family = 0;
};

// Chooses the family for each character of a word, by the rules of minikin::FontCollection. Make one for each
// layout; it must not outlive the collection.
class FontFallback {
public:
    FontFallback(const minikin::FontCollection& collection, minikin::FontStyle style, uint32_t localeListId,
                 minikin::FontFamily::Variant variant);

    // The runs of [start, end), a word or part of one, in logical order and without gaps. Empty without
    // families.
    std::vector<FontRun> cut(const uint16_t* text, size_t start, size_t end);

    // The font that draws the style, from that family.
    const minikin::FakedFont& fontOf(size_t family) { return candidate(family).font; }

private:
    struct Candidate {
        minikin::FakedFont font;
        const FontFace* face = nullptr;  // null until first used
        uint32_t localeScore = 0;
        bool variantFits = false;
        bool emoji = false;    // made for emoji presentation
        bool symbols = false;  // made for text presentation
    };

    const Candidate& candidate(size_t family);
    size_t familyOf(uint32_t character, uint32_t selector);
    uint32_t score(const Candidate& font, uint32_t character, uint32_t selector) const;

    const minikin::FontCollection& mCollection;
    const minikin::FontStyle mStyle;
    const uint32_t mLocaleListId;
    const minikin::FontFamily::Variant mVariant;
    std::vector<Candidate> mCandidates;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_FONTFALLBACK_H_
