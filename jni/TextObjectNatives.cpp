// SPDX-License-Identifier: Apache-2.0
#include "jni/TextObjectNatives.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <vector>

#include "effect/ZvEffect.h"
#include "foundation/List.h"
#include "foundation/SafeConvert.h"
#include "foundation/ZvLog.h"
#include "foundation/ZvString.h"
#include "jni/BoundTextObject.h"
#include "jni/JniSupport.h"
#include "jni/LayoutReader.h"
#include "jni/PaintReader.h"
#include "jni/ViewReader.h"
#include "text/LinePlacement.h"
#include "text/ZvTextInstanceManager.h"
#include "text/ZvTextObject.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvText_JNI";

// The records on their way into the text object, which takes them out of here.
class LineRecords {
public:
    ~LineRecords() {
        const int count = mMade ? mList.GetCount() : 0;
        for (int i = 0; i < count; ++i) delete static_cast<ZvLineInfo*>(mList.Get(i));
    }

    // False when memory is short.
    bool make(const std::vector<ZvLineInfo>& lines) {
        mMade = mList.Construct() != 0;
        if (!mMade) return false;
        for (const ZvLineInfo& line : lines) {
            std::unique_ptr<ZvLineInfo> record(new (std::nothrow) ZvLineInfo(line));
            if (record == nullptr || mList.Add(record.get()) == 0) return false;
            static_cast<void>(record.release());
        }
        return true;
    }

    bool moveInto(ZvTextObject& text) {
        if (!text.SetLineInfo(&mList)) return false;
        mList.RemoveAll();
        return true;
    }

private:
    List mList;
    bool mMade = false;
};

jintArray toIntArray(JNIEnv* env, const jint* values, jsize count) {
    const jintArray array = env->NewIntArray(count);
    if (array != nullptr && values != nullptr && count > 0) env->SetIntArrayRegion(array, 0, count, values);
    return array;
}

}  // namespace

void JNICALL ZvText_finalize(JNIEnv* env, jobject thiz) {
    const jint handle = ReadHandle(env, thiz);
    if (handle < 0) return;
    ZvTextObject* const text = ZvTextObject::FindZvTextObject(handle);
    if (text == nullptr) return;
    ZV_DEBUG_LOG(kTag, "finalize : RH %d", static_cast<int>(handle));
    ZvTextInstanceManager::Release(text, true);
}

jboolean JNICALL ZvText_SetPaint(JNIEnv* env, jobject thiz, jobject javaPaint) {
    ZV_BOUND_TEXT_OBJECT(text, JNI_FALSE);
    android::Paint paint;
    if (javaPaint == nullptr || !ReadPaint(env, javaPaint, paint)) return JNI_FALSE;
    text->SetPaint(paint);
    return JNI_TRUE;
}

jboolean JNICALL ZvText_SetView(JNIEnv* env, jobject thiz, jobject javaView) {
    ZV_BOUND_TEXT_OBJECT(text, JNI_FALSE);
    ZvView* const view = text->GetView();
    ViewSettings settings;
    if (view == nullptr || javaView == nullptr || !ReadView(env, javaView, settings)) return JNI_FALSE;
    const ZvView& read = settings.view;
    view->gravity = read.gravity;
    view->maxLines = read.maxLines;
    view->SetPadding(read.paddingLeft, read.paddingTop, read.paddingRight, read.paddingBottom);
    view->SetSize(read.width, read.height);
    text->SetTextColor(settings.textColor);
    if (settings.hasTypeface) text->SetTextStyle(settings.bold, settings.italic);
    return JNI_TRUE;
}

jboolean JNICALL ZvText_SetLine(JNIEnv* env, jobject thiz, jint lines) {
    ZV_BOUND_TEXT_OBJECT(text, JNI_FALSE);
    ZvView* const view = text->GetView();
    if (view == nullptr) return JNI_FALSE;
    view->lines = lines;
    return JNI_TRUE;
}

jboolean JNICALL ZvText_SetLayout(JNIEnv* env, jobject thiz, jobject layout) {
    ZV_BOUND_TEXT_OBJECT(text, JNI_FALSE);
    const int handle = text->GetRuntimeHandle();
    if (layout == nullptr) {
        ZV_DEBUG_LOG(kTag, "ZvText_SetLayout - RH(%d) null", handle);
        return JNI_FALSE;
    }
    ZV_DEBUG_LOG(kTag, "ZvText_SetLayout - RH(%d) (%p)", handle, static_cast<void*>(layout));
    const ZvView* const view = text->GetView();
    LayoutContent content;
    if (view == nullptr || !ReadLayout(env, layout, *view, content)) return JNI_FALSE;

    LineRecords records;
    if (!records.make(placeLines(*view, content.lines.get(), content.lineCount))) return JNI_FALSE;
    if (content.text.get() != nullptr) {
        ZvString string;
        if (string.Construct(content.text.get()) == 0 || !text->SetText(&string)) return JNI_FALSE;
    }
    return records.moveInto(*text) ? JNI_TRUE : JNI_FALSE;
}

jboolean JNICALL ZvText_SetBackgroundColor(JNIEnv* env, jobject thiz, jint color, jboolean enabled) {
    ZV_BOUND_TEXT_OBJECT(text, JNI_FALSE);
    text->SetBackgroundColor(static_cast<uint32_t>(color), enabled != JNI_FALSE);
    return JNI_TRUE;
}

jintArray JNICALL ZvText_GetDrawingBitmapSize(JNIEnv* env, jobject thiz) {
    ZV_BOUND_TEXT_OBJECT(text, nullptr);
    const ZvView* const view = text->GetView();
    if (view == nullptr) return nullptr;
    jint size[2] = {};
    view->GetDrawingBitmapSize(size);
    return toIntArray(env, size, 2);
}

jintArray JNICALL ZvText_RenderTextEffect(JNIEnv* env, jobject thiz) {
    ZV_BOUND_TEXT_OBJECT(text, nullptr);
    ZvView* const view = text->GetView();
    ZvEffect* const effect = text->GetEffect();
    if (view == nullptr || effect == nullptr) return nullptr;
    const int width =
        clampToInt(int64_t{effect->getLeftOffset()} + effect->getRightOffset() + view->GetWidth());
    const int height =
        clampToInt(int64_t{effect->getTopOffset()} + effect->getBottomOffset() + view->GetHeight());
    const int64_t count = int64_t{width} * height;
    if (count > std::numeric_limits<jsize>::max()) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "ZvText_RenderTextEffect - %d x %d pixels fit no array",
                            width, height);
        return nullptr;
    }
    view->SetBitmapWidth(width);
    view->SetBitmapHeight(height);
    const uint32_t* pixels = text->RenderTextEffect(width, height);
    // Without its drawing part the object answers with the picture before this one, of whatever size.
    if (text->GetFont() == nullptr) pixels = nullptr;
    return toIntArray(env, reinterpret_cast<const jint*>(pixels), static_cast<jsize>(count));
}

}  // namespace Zvex
