// SPDX-License-Identifier: Apache-2.0
// Files that are too large are refused before they use memory or time.
#include "tests/scene/PngBytes.h"
#include "tests/tool/Program.h"

namespace {

// A PNG with transparency of `rows` bytes, all zero, after `extras`.
std::string png(size_t width, size_t height, const std::string& extras, size_t rows,
                bool interlaced = false) {
    return pngOf(width, height, 8, 6, interlaced, extras, std::string(rows, '\0'));
}

class InputLimits : public Program {
protected:
    // The program's error, which must need only some megabytes.
    std::string refusal(const std::string& line) const {
        const Result result = zvtext("render -o $DIR/x.png " + line);
        EXPECT_TRUE(kSanitized || result.peakMegabytes < 60) << line;
        EXPECT_LT(result.seconds, kSanitized ? 100 : 10);
        const size_t colon = result.err.rfind("': ");
        return colon != std::string::npos
                   ? result.err.substr(colon + 3)
                   : result.err.substr(std::min(result.err.find("' "), result.err.size()));
    }
};

TEST_F(InputLimits, PngsAreMeasuredBeforeTheyAreUnpacked) {
    const auto refuse = [&](const std::string& content) {
        write("p.png", content);
        return refusal("x -f $FONT -s 8 --pattern $DIR/p.png");
    };
    const std::string limits = " pixels; at most 16384 a side and 64000000 in all\n";
    EXPECT_EQ(refuse(png(16385, 1, "", 16385 * 4 + 1)), "' is 16385 x 1" + limits);
    EXPECT_EQ(refuse(png(1, 16385, "", 16385 * 5, true)), "' is 1 x 16385" + limits);
    EXPECT_EQ(refuse(png(8000, 8001, "", 1000)), "' is 8000 x 8001" + limits);
    // Texts, profiles and frames of an animation that would unpack to gigabytes, and a megabyte of nothing.
    const std::string text = deflated(std::string(7'900'000, 'a'));
    std::string extras = chunk("acTL", bigEndian(900) + bigEndian(0)) +
                         chunk("iCCP", std::string("k\0\0", 3) + text) +
                         chunk("vpAg", std::string(1 << 20, 'x'));
    for (int i = 0; i < 400; ++i) extras += chunk("zTXt", std::string("k\0\0", 3) + text);
    for (int i = 0; i < 400; ++i) extras += chunk("fdAT", bigEndian(i) + text);
    EXPECT_EQ(refuse(png(1, 1, extras, 5)), "");
    write("p.png", png(16384, 3906, "", 100));
    const std::string damaged = zvtext("render x -f $FONT --pattern $DIR/p.png").err;
    EXPECT_NE(damaged.find("' is damaged: "), std::string::npos) << "not too large";
}

TEST_F(InputLimits, FontsStylesAndTextsAreMeasuredBeforeTheyAreRead) {
    write("large", "");
    fs::resize_file(file("large"), (256 << 20) + 1);
    EXPECT_EQ(refusal("x -f $DIR/large"), "' is larger than 268435456 bytes\n");
    fs::resize_file(file("large"), uintmax_t{2} << 30);
    EXPECT_EQ(refusal("x -f $DIR/large"), "' is larger than 268435456 bytes\n");
    fs::resize_file(file("large"), (4 << 20) + 1);
    EXPECT_EQ(refusal("x -f $FONT --style $DIR/large"), "' is larger than 4194304 bytes\n");
    EXPECT_EQ(refusal("-f $FONT --text-file $DIR/large"), "' is larger than 4194304 bytes\n");
    EXPECT_EQ(refusal("x -f $FONT --style /dev/zero"), "' is larger than 4194304 bytes\n");

    std::string many = "{\"effects\": [{}";
    while (many.size() < 4'000'000) many += ",{}";
    write("s.json", many + "]}");
    EXPECT_EQ(refusal("x -f $FONT --style $DIR/s.json"), "it has too many keys and values\n");
    std::string features = "kern";
    while (features.size() < 4095) features += ",kern";
    features.resize(4096, ' ');
    EXPECT_EQ(zvtext("render --print-style --features '" + features + "'").status, 0);
    EXPECT_EQ(zvtext("render --print-style --features '" + features + " '").err,
              "zvtext: --features: it is longer than 4096 bytes\n");

    std::string line = "render x -f $FONT -o $DIR/x.png";
    for (int i = 0; i < 256; ++i) line += " --fallback $FONT";
    EXPECT_EQ(zvtext(line).status, 0);
    EXPECT_EQ(zvtext(line + " --fallback $FONT").err, "zvtext: --fallback: 257 fonts are more than 256\n");
}

}  // namespace
