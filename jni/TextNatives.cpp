// SPDX-License-Identifier: Apache-2.0
// The natives of ZvText. Each creates the Java object's text object on the first call; if the text object is
// gone, it reports error 19 and fails. A null argument fails. A Java object that lacks a method fails with an
// error line and no exception; a method that throws fails with its exception pending. The setters read all
// they need before they set anything, so a failure leaves the text object as it was.
#include "jni/TextNatives.h"

#include <android/asset_manager.h>
#include <android/asset_manager_jni.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <new>

#include "effect/ZvEffect.h"
#include "foundation/OutOfMemory.h"
#include "foundation/ZvLog.h"
#include "foundation/ZvString.h"
#include "jni/BoundTextObject.h"
#include "jni/JniSupport.h"
#include "jni/LayoutReader.h"
#include "jni/LineRecords.h"
#include "jni/PaintReader.h"
#include "jni/RenderPicture.h"
#include "jni/StopsReader.h"
#include "jni/ViewReader.h"
#include "text/FontManager.h"
#include "text/LinePlacement.h"
#include "text/ZvTextInstanceManager.h"
#include "text/ZvTextObject.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvText_JNI";
constexpr char kClass[] = "com/orvane/android/sdk/zve/ZvText";

JavaVM* keptVm = nullptr;

// --- Lifetime and settings

// Drops the Java object's reference to its text object, if it has one.
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
    const int handle = text->GetRuntimeHandle();
    if (javaPaint == nullptr || !ReadPaint(env, javaPaint, paint)) return JNI_FALSE;
    ZV_STILL_BOUND(handle, JNI_FALSE);
    text->SetPaint(paint);
    return JNI_TRUE;
}

// A negative size of the view is logged and ignored; everything else is stored.
jboolean JNICALL ZvText_SetView(JNIEnv* env, jobject thiz, jobject javaView) {
    ZV_BOUND_TEXT_OBJECT(text, JNI_FALSE);
    ZvView* const view = text->GetView();
    const int handle = text->GetRuntimeHandle();
    ViewSettings settings;
    if (view == nullptr || javaView == nullptr || !ReadView(env, javaView, settings)) return JNI_FALSE;
    ZV_STILL_BOUND(handle, JNI_FALSE);
    const ZvView& read = settings.view;
    view->gravity = read.gravity;
    view->maxLines = read.maxLines;
    view->SetPadding(read.paddingLeft, read.paddingTop, read.paddingRight, read.paddingBottom);
    view->SetSize(read.width, read.height);
    text->SetTextColor(settings.textColor);
    if (settings.hasTypeface) text->SetTextStyle(settings.bold, settings.italic);
    return JNI_TRUE;
}

// The number of lines shown; below 1 for the view's own limit.
jboolean JNICALL ZvText_SetLine(JNIEnv* env, jobject thiz, jint lines) {
    ZV_BOUND_TEXT_OBJECT(text, JNI_FALSE);
    ZvView* const view = text->GetView();
    if (view == nullptr) return JNI_FALSE;
    view->lines = lines;
    return JNI_TRUE;
}

