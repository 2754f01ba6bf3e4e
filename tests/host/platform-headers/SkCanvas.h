// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SkBitmap.h"
#include "SkBlendMode.h"
#include "SkClipOp.h"
#include "SkColor.h"
#include "SkPaint.h"
#include "SkRect.h"
#include "SkTextBlob.h"

class SkCanvas {
public:
    explicit SkCanvas(const SkBitmap& bitmap);
    virtual ~SkCanvas();
    SkCanvas(SkCanvas&&) = delete;

    void drawColor(SkColor color, SkBlendMode mode);
    void clipRect(const SkRect& rect, SkClipOp op, bool doAntiAlias);
    void drawRect(const SkRect& rect, const SkPaint& paint);
    void drawBitmap(const SkBitmap& bitmap, SkScalar left, SkScalar top, const SkPaint* paint = nullptr);
    void drawTextBlob(const sk_sp<SkTextBlob>& blob, SkScalar x, SkScalar y, const SkPaint& paint);
};
