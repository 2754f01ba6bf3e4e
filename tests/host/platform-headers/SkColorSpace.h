// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SkRefCnt.h"

class SkColorSpace : public SkRefCnt {
public:
    static sk_sp<SkColorSpace> MakeSRGB();

private:
    SkColorSpace();
};
