// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_ZVTEXTINSTANCEMANAGER_H_
#define ZVEX_TEXT_ZVTEXTINSTANCEMANAGER_H_

namespace Zvex {

class ZvTextObject;

// The process's registry of text objects. It numbers them with handles (1, 2, 3, ... never used again), so
// that no pointer crosses into Java, and counts the references held there, so that an object goes with its
// last one.
//
// Every operation runs whole under one re-entrant mutex, the release callback included: the object it deletes
// may call back in. Any thread.
class ZvTextInstanceManager {
public:
    // What is called, under the mutex, with an object whose last reference goes. Null: nothing.
    static void SetCallBack(void (*callback)(ZvTextObject*));

    // The object's handle, a new one if it has none; -1 where memory is short, and, with an error line and
    // code 3, once the handles up to the largest int are used up.
    static int Register(ZvTextObject* object);
    // Forgets the handle; references and deferred releases stay as they are. Always 0.
    static int Unregister(int handle);
    // Forgets all there is of an object that goes: handle, references, deferred release. Every text object's
    // destructor calls it.
    static void Forget(ZvTextObject* object);
    // Handles up to `last` are not given out any more.
    static void SkipHandles(int last);

    // Adds a reference; the first one also takes the object off the list of deferred releases. False, and no
    // reference, where memory is short.
    static bool Bind(ZvTextObject* object);

    // Drops a reference. With the last one and `destroy`, the object goes to the callback, or, while the
    // registry is locked, to the deferred releases, and its count is forgotten. Without `destroy` the count
    // may stand at 0, and the next Bind raises it to 1. False and error 9 for a handle or an object that is
    // not known; false, and the reference stays, where memory is too short to wait in.
    static bool Release(int handle);
    static bool Release(ZvTextObject* object, bool destroy);

    // Between the two, last releases wait. Unlock makes them up, the one deferred last first.
    static void Lock();
    static void Unlock();

    static int FindZvTextHandle(ZvTextObject* object);  // -1 when absent
    static ZvTextObject* FindZvTextObject(int handle);  // null when absent
};

}  // namespace Zvex

#endif  // ZVEX_TEXT_ZVTEXTINSTANCEMANAGER_H_
