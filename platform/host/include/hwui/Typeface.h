// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_HWUI_TYPEFACE_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_HWUI_TYPEFACE_H_

#include <minikin/FontCollection.h>
#include <minikin/FontFamily.h>
#include <minikin/FontStyle.h>

#include <memory>
#include <vector>

namespace android {

// Families to search, and the wanted style. Immutable; layouts made with it may outlive it.
struct Typeface {
    std::shared_ptr<minikin::FontCollection> fFontCollection;  // never null from createFromFamilies
    minikin::FontStyle fStyle;                                 // the wanted style

    // The caller deletes the result, which is never null. `weight` is cut to 1..1000; italic unless `italic`
    // is 0. If either is negative, it comes from the first family's regular font (400 and upright if there is
    // none). Null families are skipped; without any font, layouts are empty.
    static Typeface* createFromFamilies(std::vector<std::shared_ptr<minikin::FontFamily>>&& families,
                                        int weight, int italic);
};

}  // namespace android

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_HWUI_TYPEFACE_H_
