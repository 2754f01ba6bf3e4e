// SPDX-License-Identifier: Apache-2.0
#include "platform/host/GlyphCache.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "Fonts.h"

namespace {

class GlyphCacheTest : public testing::Test {
protected:
    void SetUp() override {
        host::clearGlyphCache();
        host::setGlyphCacheLimit(host::kDefaultGlyphCacheLimit);
    }
    void TearDown() override { SetUp(); }

    static host::GlyphStyle sized(float size) {
        host::GlyphStyle style;
        style.size = size;
        return style;
    }
    const std::shared_ptr<host::FontFace> face = fonts::open(fonts::Role::kLatin);
};

TEST_F(GlyphCacheTest, KeepsOneImageForEachKey) {
    const auto first = face->image(40, sized(30), 0);
    EXPECT_EQ(face->image(40, sized(30), 0), first);
    EXPECT_EQ(face->image(40, sized(30), 4), first);  // quarters are taken modulo 4
    host::GlyphStyle same = sized(30);
    same.subpixel = true;
    same.skewX = -0.0f;
    EXPECT_EQ(face->image(40, same, 0), first);

    std::vector<host::GlyphStyle> styles(7, sized(30));
    styles[0].skewX = -0.25f;
    styles[1].fakeBold = true;
    styles[2].scaleX = 2;
    styles[3].antiAlias = false;
    styles[4].linear = true;
    styles[5].rendering = host::Rendering::Plain;
    styles[6].size = 31;
    std::vector<std::shared_ptr<const host::GlyphImage>> others = {first, face->image(41, sized(30), 0),
                                                                   face->image(40, sized(30), 1)};
    for (const host::GlyphStyle& style : styles) others.push_back(face->image(40, style, 0));
    others.push_back(fonts::open(fonts::Role::kLatin)->image(40, sized(30), 0));  // another face, another key
    EXPECT_EQ(std::set<std::shared_ptr<const host::GlyphImage>>(others.begin(), others.end()).size(),
              others.size());
}

TEST_F(GlyphCacheTest, StaysWithinItsBoundAndDropsTheLeastRecentlyUsed) {
    constexpr size_t kBound = 100000;
    host::setGlyphCacheLimit(kBound);
    const auto used = face->image(36, sized(50), 0);
    const auto unused = face->image(37, sized(50), 0);
    for (uint32_t glyph = 38; glyph < 138; ++glyph) {
        face->image(glyph, sized(50), 0);
        face->image(36, sized(50), 0);
        ASSERT_LE(host::glyphCacheBytes(), kBound);
    }
    EXPECT_GT(host::glyphCacheBytes(), kBound / 2);
    EXPECT_EQ(face->image(36, sized(50), 0), used);
    const auto again = face->image(37, sized(50), 0);
    EXPECT_NE(again, unused);
    EXPECT_EQ(again->coverage, unused->coverage);

    // Images of more than a quarter of the bound are not kept.
    host::clearGlyphCache();
    EXPECT_EQ(host::glyphCacheBytes(), 0u);
    EXPECT_FALSE(face->image(36, sized(400), 0)->coverage.empty());
    EXPECT_EQ(host::glyphCacheBytes(), 0u);

    host::setGlyphCacheLimit(0);
    EXPECT_NE(face->image(36, sized(20), 0), face->image(36, sized(20), 0));
    EXPECT_EQ(host::glyphCacheBytes(), 0u);
}

TEST_F(GlyphCacheTest, AFaceThatGoesTakesItsGlyphsAlong) {
    auto other = fonts::open(fonts::Role::kLatin);
    const auto image = other->image(36, sized(50), 0);
    const size_t one = host::glyphCacheBytes();
    face->image(36, sized(50), 0);
    EXPECT_EQ(host::glyphCacheBytes(), 2 * one);
    other.reset();
    EXPECT_EQ(host::glyphCacheBytes(), one);
    EXPECT_FALSE(image->coverage.empty());  // still owned by its holder
}

}  // namespace
