// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_ANDROID_ASSET_MANAGER_JNI_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_ANDROID_ASSET_MANAGER_JNI_H_

#include <android/asset_manager.h>
#include <jni.h>

extern "C" {

// The manager of that Java object, whose field `String root` names the folder. Null, without an exception, if
// there is no such field. The result is valid for the life of the process; the same folder gives the same
// one.
AAssetManager* AAssetManager_fromJava(JNIEnv* env, jobject assetManager);
}

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_ANDROID_ASSET_MANAGER_JNI_H_
