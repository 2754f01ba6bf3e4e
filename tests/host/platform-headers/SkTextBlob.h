// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKTEXTBLOB_H_
#define ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKTEXTBLOB_H_

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
    SkTextBlobBuilder(const SkTextBlobBuilder&) = delete;
    void operator=(const SkTextBlobBuilder&) = delete;

    struct RunBuffer {
        uint16_t* glyphs;
        SkScalar* pos;
    };
    const RunBuffer& allocRunPos(const SkPaint& font, int count, const SkRect* bounds = nullptr);
    sk_sp<SkTextBlob> make();
};

#endif  // ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKTEXTBLOB_H_
