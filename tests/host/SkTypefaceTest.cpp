// SPDX-License-Identifier: Apache-2.0
#include <SkPaint.h>
#include <SkRefCnt.h>
#include <SkStream.h>
#include <SkTypeface.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "Fonts.h"

namespace {

// A stream over a font that records its deletion.
struct TracedStream : SkMemoryStream {
    TracedStream(size_t size, bool* living)
        : SkMemoryStream(fonts::bytes(fonts::Role::kLatinSmall).data(), size), living(living) {
        *living = true;
    }
    ~TracedStream() override { *living = false; }
    bool* living;
};

TEST(SkTypeface, TakesTheStreamOverAndKeepsItAsLongAsTheFace) {
    const size_t whole = fonts::bytes(fonts::Role::kLatinSmall).size();
    bool living = false, other = false;
    sk_sp<SkTypeface> typeface = SkTypeface::MakeFromStream(new TracedStream(whole, &living));
    const sk_sp<SkTypeface> second = SkTypeface::MakeFromStream(new TracedStream(whole, &other));
    ASSERT_TRUE(typeface && second);
    EXPECT_TRUE(typeface->uniqueID() != 0 && typeface->uniqueID() != second->uniqueID());
    std::shared_ptr<host::FontFace> face = typeface->face();
    // The last of several pointers deletes the object.
    sk_sp<SkRefCnt> a = typeface;
    const sk_sp<SkRefCnt>& itself = a;
    a = itself;
    EXPECT_FALSE(a->unique());
    sk_sp<SkTypeface> b = std::move(typeface);
    EXPECT_TRUE(typeface == nullptr);  // NOLINT: moved from, and so stated to be empty
    SkTypeface* raw = b.release();
    a.reset();
    EXPECT_TRUE(!b && raw->unique());
    raw->unref();
    EXPECT_TRUE(living);
    face.reset();
    EXPECT_FALSE(living);

    for (const auto& [size, index] : {std::pair(size_t{100}, 0), {whole, 1}}) {
        EXPECT_FALSE(SkTypeface::MakeFromStream(new TracedStream(size, &living), index));
        EXPECT_FALSE(living);
    }
    EXPECT_FALSE(SkTypeface::MakeFromStream(nullptr));
    EXPECT_FALSE(SkTypeface::MakeFromStream(new SkMemoryStream(nullptr, 100)));

    char text[] = "abc";
    SkMemoryStream borrowed(text, 3), copied(text, 3, true);
    text[0] = 'x';
    EXPECT_EQ(borrowed.getMemoryBase(), text);
    EXPECT_EQ(*static_cast<const char*>(copied.getMemoryBase()), 'a');
    EXPECT_EQ(copied.getLength(), 3u);
}

TEST(SkPaint, WhatIsNoSizeLeavesTheOldOne) {
    SkPaint paint;
    for (const float size : {30.0f, -1.0f, std::nanf("")}) {
        paint.setTextSize(size);
        EXPECT_EQ(paint.getTextSize(), 30);
    }
}

}  // namespace
