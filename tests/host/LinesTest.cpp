// SPDX-License-Identifier: Apache-2.0
#include "Lines.h"

#include <cmath>
#include <cstdio>
#include <sstream>

#include "platform/host/Rendering.h"

using namespace hosttest;

namespace {

std::vector<double> numbersOf(const std::string& text) {
    std::vector<double> values;
    const char* at = text.c_str();
    for (char* end; *at != 0; at = *end != 0 ? end + 1 : end) values.push_back(std::strtod(at, &end));
    return values;
}

bool near(const std::string& a, const std::string& b) {
    const std::vector<double> left = numbersOf(a), right = numbersOf(b);
    bool equal = left.size() == right.size();
    for (size_t i = 0; equal && i < left.size(); i++) equal = std::fabs(left[i] - right[i]) <= 0.004;
    return equal;
}

template <typename... Values>
std::string format(const char* form, Values... values) {
    char buffer[128];
    std::snprintf(buffer, sizeof buffer, form, static_cast<double>(values)...);
    return buffer;
}

}  // namespace

TEST(Lines, AreLaidOutAsOnThePhone) {
    const auto cases = casesOf("phone");
    const auto expected = rowsOf(ZVEX_HOST_DATA "/phone/layouts.tsv");
    ASSERT_GT(cases.size(), 30u);
    ASSERT_EQ(cases.size(), expected.size());
    for (size_t i = 0; i < cases.size(); i++) {
        const Line line(cases[i]);
        const Layout layout = line.layOut();
        MinikinRect box;
        layout.getBounds(&box);
        std::string glyphs;
        for (int g = 0; g < static_cast<int>(layout.nGlyphs()); g++) {
            glyphs += format(g == 0 ? "%.0f:%.0f:%.3f:%.3f" : " %.0f:%.0f:%.3f:%.3f", line.fontAt(layout, g),
                             layout.getGlyphId(g), layout.getX(g), layout.getY(g));
        }
        const std::string actual[] = {
            cases[i].at("name"), format("%.4f", layout.getAdvance()),
            format("%.3f,%.3f,%.3f,%.3f", box.mLeft, box.mTop, box.mRight, box.mBottom), glyphs};
        ASSERT_EQ(expected[i][0], actual[0]);
        for (size_t column = 1; column < 4; column++) {
            EXPECT_TRUE(near(expected[i][column], actual[column]))
                << actual[0] << "\n  phone " << expected[i][column] << "\n  here  " << actual[column];
        }
    }
}

// lines.tsv describes its columns.
TEST(Lines, AreLaidOutAsTheirRowsSay) {
    for (const std::vector<std::string>& row : rowsOf(ZVEX_HOST_DATA "/lines.tsv")) {
        Line::Fields fields = {{"fonts", row.at(0)}, {"text", row.at(2)}};
        for (const std::string& option : split(row[1], ';')) {
            const size_t equals = std::min(option.find('='), option.size());
            if (!option.empty()) fields[option.substr(0, equals)] = option.substr(equals + 1);
        }
        const Line line(fields);
        const Layout layout = line.layOut();
        const icu::UnicodeString characters = icu::UnicodeString::fromUTF8(row.at(4)).unescape();
        std::string runs, ids;
        std::vector<unsigned> glyphs, expected;
        for (int i = 0; i < static_cast<int>(layout.nGlyphs()); i++) {
            const minikin::FontFakery fakery = layout.getFakery(i);
            std::string run = format("%.0f", line.fontAt(layout, i));
            if (fakery.isFakeBold()) run += 'b';
            if (fakery.isFakeItalic()) run += 'i';
            if (runs.size() < run.size() || runs.substr(runs.size() - run.size()) != run) runs += run;
            glyphs.push_back(layout.getGlyphId(i));
            ids += format(" %.0f", glyphs.back());
            if (i < characters.countChar32()) {
                const auto c = static_cast<char32_t>(characters.char32At(characters.moveIndex32(0, i)));
                expected.push_back(nominalGlyph(layout.getFont(i), c));
            }
        }
        SCOPED_TRACE(row[0] + " " + row[1] + " " + row[2]);
        EXPECT_EQ(row[3], runs);
        if (!row[4].empty() && row[4][0] == ' ') {
            EXPECT_EQ(row[4], ids);
        } else if (!row[4].empty()) {
            EXPECT_EQ(expected, glyphs);
            EXPECT_EQ(static_cast<size_t>(characters.countChar32()), glyphs.size());
        }
        const float advance = layout.getAdvance();
        EXPECT_TRUE(row.at(5).empty() || near(row[5], format("%.3f", advance))) << "advance " << advance;
    }
}

// Plain text has its exact size and its own advances; words end where they do on the phone.
TEST(Lines, PlainRenderingIsExact) {
    const TypefacePtr typeface = typefaceOf({familyOf(dejavu())});
    const android::Paint paint = paintOf(24.5f);
    host::setRendering(host::Rendering::Plain);
    const Layout plain = layLine(u"HH HH", typeface, paint), words = layLine(u"AV AV", typeface, paint);
    const float word = layLine(u"AV", typeface, paint).getAdvance();
    host::setRendering(host::Rendering::Phone);
    host::GlyphStyle style;
    style.size = 24.5f;
    style.rendering = host::Rendering::Plain;
    float pen = 0;
    for (int i = 0; i < 5; i++) {
        EXPECT_EQ(pen, plain.getX(i));
        pen += faceOf(dejavu().get()).advance(plain.getGlyphId(i), style);
    }
    EXPECT_EQ(pen, plain.getAdvance());
    EXPECT_EQ(words.getX(3), words.getAdvance() - word);
}

TEST(Lines, OfHugeSizesAreLaidOut) {
    for (const auto& [size, scaleX] : {std::pair(2000.0f, 1.0f), {20000, 1}, {64, 1000}}) {
        android::Paint paint = paintOf(size);
        paint.setTextScaleX(scaleX);
        const Layout layout = layLine(u"Hm", typefaceOf({familyOf(roboto())}), paint);
        MinikinRect box;
        layout.getBounds(&box);
        EXPECT_NEAR(box.mTop, -0.711f * size, size / 64) << size << " x " << scaleX;
        EXPECT_NEAR(layout.getAdvance(), 1.5903f * size * scaleX, size * scaleX / 1000);
    }
}
