// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_VIEWREADER_H_
#define ZVEX_JNI_VIEWREADER_H_

#include <jni.h>

#include <cstdint>

#include "text/ZvView.h"

namespace Zvex {

// What is read from an android.widget.TextView.
struct ViewSettings {
    ZvView view;  // size, padding, gravity and maxLines, as the Java view gave them, unchecked
    uint32_t textColor = 0;
    bool hasTypeface = false;  // else the next two mean nothing
    bool bold = false;
    bool italic = false;
};

// False, with an error line, when the view lacks a method; and when a method throws: the exception is pending
// then. A typeface that cannot tell whether it is bold or italic counts as neither.
bool ReadView(JNIEnv* env, jobject view, ViewSettings& out);

}  // namespace Zvex

#endif  // ZVEX_JNI_VIEWREADER_H_
