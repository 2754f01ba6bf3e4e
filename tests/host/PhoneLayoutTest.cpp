// SPDX-License-Identifier: Apache-2.0
#include "PhoneCases.h"

using namespace hosttest;

TEST(PhoneLayout, LinesAreThoseOfThePhone) {
    const std::string folder = ZVEX_PHONE_DATA;
    const auto cases = phone::rowsOf(folder + "/cases.tsv"), layouts = phone::rowsOf(folder + "/layouts.tsv");
    ASSERT_GT(cases.size(), 30u);
    ASSERT_EQ(cases.size(), layouts.size());
    for (size_t i = 0; i < cases.size(); i++) {
        ASSERT_EQ(cases[i][0], layouts[i][0]);
        const phone::Case line(cases[i]);
        EXPECT_EQ("", phone::difference(layouts[i], line.print(line.layOut()))) << line.name;
    }
}

// Plain text has its exact size and advances of its own; words end where they do on the phone.
TEST(PhoneLayout, PlainRenderingIsExact) {
    const TypefacePtr typeface = typefaceOf({familyOf(dejavu())});
    android::Paint paint = paintOf(24.5f);
    const Layout phone = layLine(u"AV AV", typeface, paint), whole = layLine(u"AV AV", typeface, paintOf(24));
    EXPECT_EQ(pensOf(whole), pensOf(phone));
    host::setRendering(host::Rendering::Plain);
    const Layout plain = layLine(u"HH HH", typeface, paint);
    host::GlyphStyle style;
    style.size = 24.5f;
    std::vector<float> pens;
    float pen = 0;
    for (const unsigned glyph : nominalGlyphs(dejavu(), U"HH HH")) {
        pens.push_back(pen);
        pen += faceOf(dejavu().get()).advance(glyph, style);
    }
    const float word = layLine(u"AV", typeface, paint).getAdvance();
    const Layout words = layLine(u"AV AV", typeface, paint);
    host::setRendering(host::Rendering::Phone);
    EXPECT_EQ(pens, pensOf(plain));
    EXPECT_EQ(pen, plain.getAdvance());
    EXPECT_EQ(words.getX(3), words.getAdvance() - word);
}

TEST(PhoneLayout, HugeSizesAreLaidOut) {
    const TypefacePtr typeface = typefaceOf({familyOf(roboto())});
    const auto advance = [&](float size, float scaleX) {
        android::Paint paint = paintOf(size);
        paint.setTextScaleX(scaleX);
        const Layout layout = layLine(u"Hm", typeface, paint);
        MinikinRect bounds;
        layout.getBounds(&bounds);
        EXPECT_NEAR(bounds.mTop, -0.711f * size, size / 64) << size << " x " << scaleX;
        return layout.getAdvance();
    };
    const float em = advance(2000, 1) / 2000;
    EXPECT_NEAR(advance(20000, 1), 20000 * em, 20);
    EXPECT_NEAR(advance(64, 1000), 64000 * em, 64);
}
