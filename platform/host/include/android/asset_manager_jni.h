// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_ANDROID_ASSET_MANAGER_JNI_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_ANDROID_ASSET_MANAGER_JNI_H_

#include <android/asset_manager.h>
#include <jni.h>

extern "C" {

// The manager of that Java object, which names its folder in a field `String root`. Null, without an
// exception, when it has none. What is returned stays valid for the life of the process; the same folder
// gives the same.
AAssetManager* AAssetManager_fromJava(JNIEnv* env, jobject assetManager);
}

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_ANDROID_ASSET_MANAGER_JNI_H_
