// SPDX-License-Identifier: Apache-2.0
//
// Assets from a folder. Before it is opened, a name is resolved with all its links; the result must lie below
// the folder, which is resolved in the same way.
#include <android/asset_manager.h>
#include <android/asset_manager_jni.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unicode/ustring.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <string>

struct AAssetManager {
    std::string root;
};

struct AAsset {
    int descriptor;
    off_t length;
};

namespace {

bool hasParentStep(const std::string& name) {
    return ("/" + name + "/").find("/../") != std::string::npos;
}

// The path without links and dots; empty if nothing is there.
std::string resolved(const std::string& path) {
    const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
    return real != nullptr ? real.get() : "";
}

// The file of that name; empty if it is not in the folder.
std::string findBelow(const std::string& root, const std::string& name) {
    if (name.empty() || name[0] == '/' || hasParentStep(name)) return "";
    std::string folder = resolved(root);
    if (folder.empty()) return "";
    if (folder.back() != '/') folder += '/';
    const std::string file = resolved(folder + name);
    return file.compare(0, folder.size(), folder) == 0 ? file : "";
}

// Standard UTF-8; empty for text that is not valid Unicode.
std::string toUtf8(JNIEnv* env, jstring text) {
    const jsize length = env->GetStringLength(text);
    std::string utf8(size_t{3} * static_cast<size_t>(length), '\0');
    const jchar* const units = env->GetStringChars(text, nullptr);
    if (units == nullptr) return "";
    int32_t used = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(&utf8[0], static_cast<int32_t>(utf8.size()), &used, reinterpret_cast<const UChar*>(units),
                length, &status);
    env->ReleaseStringChars(text, units);
    utf8.resize(U_SUCCESS(status) ? static_cast<size_t>(used) : 0);
    return utf8;
}

// Empty if the object has no such field, or if the field is empty.
std::string rootOf(JNIEnv* env, jobject assetManager) {
    const jclass managerClass = env->GetObjectClass(assetManager);
    const jfieldID field = env->GetFieldID(managerClass, "root", "Ljava/lang/String;");
    std::string root;
    if (field != nullptr) {
        const auto text = static_cast<jstring>(env->GetObjectField(assetManager, field));
        if (text != nullptr) root = toUtf8(env, text);
        env->DeleteLocalRef(text);
    }
    if (env->ExceptionCheck()) env->ExceptionClear();
    env->DeleteLocalRef(managerClass);
    return root;
}

}  // namespace

AAssetManager* AAssetManager_fromJava(JNIEnv* env, jobject assetManager) {
    // Never destroyed, because a manager may be used until the process ends.
    static std::mutex& mutex = *new std::mutex;
    static auto& managers = *new std::map<std::string, std::unique_ptr<AAssetManager>>;

    const std::string root = rootOf(env, assetManager);
    if (root.empty()) return nullptr;
    std::lock_guard<std::mutex> lock(mutex);
    std::unique_ptr<AAssetManager>& manager = managers[root];
    if (manager == nullptr) manager.reset(new AAssetManager{root});
    return manager.get();
}

AAsset* AAssetManager_open(AAssetManager* manager, const char* name, int) {
    const std::string path = manager != nullptr && name != nullptr ? findBelow(manager->root, name) : "";
    if (path.empty()) return nullptr;
    // Without O_NONBLOCK, opening a pipe would wait for its writer.
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0) return nullptr;
    struct stat status = {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        close(descriptor);
        return nullptr;
    }
    auto* const asset = new (std::nothrow) AAsset{descriptor, status.st_size};
    if (asset == nullptr) close(descriptor);
    return asset;
}

off_t AAsset_getLength(AAsset* asset) {
    return asset->length;
}

int AAsset_read(AAsset* asset, void* buffer, size_t count) {
    ssize_t got;
    do {
        got = read(asset->descriptor, buffer, std::min<size_t>(count, INT_MAX));
    } while (got < 0 && errno == EINTR);
    return static_cast<int>(got);
}

void AAsset_close(AAsset* asset) {
    if (asset == nullptr) return;
    close(asset->descriptor);
    delete asset;
}