// Copies the layout's text, if it has one, and the lines that the view shows, placed in the view as it is
// now.
jboolean JNICALL ZvText_SetLayout(JNIEnv* env, jobject thiz, jobject layout) {
    ZV_BOUND_TEXT_OBJECT(text, JNI_FALSE);
    const int handle = text->GetRuntimeHandle();
    if (layout == nullptr) {
        ZV_DEBUG_LOG(kTag, "ZvText_SetLayout - RH(%d) null", handle);
        return JNI_FALSE;
    }
    ZV_DEBUG_LOG(kTag, "ZvText_SetLayout - RH(%d) (%p)", handle, static_cast<void*>(layout));
    if (text->GetView() == nullptr) return JNI_FALSE;
    const ZvView view = *text->GetView();  // one copy, so that choosing and placing lines agree
    LayoutContent content;
    if (!ReadLayout(env, layout, view, content)) return JNI_FALSE;
    ZV_STILL_BOUND(handle, JNI_FALSE);

    LineRecords records;
    const bool made = unlessOutOfMemory(
        false, [&] { return records.make(placeLines(view, content.lines.get(), content.lineCount)); });
    if (!made) return JNI_FALSE;
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

// Width and height of the picture rendered last; null without a text object or memory.
jintArray JNICALL ZvText_GetDrawingBitmapSize(JNIEnv* env, jobject thiz) {
    ZV_BOUND_TEXT_OBJECT(text, nullptr);
    const ZvView* const view = text->GetView();
    if (view == nullptr) return nullptr;
    jint size[2] = {};
    view->GetDrawingBitmapSize(size);
    const jintArray array = env->NewIntArray(2);
    if (array != nullptr) env->SetIntArrayRegion(array, 0, 2, size);
    return array;
}

// The picture, row by row, words 0xAARRGGBB: the view's size plus the effects' margins. All zero when nothing
// could be drawn. Null without a text object or memory, and when it has more pixels than an array can hold.
jintArray JNICALL ZvText_RenderTextEffect(JNIEnv* env, jobject thiz) {
    ZV_BOUND_TEXT_OBJECT(text, nullptr);
    return renderPicture(env, *text, kTag, "ZvText_RenderTextEffect");
}

// --- Fonts. They change the process's font manager: callers must not run them in parallel with each other or
// with renders.

jboolean fail(const char* line) {
    __android_log_print(ANDROID_LOG_ERROR, kTag, "%s", line);
    return JNI_FALSE;
}

struct AssetCloser {
    void operator()(AAsset* asset) const { AAsset_close(asset); }
};

// All bytes of the asset; null if they cannot be read or are more than a font may have.
std::unique_ptr<char[]> readAsset(AAsset* asset, unsigned int& size) {
    const int64_t length = AAsset_getLength(asset);
    if (length < 0 || length > std::numeric_limits<uint32_t>::max()) return nullptr;
    const auto wanted = static_cast<size_t>(length);
    std::unique_ptr<char[]> bytes(new (std::nothrow) char[wanted]);
    if (bytes == nullptr) return nullptr;
    for (size_t have = 0; have < wanted;) {
        const int got = AAsset_read(asset, bytes.get() + have, wanted - have);
        if (got <= 0) return nullptr;
        have += static_cast<size_t>(got);
    }
    size = static_cast<unsigned int>(length);
    return bytes;
}

// A file, or a name that the font manager already holds.
jboolean JNICALL ZvText_SetFont(JNIEnv* env, jobject thiz, jstring path) {
    ZV_BOUND_TEXT_OBJECT(text, JNI_FALSE);
    const Utf8Chars chars(env, path);
    if (chars.get() == nullptr) return fail("ZvText_SetFont() - Fail to get fontFile string");
    return text->SetFont(chars.get());
}

// A font file's bytes under a name; a font held under that name already wins.
jboolean JNICALL ZvText_SetFont2(JNIEnv* env, jobject thiz, jstring name, jbyteArray data) {
    ZV_BOUND_TEXT_OBJECT(text, JNI_FALSE);
    if (name == nullptr) return fail("ZvText_SetFont2() - fontName is NULL");
    if (data == nullptr) return fail("ZvText_SetFont2() - buffer is NULL");
    const Utf8Chars key(env, name);
    if (key.get() == nullptr) return fail("ZvText_SetFont2() - Fail to get fontFile string");
    const auto length = static_cast<unsigned int>(env->GetArrayLength(data));
    std::unique_ptr<char[]> bytes = copyBytes(env, data, kTag);
    if (bytes == nullptr) return JNI_FALSE;
    return text->SetFont(key.get(), bytes.release(), length);
}

// An asset of the application; not opened when the font manager holds its name already.
jboolean JNICALL ZvText_SetFont3(JNIEnv* env, jobject thiz, jobject assetManager, jstring name) {
    ZV_BOUND_TEXT_OBJECT(text, JNI_FALSE);
    if (assetManager == nullptr) return fail("ZvText_SetFont3() - assetManager is NULL");
    if (name == nullptr) return fail("ZvText_SetFont3() - fontName is NULL");
    const Utf8Chars key(env, name);
    if (key.get() == nullptr) return fail("ZvText_SetFont3() - Fail to get fontFile string");
    if (FontManager::GetInstance()->IsExisting(key.get(), 0)) return text->SetFont(key.get());

    const std::unique_ptr<AAsset, AssetCloser> asset(unlessOutOfMemory<AAsset*>(nullptr, [&] {
        AAssetManager* const assets = AAssetManager_fromJava(env, assetManager);
        return assets != nullptr ? AAssetManager_open(assets, key.get(), AASSET_MODE_BUFFER) : nullptr;
    }));
    if (asset == nullptr) return fail("ZvText_SetFont3() - _ASSET_NOT_FOUND_");
    unsigned int size = 0;
    std::unique_ptr<char[]> bytes = readAsset(asset.get(), size);
    if (bytes == nullptr) return fail("ZvText_SetFont3() - Fail to read the asset");
    return text->SetFont(key.get(), bytes.release(), size);
}

// --- Effects. Arguments pass to the adders of ZvEffect in the order in which they come; the result is the
// effect's id, or -1.

// The stack, or null with a line that names the native.
ZvEffect* effectOf(ZvTextObject* text, const char* native) {
    ZvEffect* const effect = text->GetEffect();
    if (effect == nullptr) __android_log_print(ANDROID_LOG_ERROR, kTag, "%s() effect is NULL", native);
    return effect;
}

jint margin(ZvTextObject* text, int (ZvEffect::*side)()) {
    ZvEffect* const effect = text->GetEffect();
    return effect != nullptr ? (effect->*side)() : 0;
}

jint JNICALL ZvText_AddStrokeTextEffect(JNIEnv* env, jobject thiz, jfloat width, jint color, jfloat opacity,
                                        jint kind, jint position) {
    ZV_BOUND_TEXT_OBJECT(text, -1);
    ZvEffect* const effect = effectOf(text, "ZvText_AddStrokeTextEffect");
    if (effect == nullptr) return -1;
    return effect->addStrokeText(width, static_cast<uint32_t>(color), opacity, kind, position);
}

jint JNICALL ZvText_AddOuterShadowTextEffect(JNIEnv* env, jobject thiz, jfloat angle, jfloat distance,
                                             jfloat size, jint color, jfloat opacity) {
    ZV_BOUND_TEXT_OBJECT(text, -1);
    ZvEffect* const effect = effectOf(text, "ZvText_AddOuterShadowTextEffect");
    if (effect == nullptr) return -1;
    return effect->addOuterShadowText(angle, distance, size, static_cast<uint32_t>(color), opacity);
}

jint JNICALL ZvText_AddInnerShadowTextEffect(JNIEnv* env, jobject thiz, jfloat angle, jfloat distance,
                                             jfloat size, jint color, jfloat opacity) {
    ZV_BOUND_TEXT_OBJECT(text, -1);
    ZvEffect* const effect = effectOf(text, "ZvText_AddInnerShadowTextEffect");
    if (effect == nullptr) return -1;
    return effect->addInnerShadowText(angle, distance, size, static_cast<uint32_t>(color), opacity);
}

jint JNICALL ZvText_AddOuterGlowTextEffect(JNIEnv* env, jobject thiz, jfloat size, jint color,
                                           jfloat opacity) {
    ZV_BOUND_TEXT_OBJECT(text, -1);
    ZvEffect* const effect = effectOf(text, "ZvText_AddOuterGlowTextEffect");
    if (effect == nullptr) return -1;
    return effect->addOuterGlowText(size, static_cast<uint32_t>(color), opacity, 0, nullptr);
}

// One stop for each place of the three arrays. Null arrays or unequal lengths: -1, nothing added.
jint JNICALL ZvText_AddLinearGradientTextEffect(JNIEnv* env, jobject thiz, jfloat angle, jfloat scale,
                                                jintArray colors, jfloatArray opacities,
                                                jfloatArray positions, jfloat opacity) {
    ZV_BOUND_TEXT_OBJECT(text, -1);
    ZvEffect* const effect = effectOf(text, "ZvText_AddLinearGradientTextEffect");
    if (effect == nullptr) return -1;
    if (!StopsReader::fit(env, colors, opacities, positions)) return -1;
    StopsReader stops;
    if (!stops.read(env, colors, opacities, positions)) return -1;
    return effect->addLinearGradientText(angle, scale, opacity, stops.count(), stops.stops());
}

// Does nothing for a Java object that never had a text object.
void JNICALL ZvText_ClearAllTextEffect(JNIEnv* env, jobject thiz) {
    if (ReadHandle(env, thiz) < 0) return;
    ZV_BOUND_TEXT_OBJECT(text, );
    ZvEffect* const effect = text->GetEffect();
    if (effect != nullptr) effect->cleanAllEffect();
}

jint JNICALL ZvText_GetEffectLeftOffset(JNIEnv* env, jobject thiz) {
    ZV_BOUND_TEXT_OBJECT(text, 0);
    return margin(text, &ZvEffect::getLeftOffset);
}

jint JNICALL ZvText_GetEffectTopOffset(JNIEnv* env, jobject thiz) {
    ZV_BOUND_TEXT_OBJECT(text, 0);
    return margin(text, &ZvEffect::getTopOffset);
}

jint JNICALL ZvText_GetEffectRightOffset(JNIEnv* env, jobject thiz) {
    ZV_BOUND_TEXT_OBJECT(text, 0);
    return margin(text, &ZvEffect::getRightOffset);
}

jint JNICALL ZvText_GetEffectBottomOffset(JNIEnv* env, jobject thiz) {
    ZV_BOUND_TEXT_OBJECT(text, 0);
    return margin(text, &ZvEffect::getBottomOffset);
}

}  // namespace

