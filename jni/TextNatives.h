// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_TEXTNATIVES_H_
#define ZVEX_JNI_TEXTNATIVES_H_

#include <jni.h>

namespace Zvex {

// Registers the natives of the kit's ZvText: they fill a text object, give it effects and render it. False,
// with an exception pending, without the class or one of the methods.
bool ZvText_OnLoad(JavaVM* vm, JNIEnv* env);

}  // namespace Zvex

#endif  // ZVEX_JNI_TEXTNATIVES_H_
