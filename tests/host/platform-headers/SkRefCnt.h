// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

class SkRefCnt {
public:
    SkRefCnt();
    virtual ~SkRefCnt();
    SkRefCnt(SkRefCnt&&) = delete;
};

template <typename T>
class sk_sp {
public:
    constexpr sk_sp() {}
    constexpr sk_sp(std::nullptr_t) {}
    explicit sk_sp(T* object);

    T* get() const;
    T& operator*() const;
    T* operator->() const;
    explicit operator bool() const;
};

template <typename T>
bool operator==(const sk_sp<T>& a, std::nullptr_t);
template <typename T>
bool operator!=(const sk_sp<T>& a, std::nullptr_t);
