// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_BENCHMARKS_TITLES_H_
#define ZVEX_BENCHMARKS_TITLES_H_

#include <string>

#include "text/ZvTextObject.h"

// Small titles for timing what each picture costs however small it is: a word in orange, DejaVu Sans Bold, on
// a transparent picture as large as the word's line and the effects' margins. Lengths are in sixteenths of
// the glyph size.
//
//     plain   fill
//     stroke  and an outside stroke of width 1
//     shadow  and an opaque black shadow below it, moved down by 1, blurred with a standard deviation of 1
//     bevel   fill and a soft inner bevel of size 4/3, lit from the upper left
namespace bench {

// Sets up an object, not yet constructed, for any word. False for an unknown look or a font that cannot be
// loaded.
bool prepareTitle(Zvex::ZvTextObject& object, const std::string& look, int glyphSize);

struct PictureSize {
    int width = 0, height = 0;
};

// Gives a prepared object another word, in ASCII. The size is that for RenderTextEffect; 0 if it failed.
PictureSize setTitle(Zvex::ZvTextObject& object, const std::string& word);

}  // namespace bench

#endif  // ZVEX_BENCHMARKS_TITLES_H_
