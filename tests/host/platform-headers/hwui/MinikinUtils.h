// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <hwui/Paint.h>
#include <hwui/Typeface.h>
#include <minikin/Layout.h>

#include <cstddef>
#include <cstdint>

namespace minikin {
class MeasuredText;
}

namespace android {

class MinikinUtils {
public:
    static minikin::Layout doLayout(const Paint* paint, minikin::Bidi bidiFlags, const Typeface* typeface,
                                    const uint16_t* buf, size_t start, size_t count, size_t bufSize,
                                    minikin::MeasuredText* measured);

    template <typename F>
    static void forFontRun(const minikin::Layout& layout, Paint*, F& f) {
        f(size_t{0}, layout.nGlyphs());
    }
};

}  // namespace android
