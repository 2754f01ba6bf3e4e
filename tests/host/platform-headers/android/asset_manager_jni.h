// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PLATFORM_HEADERS_ANDROID_ASSET_MANAGER_JNI_H_
#define ZVEX_TESTS_HOST_PLATFORM_HEADERS_ANDROID_ASSET_MANAGER_JNI_H_

#include <android/asset_manager.h>
#include <jni.h>

extern "C" AAssetManager* AAssetManager_fromJava(JNIEnv* env, jobject assetManager);

#endif  // ZVEX_TESTS_HOST_PLATFORM_HEADERS_ANDROID_ASSET_MANAGER_JNI_H_
