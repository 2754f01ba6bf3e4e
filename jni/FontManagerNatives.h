// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_FONTMANAGERNATIVES_H_
#define ZVEX_JNI_FONTMANAGERNATIVES_H_

#include <jni.h>

namespace Zvex {

// Registers the natives of the kit's FontManager: one adds a font file's bytes under a name, one takes over
// the system's font configuration. False, with an exception pending, without the class or one of the methods.
bool ZvFontManager_OnLoad(JavaVM* vm, JNIEnv* env);

}  // namespace Zvex

#endif  // ZVEX_JNI_FONTMANAGERNATIVES_H_
