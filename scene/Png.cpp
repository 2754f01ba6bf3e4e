// SPDX-License-Identifier: Apache-2.0
#include "scene/Png.h"

#include <spng.h>

#include <algorithm>
#include <memory>
#include <new>
#include <vector>

#include "scene/Failure.h"

namespace Zvex::scene {

namespace {

// Feeds a file without the chunks that its pixels do not need: texts and profiles could unpack to gigabytes.
struct PngStream {
    const std::string* bytes;
    size_t next = 0, left = 8;  // of the part that is read: first the signature, then chunks

    // Skips chunks that are not needed.
    void findChunk() {
        static const std::string kNeeded[] = {"IHDR", "PLTE", "tRNS", "IDAT", "IEND"};
        while (left == 0 && next + 8 <= bytes->size()) {
            uint32_t size = 0;
            for (size_t i = 0; i < 4; ++i) size = size << 8 | static_cast<uint8_t>((*bytes)[next + i]);
            const auto isType = [&](const std::string& type) {
                return bytes->compare(next + 4, 4, type) == 0;
            };
            const size_t whole = size_t{size} + 12;  // with its length, type and sum
            if (std::any_of(std::begin(kNeeded), std::end(kNeeded), isType)) {
                left = whole;
            } else {
                next += whole;
            }
        }
    }
};

int readPart(spng_ctx*, void* user, void* target, size_t count) {
    auto& stream = *static_cast<PngStream*>(user);
    for (auto* bytes = static_cast<char*>(target); count > 0;) {
        stream.findChunk();
        const size_t part = std::min(count, stream.left);
        if (part == 0 || stream.next + part > stream.bytes->size()) return SPNG_IO_EOF;
        bytes += stream.bytes->copy(bytes, part, stream.next);
        stream.next += part;
        stream.left -= part;
        count -= part;
    }
    return 0;
}

uint32_t rounded(uint16_t sample) {
    return (uint32_t{sample} * 255 + 32767) / 65535;
}

}  // namespace

Picture decodePng(const std::string& name, const std::string& bytes) {
    const std::unique_ptr<spng_ctx, void (*)(spng_ctx*)> png(spng_ctx_new(0), spng_ctx_free);
    if (png == nullptr) throw std::bad_alloc();
    const auto check = [&](int error, const char* what) {
        if (error == SPNG_EMEM) throw std::bad_alloc();
        if (error != 0) throw Failure(name + what + spng_strerror(error));
    };
    PngStream stream = {&bytes};
    spng_set_png_stream(png.get(), readPart, &stream);
    spng_ihdr header = {};
    check(spng_get_ihdr(png.get(), &header), " is not a readable PNG: ");
    if (header.width > kMaxPngSide || header.height > kMaxPngSide ||
        int64_t{header.width} * header.height > kMaxPngPixels) {
        throw Failure(name + " is " + std::to_string(header.width) + " x " + std::to_string(header.height) +
                      " pixels; at most " + std::to_string(kMaxPngSide) + " a side and " +
                      std::to_string(kMaxPngPixels) + " in all");
    }
    Picture picture;
    picture.width = static_cast<int>(header.width);
    picture.height = static_cast<int>(header.height);
    picture.pixels.resize(size_t{header.width} * header.height);
    const bool deep = header.bit_depth == 16;
    std::vector<uint16_t> samples(deep ? picture.pixels.size() * 4 : 0);
    void* target = deep ? static_cast<void*>(samples.data()) : picture.pixels.data();
    check(spng_decode_image(png.get(), target, picture.pixels.size() * (deep ? 8 : 4),
                            deep ? SPNG_FMT_RGBA16 : SPNG_FMT_RGBA8, SPNG_DECODE_TRNS),
          " is damaged: ");
    check(spng_decode_chunks(png.get()), " is damaged: ");  // up to the end of the file
    const auto* rgba = reinterpret_cast<const uint8_t*>(picture.pixels.data());
    for (size_t i = 0; i < picture.pixels.size(); ++i) {
        const auto sample = [&](size_t c) { return deep ? rounded(samples[4 * i + c]) : rgba[4 * i + c]; };
        picture.pixels[i] = sample(3) << 24 | sample(0) << 16 | sample(1) << 8 | sample(2);
    }
    return picture;
}

}  // namespace Zvex::scene
