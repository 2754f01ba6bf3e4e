// SPDX-License-Identifier: Apache-2.0
// The natives of ZvTextEffects. They are static and take a text object's handle first. A handle without a
// text object gives error 19. A null array, lengths that do not match, or a number without a meaning give
// error 7. Both leave the text object unchanged.
#include "jni/EffectNatives.h"

#include <cstdint>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "effect/ZvEffect.h"
#include "foundation/List.h"
#include "foundation/OutOfMemory.h"
#include "foundation/ZvLog.h"
#include "jni/BoundTextObject.h"
#include "jni/JniSupport.h"
#include "jni/LayerNatives.h"
#include "jni/StopsReader.h"
#include "jni/WordLayout.h"
#include "raster/ZvBitmap.h"
#include "text/ZvFontDrawing.h"
#include "text/ZvLineInfo.h"
#include "text/ZvTextObject.h"
#include "text/ZvView.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvTextEffects_JNI";
constexpr char kClass[] = "com/orvane/android/sdk/zve/ZvTextEffects";

// --- Effects. Arguments pass to the adders of ZvEffect; the result is the effect's id, or -1.

using StopsAdder = int (ZvEffect::*)(float, unsigned, float, int, ZvGradient*);
using ReliefAdder = int (ZvEffect::*)(int, float, float, int, int, int, float, float, float, unsigned, float,
                                      unsigned, float);

template <StopsAdder Adder>
jint JNICALL addGlow(JNIEnv* env, jclass, jint handle, jfloat size, jint color, jfloat opacity,
                     jintArray colors, jfloatArray opacities, jfloatArray positions) {
    ZV_TEXT_OBJECT_OF(handle, text, -1);
    ZV_REFUSE_UNLESS(StopsReader::fit(env, colors, opacities, positions), -1);
    StopsReader stops;
    if (!stops.read(env, colors, opacities, positions)) return -1;
    return (text->GetEffect()->*Adder)(size, static_cast<uint32_t>(color), opacity, stops.count(),
                                       stops.stops());
}

jint JNICALL addRadialGradient(JNIEnv* env, jclass, jint handle, jfloat scale, jfloat opacity,
                               jintArray colors, jfloatArray opacities, jfloatArray positions) {
    ZV_TEXT_OBJECT_OF(handle, text, -1);
    ZV_REFUSE_UNLESS(StopsReader::fit(env, colors, opacities, positions), -1);
    StopsReader stops;
    if (!stops.read(env, colors, opacities, positions)) return -1;
    return text->GetEffect()->addRadialGradientText(scale, opacity, stops.count(), stops.stops());
}

// Converts words 0xAARRGGBB to a pattern's bytes: alpha, red, green, blue.
void writePattern(const jint* words, ZvBitmap* bitmap) {
    uint8_t* target = bitmap->pixels;
    for (size_t i = 0; i < bitmap->byteCount() / 4; ++i) {
        const auto word = static_cast<uint32_t>(words[i]);
        for (int shift = 24; shift >= 0; shift -= 8) *target++ = static_cast<uint8_t>(word >> shift);
    }
}

jint JNICALL addPattern(JNIEnv* env, jclass, jint handle, jintArray argb, jint width, jint height,
                        jfloat scale, jfloat opacity) {
    ZV_TEXT_OBJECT_OF(handle, text, -1);
    ZV_REFUSE_UNLESS(
        argb != nullptr && width > 0 && height > 0 && int64_t{width} * height == env->GetArrayLength(argb),
        -1);
    ZvBitmap bitmap(static_cast<unsigned>(width), static_cast<unsigned>(height), 4);
    if (bitmap.pixels == nullptr) return -1;
    {
        const IntElements words(env, argb);
        if (words.get() == nullptr) return -1;
        writePattern(words.get(), &bitmap);
    }
    return text->GetEffect()->addPatternText(&bitmap, scale, opacity);
}

template <ReliefAdder Adder>
jint JNICALL addRelief(JNIEnv* env, jclass, jint handle, jint style, jfloat size, jfloat depth,
                       jint direction, jint technique, jint soften, jfloat opacity, jfloat angle,
                       jfloat altitude, jint shadow, jfloat shadowOpacity, jint highlight,
                       jfloat highlightOpacity) {
    static_cast<void>(env);
    ZV_TEXT_OBJECT_OF(handle, text, -1);
    return (text->GetEffect()->*Adder)(style, size, depth, direction, technique, soften, opacity, angle,
                                       altitude, static_cast<uint32_t>(shadow), shadowOpacity,
                                       static_cast<uint32_t>(highlight), highlightOpacity);
}

