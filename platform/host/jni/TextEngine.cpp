// SPDX-License-Identifier: Apache-2.0
//
// The natives of android.host.TextEngine: what the stand-ins for the android classes cannot do in Java.
#include <hwui/Paint.h>
#include <jni.h>

#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/List.h"
#include "jni/FontConfigReader.h"
#include "jni/JniSupport.h"
#include "jni/PaintReader.h"
#include "platform/host/jni/FontLock.h"
#include "platform/host/jni/TextMeasure.h"
#include "text/FontManager.h"

namespace {

using Zvex::FontManager;
using Zvex::List;
using Zvex::Utf8Chars;

// Runs `body`. An exception becomes a Java exception, unless one is pending already, and the result is
// `failed`.
template <typename Result, typename Body>
Result guarded(JNIEnv* env, Result failed, const Body& body) {
    const char* exceptionClass = "java/lang/IllegalStateException";
    std::string message;
    try {
        return body();
    } catch (const std::bad_alloc&) {
        exceptionClass = "java/lang/OutOfMemoryError";
    } catch (const std::exception& e) {
        message = e.what();
    }
    if (env->ExceptionCheck()) return failed;
    const Zvex::LocalRef<jclass> found = Zvex::findClass(env, exceptionClass);
    if (found) env->ThrowNew(found.get(), message.c_str());
    return failed;
}

std::vector<uint16_t> unitsOf(JNIEnv* env, jstring text) {
    std::vector<uint16_t> units(static_cast<size_t>(env->GetStringLength(text)));
    env->GetStringRegion(text, 0, static_cast<jsize>(units.size()), units.data());
    return units;
}

// Null, with an exception pending, if the paint throws one.
std::unique_ptr<hostjava::TextMeasure> measureOf(JNIEnv* env, jstring text, jobject paint, jstring font) {
    android::Paint nativePaint;
    if (!Zvex::ReadPaint(env, paint, nativePaint)) {
        if (env->ExceptionCheck()) return nullptr;
        throw std::runtime_error("the paint cannot be read");
    }
    const Utf8Chars utf8(env, text), fontPath(env, font);
    if (utf8.get() == nullptr || (font != nullptr && fontPath.get() == nullptr)) throw std::bad_alloc();
    return std::make_unique<hostjava::TextMeasure>(utf8.get(), unitsOf(env, text), fontPath.get(),
                                                   nativePaint);
}

jint bitsOf(float value) {
    jint bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

}  // namespace

// Returns the font's extent (ascent, descent, top, bottom), then for each line start, visibleEnd, end,
// ascent, descent and the bits of width and fullWidth; see TextMeasure.h.
extern "C" JNIEXPORT jintArray JNICALL Java_android_host_TextEngine_breakLines(JNIEnv* env, jclass,
                                                                               jstring text, jint start,
                                                                               jint end, jobject paint,
                                                                               jstring font, jfloat width) {
    return guarded<jintArray>(env, nullptr, [&]() -> jintArray {
        const auto measure = measureOf(env, text, paint, font);
        if (measure == nullptr) return nullptr;
        const hostjava::FontReach reach = measure->reach();
        std::vector<jint> numbers = {reach.ascent, reach.descent, reach.top, reach.bottom};
        for (const hostjava::MeasuredLine& line : measure->lines(start, end, width)) {
            numbers.insert(numbers.end(), {line.start, line.visibleEnd, line.end, line.ascent, line.descent,
                                           bitsOf(line.width), bitsOf(line.fullWidth)});
        }
        if (numbers.size() > INT32_MAX) throw std::bad_alloc();
        const auto count = static_cast<jsize>(numbers.size());
        jintArray array = env->NewIntArray(count);
        if (array != nullptr) env->SetIntArrayRegion(array, 0, count, numbers.data());
        return array;
    });
}

extern "C" JNIEXPORT jfloat JNICALL Java_android_host_TextEngine_advance(JNIEnv* env, jclass, jstring text,
                                                                         jint start, jint end, jobject paint,
                                                                         jstring font) {
    return guarded<jfloat>(env, 0, [&] {
        const auto measure = measureOf(env, text, paint, font);
        return measure != nullptr ? measure->advance(start, end) : 0;
    });
}

extern "C" JNIEXPORT jint JNICALL Java_android_host_TextEngine_styleOfFontFile(JNIEnv* env, jclass,
                                                                               jstring path) {
    return guarded<jint>(env, -1, [&] {
        const Utf8Chars chars(env, path);
        return chars.get() != nullptr ? hostjava::styleOfFontFile(chars.get()) : -1;
    });
}

// True when the families are set, by this call or an earlier one.
extern "C" JNIEXPORT jboolean JNICALL Java_android_host_TextEngine_setSystemFonts(JNIEnv* env, jclass,
                                                                                  jobject config) {
    return guarded<jboolean>(env, JNI_FALSE, [&]() -> jboolean {
        const std::lock_guard<std::mutex> lock(hostjava::fontLock());
        FontManager* manager = FontManager::GetInstance();
        if (manager->IsSystemFontFamiliesAlreadySet()) return JNI_TRUE;
        auto families = std::make_unique<List>();
        families->Construct();
        if (!Zvex::ConvertToFontFamilies(env, config, families.get())) {
            for (int i = 0; i < families->GetCount(); ++i) {
                Zvex::freeFontFamily(static_cast<Zvex::ZvFontFamily*>(families->Get(i)));
            }
            return JNI_FALSE;
        }
        manager->SetSystemFontFamilies(families.release());
        return JNI_TRUE;
    });
}
