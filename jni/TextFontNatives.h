// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_TEXTFONTNATIVES_H_
#define ZVEX_JNI_TEXTFONTNATIVES_H_

#include <jni.h>

namespace Zvex {

// The natives of ZvText that choose its font. They change the process's font manager: callers keep them apart
// from each other and from renders. A failure leaves the font chosen before. Error 19 as in
// TextObjectNatives.h.

// A file, or a name that the font manager already holds.
jboolean JNICALL ZvText_SetFont(JNIEnv* env, jobject thiz, jstring path);

// A font file's bytes under a name; a font held under that name already wins.
jboolean JNICALL ZvText_SetFont2(JNIEnv* env, jobject thiz, jstring name, jbyteArray data);

// An asset of the application; not opened when the font manager holds its name already.
jboolean JNICALL ZvText_SetFont3(JNIEnv* env, jobject thiz, jobject assetManager, jstring name);

}  // namespace Zvex

#endif  // ZVEX_JNI_TEXTFONTNATIVES_H_
