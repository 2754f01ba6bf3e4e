// SPDX-License-Identifier: Apache-2.0
#include "jni/FontConfigReader.h"

#include <minikin/LocaleList.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "foundation/File.h"
#include "foundation/List.h"
#include "foundation/OutOfMemory.h"
#include "foundation/ZvLog.h"
#include "foundation/ZvString.h"
#include "jni/JniSupport.h"
#include "text/FontManager.h"

#ifndef ZVEX_SYSTEM_FONT_DIR
#define ZVEX_SYSTEM_FONT_DIR "/system/fonts"
#endif

namespace Zvex {

namespace {

constexpr char kTag[] = "Init_ZvFontManager_JNI";

constexpr JavaMethod kGetFamilies = {"getFamilies", "()[Landroid/text/FontConfig$Family;"};

enum FamilyMethod { kGetName, kGetFonts, kGetLanguages, kGetVariant, kFamilyMethodCount };
constexpr JavaMethod kFamilyMethods[kFamilyMethodCount] = {
    {"getName", "()Ljava/lang/String;"},
    {"getFonts", "()[Landroid/text/FontConfig$Font;"},
    {"getLanguages", "()[Ljava/lang/String;"},
    {"getVariant", "()I"},
};

enum FontMethod { kGetFontName, kGetTtcIndex, kGetWeight, kIsItalic, kGetFallbackFor, kFontMethodCount };
constexpr JavaMethod kFontMethods[kFontMethodCount] = {
    {"getFontName", "()Ljava/lang/String;"},
    {"getTtcIndex", "()I"},
    {"getWeight", "()I"},
    {"isItalic", "()Z"},
    {"getFallbackFor", "()Ljava/lang/String;"},
};

struct FamilyDeleter {
    void operator()(ZvFontFamily* family) const { freeFontFamily(family); }
};
using FamilyPointer = std::unique_ptr<ZvFontFamily, FamilyDeleter>;

struct EntryDeleter {
    void operator()(ZvFontEntry* entry) const { freeFontEntry(entry); }
};
using EntryPointer = std::unique_ptr<ZvFontEntry, EntryDeleter>;

// A configuration has hundreds of families and thousands of fonts, so every reference is released as soon as
// its element has been read.
class FontConfigReader {
public:
    FontConfigReader(JNIEnv* env, List* out) : mEnv(env), mCalls(env), mOut(out) {}

    // Each returns false when reading must stop: a missing method, an exception, no memory.
    bool readConfig(jobject config);

private:
    bool readFamily(jobject family);
    bool readFonts(jobjectArray fonts, List* entries);
    bool readFont(jobject font, List* entries);
    Utf8Chars readLanguage(jobjectArray languages);

