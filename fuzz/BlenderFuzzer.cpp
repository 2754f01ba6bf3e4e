// SPDX-License-Identifier: Apache-2.0
// The blender's operations one after the other onto one bitmap, against their plain forms, with the kernels
// of each instruction set. Sources and targets lie in memory of exactly their size.
#include "raster/ZvBlender.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "fuzz/Input.h"
#include "tests/reference/BlenderReference.h"

namespace {

using Zvex::ZvBitmap;
using Zvex::ZvBlender;

enum class Source { Coverage, Words, Bytes, Copy };

struct Operation {
    Source source;
    int x, y, w, h, stride, mode;
    uint32_t color;
};

Operation readOperation(fuzz::Input& input, const ZvBitmap& target) {
    Operation operation;
    operation.source = static_cast<Source>(input.between(0, 3));
    // Anywhere beside the target, or anywhere at all; sizes likewise, but no source in memory is as large.
    const bool far = input.byte() < 32;
    const int width = static_cast<int>(target.width), height = static_cast<int>(target.height);
    operation.w = far ? input.integer() : input.between(-1, 90);
    operation.h = far ? input.integer() : input.between(-1, 40);
    operation.x = far ? input.integer() : input.between(-95, width + 2);
    operation.y = far ? input.integer() : input.between(-45, height + 2);
    operation.stride = input.between(-128, 383);
    operation.mode = input.between(-1, 8);
    operation.color = input.word();
    return operation;
}

// The elements of the source that the operation reads, as offsets from its first one; nothing when that is
// more than a test has room for.
struct Extent {
    int64_t begin = 0, end = 0;
};
bool findExtent(const Operation& operation, const ZvBitmap& target, Extent* extent) {
    const int64_t left = std::max<int64_t>(operation.x, 0), top = std::max<int64_t>(operation.y, 0);
    const int64_t right = std::min<int64_t>(int64_t{operation.x} + operation.w, target.width);
    const int64_t bottom = std::min<int64_t>(int64_t{operation.y} + operation.h, target.height);
    if (left >= right || top >= bottom) return true;
    const int64_t pixel = operation.source == Source::Bytes ? 4 : 1;
    const int64_t begin = left - operation.x, end = begin + pixel * (right - left);
    const int64_t stride = operation.source == Source::Copy ? operation.w : operation.stride;
    const int64_t first = (top - operation.y) * stride, last = (bottom - 1 - operation.y) * stride;
    extent->begin = std::min(first, last) + begin;
    extent->end = std::max(first, last) + end;
    constexpr int64_t ROOM = 1 << 24;  // apart from the target, whose rows are few
    return extent->begin > -ROOM && extent->end < ROOM;
}

void draw(const Operation& o, ZvBitmap* actual, ZvBitmap* expected, const uint8_t* bytes,
          const uint32_t* words) {
    switch (o.source) {
        case Source::Coverage:
            ZvBlender::drawBitmapBlend8(o.x, o.y, actual, bytes, o.w, o.h, o.stride, o.color, o.mode);
            if (actual->bytesPerPixel != 4) break;
            reference::drawBitmapBlend8(o.x, o.y, expected, bytes, o.w, o.h, o.stride, o.color, o.mode);
            break;
        case Source::Words:
            ZvBlender::drawBitmapBlend32(o.x, o.y, actual, words, o.w, o.h, o.stride, o.mode);
            if (actual->bytesPerPixel != 4) break;
            reference::drawBitmapBlend32(o.x, o.y, expected, words, o.w, o.h, o.stride, o.mode);
            break;
        case Source::Bytes:
            ZvBlender::drawBitmapBlend32(o.x, o.y, actual, bytes, o.w, o.h, o.stride, 0, o.mode);
            if (actual->bytesPerPixel != 4) break;
            reference::drawBitmapBlend32(o.x, o.y, expected, bytes, o.w, o.h, o.stride, 0, o.mode);
            break;
        case Source::Copy:
            ZvBlender::drawBitmap(o.x, o.y, actual, bytes, o.w, o.h, o.color);
            reference::drawBitmap(o.x, o.y, expected, bytes, o.w, o.h, o.color);
            break;
    }
}

bool same(const ZvBitmap& a, const ZvBitmap& b) {
    return a.byteCount() == b.byteCount() &&
           (a.pixels == nullptr || std::memcmp(a.pixels, b.pixels, a.byteCount()) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const unsigned depth = input.flag() ? 1 : 4;
    const auto width = static_cast<unsigned>(input.between(0, 80));
    const auto height = static_cast<unsigned>(input.between(0, 24));
    ZvBitmap target(width, height, depth);
    if (target.pixels != nullptr) input.fill(target.pixels, target.byteCount());
    for (int steps = 0; steps < 6 && input.left() > 0; ++steps) {
        const Operation operation = readOperation(input, target);
        Extent extent;
        if (!findExtent(operation, target, &extent)) continue;
        const auto count = static_cast<size_t>(extent.end - extent.begin);
        const std::unique_ptr<uint8_t[]> bytes(new uint8_t[count]);
        const std::unique_ptr<uint32_t[]> words(new uint32_t[operation.source == Source::Words ? count : 0]);
        input.fill(bytes.get(), count);
        for (size_t i = 0; operation.source == Source::Words && i < count; ++i) {
            // Premultiplied or not: a blend takes any words.
            words[i] = uint32_t{bytes[i]} << 24 | (uint32_t{bytes[count - 1 - i]} * 0x010305u & 0xFFFFFFu);
        }
        ZvBitmap before(target);
        ZvBitmap expected(target);
        fuzz::forEachCpuTarget([&] {
            ZvBitmap actual(before);
            expected = before;
            draw(operation, &actual, &expected, bytes.get() - extent.begin, words.get() - extent.begin);
            FUZZ_CHECK(same(actual, expected));
        });
        target = expected;
    }
    ZvBitmap exchanged(target);
    ZvBlender::convertBGRAToARGB(&exchanged);
    ZvBlender::convertBGRAToARGB(&exchanged);
    FUZZ_CHECK(same(exchanged, target));
    return 0;
}
