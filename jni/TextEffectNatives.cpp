// SPDX-License-Identifier: Apache-2.0
#include "jni/TextEffectNatives.h"

#include <android/log.h>

#include <cstdint>
#include <memory>
#include <new>

#include "effect/ZvEffect.h"
#include "jni/BoundTextObject.h"
#include "jni/JniSupport.h"
#include "text/ZvTextObject.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvText_JNI";

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

}  // namespace

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

jint JNICALL ZvText_AddLinearGradientTextEffect(JNIEnv* env, jobject thiz, jfloat angle, jfloat scale,
                                                jintArray colors, jfloatArray opacities,
                                                jfloatArray positions, jfloat opacity) {
    ZV_BOUND_TEXT_OBJECT(text, -1);
    ZvEffect* const effect = effectOf(text, "ZvText_AddLinearGradientTextEffect");
    if (effect == nullptr) return -1;
    if (colors == nullptr || opacities == nullptr || positions == nullptr) return -1;
    const jsize count = env->GetArrayLength(colors);
    if (env->GetArrayLength(opacities) != count || env->GetArrayLength(positions) != count) return -1;

    std::unique_ptr<ZvGradient[]> stops(new (std::nothrow) ZvGradient[static_cast<size_t>(count)]);
    if (stops == nullptr) return -1;
    {
        const IntElements colorOf(env, colors);
        if (colorOf.get() == nullptr) return -1;
        const FloatElements opacityOf(env, opacities);
        if (opacityOf.get() == nullptr) return -1;
        const FloatElements positionOf(env, positions);
        if (positionOf.get() == nullptr) return -1;
        for (jsize i = 0; i < count; ++i) {
            ZvGradient& stop = stops[static_cast<size_t>(i)];
            stop.color = static_cast<uint32_t>(colorOf.get()[i]);
            stop.opacity = opacityOf.get()[i];
            stop.position = positionOf.get()[i];
        }
    }
    return effect->addLinearGradientText(angle, scale, opacity, count, stops.get());
}

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

}  // namespace Zvex
