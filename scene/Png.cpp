// SPDX-License-Identifier: Apache-2.0
#include "scene/Png.h"

#include <spng.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include "scene/Failure.h"

namespace Zvex::scene {

namespace {

using Context = std::unique_ptr<spng_ctx, void (*)(spng_ctx*)>;

Context makeContext(int flags) {
    Context context(spng_ctx_new(flags), spng_ctx_free);
    if (context == nullptr) throw std::bad_alloc();
    return context;
}

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
    const Context png = makeContext(0);
    const auto check = [&](int error, const char* what) {
        if (error == SPNG_EMEM) throw std::bad_alloc();
        if (error != 0) throw Failure(name + what + spng_strerror(error));
    };
    PngStream stream = {&bytes};
    spng_set_png_stream(png.get(), readPart, &stream);
    spng_ihdr header = {};
    check(spng_get_ihdr(png.get(), &header), " is no PNG that can be read: ");
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

std::string encodePng(const Picture& picture, double dpi) {
    const Context png = makeContext(SPNG_CTX_ENCODER);
    const auto check = [](int error) {
        if (error != 0) throw std::bad_alloc();  // the only possible error
    };
    check(spng_set_option(png.get(), SPNG_ENCODE_TO_BUFFER, 1));
    spng_ihdr header = {};
    header.width = static_cast<uint32_t>(picture.width);
    header.height = static_cast<uint32_t>(picture.height);
    header.bit_depth = 8;
    header.color_type = SPNG_COLOR_TYPE_TRUECOLOR_ALPHA;
    check(spng_set_ihdr(png.get(), &header));
    check(spng_set_srgb(png.get(), 0));  // perceptual
    const auto perMetre = static_cast<uint32_t>(std::lround(dpi / 0.0254));
    spng_phys phys = {perMetre, perMetre, 1};
    check(spng_set_phys(png.get(), &phys));
    check(spng_encode_image(png.get(), nullptr, 0, SPNG_FMT_PNG,
                            SPNG_ENCODE_PROGRESSIVE | SPNG_ENCODE_FINALIZE));
    std::vector<uint8_t> row(header.width * size_t{4});
    for (size_t y = 0; y < header.height; ++y) {
        convertPixels(picture.pixels.data() + y * header.width, header.width, PixelFormat::Rgba, row.data());
        const int done = spng_encode_row(png.get(), row.data(), row.size());
        if (done != SPNG_EOI) check(done);
    }
    int error = 0;
    size_t size = 0;
    const std::unique_ptr<void, void (*)(void*)> bytes(spng_get_png_buffer(png.get(), &size, &error),
                                                       std::free);
    check(error);
    return std::string(static_cast<const char*>(bytes.get()), size);
}

}  // namespace Zvex::scene
