// SPDX-License-Identifier: Apache-2.0
#include "tests/FailingAllocations.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

struct Counters {
    bool armed = false, throwingToo = false;
    int pauses = 0;
    int failing = -1;
    int made = 0;
    int outstanding = 0;
    size_t largest = 0;
};
thread_local Counters counters;

// Whether this allocation must fail.
bool failsNow() {
    return counters.armed && counters.pauses == 0 && counters.made++ == counters.failing;
}

void* counted(void* block, size_t size) {
    if (!counters.armed || block == nullptr) return block;
    ++counters.outstanding;
    if (counters.pauses == 0 && size > counters.largest) counters.largest = size;
    return block;
}

void uncount(void* block) {
    if (counters.armed && block != nullptr) --counters.outstanding;
}

}  // namespace

// Sizes beyond the machine's memory give null under the address sanitizer too, instead of ending the program.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

// The linker sends the program's own calls of malloc here (its option --wrap) and calls of __real_malloc to
// the C library, or to whatever a sanitizer put in its place.
extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
void __real_free(void* block);

void* __wrap_malloc(size_t size) {
    return failsNow() ? nullptr : counted(__real_malloc(size), size);
}

void* __wrap_calloc(size_t count, size_t size) {
    return failsNow() ? nullptr : counted(__real_calloc(count, size), count * size);
}

void* __wrap_realloc(void* block, size_t size) {
    if (failsNow()) return nullptr;
    void* moved = __real_realloc(block, size);
    counted(moved, size);
    if (moved != nullptr) uncount(block);
    return moved;
}

void __wrap_free(void* block) {
    uncount(block);
    __real_free(block);
}
}

namespace {

void* throwing(size_t size) {
    if (counters.throwingToo && failsNow()) throw std::bad_alloc();
    void* block = counted(__real_malloc(size == 0 ? 1 : size), size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void* nothrow(size_t size) {
    return failsNow() ? nullptr : counted(__real_malloc(size == 0 ? 1 : size), size);
}

void release(void* block) {
    uncount(block);
    __real_free(block);
}

}  // namespace

void* operator new(size_t size) {
    return throwing(size);
}
void* operator new[](size_t size) {
    return throwing(size);
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return nothrow(size);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return nothrow(size);
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete[](void* block) noexcept {
    release(block);
}
void operator delete(void* block, size_t) noexcept {
    release(block);
}
void operator delete[](void* block, size_t) noexcept {
    release(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    release(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    release(block);
}

FailingAllocations::FailingAllocations(int failing, Throwing throwing) {
    counters = Counters();
    counters.throwingToo = throwing == Throwing::Fails;
    counters.failing = failing;
    counters.armed = true;
}

FailingAllocations::~FailingAllocations() {
    counters.armed = false;
}

FailingAllocations::Pause::Pause() {
    ++counters.pauses;
}

FailingAllocations::Pause::~Pause() {
    --counters.pauses;
}

int FailingAllocations::made() const {
    return counters.made;
}

size_t FailingAllocations::largest() const {
    return counters.largest;
}

int FailingAllocations::outstanding() const {
    return counters.outstanding;
}
