// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_OUTOFMEMORY_H_
#define ZVEX_FOUNDATION_OUTOFMEMORY_H_

#include <memory>
#include <new>
#include <utility>

namespace Zvex {

// Code that runs out of memory and continues, such as a filter that draws nothing, sets a flag of its thread.
// To learn whether a picture is complete, clear the flag first and test it afterwards.
void markOutOfMemory();
bool takeOutOfMemoryMark();

// Returns the result of `work`, or `failure` if memory runs out in it. No exception leaves the library, so
// every operation that uses the standard containers or the platform runs inside this.
template <typename Result, typename Work>
Result unlessOutOfMemory(Result failure, Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        markOutOfMemory();
        return failure;
    }
}

// A new T; null, with the flag set, if memory is short.
template <typename T, typename... Arguments>
std::unique_ptr<T> tryMake(Arguments&&... arguments) {
    std::unique_ptr<T> made(new (std::nothrow) T(std::forward<Arguments>(arguments)...));
    if (made == nullptr) markOutOfMemory();
    return made;
}

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_OUTOFMEMORY_H_
