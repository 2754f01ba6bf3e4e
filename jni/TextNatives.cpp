// SPDX-License-Identifier: Apache-2.0
#include "jni/TextNatives.h"

#include "foundation/ZvLog.h"
#include "jni/BoundTextObject.h"
#include "jni/JniSupport.h"
#include "jni/TextEffectNatives.h"
#include "jni/TextFontNatives.h"
#include "jni/TextObjectNatives.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvText_JNI";
constexpr char kClass[] = "com/orvane/android/sdk/zve/ZvText";

JavaVM* keptVm = nullptr;

}  // namespace

bool ZvText_OnLoad(JavaVM* vm, JNIEnv* env) {
    keptVm = vm;
    const LocalRef<jclass> textClass = findClass(env, kClass);
    if (!textClass) return false;
    KeepTextClass(env, textClass.get());
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
