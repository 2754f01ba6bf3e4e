// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_BUFFER_H_
#define ZVEX_EFFECT_KERNELS_BUFFER_H_

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <type_traits>

#include "foundation/KeptMemory.h"
#include "foundation/OutOfMemory.h"

namespace Zvex {

// Working memory of a filter, from malloc, with one owner. The filters take all their memory through this
// type. If an allocation fails, a filter returns and leaves its target unchanged.
//
// The size is given as rows x columns x planes elements, which are multiplied in 64 bits. A size that is
// negative, empty or too large to address is refused as if memory had run out.
template <typename T>
class Buffer {
    static_assert(std::is_trivially_copyable<T>::value, "the memory is not constructed");

public:
    // Frees what it held, then allocates. The elements are undefined, or zero with allocateZeroed. Returns
    // false and holds nothing on failure.
    bool allocate(int64_t rows, int64_t columns = 1, int64_t planes = 1) {
        const size_t bytes = reserve(rows, columns, planes);
        mData.reset(static_cast<T*>(takeMemory(bytes)));
        if (mData == nullptr) markOutOfMemory();
        return mData != nullptr;
    }
    bool allocateZeroed(int64_t rows, int64_t columns = 1, int64_t planes = 1) {
        const size_t bytes = reserve(rows, columns, planes);
        mData.reset(static_cast<T*>(takeZeroedMemory(bytes)));
        if (mData == nullptr) markOutOfMemory();
        return mData != nullptr;
    }

    // Takes over memory that came from malloc.
    void adopt(T* data) { mData.reset(data); }

    T* get() const { return mData.get(); }
    T& operator[](size_t index) const { return mData.get()[index]; }

private:
    struct Free {
        void operator()(T* data) const { giveMemory(data); }
    };

    // The size in bytes, or 0 if it is refused. Sizes above half the address space are refused, so that
    // pointer differences stay exact.
    size_t reserve(int64_t rows, int64_t columns, int64_t planes) {
        mData.reset();
        if (rows <= 0 || columns <= 0 || planes <= 0) return 0;
        uint64_t left = uint64_t{PTRDIFF_MAX} / sizeof(T);
        for (const int64_t factor : {rows, columns, planes}) left /= static_cast<uint64_t>(factor);
        if (left == 0) return 0;
        return static_cast<size_t>(rows * columns * planes * static_cast<int64_t>(sizeof(T)));
    }

    std::unique_ptr<T, Free> mData;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_BUFFER_H_
