// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_ZVTEXTINSTANCEMANAGER_H_
#define ZVEX_TEXT_ZVTEXTINSTANCEMANAGER_H_

namespace Zvex {

class ZvTextObject;

// The process's registry of text objects. It gives them handles (1, 2, 3, ..., never reused), so that no
// pointer is passed to Java, and counts Java's references, so that an object is deleted with the last one.
//
// Every operation, the release callback included, runs under one recursive mutex; the deleted object may call
// back. Any thread.
class ZvTextInstanceManager {
public:
    // Sets the function that is called, under the mutex, with an object whose last reference was dropped;
    // null for none.
    static void SetCallBack(void (*callback)(ZvTextObject*));

    // The object's handle, a new one if it has none; -1 if memory is short, and, with an error line and
    // code 3, once the handles up to the largest int are used up.
    static int Register(ZvTextObject* object);
    // Forgets the handle; references and deferred releases stay as they are. Always 0.
    static int Unregister(int handle);
    // Forgets everything about an object: handle, references, deferred release. Every text object's
    // destructor calls it.
    static void Forget(ZvTextObject* object);
    // No further handle is `last` or lower.
    static void SkipHandles(int last);

    // Adds a reference; the first one also takes the object off the list of deferred releases. False, and no
    // reference, if memory is short.
    static bool Bind(ZvTextObject* object);

    // Drops a reference. If it was the last one and `destroy` is set, the object is passed to the callback,
    // or, while the registry is locked, to the deferred releases. Without `destroy` the count may be 0, and
    // the next Bind raises it to 1. False with error 9 for an unknown handle or object; false, with the
    // reference kept, if memory is too short to defer it.
    static bool Release(int handle);
    static bool Release(ZvTextObject* object, bool destroy);

    // Between the two, last releases are deferred. Unlock performs them, the latest first.
    static void Lock();
    static void Unlock();

    static int FindZvTextHandle(ZvTextObject* object);  // -1 when absent
    static ZvTextObject* FindZvTextObject(int handle);  // null when absent
};

}  // namespace Zvex

#endif  // ZVEX_TEXT_ZVTEXTINSTANCEMANAGER_H_
