// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_RENDERPICTURE_H_
#define ZVEX_JNI_RENDERPICTURE_H_

#include <android/log.h>
#include <jni.h>

#include <cstdint>
#include <limits>

#include "effect/ZvEffect.h"
#include "foundation/SafeConvert.h"
#include "text/ZvFontDrawing.h"
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

// The picture of a text with its own effects, as a Java array of its pixels; null if it cannot be made,
// possibly with an exception pending.
inline jintArray renderPicture(JNIEnv* env, ZvTextObject& text, const char* tag, const char* native) {
    if (text.GetView() == nullptr || text.GetEffect() == nullptr) return nullptr;
    const ZvView& view = *text.GetView();
    const jsize count = sizePicture(text, tag, native);
    if (count < 0) return nullptr;
    // Before rendering, which takes several times the array's memory: here the runtime checks its limit and
    // throws.
    const jintArray array = env->NewIntArray(count);
    if (array == nullptr) return nullptr;
    const uint32_t* pixels = text.RenderTextEffect(view.bitmapWidth, view.bitmapHeight);
    // Without its drawing part the object returns the previous picture, of any size.
    if (pixels != nullptr && text.GetFont() != nullptr) {
        env->SetIntArrayRegion(array, 0, count, reinterpret_cast<const jint*>(pixels));
    }
    return array;
}

}  // namespace Zvex

#endif  // ZVEX_JNI_RENDERPICTURE_H_
