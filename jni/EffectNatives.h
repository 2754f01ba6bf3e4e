// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_EFFECTNATIVES_H_
#define ZVEX_JNI_EFFECTNATIVES_H_

#include <jni.h>

namespace Zvex {

// Registers the natives of the kit's ZvTextEffects: the effects that ZvText has no natives for, texts without
// a view, and texts in layers. If the process lacks that class, the result is true and nothing is pending.
// False, with an exception pending, if the class lacks one of the methods.
bool ZvTextEffects_OnLoad(JNIEnv* env);

}  // namespace Zvex

#endif  // ZVEX_JNI_EFFECTNATIVES_H_
