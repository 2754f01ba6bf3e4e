// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_BOUNDTEXTOBJECT_H_
#define ZVEX_JNI_BOUNDTEXTOBJECT_H_

#include <jni.h>

#include "foundation/Error.h"
#include "text/ZvTextObject.h"

namespace Zvex {

// A Java text object carries the runtime handle of its native one in the int field "mHandle", negative while
// there is none. The caller keeps two threads from using the same Java object at once.

// Looks up the class's field; called once, while the library loads. Natives find no text object if the class
// lacks the field.
void FindHandleField(JNIEnv* env, jclass textClass);

// The handle; negative when there is none.
jint ReadHandle(JNIEnv* env, jobject thiz);

// The text object of that Java object, created, bound and registered if it has none yet. Null for a stale
// handle, or when there is no memory for a new object. Never throws.
ZvTextObject* GetBoundTextObject(JNIEnv* env, jobject thiz);

}  // namespace Zvex

// Two steps of a native with the parameters `env` and `thiz`. Macros, so that each native reports its own
// line numbers.

// At the beginning: `name` becomes its text object; without one, the native reports it and returns `failure`.
#define ZV_BOUND_TEXT_OBJECT(name, failure)                                   \
    ::Zvex::ZvTextObject* const name = ::Zvex::GetBoundTextObject(env, thiz); \
    ZV_REPORT_UNLESS_BOUND(name != nullptr, failure)

// After calls of Java methods, which may have released the text object with that handle: the same if they
// have.
#define ZV_STILL_BOUND(handle, failure) \
    ZV_REPORT_UNLESS_BOUND(::Zvex::ZvTextObject::FindZvTextObject(handle) != nullptr, failure)

// At the beginning of a native that takes a handle: `name` becomes the text object with that handle.
#define ZV_TEXT_OBJECT_OF(handle, name, failure)                                       \
    ::Zvex::ZvTextObject* const name = ::Zvex::ZvTextObject::FindZvTextObject(handle); \
    ZV_REPORT_UNLESS_BOUND(name != nullptr, failure)

// Refuses invalid arguments.
#define ZV_REFUSE_UNLESS(condition, failure)                                  \
    do {                                                                      \
        if (!(condition)) {                                                   \
            ZV_REPORT_ERROR("ZvText_JNI", ::Zvex::ZV_ERROR_INVALID_ARGUMENT); \
            return failure;                                                   \
        }                                                                     \
    } while (false)

#define ZV_REPORT_UNLESS_BOUND(condition, failure)                          \
    do {                                                                    \
        if (!(condition)) {                                                 \
            ZV_REPORT_ERROR("ZvText_JNI", ::Zvex::ZV_ERROR_NO_TEXT_OBJECT); \
            return failure;                                                 \
        }                                                                   \
    } while (false)

#endif  // ZVEX_JNI_BOUNDTEXTOBJECT_H_