// Takes the id that an adder returned; false if there is none.
jboolean JNICALL removeEffect(JNIEnv*, jclass, jint handle, jint id) {
    ZV_TEXT_OBJECT_OF(handle, text, JNI_FALSE);
    return text->GetEffect()->removeEffect(id);
}

// Takes a ZvEffectType; false if there is none.
jboolean JNICALL clearEffect(JNIEnv*, jclass, jint handle, jint type) {
    ZV_TEXT_OBJECT_OF(handle, text, JNI_FALSE);
    ZvECore* const effect = text->GetEffect()->getEffect(type);
    text->GetEffect()->releaseEffect(effect);
    return effect != nullptr;
}

jboolean JNICALL setTextOpacity(JNIEnv*, jclass, jint handle, jfloat opacity) {
    ZV_TEXT_OBJECT_OF(handle, text, JNI_FALSE);
    text->GetEffect()->setTextOpacity(opacity);
    return JNI_TRUE;
}

// The key of the effects and the text's colour; null without a text object or memory.
jbyteArray JNICALL getLayerKey(JNIEnv* env, jclass, jint handle) {
    ZV_TEXT_OBJECT_OF(handle, text, nullptr);
    const std::unique_ptr<char[]> key(text->GetEffect()->getMapKey(text->GetTextColor()));
    if (key == nullptr) return nullptr;
    const auto length = static_cast<jsize>(std::strlen(key.get()));
    const jbyteArray array = env->NewByteArray(length);
    if (array != nullptr)
        env->SetByteArrayRegion(array, 0, length, reinterpret_cast<const jbyte*>(key.get()));
    return array;
}

// --- Texts without a view

// With all its characters: the text object's form of UTF-8 loses a part of those above U+1FFFF.
bool setWordsOf(JNIEnv* env, ZvTextObject& text, jstring words) {
    std::vector<jchar> units(static_cast<size_t>(env->GetStringLength(words)));
    env->GetStringRegion(words, 0, static_cast<jsize>(units.size()), units.data());
    const std::wstring wide(units.begin(), units.end());
    return text.SetText(wide.c_str());
}

// Gives the text once more what its lines count in, after SetLayout, which passes it as UTF-8.
jboolean JNICALL setWords(JNIEnv* env, jclass, jint handle, jstring words) {
    ZV_TEXT_OBJECT_OF(handle, text, JNI_FALSE);
    ZV_REFUSE_UNLESS(words != nullptr, JNI_FALSE);
    return unlessOutOfMemory(JNI_FALSE, [&]() -> jboolean { return setWordsOf(env, *text, words); });
}

// Lays the words out and gives the text a view of their size; align is 0 left, 1 center, 2 right. Returns the
// room that the view has for ink beyond the lines: left, top, right, bottom. Empty where the platform's
// classes do all this. An IllegalStateException says why words make no picture.
jintArray JNICALL layOut(JNIEnv* env, jclass, jint handle, jstring words, jint wrap, jint align, jint lines,
                         jdouble size, jdouble wordSpacing, jdouble lineHeight) {
    ZV_TEXT_OBJECT_OF(handle, text, nullptr);
    const Utf8Chars chars(env, words);
    ZV_REFUSE_UNLESS(chars.get() != nullptr && wrap >= 0 && align >= 0 && align <= 2 && lines >= 0, nullptr);
    ZV_REFUSE_UNLESS(wordSpacing >= -1 && wordSpacing <= 10 && lineHeight >= 0 && lineHeight <= 10, nullptr);
    WordSettings settings;
    settings.wrap = wrap;
    settings.align = static_cast<WordSettings::Align>(align);
    settings.lines = lines;
    settings.size = size;
    settings.wordSpacing = wordSpacing;
    settings.lineHeight = lineHeight;
    ZvRect lean;
    try {
        if (!setWordsOf(env, *text, words)) return nullptr;
        if (!layOutWords(*text, chars.get(), settings, &lean)) return env->NewIntArray(0);
    } catch (const std::bad_alloc&) {
        return nullptr;
    } catch (const std::exception& e) {
        const LocalRef<jclass> found = findClass(env, "java/lang/IllegalStateException");
        if (found) env->ThrowNew(found.get(), e.what());
        return nullptr;
    }
    const jint sides[4] = {lean.left, lean.top, lean.right, lean.bottom};
    const jintArray array = env->NewIntArray(4);
    if (array != nullptr) env->SetIntArrayRegion(array, 0, 4, sides);
    return array;
}

