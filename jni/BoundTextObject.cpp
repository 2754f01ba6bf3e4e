// SPDX-License-Identifier: Apache-2.0
#include "jni/BoundTextObject.h"

#include <memory>
#include <new>

#include "foundation/ZvLog.h"
#include "jni/JniSupport.h"
#include "text/ZvTextInstanceManager.h"
#include "text/ZvTextObject.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvText_JNI";

// Valid while the class is loaded, and used only by its natives. A reference to the class would keep its
// loader, and with it this library, alive forever.
jfieldID handleField = nullptr;

}  // namespace

void FindHandleField(JNIEnv* env, jclass textClass) {
    handleField = env->GetFieldID(textClass, "mHandle", "I");
    if (handleField == nullptr) {
        env->ExceptionClear();
        __android_log_print(ANDROID_LOG_ERROR, kTag, "Java field mHandle not found");
    }
}

jint ReadHandle(JNIEnv* env, jobject thiz) {
    return handleField != nullptr ? env->GetIntField(thiz, handleField) : -1;
}

ZvTextObject* GetBoundTextObject(JNIEnv* env, jobject thiz) {
    if (handleField == nullptr) return nullptr;
    const jint handle = ReadHandle(env, thiz);
    if (handle >= 0) return ZvTextObject::FindZvTextObject(handle);

    ZV_DEBUG_LOG(kTag, "GetBoundTextObject - hande = 0");
    std::unique_ptr<ZvTextObject> text(new (std::nothrow) ZvTextObject);
    if (text == nullptr || !text->Construct() || !ZvTextInstanceManager::Bind(text.get())) return nullptr;
    env->SetIntField(thiz, handleField, text->GetRuntimeHandle());
    return text.release();  // the registry owns it until the last reference is dropped
}

}  // namespace Zvex
