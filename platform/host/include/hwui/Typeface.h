// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_HWUI_TYPEFACE_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_HWUI_TYPEFACE_H_

#include <minikin/FontCollection.h>
#include <minikin/FontFamily.h>
#include <minikin/FontStyle.h>

#include <memory>
#include <vector>

namespace android {

// Families to search and the style wanted of them. Immutable after it is made; layouts made with it outlive
// it.
struct Typeface {
    std::shared_ptr<minikin::FontCollection> fFontCollection;  // never null from createFromFamilies
    minikin::FontStyle fStyle;                                 // the one wanted

    // The caller deletes the result, which is never null. `weight` is cut to 1..1000; italic unless `italic`
    // is 0. A negative one is taken from the first family's regular font (400 and upright without one). Null
    // families are left out; without any font, layouts are empty.
    static Typeface* createFromFamilies(std::vector<std::shared_ptr<minikin::FontFamily>>&& families,
                                        int weight, int italic);
};

}  // namespace android

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_HWUI_TYPEFACE_H_
