// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "SkPaint.h"
#include "SkRect.h"
#include "SkRefCnt.h"

class SkTextBlob : public SkRefCnt {
private:
    SkTextBlob();
};

class SkTextBlobBuilder {
public:
    SkTextBlobBuilder();
    ~SkTextBlobBuilder();
    SkTextBlobBuilder(SkTextBlobBuilder&&) = delete;

    struct RunBuffer {
        uint16_t* glyphs;
        SkScalar* pos;
    };
    const RunBuffer& allocRunPos(const SkPaint& font, int count, const SkRect* bounds = nullptr);
    sk_sp<SkTextBlob> make();
};
