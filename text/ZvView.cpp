// SPDX-License-Identifier: Apache-2.0
#include "text/ZvView.h"

#include <android/log.h>

namespace Zvex {

namespace {
constexpr char kTag[] = "ZvView";
}

bool ZvView::SetSize(int w, int h) {
    if (w < 0 || h < 0) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "SetSize() - size invalid");
        return false;
    }
    width = w;
    height = h;
    return true;
}

bool ZvView::SetBitmapWidth(int w) {
    if (w < 0) {
        // Keep the misspelling: log filters look for it.
        __android_log_print(ANDROID_LOG_ERROR, kTag, "SetBitmapWidht() - width[%d] is invalid", w);
        return false;
    }
    bitmapWidth = w;
    return true;
}

bool ZvView::SetBitmapHeight(int h) {
    if (h < 0) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "SetBitmapHeight() - height[%d] is invalid", h);
        return false;
    }
    bitmapHeight = h;
    return true;
}

bool ZvView::SetPadding(int left, int top, int right, int bottom) {
    paddingLeft = left;
    paddingTop = top;
    paddingRight = right;
    paddingBottom = bottom;
    return true;
}

void ZvView::GetDrawingBitmapSize(int* out) const {
    if (out == nullptr) return;
    out[0] = bitmapWidth;
    out[1] = bitmapHeight;
}

}  // namespace Zvex
