// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <minikin/FontStyle.h>
#include <minikin/MinikinFont.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace minikin {

class Font {
public:
    class Builder {
    public:
        explicit Builder(const std::shared_ptr<MinikinFont>& typeface);
        Builder(Builder&&) = delete;

        Builder& setStyle(FontStyle style);
        Builder& setWeight(uint16_t weight);
        Builder& setSlant(FontStyle::Slant slant);
        Font build();
    };

    Font(Font&&);
    Font& operator=(Font&&);
};

class FontFamily {
public:
    enum class Variant : uint8_t { DEFAULT = 0, COMPACT = 1, ELEGANT = 2 };

    explicit FontFamily(std::vector<Font>&& fonts);
    FontFamily(Variant variant, std::vector<Font>&& fonts);
    FontFamily(uint32_t localeListId, Variant variant, std::vector<Font>&& fonts);
    FontFamily(FontFamily&&) = delete;
};

}  // namespace minikin
