// SPDX-License-Identifier: Apache-2.0
#include "jni/ViewReader.h"

#include "foundation/ZvLog.h"
#include "jni/JniSupport.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvText_JNI";

enum ViewMethod {
    kGetTextSize,
    kGetCurrentTextColor,
    kGetTypeface,
    kGetTextDirection,
    kGetLayoutDirection,
    kGetWidth,
    kGetHeight,
    kGetPaddingLeft,
    kGetPaddingRight,
    kGetPaddingTop,
    kGetPaddingBottom,
    kGetGravity,
    kGetMaxLines,
    kViewMethodCount
};
constexpr JavaMethod kViewMethods[kViewMethodCount] = {
    {"getTextSize", "()F"},
    {"getCurrentTextColor", "()I"},
    {"getTypeface", "()Landroid/graphics/Typeface;"},
    {"getTextDirection", "()I"},
    {"getLayoutDirection", "()I"},
    {"getWidth", "()I"},
    {"getHeight", "()I"},
    {"getPaddingLeft", "()I"},
    {"getPaddingRight", "()I"},
    {"getPaddingTop", "()I"},
    {"getPaddingBottom", "()I"},
    {"getGravity", "()I"},
    {"getMaxLines", "()I"},
};
constexpr JavaMethod kIsBold = {"isBold", "()Z"};
constexpr JavaMethod kIsItalic = {"isItalic", "()Z"};

bool readStyle(JavaCalls& calls, jobject typeface, const JavaMethod& method) {
    const jmethodID id = calls.find(typeface, method);
    if (calls.threw()) return false;
    if (id == nullptr) {
        ZV_DEBUG_LOG(kTag, "getTypeFace cannot find '%s' method id", method.name);
        return false;
    }
    return calls.getBool(typeface, id);
}

}  // namespace

bool ReadView(JNIEnv* env, jobject view, ViewSettings& out) {
    const LocalRef<jclass> viewClass(env, env->GetObjectClass(view));
    jmethodID methods[kViewMethodCount];
    if (!findMethods(env, viewClass.get(), kViewMethods, methods, kTag, "ZvText_SetView - Function")) {
        return false;
    }
    JavaCalls calls(env);
    out.view.gravity = calls.getInt(view, methods[kGetGravity]);
    out.view.maxLines = calls.getInt(view, methods[kGetMaxLines]);
    out.view.paddingLeft = calls.getInt(view, methods[kGetPaddingLeft]);
    out.view.paddingTop = calls.getInt(view, methods[kGetPaddingTop]);
    out.view.paddingRight = calls.getInt(view, methods[kGetPaddingRight]);
    out.view.paddingBottom = calls.getInt(view, methods[kGetPaddingBottom]);
    out.view.width = calls.getInt(view, methods[kGetWidth]);
    out.view.height = calls.getInt(view, methods[kGetHeight]);
    out.textColor = static_cast<uint32_t>(calls.getInt(view, methods[kGetCurrentTextColor]));
    if (const auto typeface = calls.getObject(view, methods[kGetTypeface])) {
        out.hasTypeface = true;
        out.bold = readStyle(calls, typeface.get(), kIsBold);
        out.italic = readStyle(calls, typeface.get(), kIsItalic);
    }
    return !calls.threw();
}

}  // namespace Zvex
