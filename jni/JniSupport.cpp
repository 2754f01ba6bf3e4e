// SPDX-License-Identifier: Apache-2.0
#include "jni/JniSupport.h"

#include <android/log.h>

#include <cstdint>
#include <new>

namespace Zvex {

namespace {

bool isHighSurrogate(jchar unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool isLowSurrogate(jchar unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

// The continuation byte that holds six bits of `character` from bit `shift` up.
char continuation(uint32_t character, int shift) {
    return static_cast<char>(0x80 | ((character >> shift) & 0x3F));
}

char* appendUtf8(char* target, uint32_t c) {
    if (c < 0x80) {
        *target++ = static_cast<char>(c);
    } else if (c < 0x800) {
        *target++ = static_cast<char>(0xC0 | (c >> 6));
        *target++ = continuation(c, 0);
    } else if (c < 0x10000) {
        *target++ = static_cast<char>(0xE0 | (c >> 12));
        *target++ = continuation(c, 6);
        *target++ = continuation(c, 0);
    } else {
        *target++ = static_cast<char>(0xF0 | (c >> 18));
        *target++ = continuation(c, 12);
        *target++ = continuation(c, 6);
        *target++ = continuation(c, 0);
    }
    return target;
}

// Null if memory is short.
std::unique_ptr<char[]> toUtf8(const jchar* units, jsize length) {
    // A unit by itself takes at most three bytes, a pair four.
    std::unique_ptr<char[]> chars(new (std::nothrow) char[size_t{3} * static_cast<size_t>(length) + 1]);
    if (chars == nullptr) return nullptr;
    char* end = chars.get();
    for (jsize i = 0; i < length && units[i] != 0; ++i) {
        uint32_t c = units[i];
        if (isHighSurrogate(units[i]) && i + 1 < length && isLowSurrogate(units[i + 1])) {
            c = 0x10000 + ((c - 0xD800) << 10) + (units[++i] - 0xDC00u);
        }
        end = appendUtf8(end, c);
    }
    *end = '\0';
    return chars;
}

}  // namespace

Utf8Chars::Utf8Chars(JNIEnv* env, jstring string) {
    if (string == nullptr) return;
    const jsize length = env->GetStringLength(string);
    const jchar* units = env->GetStringChars(string, nullptr);
    if (units == nullptr) return;
    mChars = toUtf8(units, length);
    env->ReleaseStringChars(string, units);
}

std::unique_ptr<char[]> copyBytes(JNIEnv* env, jbyteArray array, const char* tag) {
    const jsize length = env->GetArrayLength(array);
    std::unique_ptr<char[]> bytes(new (std::nothrow) char[static_cast<size_t>(length)]);
    if (bytes == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, tag, "no memory for %d bytes", static_cast<int>(length));
        return nullptr;
    }
    env->GetByteArrayRegion(array, 0, length, reinterpret_cast<jbyte*>(bytes.get()));
    if (env->ExceptionCheck()) return nullptr;
    return bytes;
}

jmethodID findMethod(JNIEnv* env, jclass javaClass, const JavaMethod& method) {
    const jmethodID id = env->GetMethodID(javaClass, method.name, method.signature);
    if (id == nullptr) HandleException(env);
    return id;
}

jmethodID findMethod(JNIEnv* env, jobject object, const JavaMethod& method) {
    const LocalRef<jclass> objectClass(env, env->GetObjectClass(object));
    return findMethod(env, objectClass.get(), method);
}

bool findMethods(JNIEnv* env, jclass javaClass, const JavaMethod* table, size_t count, jmethodID* ids,
                 const char* tag, const char* complaint) {
    for (size_t i = 0; i < count; ++i) {
        ids[i] = findMethod(env, javaClass, table[i]);
        if (ids[i] == nullptr) {
            __android_log_print(ANDROID_LOG_ERROR, tag, "%s %s not found", complaint, table[i].name);
            return false;
        }
    }
    return true;
}

void HandleException(JNIEnv* env) {
    const LocalRef<jthrowable> thrown(env, env->ExceptionOccurred());
    if (!thrown) return;
    env->ExceptionClear();
    const LocalRef<jclass> missingMethod = findClass(env, "java/lang/NoSuchMethodError");
    if (!missingMethod) {
        env->ExceptionClear();  // of that search; the first one stays cleared too
        return;
    }
    if (!env->IsInstanceOf(thrown.get(), missingMethod.get())) env->Throw(thrown.get());
}

LocalRef<jclass> findClass(JNIEnv* env, const char* name) {
    return LocalRef<jclass>(env, env->FindClass(name));
}

}  // namespace Zvex
