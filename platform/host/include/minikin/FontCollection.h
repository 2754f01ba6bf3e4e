// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_FONTCOLLECTION_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_FONTCOLLECTION_H_

#include <minikin/FontFamily.h>

#include <memory>
#include <vector>

namespace minikin {

// The families a text is searched through, first to last. Which one draws a cluster (a base character with
// the marks, joiners and variation selector that belong to it):
// - the first family, wherever it covers the base (with the variation selector, if one follows);
// - else, among the families that cover the base, the best by these in turn: a glyph of its own for the
//   variation selector; made for the presentation that U+FE0F (emoji) or U+FE0E (text) asks for; made for
//   the locales of the paint, the first locale counting most; of the paint's variant; earlier in the list;
// - but if that family lacks a mark of the cluster, the first family that covers all of it, if there is one;
// - and where no family covers the base, the first one, with its missing glyph.
// A character that shows nothing (soft hyphen, joiner, directional mark) takes the font of its neighbour.
class FontCollection {
public:
    // Null families and families without a usable font are left out.
    explicit FontCollection(const std::vector<std::shared_ptr<FontFamily>>& families);
    FontCollection(const FontCollection&) = delete;
    FontCollection& operator=(const FontCollection&) = delete;

    // Those that were not left out, in their order.
    const std::vector<std::shared_ptr<FontFamily>>& families() const { return mFamilies; }

private:
    std::vector<std::shared_ptr<FontFamily>> mFamilies;
};

}  // namespace minikin

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_FONTCOLLECTION_H_
