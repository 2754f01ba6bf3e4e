// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKCOLORSPACE_H_
#define ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKCOLORSPACE_H_

#include "SkRefCnt.h"

class SkColorSpace : public SkRefCnt {
public:
    static sk_sp<SkColorSpace> MakeSRGB();

private:
    SkColorSpace();
};

#endif  // ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKCOLORSPACE_H_
