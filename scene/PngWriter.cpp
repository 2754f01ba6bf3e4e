// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>

#include "scene/Deflate.h"
#include "scene/Png.h"

namespace Zvex::scene {

namespace {

constexpr size_t kMinTried = 65536;            // pixels; in smaller pictures a trial costs more than it saves
constexpr size_t kMaxChunk = size_t{1} << 30;  // bytes; the format's limit is 2^31 - 1

// A row's filter stores each byte minus what a neighbour predicts. Pictures of text repeat their pixels,
// edges and shadows too, and repetitions compress best as they are; smooth grounds compress better as
// differences.
enum class Filter : uint8_t { None = 0, Sub = 1, Up = 2, Paeth = 4 };

// The neighbour (left, above, above left) nearest to left + above - corner.
uint8_t paethPrediction(int left, int above, int corner) {
    const int toLeft = std::abs(above - corner), toAbove = std::abs(left - corner),
              toCorner = std::abs(left + above - 2 * corner);
    const int ofAbove = toAbove <= toCorner ? above : corner;
    return static_cast<uint8_t>(toLeft <= toAbove && toLeft <= toCorner ? left : ofAbove);
}

// `row` and `above` have a pixel of zeros before their `count` bytes.
void filterRow(Filter filter, const uint8_t* row, const uint8_t* above, size_t count, uint8_t* target) {
    const uint8_t *left = row - 4, *corner = above - 4;
    for (size_t i = 0; i < count; ++i) {
        const uint8_t predicted = filter == Filter::Sub  ? left[i]
                                  : filter == Filter::Up ? above[i]
                                                         : paethPrediction(left[i], above[i], corner[i]);
        target[i] = static_cast<uint8_t>(row[i] - predicted);
    }
}

// The rows as the format compresses them, each behind the number of its filter.
std::vector<uint8_t> filteredRows(const Picture& picture, Filter filter, size_t begin, size_t end) {
    const auto width = static_cast<size_t>(picture.width);
    std::vector<uint8_t> rows((end - begin) * (4 * width + 1)), above(4 * width + 4), row(4 * width + 4);
    const auto convert = [&](size_t y, uint8_t* target) {
        convertPixels(picture.pixels.data() + y * width, width, PixelFormat::Rgba, target);
    };
    if (begin > 0) convert(begin - 1, &above[4]);
    uint8_t* target = rows.data();
    for (size_t y = begin; y < end; ++y, target += 4 * width) {
        *target++ = static_cast<uint8_t>(filter);
        if (filter == Filter::None) {
            convert(y, target);
        } else {
            convert(y, &row[4]);
            filterRow(filter, &row[4], &above[4], 4 * width, target);
            row.swap(above);
        }
    }
    return rows;
}

std::string deflatedRows(const Picture& picture, Filter filter, size_t begin, size_t end,
                         Compression compression) {
    return deflated(filteredRows(picture, filter, begin, end), compression);
}

// Tries both on an eighth of the picture, from its middle. A part has fewer repetitions than the whole, so
// differences must win clearly.
Filter likelyFilter(const Picture& picture, Compression compression) {
    if (picture.pixels.size() < kMinTried) return Filter::None;
    const auto height = static_cast<size_t>(picture.height);
    const size_t tried = (height + 7) / 8, begin = (height - tried) / 2;
    const auto size = [&](Filter filter) {
        return deflatedRows(picture, filter, begin, begin + tried, compression).size();
    };
    return size(Filter::Paeth) * 8 < size(Filter::None) * 7 ? Filter::Paeth : Filter::None;
}

std::string pictureData(const Picture& picture, Compression compression) {
    const auto height = static_cast<size_t>(picture.height);
    const Filter first =
        compression == Compression::Default ? likelyFilter(picture, compression) : Filter::None;
    std::string data = deflatedRows(picture, first, 0, height, compression);
    if (compression != Compression::Small) return data;
    for (const Filter filter : {Filter::Sub, Filter::Up, Filter::Paeth}) {
        std::string other = deflatedRows(picture, filter, 0, height, compression);
        if (other.size() < data.size()) data.swap(other);
    }
    return data;
}

std::string bigEndian(size_t number) {
    std::string bytes;
    for (const int shift : {24, 16, 8, 0}) bytes += static_cast<char>(number >> shift & 0xFF);
    return bytes;
}

void addChunk(std::string& file, const char* type, std::string_view content) {
    file += bigEndian(content.size());
    const size_t summed = file.size();
    file.append(type).append(content);
    file += bigEndian(crc32Of(std::string_view(file).substr(summed)));
}

}  // namespace

std::string encodePng(const Picture& picture, double dpi, Compression compression) {
    checkComplete(picture);
    const std::string data = pictureData(picture, compression);
    const std::string perMetre = bigEndian(static_cast<size_t>(std::lround(dpi / 0.0254)));
    std::string file = "\x89PNG\r\n\x1A\n";
    file.reserve(data.size() + 128);
    const std::string rgba8("\x08\x06\0\0\0", 5);  // bits, colour type, compression, filters, no interlacing
    addChunk(file, "IHDR",
             bigEndian(static_cast<size_t>(picture.width)) + bigEndian(static_cast<size_t>(picture.height)) +
                 rgba8);
    addChunk(file, "sRGB", std::string(1, '\0'));          // perceptual
    addChunk(file, "pHYs", perMetre + perMetre + '\x01');  // pixels a metre
    for (size_t at = 0; at < data.size(); at += kMaxChunk)
        addChunk(file, "IDAT", std::string_view(data).substr(at, kMaxChunk));
    addChunk(file, "IEND", "");
    return file;
}

}  // namespace Zvex::scene
