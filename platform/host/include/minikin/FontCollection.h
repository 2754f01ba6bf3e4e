// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_FONTCOLLECTION_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_FONTCOLLECTION_H_

#include <minikin/FontFamily.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace minikin {

// An ordered list of families, from which fonts are chosen word by word and character by character:
// - an invisible character (soft hyphen, joiner, selector, directional mark) takes the family of the one
//   before it, or after it at the start of a word;
// - likewise ! , - . : ; ? no-break spaces, U+2010, U+2011, the signs U+2640, U+2642, U+2695 and combining
//   marks, where that family covers them;
// - else the first family, if it covers the character (with the variation selector, if one follows);
// - else, among the families that cover it, the best by these in turn: a glyph of its own for the variation
//   selector; made for the presentation that U+FE0F (emoji) or U+FE0E (text) asks for; made for the locales
//   of the paint, the first locale counting most; of a variant that fits; earlier in the list;
// - else that of the character which its decomposition begins with, else the first one, with its missing
//   glyph.
// If a combining mark needs another family, the character before it moves there too, if that family covers
// it. The same holds for an emoji and its modifier.
class FontCollection {
public:
    // Skips null families and families without a usable font.
    explicit FontCollection(const std::vector<std::shared_ptr<FontFamily>>& families);
    FontCollection(const FontCollection&) = delete;
    FontCollection& operator=(const FontCollection&) = delete;

    // The families that were not skipped, in order.
    const std::vector<std::shared_ptr<FontFamily>>& families() const { return mFamilies; }
    // Collections of different fonts have different ones.
    uint64_t id() const { return mId; }

private:
    std::vector<std::shared_ptr<FontFamily>> mFamilies;
    uint64_t mId;
};

}  // namespace minikin

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_FONTCOLLECTION_H_
