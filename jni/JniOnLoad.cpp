// SPDX-License-Identifier: Apache-2.0
// The one symbol that the shared library exports: the Java runtime calls it once, on the loading thread. It
// registers the natives of the classes of the kit, one registration a class.
#include <jni.h>

#include "foundation/ZvLog.h"
#include "jni/EffectNatives.h"
#include "jni/ErrorNatives.h"
#include "jni/FontManagerNatives.h"
#include "jni/JniSupport.h"
#include "jni/TextNatives.h"

namespace {

constexpr char kTag[] = "ZvText_Common_JNI";

// A class that cannot be registered does not stop the load: the failure is logged and its exception cleared,
// since the runtime refuses a library that leaves one pending.
void noteFailure(JNIEnv* env, const char* line) {
    __android_log_print(ANDROID_LOG_ERROR, kTag, "%s", line);
    Zvex::HandleException(env);
    if (env->ExceptionCheck()) env->ExceptionClear();
}

}  // namespace

// Returns the JNI version the library needs, or 0 if the runtime has no environment of that version; the
// runtime then refuses the library.
extern "C" JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM* vm, void*) {
    ZV_DEBUG_LOG(kTag, "ZvText_JNI_OnLoad");
    void* environment = nullptr;
    if (vm->GetEnv(&environment, JNI_VERSION_1_2) != JNI_OK) return 0;
    JNIEnv* const env = static_cast<JNIEnv*>(environment);
    if (!Zvex::Error_OnLoad(vm)) noteFailure(env, "ZvError Onload Fail!");
    if (!Zvex::ZvFontManager_OnLoad(vm, env)) noteFailure(env, "ZvFontManager OnLoad Fail!");
    if (!Zvex::ZvText_OnLoad(vm, env)) noteFailure(env, "ZvText OnLoad Fail!");
    if (!Zvex::ZvTextEffects_OnLoad(env)) noteFailure(env, "ZvTextEffects OnLoad Fail!");
    ZV_DEBUG_LOG(kTag, "ZvText_JNI_OnLoad .... done");
    return JNI_VERSION_1_2;
}
