// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_LAYOUTREADER_H_
#define ZVEX_JNI_LAYOUTREADER_H_

#include <jni.h>

#include "effect/kernels/Buffer.h"
#include "jni/JniSupport.h"
#include "text/LinePlacement.h"
#include "text/ZvView.h"

namespace Zvex {

// What is read from an android.text.Layout: its text and the lines of it that a view shows.
struct LayoutContent {
    Utf8Chars text;             // without characters when the layout has no text
    Buffer<LaidOutLine> lines;  // only the lines shown
    int lineCount = 0;          // of them
};

// Reads only the lines that the view shows (shownLines).
//
// False, with an error line, when the layout lacks a method or memory is short; and when a method throws: the
// exception is pending then.
bool ReadLayout(JNIEnv* env, jobject layout, const ZvView& view, LayoutContent& out);

}  // namespace Zvex

#endif  // ZVEX_JNI_LAYOUTREADER_H_
