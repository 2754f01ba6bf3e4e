// SPDX-License-Identifier: Apache-2.0
// Damaged fonts are refused or drawn safely; worth most under the address sanitizer.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "Fonts.h"
#include "platform/host/GlyphCache.h"

namespace {

uint32_t readBig(const std::vector<uint8_t>& file, size_t at, int count) {
    uint32_t value = 0;
    for (int i = 0; i < count; ++i) value = value << 8 | file[at + static_cast<size_t>(i)];
    return value;
}

struct Table {
    size_t offset, length;
};

// The tables of the font that begins at `start`, and its directory.
std::vector<Table> tablesOf(const std::vector<uint8_t>& file, size_t start) {
    const size_t count = readBig(file, start + 4, 2);
    std::vector<Table> tables = {{start, 12 + 16 * count}};
    for (size_t i = 0; i < count; ++i) {
        const size_t entry = start + 12 + 16 * i;
        const Table table = {readBig(file, entry + 8, 4), readBig(file, entry + 12, 4)};
        if (table.length > 0) tables.push_back(table);
    }
    return tables;
}

// Opens the bytes and asks everything of some glyphs. True when they were taken for a font.
bool exercise(const uint8_t* data, size_t size, std::mt19937& random) {
    const auto face = host::FontFace::open(data, size, 0);
    if (face == nullptr) return false;
    host::GlyphStyle style;
    style.size = static_cast<float>(1 + random() % 60);
    style.fakeBold = random() % 2 == 0;
    style.antiAlias = random() % 4 != 0;
    style.skewX = random() % 2 == 0 ? -0.25f : 0.0f;
    for (int i = 0; i < 4; ++i) {
        const uint32_t glyph = random() % std::max(1u, std::min(face->glyphCount(), 3000u));
        face->advance(glyph, style);
        const host::GlyphBox box = face->inkBox(glyph, style);
        const auto image = face->image(glyph, style, static_cast<int>(random() % 4));
        EXPECT_EQ(image->coverage.size(),
                  static_cast<size_t>(image->width) * static_cast<size_t>(image->height));
        EXPECT_LE(box.right - box.left, host::kMaxGlyphSide);
        face->covers(random() % 0x20000);
        face->coversVariation(random() % 0x20000, 0xFE00 + random() % 16);
    }
    return true;
}

// The font, and how often it is changed.
using FontFuzz = testing::TestWithParam<std::tuple<fonts::Role, int>>;

TEST_P(FontFuzz, ChangedFontsAreSafe) {
    const auto [role, rounds] = GetParam();
    const auto seed = static_cast<uint32_t>(rounds);
    std::mt19937 random(seed);
    std::vector<uint8_t> file = fonts::bytes(role);
    const size_t start = role == fonts::Role::kCollection ? readBig(file, 12, 4) : 0;
    ASSERT_GT(file.size(), start + 12);
    const std::vector<Table> tables = tablesOf(file, start);
    int opened = 0;
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(testing::Message() << fonts::path(role) << " seed " << seed << " round " << round);
        std::vector<std::pair<size_t, uint8_t>> undo;
        for (unsigned change = 1 + random() % 4; change > 0; --change) {
            const Table& table = tables[random() % tables.size()];
            // Mostly near the start of a table, where its counts and offsets are.
            const size_t reach = random() % 4 == 0 ? table.length : std::min<size_t>(table.length, 64);
            const size_t at = table.offset + random() % reach;
            undo.emplace_back(at, file[at]);
            file[at] = random() % 3 == 0 ? 0xFF : static_cast<uint8_t>(random());
        }
        opened += exercise(file.data(), file.size(), random);
        for (auto change = undo.rbegin(); change != undo.rend(); ++change)
            file[change->first] = change->second;
    }
    EXPECT_EQ(file, fonts::bytes(role));
    // Neither refused out of hand nor never damaged.
    EXPECT_GT(opened, rounds / 10);
    EXPECT_LT(opened, rounds);
    host::clearGlyphCache();
}

INSTANTIATE_TEST_SUITE_P(, FontFuzz,
                         testing::Values(std::tuple(fonts::Role::kLatinSmall, 3000),
                                         std::tuple(fonts::Role::kVariable, 1000),
                                         std::tuple(fonts::Role::kEmoji, 500),
                                         std::tuple(fonts::Role::kCollection, 150)));

TEST(TruncatedFonts, AreSafe) {
    std::mt19937 random(5);
    const std::vector<uint8_t>& file = fonts::bytes(fonts::Role::kLatinSmall);
    ASSERT_FALSE(file.empty());
    int refused = 0;
    for (int round = 0; round < 400; ++round) {
        const size_t size = round < 100 ? static_cast<size_t>(round) * 4 : random() % file.size();
        // A buffer of exactly that size, so that a read beyond it is seen.
        const std::vector<uint8_t> part(file.begin(), file.begin() + static_cast<ptrdiff_t>(size));
        refused += !exercise(part.data(), part.size(), random);
    }
    EXPECT_GE(refused, 75);  // at the least those that end inside the table directory
    host::clearGlyphCache();
}

}  // namespace
