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

struct Counted : SkRefCnt {
    explicit Counted(int* living) : living(living) { ++*living; }
    ~Counted() override { --*living; }
    int* living;
};

TEST(SkRefCnt, PointersShareOneObjectAndTheLastDeletesIt) {
    int living = 0;
    sk_sp<Counted> a(new Counted(&living));
    EXPECT_TRUE(a->unique());
    sk_sp<SkRefCnt> b = a;
    EXPECT_FALSE(a->unique());
    EXPECT_TRUE(a == b);
    const sk_sp<SkRefCnt>& itself = b;
    b = itself;
    sk_sp<Counted> c = std::move(a);
    EXPECT_TRUE(a == nullptr);  // NOLINT: moved from, and so stated to be empty
    Counted* raw = c.release();
    EXPECT_FALSE(c);
    b.reset();
    EXPECT_EQ(living, 1);
    raw->unref();
    EXPECT_EQ(living, 0);
}

// A stream over a font that tells when it is deleted.
struct TracedStream : SkMemoryStream {
    TracedStream(const void* data, size_t size, bool* living) : SkMemoryStream(data, size), living(living) {
        *living = true;
    }
    ~TracedStream() override { *living = false; }
    bool* living;
};

TEST(SkTypeface, TakesTheStreamOverAndKeepsItAsLongAsTheFace) {
    const auto& file = fonts::bytes(fonts::Role::kLatinSmall);
    bool living = false, other = false;
    const auto make = [&file](bool* living, size_t size, int index = 0) {
        return SkTypeface::MakeFromStream(new TracedStream(file.data(), size, living), index);
    };
    sk_sp<SkTypeface> typeface = make(&living, file.size()), second = make(&other, file.size());
    ASSERT_TRUE(typeface && second);
    EXPECT_NE(typeface->uniqueID(), 0u);
    EXPECT_NE(typeface->uniqueID(), second->uniqueID());
    std::shared_ptr<host::FontFace> face = typeface->face();
    typeface.reset();
    EXPECT_TRUE(living);
    face.reset();
    EXPECT_FALSE(living);

    EXPECT_FALSE(make(&living, 100));
    EXPECT_FALSE(living);
    EXPECT_FALSE(make(&living, file.size(), 1));
    EXPECT_FALSE(living);
    EXPECT_FALSE(SkTypeface::MakeFromStream(nullptr));
    EXPECT_FALSE(SkTypeface::MakeFromStream(new SkMemoryStream(nullptr, 100)));
}

TEST(SkMemoryStream, CopiesWhenAsked) {
    char text[] = "abc";
    SkMemoryStream borrowed(text, 3), copied(text, 3, true);
    text[0] = 'x';
    EXPECT_EQ(borrowed.getMemoryBase(), text);
    EXPECT_EQ(*static_cast<const char*>(copied.getMemoryBase()), 'a');
    EXPECT_EQ(copied.getLength(), 3u);
}

TEST(SkPaint, FlagsAndSizes) {
    SkPaint paint;
    EXPECT_EQ(paint.getFlags(), 0u);
    paint.setFlags(0x1 | 0x20 | 0x40 | 0x80 | 0x10000);
    EXPECT_TRUE(paint.isAntiAlias() && paint.isFakeBoldText() && paint.isLinearText() &&
                paint.isSubpixelText());
    paint.setFakeBoldText(false);
    paint.setAntiAlias(false);
    EXPECT_EQ(paint.getFlags(), 0x40u | 0x80 | 0x10000);
    paint.setAntiAlias(true);
    EXPECT_EQ(paint.getFlags(), 0x1u | 0x40 | 0x80 | 0x10000);

    EXPECT_EQ(paint.getTextSize(), 12);
    for (const float size : {30.0f, -1.0f, std::nanf("")}) {  // what is no size leaves the old one
        paint.setTextSize(size);
        EXPECT_EQ(paint.getTextSize(), 30);
    }
    paint.setTextSize(0);
    EXPECT_EQ(paint.getTextSize(), 0);
}

}  // namespace
