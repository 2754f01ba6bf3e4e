// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_MUTEX_H_
#define ZVEX_FOUNDATION_MUTEX_H_

namespace Zvex {

// A recursive mutex, constructed in two phases; reports under the tag "ZV_Mutex". Before Construct, Lock and
// Unlock do nothing.
class Mutex {
public:
    Mutex() = default;
    // No thread may hold the mutex or wait for it.
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    // False with code 1 if memory is short or the system refuses a mutex, with code 4 when called before.
    // It may only be called again if memory was short. Lock and Unlock do nothing after a failure.
    bool Construct();

    // Waits until the mutex is free, unless the calling thread owns it already.
    void Lock();

    // Undoes one Lock; undoing the first frees the mutex. Does nothing in a thread that does not own it.
    void Unlock();

private:
    struct Impl;
    Impl* mImpl = nullptr;  // null: not constructed
};

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_MUTEX_H_
