// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKTYPEFACE_H_
#define ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKTYPEFACE_H_

#include "SkRefCnt.h"
#include "SkStream.h"

class SkTypeface : public SkRefCnt {
public:
    static sk_sp<SkTypeface> MakeFromStream(SkStreamAsset* stream, int index = 0);

private:
    SkTypeface();
};

#endif  // ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKTYPEFACE_H_
