// SPDX-License-Identifier: Apache-2.0
// What drawing does when the memory for a line's image is refused. The program's array allocations are
// replaced for that by ones that can be told to fail.
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

#include "TextScene.h"

namespace {

// Arrays of this size and more are refused.
std::atomic<size_t> refusedSize{std::numeric_limits<size_t>::max()};

void* allocateArray(size_t size) {
    return size < refusedSize.load() ? std::malloc(size != 0 ? size : 1) : nullptr;
}

}  // namespace

void* operator new[](size_t size) {
    if (void* memory = allocateArray(size)) return memory;
    throw std::bad_alloc();
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return allocateArray(size);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}

using namespace text_test;

TEST(LineMemory, ALineWithoutMemoryIsLeftOutSilently) {
    TextScene scene(kSans, L"abMMMMMMMMMM", 24, 400, 60);
    scene.setLines({TextScene::makeLine(0, 50, 0, 2)});
    const Picture shortLineOnly = scene.render();
    ASSERT_GT(shortLineOnly.countVisible(), 50);

    const Zvex::ZvLineInfo longLine = TextScene::makeLine(60, 50, 2, 12);
    scene.setLines({longLine, TextScene::makeLine(0, 50, 0, 2)});
    host::LogCapture log;
    refusedSize = 2000;  // between the two images
    const Picture picture = scene.render();
    refusedSize = std::numeric_limits<size_t>::max();
    EXPECT_TRUE(picture == shortLineOnly);
    EXPECT_TRUE(errorLines(log).empty());
    EXPECT_EQ(scene.line(0).rect.right, longLine.rect.right);  // untouched
    EXPECT_FALSE(scene.render() == shortLineOnly);
}
