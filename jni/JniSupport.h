// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_JNISUPPORT_H_
#define ZVEX_JNI_JNISUPPORT_H_

#include <jni.h>

#include <cstddef>
#include <memory>
#include <utility>

// What every native needs: references, strings and arrays that are released on every path, Java methods
// looked up by table, and calls that stop at the first exception.
//
// Exceptions. While one is pending, only a few JNI functions may be called: those that release something and
// those that query the exception. The functions here obey this: looking up a missing method leaves no
// exception, and JavaCalls makes no further call once one has thrown. The exception then stays pending for
// the Java caller.
//
// Threads: everything here belongs to the thread whose JNIEnv it was made with.

namespace Zvex {

// Owns a local reference; the runtime has room for few of them, and they pile up until the native returns.
template <typename T>
class LocalRef {
public:
    LocalRef() = default;
    LocalRef(JNIEnv* env, T reference) : mEnv(env), mReference(reference) {}
    LocalRef(LocalRef&& other) noexcept
        : mEnv(other.mEnv), mReference(std::exchange(other.mReference, nullptr)) {}
    LocalRef& operator=(LocalRef&& other) noexcept {
        std::swap(mEnv, other.mEnv);
        std::swap(mReference, other.mReference);
        return *this;
    }
    ~LocalRef() {
        if (mReference != nullptr) mEnv->DeleteLocalRef(mReference);
    }

    T get() const { return mReference; }
    explicit operator bool() const { return mReference != nullptr; }

private:
    JNIEnv* mEnv = nullptr;
    T mReference = nullptr;
};

// The UTF-8 form of a Java string, made from its UTF-16 units: a surrogate pair is one character of four
// bytes, a surrogate without its partner three bytes (ZvString reads them back as what they were), and a NUL
// ends the text. Not the runtime's own modified form.
class Utf8Chars {
public:
    Utf8Chars() = default;  // no text
    // A null string has no characters, nor has one whose characters cannot be read; an exception may be
    // pending then.
    Utf8Chars(JNIEnv* env, jstring string);

    const char* get() const { return mChars.get(); }  // null when there are none
    bool empty() const { return mChars == nullptr || mChars[0] == '\0'; }

private:
    std::unique_ptr<char[]> mChars;
};

// The elements of a Java array of ints or floats, read-only: released without copying back.
class IntElements {
public:
    IntElements(JNIEnv* env, jintArray array)
        : mEnv(env), mArray(array), mElements(env->GetIntArrayElements(array, nullptr)) {}
    ~IntElements() {
        if (mElements != nullptr) mEnv->ReleaseIntArrayElements(mArray, mElements, JNI_ABORT);
    }
    IntElements(const IntElements&) = delete;
    IntElements& operator=(const IntElements&) = delete;
    const jint* get() const { return mElements; }  // null when they cannot be read

private:
    JNIEnv* mEnv;
    jintArray mArray;
    jint* mElements;
};

class FloatElements {
public:
    FloatElements(JNIEnv* env, jfloatArray array)
        : mEnv(env), mArray(array), mElements(env->GetFloatArrayElements(array, nullptr)) {}
    ~FloatElements() {
        if (mElements != nullptr) mEnv->ReleaseFloatArrayElements(mArray, mElements, JNI_ABORT);
    }
    FloatElements(const FloatElements&) = delete;
    FloatElements& operator=(const FloatElements&) = delete;
    const jfloat* get() const { return mElements; }

private:
    JNIEnv* mEnv;
    jfloatArray mArray;
    jfloat* mElements;
};

// A copy of a byte array in memory from new char[], of the array's length, which may be 0. Null when memory
// is short, said in an error line under `tag`, and when an exception is pending.
std::unique_ptr<char[]> copyBytes(JNIEnv* env, jbyteArray array, const char* tag);

// --- Methods and calls

struct JavaMethod {
    const char* name;
    const char* signature;
};

// The method of that class; null if there is none. An exception is then pending only if the lookup failed for
// another reason.
jmethodID findMethod(JNIEnv* env, jclass javaClass, const JavaMethod& method);

// The same on the object's own class.
jmethodID findMethod(JNIEnv* env, jobject object, const JavaMethod& method);

// Looks up the methods of `table` in order and stores them at the same indices of `ids`. Stops at the first
// missing one with an error line "<complaint> <name> not found" under `tag`, and returns false.
bool findMethods(JNIEnv* env, jclass javaClass, const JavaMethod* table, size_t count, jmethodID* ids,
                 const char* tag, const char* complaint);

template <size_t Count>
bool findMethods(JNIEnv* env, jclass javaClass, const JavaMethod (&table)[Count], jmethodID (&ids)[Count],
                 const char* tag, const char* complaint) {
    return findMethods(env, javaClass, table, Count, ids, tag, complaint);
}

// The methods of the elements of an array: looked up on the class of the first element, and again only for an
// element of another class.
template <size_t Count>
class ElementMethods {
public:
    ElementMethods(const JavaMethod (&table)[Count], const char* tag, const char* complaint)
        : mTable(table), mTag(tag), mComplaint(complaint) {}

