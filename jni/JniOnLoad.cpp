// SPDX-License-Identifier: Apache-2.0
// The one symbol that the shared library exports: the Java runtime calls it once, on the loading thread.
#include <jni.h>

#include "foundation/ZvLog.h"

namespace {
constexpr char kTag[] = "ZvText_Common_JNI";
}

// Returns the interface version the library was written for, or 0, by which the runtime refuses the library,
// where it offers no environment of that version.
extern "C" JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM* vm, void*) {
    ZV_DEBUG_LOG(kTag, "ZvText_JNI_OnLoad");
    void* env = nullptr;
    if (vm->GetEnv(&env, JNI_VERSION_1_2) != JNI_OK) return 0;
    ZV_DEBUG_LOG(kTag, "ZvText_JNI_OnLoad .... done");
    return JNI_VERSION_1_2;
}
