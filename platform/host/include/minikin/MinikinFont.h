// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_MINIKINFONT_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_MINIKINFONT_H_

#include <cstddef>
#include <cstdint>

namespace minikin {

// A rectangle in pixels, y growing downwards; all zero at the start. Empty when it has no width or no height.
struct MinikinRect {
    // The edges; right and bottom are exclusive.
    float mLeft = 0;
    float mTop = 0;
    float mRight = 0;
    float mBottom = 0;
};

// One axis of a variable font and the value wanted for it.
struct FontVariation {
    FontVariation(uint32_t axisTag, float value) : axisTag(axisTag), value(value) {}
    uint32_t axisTag;  // four letters, the first in the highest byte
    float value;       // in the axis's own units
};

// The parts of the wanted style that a font lacks and drawing must imitate.
class FontFakery {
public:
    FontFakery() = default;
    FontFakery(bool fakeBold, bool fakeItalic) : mFakeBold(fakeBold), mFakeItalic(fakeItalic) {}

    // Whether to widen the outlines, and to slant them.
    bool isFakeBold() const { return mFakeBold; }
    bool isFakeItalic() const { return mFakeItalic; }

private:
    bool mFakeBold = false;
    bool mFakeItalic = false;
};

// A font file as layout sees it. Immutable; any number of threads may use one object.
class MinikinFont {
public:
    explicit MinikinFont(int32_t uniqueId) : mUniqueId(uniqueId) {}
    virtual ~MinikinFont();
    MinikinFont(const MinikinFont&) = delete;
    MinikinFont& operator=(const MinikinFont&) = delete;

    // Tells fonts apart within the process.
    int32_t GetUniqueId() const { return mUniqueId; }

    // The bytes of the file (null and 0 when unknown), owned by the font's creator, and the font's index in a
    // collection.
    virtual const void* GetFontData() const { return nullptr; }
    virtual size_t GetFontSize() const { return 0; }
    virtual int GetFontIndex() const { return 0; }

private:
    const int32_t mUniqueId;
};

}  // namespace minikin

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_MINIKINFONT_H_
