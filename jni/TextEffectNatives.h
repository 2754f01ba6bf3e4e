// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_TEXTEFFECTNATIVES_H_
#define ZVEX_JNI_TEXTEFFECTNATIVES_H_

#include <jni.h>

namespace Zvex {

// The natives of ZvText that reach its effect stack. Arguments pass to the adders of ZvEffect in the order in
// which they come; the result is the effect's id, or -1. Error 19 as in TextObjectNatives.h.

jint JNICALL ZvText_AddStrokeTextEffect(JNIEnv* env, jobject thiz, jfloat width, jint color, jfloat opacity,
                                        jint kind, jint position);
jint JNICALL ZvText_AddOuterShadowTextEffect(JNIEnv* env, jobject thiz, jfloat angle, jfloat distance,
                                             jfloat size, jint color, jfloat opacity);
jint JNICALL ZvText_AddInnerShadowTextEffect(JNIEnv* env, jobject thiz, jfloat angle, jfloat distance,
                                             jfloat size, jint color, jfloat opacity);
jint JNICALL ZvText_AddOuterGlowTextEffect(JNIEnv* env, jobject thiz, jfloat size, jint color,
                                           jfloat opacity);

// One stop for each place of the three arrays. Null arrays or unequal lengths: -1, nothing added.
jint JNICALL ZvText_AddLinearGradientTextEffect(JNIEnv* env, jobject thiz, jfloat angle, jfloat scale,
                                                jintArray colors, jfloatArray opacities,
                                                jfloatArray positions, jfloat opacity);

// Nothing for a Java object that never had a text object.
void JNICALL ZvText_ClearAllTextEffect(JNIEnv* env, jobject thiz);

// The pixels that the effects need beside the view.
jint JNICALL ZvText_GetEffectLeftOffset(JNIEnv* env, jobject thiz);
jint JNICALL ZvText_GetEffectTopOffset(JNIEnv* env, jobject thiz);
jint JNICALL ZvText_GetEffectRightOffset(JNIEnv* env, jobject thiz);
jint JNICALL ZvText_GetEffectBottomOffset(JNIEnv* env, jobject thiz);

}  // namespace Zvex

#endif  // ZVEX_JNI_TEXTEFFECTNATIVES_H_
