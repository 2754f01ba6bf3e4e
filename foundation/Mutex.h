// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_MUTEX_H_
#define ZVEX_FOUNDATION_MUTEX_H_

namespace Zvex {

// A mutex that its owner may lock again, in two-phase construction. Before Construct, Lock and Unlock do
// nothing. Tag of its reports: "ZV_Mutex".
class Mutex {
public:
    Mutex() = default;
    // No thread may hold the mutex or wait for it any more.
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    // False with code 1 when memory is short or the system refuses a mutex, with code 4 when it was called
    // before; only where memory was short may it be called again. Lock and Unlock do nothing after a failure.
    bool Construct();

    // Waits until the mutex is free, unless the calling thread owns it: then it is held once more.
    void Lock();

    // Gives back one Lock; the last one frees the mutex. A thread that does not own it changes nothing.
    void Unlock();

private:
    struct Record;
    Record* mRecord = nullptr;
};

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_MUTEX_H_
