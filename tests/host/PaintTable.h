// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PAINTTABLE_H_
#define ZVEX_TESTS_HOST_PAINTTABLE_H_

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "Fonts.h"

// COLR tables of version 1, put together from paints: the bytes of one, its children behind it.
namespace paints {

inline std::string big(int bytes, const std::vector<uint32_t>& values) {
    std::string result;
    fonts::put(result, bytes, values);
    return result;
}
inline std::string shorts(const std::vector<int>& values) {
    std::string result;
    for (const int value : values) result += big(2, {static_cast<uint32_t>(value)});
    return result;
}
inline int share(double v) {
    return static_cast<int>(v * 16384);
}

inline std::string solid(int color, double alpha = 1) {
    return "\x02" + shorts({color, share(alpha)});
}

struct Stop {
    double position;
    int color;
    double alpha;
};
// `format` 4, 6 or 8, its six or four values, and its colour line.
inline std::string gradient(int format, const std::vector<int>& values, const std::vector<Stop>& stops,
                            uint32_t extend = 0) {
    const std::string fields = shorts(values);
    std::string line = big(1, {extend}) + shorts({static_cast<int>(stops.size())});
    for (const Stop& stop : stops) line += shorts({share(stop.position), stop.color, share(stop.alpha)});
    return static_cast<char>(format) + big(3, {4 + static_cast<uint32_t>(fields.size())}) + fields + line;
}
inline std::string shape(uint32_t glyph, const std::string& paint) {
    return "\x0A" + big(3, {6}) + big(2, {glyph}) + paint;
}
inline std::string glyph(uint32_t number) {
    return "\x0B" + big(2, {number});
}
// `format` 14 to 31.
inline std::string moved(int format, const std::vector<int>& values, const std::string& paint) {
    const std::string fields = shorts(values);
    return static_cast<char>(format) + big(3, {4 + static_cast<uint32_t>(fields.size())}) + fields + paint;
}
// xx, yx, xy, yy, dx, dy.
inline std::string transformed(const std::vector<double>& matrix, const std::string& paint) {
    std::string fields;
    for (const double v : matrix) fields += big(4, {static_cast<uint32_t>(static_cast<int32_t>(v * 65536))});
    return "\x0C" + big(3, {31, 7}) + fields + paint;
}
inline std::string composite(const std::string& source, uint32_t mode, const std::string& backdrop) {
    return "\x20" + big(3, {8}) + big(1, {mode}) + big(3, {8 + static_cast<uint32_t>(source.size())}) +
           source + backdrop;
}
inline std::string layers(uint32_t count, uint32_t first) {
    return "\x01" + big(1, {count}) + big(4, {first});
}

struct Table {
    std::vector<std::pair<uint32_t, std::string>> glyphs;  // by number
    std::vector<std::string> layers;
    std::vector<int> clip;  // of every glyph: left, bottom, right, top; none when empty

    std::string bytes() const {
        std::string roots = big(4, {static_cast<uint32_t>(glyphs.size())}), painted;
        for (const auto& [glyph, paint] : glyphs) {
            roots +=
                big(2, {glyph}) + big(4, {static_cast<uint32_t>(4 + 6 * glyphs.size() + painted.size())});
            painted += paint;
        }
        roots += painted;
        std::string list = big(4, {static_cast<uint32_t>(layers.size())});
        painted.clear();
        for (const std::string& layer : layers) {
            list += big(4, {static_cast<uint32_t>(4 + 4 * layers.size() + painted.size())});
            painted += layer;
        }
        list += painted;
        const std::string clips = clip.empty() ? ""
                                               : big(1, {1}) + big(4, {1}) + big(2, {0, 0xFFFF}) +
                                                     big(3, {12}) + "\x01" + shorts(clip);
        const auto begin = 34 + static_cast<uint32_t>(roots.size());
        return big(2, {1, 0}) + big(4, {0, 0}) + big(2, {0}) +
               big(4, {34, begin, clip.empty() ? 0 : begin + static_cast<uint32_t>(list.size()), 0, 0}) +
               roots + list + clips;
    }
};

}  // namespace paints

#endif  // ZVEX_TESTS_HOST_PAINTTABLE_H_
