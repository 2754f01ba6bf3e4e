// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_WORDLAYOUT_H_
#define ZVEX_JNI_WORDLAYOUT_H_

#include "raster/ZvRect.h"
#include "text/ZvTextObject.h"

namespace Zvex {

struct WordSettings {
    enum Align { Left, Center, Right };
    int wrap = 0;  // pixels above which lines are broken; 0: only where the text has line ends
    Align align = Left;
    int lines = 0;           // shown at most; 0: all
    double size = 0;         // the paint's before it was rounded: lengths in ems follow it
    double wordSpacing = 0;  // ems for each space, -1 to 10
    double lineHeight = 0;   // times the size, up to 10; 0: as the fonts have it
};

// Lays the words out as scenes do, with the object's font and paint, and gives the object its text, its lines
// and a view of their size. `lean` becomes the pixels that the view has on each side for ink beyond the
// lines. False on the phone, which leaves this to the platform's classes. Throws an exception with a message
// for words that make no picture, and std::bad_alloc.
bool layOutWords(ZvTextObject& text, const char* utf8, const WordSettings& settings, ZvRect* lean);

}  // namespace Zvex

#endif  // ZVEX_JNI_WORDLAYOUT_H_