bool ZvText_OnLoad(JavaVM* vm, JNIEnv* env) {
    keptVm = vm;
    const LocalRef<jclass> textClass = findClass(env, kClass);
    if (!textClass) return false;
    FindHandleField(env, textClass.get());
    const JNINativeMethod natives[] = {
        nativeMethod("ZvText_finalize", "()V", ZvText_finalize),
        nativeMethod("ZvText_AddInnerShadowTextEffect", "(FFFIF)I", ZvText_AddInnerShadowTextEffect),
        nativeMethod("ZvText_AddLinearGradientTextEffect", "(FF[I[F[FF)I",
                     ZvText_AddLinearGradientTextEffect),
        nativeMethod("ZvText_AddOuterGlowTextEffect", "(FIF)I", ZvText_AddOuterGlowTextEffect),
        nativeMethod("ZvText_AddOuterShadowTextEffect", "(FFFIF)I", ZvText_AddOuterShadowTextEffect),
        nativeMethod("ZvText_AddStrokeTextEffect", "(FIFII)I", ZvText_AddStrokeTextEffect),
        nativeMethod("ZvText_ClearAllTextEffect", "()V", ZvText_ClearAllTextEffect),
        nativeMethod("ZvText_RenderTextEffect", "()[I", ZvText_RenderTextEffect),
        nativeMethod("ZvText_SetFont", "(Ljava/lang/String;)Z", ZvText_SetFont),
        nativeMethod("ZvText_SetFont2", "(Ljava/lang/String;[B)Z", ZvText_SetFont2),
        nativeMethod("ZvText_SetFont3", "(Landroid/content/res/AssetManager;Ljava/lang/String;)Z",
                     ZvText_SetFont3),
        nativeMethod("ZvText_SetPaint", "(Landroid/graphics/Paint;)Z", ZvText_SetPaint),
        nativeMethod("ZvText_SetLayout", "(Landroid/text/Layout;)Z", ZvText_SetLayout),
        nativeMethod("ZvText_SetLine", "(I)Z", ZvText_SetLine),
        nativeMethod("ZvText_SetView", "(Landroid/widget/TextView;)Z", ZvText_SetView),
        nativeMethod("ZvText_GetDrawingBitmapSize", "()[I", ZvText_GetDrawingBitmapSize),
        nativeMethod("ZvText_SetBackgroundColor", "(IZ)Z", ZvText_SetBackgroundColor),
        nativeMethod("ZvText_GetEffectLeftOffset", "()I", ZvText_GetEffectLeftOffset),
        nativeMethod("ZvText_GetEffectTopOffset", "()I", ZvText_GetEffectTopOffset),
        nativeMethod("ZvText_GetEffectRightOffset", "()I", ZvText_GetEffectRightOffset),
        nativeMethod("ZvText_GetEffectBottomOffset", "()I", ZvText_GetEffectBottomOffset),
    };
    if (env->RegisterNatives(textClass.get(), natives, sizeof(natives) / sizeof(natives[0])) < 0)
        return false;
    ZV_DEBUG_LOG(kTag, "JNI_OnLoad .. Done");
    return true;
}

}  // namespace Zvex