// The lines are the platform's layout's again.
jboolean JNICALL leaveWords(JNIEnv*, jclass, jint handle) {
    ZV_TEXT_OBJECT_OF(handle, text, JNI_FALSE);
    text->GetFont()->SetLinePainter(nullptr);
    return JNI_TRUE;
}

// Sets a view without paddings; the text's lines start at its top left.
jboolean JNICALL setView(JNIEnv*, jclass, jint handle, jint width, jint height, jint maxLines) {
    ZV_TEXT_OBJECT_OF(handle, text, JNI_FALSE);
    ZV_REFUSE_UNLESS(width >= 0 && height >= 0, JNI_FALSE);
    ZvView* const view = text->GetView();
    *view = ZvView();
    view->maxLines = maxLines;
    return view->SetSize(width, height);
}

jboolean JNICALL setTextColor(JNIEnv*, jclass, jint handle, jint color) {
    ZV_TEXT_OBJECT_OF(handle, text, JNI_FALSE);
    text->SetTextColor(static_cast<uint32_t>(color));
    return JNI_TRUE;
}

// The start of the first line on its baseline, in the view; null without a line.
jintArray JNICALL getOrigin(JNIEnv* env, jclass, jint handle) {
    ZV_TEXT_OBJECT_OF(handle, text, nullptr);
    const List* const lines = text->GetLineInfo();
    if (lines == nullptr || lines->GetCount() < 1) return nullptr;
    const auto* first = static_cast<const ZvLineInfo*>(lines->Get(0));
    const jint origin[2] = {first->x, first->y};
    const jintArray array = env->NewIntArray(2);
    if (array != nullptr) env->SetIntArrayRegion(array, 0, 2, origin);
    return array;
}

}  // namespace

bool ZvTextEffects_OnLoad(JNIEnv* env) {
    const LocalRef<jclass> effectsClass = findClass(env, kClass);
    if (!effectsClass) {
        env->ExceptionClear();
        ZV_DEBUG_LOG(kTag, "no class ZvTextEffects");
        return true;
    }
    const char* const glow = "(IFIF[I[F[F)I";
    const char* const relief = "(IIFFIIIFFFIFIF)I";
    const JNINativeMethod natives[] = {
        nativeMethod("ZvTextEffects_AddOuterGlow", glow, addGlow<&ZvEffect::addOuterGlowText>),
        nativeMethod("ZvTextEffects_AddInnerGlow", glow, addGlow<&ZvEffect::addInnerGlowText>),
        nativeMethod("ZvTextEffects_AddRadialGradient", "(IFF[I[F[F)I", addRadialGradient),
        nativeMethod("ZvTextEffects_AddPattern", "(I[IIIFF)I", addPattern),
        nativeMethod("ZvTextEffects_AddBevel", relief, addRelief<&ZvEffect::addBevelText>),
        nativeMethod("ZvTextEffects_AddEmboss", relief, addRelief<&ZvEffect::addEmbossText>),
        nativeMethod("ZvTextEffects_RemoveEffect", "(II)Z", removeEffect),
        nativeMethod("ZvTextEffects_ClearEffect", "(II)Z", clearEffect),
        nativeMethod("ZvTextEffects_SetTextOpacity", "(IF)Z", setTextOpacity),
        nativeMethod("ZvTextEffects_GetLayerKey", "(I)[B", getLayerKey),
        nativeMethod("ZvTextEffects_SetView", "(IIII)Z", setView),
        nativeMethod("ZvTextEffects_SetTextColor", "(II)Z", setTextColor),
        nativeMethod("ZvTextEffects_GetOrigin", "(I)[I", getOrigin),
        nativeMethod("ZvTextEffects_GetLayerMargins", "([I[F)[I", ZvTextEffects_GetLayerMargins),
        nativeMethod("ZvTextEffects_RenderLayers", "(I[I[FIIZF)[I", ZvTextEffects_RenderLayers),
        nativeMethod("ZvTextEffects_Render", "(IZZ)[I", ZvTextEffects_Render),
        nativeMethod("ZvTextEffects_LayOut", "(ILjava/lang/String;IIIDDD)[I", layOut),
        nativeMethod("ZvTextEffects_LeaveWords", "(I)Z", leaveWords),
        nativeMethod("ZvTextEffects_SetWords", "(ILjava/lang/String;)Z", setWords),
    };
    return env->RegisterNatives(effectsClass.get(), natives, sizeof(natives) / sizeof(natives[0])) >= 0;
}

}  // namespace Zvex
