// SPDX-License-Identifier: Apache-2.0
#include "jni/FontManagerNatives.h"

#include <memory>
#include <new>

#include "foundation/List.h"
#include "foundation/ZvLog.h"
#include "jni/FontConfigReader.h"
#include "jni/JniSupport.h"
#include "text/FontManager.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "Init_ZvFontManager_JNI";
constexpr char kClass[] = "com/orvane/android/sdk/zve/font/FontManager";

JavaVM* keptVm = nullptr;

jboolean fail(const char* line) {
    __android_log_print(ANDROID_LOG_ERROR, kTag, "%s", line);
    return JNI_FALSE;
}

// The name becomes the font's key: a later SetFont with it needs no file.
jboolean JNICALL ZvFontManager_InsertFontData(JNIEnv* env, jobject, jstring name, jbyteArray data) {
    ZV_DEBUG_LOG(kTag, "ZvFontManager_InsertFontData");
    if (name == nullptr) return fail("ZvFontManager_InsertFontData() - fontName is NULL");
    if (data == nullptr) return fail("ZvFontManager_InsertFontData() - buffer is NULL");
    const Utf8Chars key(env, name);
    if (key.get() == nullptr) return fail("ZvFontManager_InsertFontData() - Fail to get fontFile string");
    const auto length = static_cast<unsigned int>(env->GetArrayLength(data));
    std::unique_ptr<char[]> bytes = copyBytes(env, data, kTag);
    if (bytes == nullptr) return JNI_FALSE;
    return FontManager::GetInstance()->AddMinikinFont(key.get(), bytes.release(), length, 0, true);
}

void freeFamilies(List* families) {
    const int count = families->GetCount();
    for (int i = 0; i < count; ++i) freeFontFamily(static_cast<ZvFontFamily*>(families->Get(i)));
    delete families;
}

// The first readable configuration holds for the life of the process.
jboolean JNICALL ZvFontManager_SetFontConfig(JNIEnv* env, jobject, jobject config) {
    FontManager* const manager = FontManager::GetInstance();
    ZV_DEBUG_LOG(kTag, "ZvFontManager_SetFontConfig()");
    if (manager->IsSystemFontFamiliesAlreadySet()) {
        ZV_DEBUG_LOG(kTag, "ZvFontManager_SetFontConfig - already set");
        return JNI_TRUE;
    }
    if (config == nullptr) return fail("ZvFontManager_SetFontConfig - jFontConfig is NULL");
    List* const families = new (std::nothrow) List;
    if (families == nullptr) return JNI_FALSE;
    ZV_DEBUG_LOG(kTag, "ZvFontManager_SetFontConfig >>> ConvertToFontFamilies");
    if (families->Construct() == 0 || !ConvertToFontFamilies(env, config, families)) {
        freeFamilies(families);
        return fail("ZvFontManager_SetFontConfig - cannot convert to native families");
    }
    ZV_DEBUG_LOG(kTag, "ZvFontManager_SetFontConfig <<<< ConvertToFontFamilies");
    return manager->SetSystemFontFamilies(families);  // which owns them now
}

}  // namespace

bool ZvFontManager_OnLoad(JavaVM* vm, JNIEnv* env) {
    keptVm = vm;
    const LocalRef<jclass> managerClass = findClass(env, kClass);
    if (!managerClass) return false;
    const JNINativeMethod natives[] = {
        nativeMethod("ZvFontManager_InsertFontData", "(Ljava/lang/String;[B)Z", ZvFontManager_InsertFontData),
        nativeMethod("ZvFontManager_SetFontConfig", "(Landroid/text/FontConfig;)Z",
                     ZvFontManager_SetFontConfig),
    };
    if (env->RegisterNatives(managerClass.get(), natives, sizeof(natives) / sizeof(natives[0])) < 0) {
        return false;
    }
    ZV_DEBUG_LOG(kTag, "Init_ZvFontManager_JNI");
    return true;
}

}  // namespace Zvex
