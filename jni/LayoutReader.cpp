// SPDX-License-Identifier: Apache-2.0
#include "jni/LayoutReader.h"

#include <android/log.h>

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvText_JNI";

enum LayoutMethod {
    kGetWidth,
    kGetHeight,
    kGetTopPadding,
    kGetBottomPadding,
    kGetLineCount,
    kGetParagraphDirection,
    kGetParagraphLeft,
    kGetParagraphRight,
    kGetLineBaseline,
    kGetLineTop,
    kGetLineBottom,
    kGetLineAscent,
    kGetLineDescent,
    kGetLineStart,
    kGetLineEnd,
    kGetLineVisibleEnd,
    kGetLineLeft,
    kGetLineRight,
    kGetLineMax,
    kGetLineWidth,
    kGetText,
    kLayoutMethodCount
};
constexpr JavaMethod kLayoutMethods[kLayoutMethodCount] = {
    {"getWidth", "()I"},           {"getHeight", "()I"},          {"getTopPadding", "()I"},
    {"getBottomPadding", "()I"},   {"getLineCount", "()I"},       {"getParagraphDirection", "(I)I"},
    {"getParagraphLeft", "(I)I"},  {"getParagraphRight", "(I)I"}, {"getLineBaseline", "(I)I"},
    {"getLineTop", "(I)I"},        {"getLineBottom", "(I)I"},     {"getLineAscent", "(I)I"},
    {"getLineDescent", "(I)I"},    {"getLineStart", "(I)I"},      {"getLineEnd", "(I)I"},
    {"getLineVisibleEnd", "(I)I"}, {"getLineLeft", "(I)F"},       {"getLineRight", "(I)F"},
    {"getLineMax", "(I)F"},        {"getLineWidth", "(I)F"},      {"getText", "()Ljava/lang/CharSequence;"},
};
constexpr JavaMethod kToString = {"toString", "()Ljava/lang/String;"};

bool noMemory() {
    __android_log_print(ANDROID_LOG_ERROR, kTag, "ZvText_SetLayout - no memory");
    return false;
}

// False if memory is short. The caller checks whether a call threw.
bool readText(JavaCalls& calls, jobject text, Utf8Chars& out) {
    const jmethodID toString = calls.find(text, kToString);
    if (calls.threw()) return true;
    if (toString == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "getText cannot find 'toString' method id");
        return true;
    }
    const auto string = calls.getObject<jstring>(text, toString);
    out = calls.charsOf(string.get());
    return !string || out.get() != nullptr || calls.threw() || noMemory();
}

LaidOutLine readLine(JavaCalls& calls, jobject layout, const jmethodID* methods, jint number) {
    LaidOutLine line;
    line.baseline = calls.getInt(layout, methods[kGetLineBaseline], number);
    line.bottom = calls.getInt(layout, methods[kGetLineBottom], number);
    line.ascent = calls.getInt(layout, methods[kGetLineAscent], number);
    line.descent = calls.getInt(layout, methods[kGetLineDescent], number);
    line.left = calls.getFloat(layout, methods[kGetLineLeft], number);
    line.width = calls.getFloat(layout, methods[kGetLineWidth], number);
    line.start = calls.getInt(layout, methods[kGetLineStart], number);
    line.visibleEnd = calls.getInt(layout, methods[kGetLineVisibleEnd], number);
    return line;
}

}  // namespace

bool ReadLayout(JNIEnv* env, jobject layout, const ZvView& view, LayoutContent& out) {
    const LocalRef<jclass> layoutClass(env, env->GetObjectClass(layout));
    jmethodID methods[kLayoutMethodCount];
    if (!findMethods(env, layoutClass.get(), kLayoutMethods, methods, kTag, "ZvText_SetLayout - Function")) {
        return false;
    }
    JavaCalls calls(env);
    if (const auto text = calls.getObject(layout, methods[kGetText])) {
        if (!readText(calls, text.get(), out.text)) return false;
    }
    const ShownLines shown = shownLines(view, calls.getInt(layout, methods[kGetLineCount]));
    if (calls.threw()) return false;
    if (shown.count > 0 && !out.lines.allocate(shown.count)) return noMemory();
    for (int i = 0; i < shown.count; ++i) {
        out.lines[static_cast<size_t>(i)] = readLine(calls, layout, methods, shown.first + i);
        if (calls.threw()) return false;
    }
    out.lineCount = shown.count;
    return true;
}

}  // namespace Zvex
