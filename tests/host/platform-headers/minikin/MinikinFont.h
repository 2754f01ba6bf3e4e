// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

namespace minikin {

struct MinikinRect {
    float mLeft = 0, mTop = 0, mRight = 0, mBottom = 0;
};

struct FontVariation {
    FontVariation() = delete;
};

class FontFakery {
public:
    bool isFakeBold();
    bool isFakeItalic();
};

class MinikinFont {
public:
    virtual ~MinikinFont() = 0;
    MinikinFont(MinikinFont&&) = delete;

    int32_t GetUniqueId() const;
    virtual const void* GetFontData() const;
    virtual size_t GetFontSize() const;
    virtual int GetFontIndex() const;

protected:
    explicit MinikinFont(int32_t uniqueId);
};

}  // namespace minikin
