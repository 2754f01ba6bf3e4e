// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_PICTURESIZE_H_
#define ZVEX_JNI_PICTURESIZE_H_

#include <android/log.h>
#include <jni.h>

#include <cstdint>
#include <limits>

#include "effect/ZvEffect.h"
#include "foundation/SafeConvert.h"
#include "text/ZvTextObject.h"
#include "text/ZvView.h"

namespace Zvex {

// Sets the size of the view's picture to the view plus the margins of the effects, and returns its number of
// pixels. -1, with nothing set and a line that names the native, if they do not fit a Java array.
inline jsize sizePicture(ZvTextObject& text, const char* tag, const char* native) {
    ZvView& view = *text.GetView();
    ZvEffect& effect = *text.GetEffect();
    const int width = clampToInt(int64_t{effect.getLeftOffset()} + effect.getRightOffset() + view.GetWidth());
    const int height =
        clampToInt(int64_t{effect.getTopOffset()} + effect.getBottomOffset() + view.GetHeight());
    const int64_t count = int64_t{width} * height;
    if (count > std::numeric_limits<jsize>::max()) {
        __android_log_print(ANDROID_LOG_ERROR, tag, "%s - %d x %d pixels fit no array", native, width,
                            height);
        return -1;
    }
    view.SetBitmapWidth(width);
    view.SetBitmapHeight(height);
    return static_cast<jsize>(count);
}

}  // namespace Zvex

#endif  // ZVEX_JNI_PICTURESIZE_H_
