// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_SKTYPEFACE_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_SKTYPEFACE_H_

#include <cstdint>
#include <memory>

#include "SkRefCnt.h"
#include "SkStream.h"

namespace host {
class FontFace;
}

typedef uint16_t SkGlyphID;
typedef uint32_t SkFontID;

// One font of a file or collection. Immutable; may be used from any thread.
class SkTypeface : public SkRefCnt {
public:
    // Reads font `index` of the stream's bytes. Takes ownership of the stream even on failure. Null if the
    // bytes are no usable font or have no such index. A variable font has its default axis values, or those
    // of the port's own table (host::kAxesTable).
    static sk_sp<SkTypeface> MakeFromStream(SkStreamAsset* stream, int index = 0);

    // Different for every typeface of the process; never 0.
    SkFontID uniqueID() const;

    // The port's own: the font behind this typeface; never null.
    const std::shared_ptr<host::FontFace>& face() const { return mFace; }

private:
    explicit SkTypeface(std::shared_ptr<host::FontFace> face);

    std::shared_ptr<host::FontFace> mFace;
};

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_SKTYPEFACE_H_
