// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_OUTOFMEMORY_H_
#define ZVEX_FOUNDATION_OUTOFMEMORY_H_

#include <memory>
#include <new>
#include <utility>

namespace Zvex {

// What finds no memory and goes on without it, as a filter that draws nothing, leaves a mark on its thread.
// Who wants to know whether a picture is whole takes the mark away before, and asks afterwards whether it is
// there.
void markOutOfMemory();
bool takeOutOfMemoryMark();

// What `work` answers, or `failure` where memory runs out in it. Nothing thrown leaves the library: an
// operation that uses the standard containers, or the platform, which does, stands in one of these.
template <typename Result, typename Work>
Result unlessOutOfMemory(Result failure, Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        markOutOfMemory();
        return failure;
    }
}

// A new T; null, and the mark, where memory is short.
template <typename T, typename... Arguments>
std::unique_ptr<T> tryMake(Arguments&&... arguments) {
    std::unique_ptr<T> made(new (std::nothrow) T(std::forward<Arguments>(arguments)...));
    if (made == nullptr) markOutOfMemory();
    return made;
}

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_OUTOFMEMORY_H_