    JNIEnv* mEnv;
    JavaCalls mCalls;
    List* mOut;
    ElementMethods<kFamilyMethodCount> mFamily{kFamilyMethods, kTag, "Java function"};
    ElementMethods<kFontMethodCount> mFont{kFontMethods, kTag, "Java function"};
    bool mNamedFamilySeen = false;
};

bool FontConfigReader::readConfig(jobject config) {
    const LocalRef<jclass> configClass(mEnv, mEnv->GetObjectClass(config));
    jmethodID getFamilies[1];
    if (!findMethods(mEnv, configClass.get(), &kGetFamilies, 1, getFamilies, kTag, "Java Function")) {
        return false;
    }
    const auto families = mCalls.getObject<jobjectArray>(config, getFamilies[0]);
    if (!families) return false;
    const jsize count = mEnv->GetArrayLength(families.get());
    for (jsize i = 0; i < count; ++i) {
        const LocalRef<jobject> family = mCalls.getElement(families.get(), i);
        if (mCalls.threw()) return false;
        if (family && !readFamily(family.get())) return false;
    }
    return true;
}

bool FontConfigReader::readFamily(jobject family) {
    if (!mFamily.fit(mEnv, family)) return false;
    const bool named = static_cast<bool>(mCalls.getObject(family, mFamily[kGetName]));
    if (mCalls.threw()) return false;
    if (named && mNamedFamilySeen) return true;
    mNamedFamilySeen = mNamedFamilySeen || named;

    FamilyPointer record(new (std::nothrow) ZvFontFamily);
    if (record == nullptr) return false;
    record->fonts = new (std::nothrow) List;
    if (record->fonts == nullptr || record->fonts->Construct() == 0) return false;
    const auto fonts = mCalls.getObject<jobjectArray>(family, mFamily[kGetFonts]);
    if (fonts && !readFonts(fonts.get(), record->fonts)) return false;
    if (mCalls.threw()) return false;
    if (record->fonts->GetCount() == 0) return true;

    const auto languages = mCalls.getObject<jobjectArray>(family, mFamily[kGetLanguages]);
    const Utf8Chars chars = readLanguage(languages.get());
    const char* const language = chars.empty() ? "" : chars.get();
    record->variant = mCalls.getInt(family, mFamily[kGetVariant]);
    if (mCalls.threw()) return false;
    if (language[0] != '\0') record->localeListId = minikin::registerLocaleList(language);

    if (named || language[0] == '\0' || std::strcmp(language, "und-Zsye") == 0 ||
        std::strcmp(language, "und-Zsym") == 0) {
        record->loaded = FontManager::GetInstance()->BuildMinikinFamily(record.get()) ? 1 : 0;
    }
    ZV_DEBUG_LOG(kTag, "Family lang(%s) localeListId(%d) loaded(%s)", language,
                 static_cast<int>(record->localeListId), record->loaded != 0 ? "TRUE" : "FALSE");
    if (mOut->Add(record.get()) == 0) return false;
    static_cast<void>(record.release());  // the list has it
    return true;
}

bool FontConfigReader::readFonts(jobjectArray fonts, List* entries) {
    const jsize count = mEnv->GetArrayLength(fonts);
    for (jsize i = 0; i < count; ++i) {
        const LocalRef<jobject> font = mCalls.getElement(fonts, i);
        if (mCalls.threw()) return false;
        if (font && (!mFont.fit(mEnv, font.get()) || !readFont(font.get(), entries))) return false;
    }
    return true;
}

// Appends an entry for the font if it is one to keep.
bool FontConfigReader::readFont(jobject font, List* entries) {
    const Utf8Chars name = mCalls.getChars(font, mFont[kGetFontName]);
    const bool italic = mCalls.getBool(font, mFont[kIsItalic]);
    const Utf8Chars fallbackFor = mCalls.getChars(font, mFont[kGetFallbackFor]);
    if (mCalls.threw()) return false;
    if (name.get() == nullptr || italic || !fallbackFor.empty()) return true;

    // A name that does not fit is skipped; cut off, it might name another file.
    char path[1024];
    const int length = std::snprintf(path, sizeof(path), "%s/%s", ZVEX_SYSTEM_FONT_DIR, name.get());
    if (length < 0 || length >= static_cast<int>(sizeof(path)) || File::IsAccessible(path, R_OK) != 0)
        return true;

    EntryPointer entry(new (std::nothrow) ZvFontEntry);
    if (entry == nullptr) return false;
    entry->path = new (std::nothrow) ZvString;
    if (entry->path == nullptr || entry->path->Construct(path) == 0) return false;
    entry->index = mCalls.getInt(font, mFont[kGetTtcIndex]);
    entry->weight = mCalls.getInt(font, mFont[kGetWeight]);
    if (mCalls.threw() || entries->Add(entry.get()) == 0) return false;
    static_cast<void>(entry.release());  // the list has it
    return true;
}

// The first language that is not empty.
Utf8Chars FontConfigReader::readLanguage(jobjectArray languages) {
    const jsize count = languages != nullptr ? mEnv->GetArrayLength(languages) : 0;
    for (jsize i = 0; i < count && !mCalls.threw(); ++i) {
        const LocalRef<jobject> language = mCalls.getElement(languages, i);
        Utf8Chars chars = mCalls.charsOf(static_cast<jstring>(language.get()));
        if (!chars.empty()) return chars;
    }
    return Utf8Chars();
}

}  // namespace

bool ConvertToFontFamilies(JNIEnv* env, jobject config, List* out) {
    return config != nullptr &&
           unlessOutOfMemory(false, [&] { return FontConfigReader(env, out).readConfig(config); });
}

}  // namespace Zvex
