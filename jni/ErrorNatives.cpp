// SPDX-License-Identifier: Apache-2.0
#include "jni/ErrorNatives.h"

#include <cstdint>

#include "foundation/Error.h"
#include "foundation/ZvLog.h"
#include "jni/JniSupport.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvError_JNI";
constexpr char kClass[] = "com/orvane/android/sdk/zve/util/ZvError";
constexpr char kBuildTypeMethod[] = "isBuildTypeEngMode";

JavaVM* keptVm = nullptr;

// The calling thread's last error; reading it does not clear it.
jint JNICALL Error_GetError(JNIEnv*, jobject) {
    ZV_DEBUG_LOG(kTag, "Error_GetError");
    return static_cast<jint>(static_cast<uint32_t>(Error::GetError()));
}

// No exception is pending afterwards.
void askBuildType(JNIEnv* env, jclass errorClass) {
    const jmethodID method = env->GetStaticMethodID(errorClass, kBuildTypeMethod, "()Z");
    if (method == nullptr) {
        env->ExceptionClear();
        __android_log_print(ANDROID_LOG_ERROR, kTag, "Java function %s not found", kBuildTypeMethod);
        return;
    }
    const jboolean engineering = env->CallStaticBooleanMethod(errorClass, method);
    if (env->ExceptionCheck()) {
        env->ExceptionClear();
        __android_log_print(ANDROID_LOG_ERROR, kTag, "Java function %s failed", kBuildTypeMethod);
        return;
    }
    ZvLog::SetBuildType(engineering != JNI_FALSE);
}

}  // namespace

bool Error_OnLoad(JavaVM* vm) {
    keptVm = vm;
    void* environment = nullptr;
    if (vm->GetEnv(&environment, JNI_VERSION_1_2) != JNI_OK) return false;
    JNIEnv* const env = static_cast<JNIEnv*>(environment);

    const LocalRef<jclass> errorClass = findClass(env, kClass);
    if (!errorClass) return false;
    if (!ZvLog::IsCheckedBuildType()) askBuildType(env, errorClass.get());

    const JNINativeMethod natives[] = {nativeMethod("Error_GetError", "()I", Error_GetError)};
    if (env->RegisterNatives(errorClass.get(), natives, 1) < 0) return false;
    ZV_DEBUG_LOG(kTag, "Init .. Done");
    return true;
}

}  // namespace Zvex
