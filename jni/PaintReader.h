// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_PAINTREADER_H_
#define ZVEX_JNI_PAINTREADER_H_

#include <hwui/Paint.h>
#include <jni.h>

namespace Zvex {

// Reads an android.graphics.Paint into `out`, a fresh paint: scale, skew, letter spacing, family variant,
// flags, size, fake bold, feature settings, locales and alignment. The colour is not read: a text takes its
// colour from its view.
//
// False, with an error line, when the paint lacks a method; and when a method throws: the exception is
// pending then. A locale list or an alignment that cannot be read is logged and keeps its default.
bool ReadPaint(JNIEnv* env, jobject paint, android::Paint& out);

}  // namespace Zvex

#endif  // ZVEX_JNI_PAINTREADER_H_
