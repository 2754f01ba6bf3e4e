// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_SKREFCNT_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_SKREFCNT_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <utility>

// The base of shared objects. An object starts with one reference, its creator's, and deletes itself with the
// last one. Any thread may take and drop references.
class SkRefCnt {
public:
    SkRefCnt() = default;
    virtual ~SkRefCnt() = default;
    SkRefCnt(const SkRefCnt&) = delete;
    SkRefCnt& operator=(const SkRefCnt&) = delete;

    // Whether the caller, who holds a reference, is the only holder.
    bool unique() const { return mReferences.load(std::memory_order_acquire) == 1; }
    // Take and drop a reference.
    void ref() const { mReferences.fetch_add(1, std::memory_order_relaxed); }
    void unref() const {
        // Acquire and release: everything that other owners did happens before the deletion.
        if (mReferences.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }

private:
    mutable std::atomic<int32_t> mReferences{1};
};

// Owns one reference of a T, or none. A raw pointer passed to a constructor or to reset() hands over its
// reference; copying takes one more.
template <typename T>
class sk_sp {
public:
    constexpr sk_sp() = default;
    constexpr sk_sp(std::nullptr_t) {}
    explicit sk_sp(T* object) : mObject(object) {}
    sk_sp(const sk_sp& other) : mObject(refOf(other.get())) {}
    sk_sp(sk_sp&& other) noexcept : mObject(other.release()) {}
    // From a pointer to something derived from T.
    template <typename U>
    sk_sp(const sk_sp<U>& other) : mObject(refOf(other.get())) {}
    template <typename U>
    sk_sp(sk_sp<U>&& other) noexcept : mObject(other.release()) {}
    ~sk_sp() {
        if (mObject != nullptr) mObject->unref();
    }

    sk_sp& operator=(sk_sp other) noexcept {
        swap(other);
        return *this;
    }

    // The object; null, or false, without one.
    T* get() const { return mObject; }
    T& operator*() const { return *mObject; }
    T* operator->() const { return mObject; }
    explicit operator bool() const { return mObject != nullptr; }

    // Takes over the given reference, and drops the one held.
    void reset(T* object = nullptr) { sk_sp(object).swap(*this); }
    // Gives the reference to the caller; this pointer is empty afterwards.
    T* release() { return std::exchange(mObject, nullptr); }
    // Exchanges the two references.
    void swap(sk_sp& other) noexcept { std::swap(mObject, other.mObject); }

private:
    template <typename U>
    static U* refOf(U* object) {
        if (object != nullptr) object->ref();
        return object;
    }

    T* mObject = nullptr;
};

template <typename T, typename U>
bool operator==(const sk_sp<T>& a, const sk_sp<U>& b) {
    return a.get() == b.get();
}
template <typename T, typename U>
bool operator!=(const sk_sp<T>& a, const sk_sp<U>& b) {
    return a.get() != b.get();
}
template <typename T>
bool operator==(const sk_sp<T>& a, std::nullptr_t) {
    return a.get() == nullptr;
}
template <typename T>
bool operator!=(const sk_sp<T>& a, std::nullptr_t) {
    return a.get() != nullptr;
}

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_SKREFCNT_H_
