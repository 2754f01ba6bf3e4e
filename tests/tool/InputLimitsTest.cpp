// SPDX-License-Identifier: Apache-2.0
// Files that are too large are refused before they take memory or time.
#include <chrono>

#include "tests/scene/PngBytes.h"
#include "tests/tool/Program.h"

namespace {

// One with transparency of `rows` bytes, all zero, behind `extras`.
std::string png(size_t width, size_t height, const std::string& extras, size_t rows,
                bool interlaced = false) {
    return pngOf(width, height, 8, 6, interlaced, extras, std::string(rows, '\0'));
}

class InputLimits : public Program {
protected:
    // The message after the name of the option; the rest is refused within a second and some megabytes.
    std::string refusal(const std::vector<std::string>& options) const {
        std::vector<std::string> words = {"render", "x", "--font", kFont, "--size", "8", "-o", file("x.png")};
        words.insert(words.end(), options.begin(), options.end());
        const Result result = run(words);
#ifndef ZVTEXT_SANITIZED
        EXPECT_LT(result.peakMegabytes, 60);
#endif
        const size_t colon = result.err.rfind("': ");
        return colon != std::string::npos ? result.err.substr(colon + 3)
                                          : result.err.substr(result.err.find("' ") + 2);
    }
};

TEST_F(InputLimits, PngsAreMeasuredBeforeTheyAreUnpacked) {
    const auto refuse = [&](const std::string& content) {
        return refusal({"--pattern", write("p.png", content)});
    };
    const std::string limits = " pixels; at most 16384 a side and 64000000 in all\n";
    EXPECT_EQ(refuse(png(16385, 1, "", 16385 * 4 + 1)), "is 16385 x 1" + limits);
    EXPECT_EQ(refuse(png(1, 16385, "", 16385 * 5, true)), "is 1 x 16385" + limits);
    EXPECT_EQ(refuse(png(8000, 8001, "", 1000)), "is 8000 x 8001" + limits);
    // Texts, profiles and frames of an animation that would unpack to gigabytes, and a megabyte of nothing.
    const std::string text = deflated(std::string(7'900'000, 'a'));
    std::string extras = chunk("acTL", bigEndian(900) + bigEndian(0)) +
                         chunk("iCCP", std::string("k\0\0", 3) + text) +
                         chunk("vpAg", std::string(1 << 20, 'x'));
    for (int i = 0; i < 400; ++i) extras += chunk("zTXt", std::string("k\0\0", 3) + text);
    for (int i = 0; i < 400; ++i) extras += chunk("fdAT", bigEndian(i) + text);
    write("p.png", png(1, 1, extras, 5));
    const auto begin = std::chrono::steady_clock::now();
    const Result result =
        run({"render", "x", "--font", kFont, "--pattern", file("p.png"), "-o", file("x.png")});
    EXPECT_EQ(result.status, 0) << result.err;
#ifndef ZVTEXT_SANITIZED
    EXPECT_LT(result.peakMegabytes, 60);
#endif
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    write("p.png", png(16384, 3906, "", 100));
    EXPECT_NE(run({"render", "x", "--font", kFont, "--pattern", file("p.png")}).err.find("is damaged: "),
              std::string::npos)
        << "not too large";
}

TEST_F(InputLimits, FontsStylesAndTextsAreMeasuredBeforeTheyAreRead) {
    write("large", "");
    fs::resize_file(file("large"), (256 << 20) + 1);
    EXPECT_EQ(run({"render", "x", "--font", file("large")}).err,
              "zvtext: --font: '" + file("large").string() + "' is larger than 268435456 bytes\n");
    fs::resize_file(file("large"), (4 << 20) + 1);
    EXPECT_EQ(refusal({"--style", file("large")}), "is larger than 4194304 bytes\n");
    EXPECT_EQ(run({"render", "--text-file", file("large"), "--font", kFont}).err,
              "zvtext: --text-file: '" + file("large").string() + "' is larger than 4194304 bytes\n");
    EXPECT_EQ(run({"render", "x", "--font", kFont, "--style", "/dev/zero"}).err,
              "zvtext: --style: '/dev/zero' is larger than 4194304 bytes\n");

    const auto style = [&](const std::string& content) {
        return refusal({"--style", write("s.json", content)});
    };
    std::string many = "{\"effects\": [{}";
    while (many.size() < 4'000'000) many += ",{}";
    EXPECT_EQ(style(many + "]}"), "it has too many keys and values\n");
    std::string features = "kern";
    while (features.size() < 4095) features += ",kern";
    features.resize(4096, ' ');
    EXPECT_EQ(run({"render", "--print-style", "--features", features}).status, 0);
    EXPECT_EQ(style("{\"features\": \"" + features + " \"}"), "features: it is longer than 4096 bytes\n");

    std::vector<std::string> words = {"render", "x", "--font", kFont, "-o", file("x.png")};
    for (int i = 0; i < 256; ++i) words.insert(words.end(), {"--fallback", kFont});
    EXPECT_EQ(run(words).status, 0);
    words.insert(words.end(), {"--fallback", kFont});
    EXPECT_EQ(run(words).err, "zvtext: --fallback: 257 fonts are more than 256\n");
}

}  // namespace
