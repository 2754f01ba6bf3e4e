// SPDX-License-Identifier: Apache-2.0
#include "jni/TextFontNatives.h"

#include <android/asset_manager.h>
#include <android/asset_manager_jni.h>
#include <android/log.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <new>

#include "jni/BoundTextObject.h"
#include "jni/JniSupport.h"
#include "text/FontManager.h"
#include "text/ZvTextObject.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvText_JNI";

jboolean fail(const char* line) {
    __android_log_print(ANDROID_LOG_ERROR, kTag, "%s", line);
    return JNI_FALSE;
}

struct AssetCloser {
    void operator()(AAsset* asset) const { AAsset_close(asset); }
};

// All bytes of the asset; null when they cannot be had, or are more than a font may have.
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

}  // namespace

jboolean JNICALL ZvText_SetFont(JNIEnv* env, jobject thiz, jstring path) {
    ZV_BOUND_TEXT_OBJECT(text, JNI_FALSE);
    const Utf8Chars chars(env, path);
    if (chars.get() == nullptr) return fail("ZvText_SetFont() - Fail to get fontFile string");
    return text->SetFont(chars.get());
}

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

jboolean JNICALL ZvText_SetFont3(JNIEnv* env, jobject thiz, jobject assetManager, jstring name) {
    ZV_BOUND_TEXT_OBJECT(text, JNI_FALSE);
    if (assetManager == nullptr) return fail("ZvText_SetFont3() - assetManager is NULL");
    if (name == nullptr) return fail("ZvText_SetFont3() - fontName is NULL");
    const Utf8Chars key(env, name);
    if (key.get() == nullptr) return fail("ZvText_SetFont3() - Fail to get fontFile string");
    if (FontManager::GetInstance()->IsExisting(key.get(), 0)) return text->SetFont(key.get());

    AAssetManager* const assets = AAssetManager_fromJava(env, assetManager);
    const std::unique_ptr<AAsset, AssetCloser> asset(
        assets != nullptr ? AAssetManager_open(assets, key.get(), AASSET_MODE_BUFFER) : nullptr);
    if (asset == nullptr) return fail("ZvText_SetFont3() - _ASSET_NOT_FOUND_");
    unsigned int size = 0;
    std::unique_ptr<char[]> bytes = readAsset(asset.get(), size);
    if (bytes == nullptr) return fail("ZvText_SetFont3() - Fail to read the asset");
    return text->SetFont(key.get(), bytes.release(), size);
}

}  // namespace Zvex
