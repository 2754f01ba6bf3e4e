// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKREFCNT_H_
#define ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKREFCNT_H_

#include <cstddef>

class SkRefCnt {
public:
    SkRefCnt();
    virtual ~SkRefCnt();
    SkRefCnt(const SkRefCnt&) = delete;
    void operator=(const SkRefCnt&) = delete;
};

template <typename T>
class sk_sp {
public:
    constexpr sk_sp() {}
    constexpr sk_sp(std::nullptr_t) {}
    explicit sk_sp(T* object);
    sk_sp(const sk_sp& other);
    sk_sp(sk_sp&& other);
    ~sk_sp() {}
    sk_sp& operator=(const sk_sp& other);
    sk_sp& operator=(sk_sp&& other);

    T* get() const;
    T& operator*() const;
    T* operator->() const;
    explicit operator bool() const;
};

template <typename T>
bool operator==(const sk_sp<T>& a, std::nullptr_t);
template <typename T>
bool operator!=(const sk_sp<T>& a, std::nullptr_t);

#endif  // ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKREFCNT_H_
