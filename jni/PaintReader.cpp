// SPDX-License-Identifier: Apache-2.0
#include "jni/PaintReader.h"

#include <SkPaint.h>
#include <minikin/FontFamily.h>
#include <minikin/LocaleList.h>

#include <cstring>

#include "foundation/OutOfMemory.h"
#include "foundation/ZvLog.h"
#include "jni/JniSupport.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvText_JNI";

enum PaintMethod {
    kGetTextScaleX,
    kGetTextSkewX,
    kGetLetterSpacing,
    kIsElegantTextHeight,
    kGetFlags,
    kGetFontFeatureSettings,
    kGetTextLocales,
    kGetTextAlign,
    kGetColor,
    kGetTextSize,
    kIsFakeBoldText,
    kPaintMethodCount
};
constexpr JavaMethod kPaintMethods[kPaintMethodCount] = {
    {"getTextScaleX", "()F"},
    {"getTextSkewX", "()F"},
    {"getLetterSpacing", "()F"},
    {"isElegantTextHeight", "()Z"},
    {"getFlags", "()I"},
    {"getFontFeatureSettings", "()Ljava/lang/String;"},
    {"getTextLocales", "()Landroid/os/LocaleList;"},
    {"getTextAlign", "()Landroid/graphics/Paint$Align;"},
    {"getColor", "()I"},
    {"getTextSize", "()F"},
    {"isFakeBoldText", "()Z"},
};
constexpr JavaMethod kToLanguageTags = {"toLanguageTags", "()Ljava/lang/String;"};
constexpr JavaMethod kName = {"name", "()Ljava/lang/String;"};

void readLocales(JavaCalls& calls, jobject locales, android::Paint& out) {
    const jmethodID toLanguageTags = calls.find(locales, kToLanguageTags);
    if (calls.threw()) return;
    if (toLanguageTags == nullptr) {
        ZV_DEBUG_LOG(kTag, "LocaleList cannot find 'toLanguageTags' method id");
        return;
    }
    const Utf8Chars tags = calls.getChars(locales, toLanguageTags);
    if (tags.get() != nullptr) out.setMinikinLocaleListId(minikin::registerLocaleList(tags.get()));
}

void readAlign(JavaCalls& calls, jobject align, android::Paint& out) {
    const jmethodID getName = calls.find(align, kName);
    if (calls.threw()) return;
    if (getName == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "Paint.Align cannot find 'name' method id");
        return;
    }
    const Utf8Chars name = calls.getChars(align, getName);
    if (name.get() == nullptr) return;
    if (std::strcmp(name.get(), "LEFT") == 0) {
        out.setTextAlign(SkPaint::kLeft_Align);
    } else if (std::strcmp(name.get(), "RIGHT") == 0) {
        out.setTextAlign(SkPaint::kRight_Align);
    } else {
        out.setTextAlign(SkPaint::kCenter_Align);
    }
}

bool readPaint(JNIEnv* env, jobject paint, android::Paint& out) {
    const LocalRef<jclass> paintClass(env, env->GetObjectClass(paint));
    jmethodID methods[kPaintMethodCount];
    if (!findMethods(env, paintClass.get(), kPaintMethods, methods, kTag, "Java function")) return false;

    JavaCalls calls(env);
    out.setTextScaleX(calls.getFloat(paint, methods[kGetTextScaleX]));
    out.setTextSkewX(calls.getFloat(paint, methods[kGetTextSkewX]));
    out.setLetterSpacing(calls.getFloat(paint, methods[kGetLetterSpacing]));
    out.setFamilyVariant(calls.getBool(paint, methods[kIsElegantTextHeight])
                             ? minikin::FontFamily::Variant::ELEGANT
                             : minikin::FontFamily::Variant::DEFAULT);
    // All flags first: fake bold is one of them.
    out.setFlags(static_cast<uint32_t>(calls.getInt(paint, methods[kGetFlags])));
    out.setTextSize(calls.getFloat(paint, methods[kGetTextSize]));
    out.setFakeBoldText(calls.getBool(paint, methods[kIsFakeBoldText]));

    const Utf8Chars features = calls.getChars(paint, methods[kGetFontFeatureSettings]);
    if (features.get() != nullptr) out.setFontFeatureSettings(features.get());
    if (const auto locales = calls.getObject(paint, methods[kGetTextLocales])) {
        readLocales(calls, locales.get(), out);
    }
    if (const auto align = calls.getObject(paint, methods[kGetTextAlign])) {
        readAlign(calls, align.get(), out);
    }
    return !calls.threw();
}

}  // namespace

bool ReadPaint(JNIEnv* env, jobject paint, android::Paint& out) {
    return unlessOutOfMemory(false, [&] { return readPaint(env, paint, out); });
}

}  // namespace Zvex
