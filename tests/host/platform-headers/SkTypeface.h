// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SkRefCnt.h"
#include "SkStream.h"

class SkTypeface : public SkRefCnt {
public:
    static sk_sp<SkTypeface> MakeFromStream(SkStreamAsset* stream, int index = 0);

private:
    SkTypeface();
};
