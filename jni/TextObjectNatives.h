// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_TEXTOBJECTNATIVES_H_
#define ZVEX_JNI_TEXTOBJECTNATIVES_H_

#include <jni.h>

namespace Zvex {

// The natives of ZvText that fill and render its text object. Each makes the text object on the first call;
// one whose text object is gone reports error 19 and fails. A null argument fails. A Java object that lacks a
// method fails with an error line and no exception; a method that throws fails with its exception pending.
// The setters read all they need before they set anything, so a failure leaves the text object as it was.

// Gives up the Java object's reference to its text object; nothing without one.
void JNICALL ZvText_finalize(JNIEnv* env, jobject thiz);

jboolean JNICALL ZvText_SetPaint(JNIEnv* env, jobject thiz, jobject paint);

// A negative size of the view is written down and leaves the size held; all else is taken.
jboolean JNICALL ZvText_SetView(JNIEnv* env, jobject thiz, jobject javaView);

// The number of lines shown; below 1 for the view's own limit.
jboolean JNICALL ZvText_SetLine(JNIEnv* env, jobject thiz, jint lines);

// Takes over the layout's text, if it has one, and the lines that the view shows of it, placed in the view as
// it is now.
jboolean JNICALL ZvText_SetLayout(JNIEnv* env, jobject thiz, jobject layout);

jboolean JNICALL ZvText_SetBackgroundColor(JNIEnv* env, jobject thiz, jint color, jboolean enabled);

// Width and height of the picture rendered last; null without a text object or memory.
jintArray JNICALL ZvText_GetDrawingBitmapSize(JNIEnv* env, jobject thiz);

// The picture, row by row, words 0xAARRGGBB: the view's size plus the effects' margins. All zero when nothing
// could be drawn. Null without a text object or memory, and when it has more pixels than an array can hold.
jintArray JNICALL ZvText_RenderTextEffect(JNIEnv* env, jobject thiz);

}  // namespace Zvex

#endif  // ZVEX_JNI_TEXTOBJECTNATIVES_H_
