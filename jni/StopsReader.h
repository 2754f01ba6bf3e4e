// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_STOPSREADER_H_
#define ZVEX_JNI_STOPSREADER_H_

#include <jni.h>

#include <cstdint>
#include <memory>
#include <new>

#include "effect/ZvProperty.h"
#include "jni/JniSupport.h"

namespace Zvex {

// Reads colour stops from three Java arrays, one stop for each index.
class StopsReader {
public:
    // Whether there are three arrays of one length, as read() requires.
    static bool fit(JNIEnv* env, jintArray colors, jfloatArray opacities, jfloatArray positions) {
        if (colors == nullptr || opacities == nullptr || positions == nullptr) return false;
        const jsize count = env->GetArrayLength(colors);
        return env->GetArrayLength(opacities) == count && env->GetArrayLength(positions) == count;
    }

    // False if memory is short; an exception may be pending then.
    bool read(JNIEnv* env, jintArray colors, jfloatArray opacities, jfloatArray positions) {
        const jsize count = env->GetArrayLength(colors);
        mStops.reset(new (std::nothrow) ZvGradient[static_cast<size_t>(count)]);
        if (mStops == nullptr) return false;
        const IntElements colorOf(env, colors);
        if (colorOf.get() == nullptr) return false;
        const FloatElements opacityOf(env, opacities);
        if (opacityOf.get() == nullptr) return false;
        const FloatElements positionOf(env, positions);
        if (positionOf.get() == nullptr) return false;
        for (jsize i = 0; i < count; ++i) {
            ZvGradient& stop = mStops[static_cast<size_t>(i)];
            stop.color = static_cast<uint32_t>(colorOf.get()[i]);
            stop.opacity = opacityOf.get()[i];
            stop.position = positionOf.get()[i];
        }
        mCount = count;
        return true;
    }

    int count() const { return mCount; }
    ZvGradient* stops() const { return mStops.get(); }

private:
    std::unique_ptr<ZvGradient[]> mStops;
    int mCount = 0;
};

}  // namespace Zvex

#endif  // ZVEX_JNI_STOPSREADER_H_
