// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_LAYOUTREADER_H_
#define ZVEX_JNI_LAYOUTREADER_H_

#include <jni.h>

#include "effect/kernels/Buffer.h"
#include "jni/JniSupport.h"
#include "text/LinePlacement.h"
#include "text/ZvView.h"

namespace Zvex {

// What is wanted of an android.text.Layout: its text and the lines that a view shows of it.
struct LayoutContent {
    Utf8Chars text;             // without characters when the layout has no text
    Buffer<LaidOutLine> lines;  // no others than the lines shown
    int lineCount = 0;          // of them
};

// Asks the layout for no line but those that the view shows (shownLines), so for none when it shows none.
//
// False, with an error line, when the layout lacks a method or memory is short; and when a method throws: the
// exception is pending then.
bool ReadLayout(JNIEnv* env, jobject layout, const ZvView& view, LayoutContent& out);

}  // namespace Zvex

#endif  // ZVEX_JNI_LAYOUTREADER_H_