    // Makes operator[] fit the element. False as findMethods.
    bool fit(JNIEnv* env, jobject element) {
        LocalRef<jclass> elementClass(env, env->GetObjectClass(element));
        if (mClass && env->IsSameObject(mClass.get(), elementClass.get())) return true;
        if (!findMethods(env, elementClass.get(), mTable, mIds, mTag, mComplaint)) return false;
        mClass = std::move(elementClass);
        return true;
    }
    jmethodID operator[](size_t index) const { return mIds[index]; }

private:
    const JavaMethod (&mTable)[Count];
    const char* mTag;
    const char* mComplaint;
    LocalRef<jclass> mClass;
    jmethodID mIds[Count] = {};
};

// Calls of Java methods, one after another. After the first that throws, the exception stays pending and
// every later call does nothing and returns 0, false or null. So a reader makes all its calls and checks
// once, at the end, whether one threw.
class JavaCalls {
public:
    explicit JavaCalls(JNIEnv* env) : mEnv(env) {}

    bool threw() const { return mThrew; }

    template <typename... Arguments>
    jint getInt(jobject object, jmethodID method, Arguments... arguments) {
        return mThrew ? 0 : checked(mEnv->CallIntMethod(object, method, arguments...));
    }
    template <typename... Arguments>
    jfloat getFloat(jobject object, jmethodID method, Arguments... arguments) {
        return mThrew ? 0 : checked(mEnv->CallFloatMethod(object, method, arguments...));
    }
    bool getBool(jobject object, jmethodID method) {
        return !mThrew && checked(mEnv->CallBooleanMethod(object, method)) != JNI_FALSE;
    }
    // T: the JNI type of the method's result.
    template <typename T = jobject>
    LocalRef<T> getObject(jobject object, jmethodID method) {
        if (mThrew) return LocalRef<T>();
        return LocalRef<T>(mEnv, static_cast<T>(checked(mEnv->CallObjectMethod(object, method))));
    }
    LocalRef<jobject> getElement(jobjectArray array, jsize index) {
        if (mThrew) return LocalRef<jobject>();
        return LocalRef<jobject>(mEnv, checked(mEnv->GetObjectArrayElement(array, index)));
    }
    Utf8Chars getChars(jobject object, jmethodID method) {
        return charsOf(getObject<jstring>(object, method).get());
    }
    // A string for which there is no memory counts as a call that threw, so that it is not taken for null.
    Utf8Chars charsOf(jstring string) {
        if (mThrew) return Utf8Chars();
        Utf8Chars chars = checked(Utf8Chars(mEnv, string));
        mThrew = mThrew || (string != nullptr && chars.get() == nullptr);
        return chars;
    }
    // As findMethod; a lookup that fails with an exception counts as a call that threw.
    jmethodID find(jobject object, const JavaMethod& method) {
        return mThrew ? nullptr : checked(findMethod(mEnv, object, method));
    }

private:
    template <typename Result>
    Result checked(Result result) {
        mThrew = mEnv->ExceptionCheck() != JNI_FALSE;
        return result;
    }

    JNIEnv* mEnv;
    bool mThrew = false;
};

// --- Loading

// Handles the exception of a failed lookup or registration: a NoSuchMethodError is cleared, any other stays
// pending. If that class cannot be found, nothing stays pending.
void HandleException(JNIEnv* env);

// One entry of a registration table. Not every jni.h declares the names it does not write to as const.
template <typename Function>
JNINativeMethod nativeMethod(const char* name, const char* signature, Function* function) {
    return {const_cast<char*>(name), const_cast<char*>(signature), reinterpret_cast<void*>(function)};
}

// Finds a class through the class loader that loads the library; null, with an exception pending, if there is
// none.
LocalRef<jclass> findClass(JNIEnv* env, const char* name);

}  // namespace Zvex

#endif  // ZVEX_JNI_JNISUPPORT_H_
