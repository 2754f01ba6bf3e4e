// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_SKCOLORSPACE_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_SKCOLORSPACE_H_

#include "SkRefCnt.h"

// Names a colour space. There is only sRGB here; a canvas that has it blends in linear light.
class SkColorSpace : public SkRefCnt {
public:
    // The one sRGB space of the process; never null.
    static sk_sp<SkColorSpace> MakeSRGB();
};

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_SKCOLORSPACE_H_
