// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <android/asset_manager.h>
#include <jni.h>

extern "C" AAssetManager* AAssetManager_fromJava(JNIEnv* env, jobject assetManager);
