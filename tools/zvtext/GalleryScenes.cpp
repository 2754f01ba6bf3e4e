// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/GalleryScenes.h"

namespace zvtext {

namespace {

constexpr Ground kLight = Ground::Light, kDark = Ground::Dark;
constexpr char kSans[] = "DejaVuSans-Bold.ttf";
constexpr char kSerif[] = "DejaVuSerif-Bold.ttf";
constexpr char kMono[] = "DejaVuSansMono-Bold.ttf";

GalleryGroup outerShadow() {
    return {
        "outer-shadow",
        "Outer shadow",
        "The angle says where the light comes from; the shadow falls the other way.",
        {{"outer-shadow-hard",
          "A hard edge, light from the upper left",
          kLight,
          kSans,
          "Shadow",
          {"--color", "#2f6fdb", "--outer-shadow", "angle=135,distance=8,size=0,opacity=45%"}},
         {"outer-shadow-soft",
          "A soft one",
          kLight,
          kSans,
          "Shadow",
          {"--color", "#2f6fdb", "--outer-shadow", "angle=135,distance=8,size=20,color=#000,opacity=60%"}},
         {"outer-shadow-right",
          "Light from the upper right",
          kLight,
          kSans,
          "Shadow",
          {"--color", "#2f6fdb", "--outer-shadow", "angle=45,distance=12,size=6,opacity=60%"}},
         {"outer-shadow-below",
          "Light from below",
          kLight,
          kSerif,
          "Shadow",
          {"--color", "#8b3a2f", "--outer-shadow", "angle=270,distance=14,size=8,opacity=50%"}},
         {"outer-shadow-around",
          "No distance: a dark halo in colour",
          kLight,
          kSans,
          "Shadow",
          {"--color", "#fff", "--outer-shadow", "distance=0,size=16,color=#b00060,opacity=100%"}},
         {"outer-shadow-far",
          "Far away, as if the text hovered",
          kLight,
          kSans,
          "Shadow",
          {"--color", "#e8552b", "--outer-shadow", "angle=100,distance=40,size=14,opacity=40%"}}}};
}

GalleryGroup innerShadow() {
    return {
        "inner-shadow",
        "Inner shadow",
        "The shadow that the edge of a hole throws on its floor.",
        {{"inner-shadow-soft",
          "Soft, light from the upper left",
          kLight,
          kSans,
          "Inside",
          {"--color", "#f4c542", "--inner-shadow", "angle=135,distance=5,size=8,opacity=75%"}},
         {"inner-shadow-hard",
          "A hard edge",
          kLight,
          kSans,
          "Inside",
          {"--color", "#f4c542", "--inner-shadow", "angle=135,distance=5,size=0,opacity=60%"}},
         {"inner-shadow-right",
          "Light from the right, in colour",
          kLight,
          kSerif,
          "Inside",
          {"--color", "#ffffff", "--inner-shadow", "angle=0,distance=6,size=5,color=#0a4bb8,opacity=90%"}},
         {"inner-shadow-around",
          "No distance: every edge",
          kLight,
          kSans,
          "Inside",
          {"--color", "#8fd19e", "--inner-shadow", "distance=0,size=10,color=#0b3d1c,opacity=90%"}}}};
}

GalleryGroup outerGlow() {
    return {"outer-glow",
            "Outer glow",
            "Light around the glyphs, in one colour or through stops from the glyphs outwards.",
            {{"outer-glow-one",
              "One colour",
              kDark,
              kSans,
              "Glow",
              {"--color", "#fff8e0", "--outer-glow", "size=20,color=#ffb000,opacity=90%"}},
             {"outer-glow-tight",
              "Tight",
              kDark,
              kSans,
              "Glow",
              {"--color", "#0e2a47", "--outer-glow", "size=6,color=#6fd3ff,opacity=100%"}},
             {"outer-glow-stops",
              "Stops: yellow, magenta, blue",
              kDark,
              kSans,
              "Glow",
              {"--color", "#ffffff", "--outer-glow",
               "size=40,opacity=100%,stops=#ffe066@0:#ff30c0@45:#2030ff@100"}},
             {"outer-glow-rings",
              "Stops close together make rings",
              kDark,
              kSerif,
              "Glow",
              {"--color", "#1a1a2e", "--outer-glow",
               "size=30,opacity=100%,stops=#fff@0:#f94144@25:#f9c74f@50:#43aa8b@75:#277da1@100"}},
             {"outer-glow-large",
              "As large as it gets",
              kDark,
              kSans,
              "Glow",
              {"--color", "#d8fff0", "--outer-glow", "size=100,color=#00ffa0,opacity=70%"}}}};
}

GalleryGroup innerGlow() {
    return {"inner-glow",
            "Inner glow",
            "Light along the edges within the glyphs, fading towards the middle of the strokes.",
            {{"inner-glow-one",
              "One colour",
              kLight,
              kSans,
              "Glow",
              {"--color", "#12355b", "--inner-glow", "size=8,color=#7fd8ff,opacity=90%"}},
             {"inner-glow-tight",
              "Tight",
              kDark,
              kSans,
              "Glow",
              {"--color", "#5b1235", "--inner-glow", "size=3,color=#ffd0e8,opacity=100%"}},
             {"inner-glow-stops",
              "Stops: yellow, red",
              kDark,
              kSans,
              "Glow",
              {"--color", "#3a0008", "--inner-glow",
               "size=14,opacity=100%,stops=#ffee60@0:#ff2a00@60:#3a0008@100"}}}};
}

GalleryGroup gradients() {
    const std::string sunset = "#ffd95a@0:#f2542d@50:#562c7d@100";
    return {"gradient",
            "Gradients",
            "Colour stops across the text: along a line, or outwards from its centre.",
            {{"linear-gradient-right",
              "Left to right",
              kLight,
              kSans,
              "Gradient",
              {"--linear-gradient", "angle=0,stops=" + sunset}},
             {"linear-gradient-up",
              "Bottom to top",
              kLight,
              kSans,
              "Gradient",
              {"--linear-gradient", "angle=90,stops=" + sunset}},
             {"linear-gradient-slanted",
              "At 30 degrees, half as long as the text",
              kLight,
              kSans,
              "Gradient",
              {"--linear-gradient", "angle=30,scale=0.5,stops=" + sunset}},
             {"linear-gradient-double",
              "Twice as long: only its middle shows",
              kLight,
              kSans,
              "Gradient",
              {"--linear-gradient", "angle=0,scale=2,stops=" + sunset}},
             {"linear-gradient-clear",
              "A stop that is clear lets the text's colour through",
              kLight,
              kSerif,
              "Gradient",
              {"--color", "#0f766e", "--linear-gradient", "angle=0,stops=#fde047@0:#fde047@100@0%"}},
             {"radial-gradient",
              "From the centre",
              kLight,
              kSans,
              "Gradient",
              {"--radial-gradient", "stops=#fff2b0@0:#ff8a00@45:#7a0026@100"}},
             {"radial-gradient-small",
              "Half as wide as the text",
              kLight,
              kSans,
              "Gradient",
              {"--radial-gradient", "scale=0.5,stops=#8ef0ff@0:#0066ff@60:#06104a@100"}}}};
}

GalleryGroup stroke() {
    return {"stroke",
            "Stroke",
            "A round, even outline, outside the edge, inside it or centred on it.",
            {{"stroke-outside",
              "Outside",
              kLight,
              kSans,
              "Stroke",
              {"--color", "#ff8800", "--stroke", "5:#202020"}},
             {"stroke-wide",
              "Twenty pixels",
              kLight,
              kSans,
              "Stroke",
              {"--color", "#ffffff", "--stroke", "20:#0b7a75"}},
             {"stroke-inside",
              "Inside",
              kLight,
              kSans,
              "Stroke",
              {"--color", "#ffd166", "--stroke", "4:#b23a48:inside"}},
             {"stroke-center",
              "Centred",
              kLight,
              kSerif,
              "Stroke",
              {"--color", "#cfe8ff", "--stroke", "8:#1d3557:center"}},
             {"stroke-clear",
              "At 40 % opacity",
              kLight,
              kSans,
              "Stroke",
              {"--color", "#1d3557", "--stroke", "width=12,color=#e63946,opacity=40%"}}}};
}

GalleryGroup pattern() {
    return {"pattern",
            "Pattern",
            "A PNG in tiles. These three are drawn by the gallery itself.",
            {{"pattern-checks", "Checks", kLight, kSans, "Pattern", {"--pattern", "patterns/checks.png"}},
             {"pattern-checks-large",
              "Three times as large",
              kLight,
              kSans,
              "Pattern",
              {"--pattern", "patterns/checks.png,scale=3"}},
             {"pattern-stripes",
              "Stripes, with an outline",
              kLight,
              kSans,
              "Pattern",
              {"--stroke", "3:#7a1020", "--pattern", "patterns/stripes.png"}},
             {"pattern-dots",
              "Dots on a clear ground let the text through",
              kLight,
              kSerif,
              "Pattern",
              {"--color", "#ffe08a", "--pattern", "patterns/dots.png"}},
             {"pattern-faint",
              "At 35 % opacity",
              kLight,
              kSans,
              "Pattern",
              {"--color", "#2f6fdb", "--pattern", "patterns/checks.png,scale=2,opacity=35%"}}}};
}

GalleryGroup bevel() {
    return {"bevel",
            "Bevel",
            "Edges that rise towards the middle of the strokes, lit from the angle at the altitude.",
            {{"bevel-soft",
              "Soft, lit from the upper left",
              kLight,
              kSans,
              "Bevel",
              {"--color", "#3d7dca", "--bevel", "size=8,depth=2,angle=135,altitude=30"}},
             {"bevel-right",
              "Lit from the right",
              kLight,
              kSans,
              "Bevel",
              {"--color", "#3d7dca", "--bevel", "size=8,depth=2,angle=0,altitude=30"}},
             {"bevel-hard",
              "Hard",
              kLight,
              kSans,
              "Bevel",
              {"--color", "#3d7dca", "--bevel", "technique=hard,size=8,depth=2,angle=135"}},
             {"bevel-down",
              "Down instead of up",
              kLight,
              kSans,
              "Bevel",
              {"--color", "#3d7dca", "--bevel", "direction=down,size=8,depth=2,angle=135"}},
             {"bevel-outer",
              "Around the glyphs",
              kLight,
              kSans,
              "Bevel",
              {"--color", "#3d7dca", "--bevel", "style=outer,size=10,depth=2,angle=135"}},
             {"bevel-soften",
              "Softened, in two colours",
              kLight,
              kSerif,
              "Bevel",
              {"--color", "#a86a3d", "--bevel",
               "size=12,depth=4,soften=4,angle=120,highlight=#ffe8c0@90%,shadow=#3a1500@80%"}},
             {"bevel-steep",
              "Steep, under a high light",
              kLight,
              kSans,
              "Bevel",
              {"--color", "#6a4c93", "--bevel", "technique=hard,size=16,depth=5,angle=120,altitude=50"}}}};
}

GalleryGroup emboss() {
    return {"emboss",
            "Emboss",
            "A relief on both sides of the edge, as if pressed from a sheet.",
            {{"emboss-soft",
              "Soft",
              kLight,
              kSans,
              "Emboss",
              {"--color", "#c9c2b4", "--background", "#c9c2b4", "--emboss", "size=8,depth=2,angle=135"}},
             {"emboss-hard",
              "Hard",
              kLight,
              kSans,
              "Emboss",
              {"--color", "#c9c2b4", "--background", "#c9c2b4", "--emboss",
               "technique=hard,size=8,depth=2,angle=135"}},
             {"emboss-double",
              "Lit from both sides",
              kLight,
              kSans,
              "Emboss",
              {"--color", "#c9c2b4", "--background", "#c9c2b4", "--emboss",
               "style=double,size=10,depth=2,angle=135"}},
             {"emboss-down",
              "Down",
              kLight,
              kSans,
              "Emboss",
              {"--color", "#c9c2b4", "--background", "#c9c2b4", "--emboss",
               "direction=down,size=8,depth=2,angle=135"}},
             {"emboss-large",
              "Wider than the strokes, in colour",
              kLight,
              kSerif,
              "Emboss",
              {"--color", "#d9a0a0", "--emboss",
               "size=16,depth=3,angle=120,highlight=#fff4e0@50%,shadow=#50101a@50%"}}}};
}

GalleryGroup picture() {
    return {"picture",
            "The picture as a whole",
            "Opacity, background, spacing and lines apply with any effects.",
            {{"picture-opacity",
              "At half opacity, effects and all",
              kLight,
              kSans,
              "Opacity",
              {"--color", "#ff8800", "--stroke", "6:#202020", "--opacity", "50%"}},
             {"picture-background",
              "Lines on a background",
              kLight,
              kSerif,
              "It's two lines\non a ground",
              {"--size", "56", "--color", "#ffffff", "--background", "#264653", "--align", "center",
               "--outer-shadow", "angle=120,distance=4,size=4,opacity=70%"}},
             {"picture-spacing",
              "Spaced letters",
              kDark,
              kMono,
              "SPACED",
              {"--size", "64", "--letter-spacing", "0.3", "--color", "#9ff0c0", "--outer-glow",
               "size=14,color=#20ff90,opacity=80%"}}}};
}

// One effect that shows every edge on scripts that join, stack and carry marks.
GalleryGroup scripts() {
    const std::vector<std::string> look = {"--color",        "#ffd166",
                                           "--outer-shadow", "angle=120,distance=12,size=8,opacity=55%",
                                           "--stroke",       "5:#1d3557"};
    const std::vector<std::string> relief = {"--color",        "#3a86a8",
                                             "--outer-shadow", "angle=120,distance=5,size=8,opacity=55%",
                                             "--bevel",        "size=6,depth=2,angle=120"};
    return {"scripts",
            "Scripts",
            "Effects see the text as one shape, whatever its script.",
            {{"script-greek", "Greek", kLight, kSerif, "Ξύλινα φῶτα", look},
             {"script-cyrillic", "Cyrillic", kLight, kSans, "Съешь ещё", relief},
             {"script-arabic", "Arabic", kLight, "NotoNaskhArabic-Bold.ttf", "خط جميل", look},
             {"script-hebrew", "Hebrew", kLight, "NotoSansHebrew-Bold.ttf", "שלום עולם", relief},
             {"script-devanagari", "Devanagari", kLight, "NotoSansDevanagari-Bold.ttf", "नमस्कार", look},
             {"script-thai", "Thai", kLight, "NotoSansThai-Bold.ttf", "ที่นี่สวย", relief},
             {"script-japanese", "Japanese", kLight, "NotoSansCJK-Bold.ttc", "美しい文字", look},
             {"script-korean", "Korean", kLight, "NotoSansCJK-Bold.ttc", "한글 글자", relief}}};
}

GalleryGroup styles() {
    return {
        "styles",
        "Styles",
        "Several effects each, from the JSON files of examples/styles, which are the program's presets.",
        {{"style-gold", "Gold", kLight, kSerif, "Gold", {"--preset", "gold"}},
         {"style-neon", "Neon", kDark, kSans, "Neon", {"--size", "80", "--preset", "neon"}},
         {"style-engraved", "Engraved", kLight, kSerif, "Engraved", {"--size", "80", "--preset", "engraved"}},
         {"style-sticker", "Sticker", kLight, kSans, "Sticker", {"--size", "80", "--preset", "sticker"}},
         {"style-ice", "Ice", kDark, kSans, "Ice", {"--preset", "ice"}},
         {"style-comic", "Comic", kLight, kSans, "Comic!", {"--size", "80", "--preset", "comic"}},
         {"style-chrome", "Chrome", kLight, kSans, "Chrome", {"--size", "80", "--preset", "chrome"}},
         {"style-candy", "Candy", kLight, kSans, "Candy", {"--size", "80", "--preset", "candy"}},
         {"style-retro", "Retro", kLight, kSans, "Sunset", {"--size", "80", "--preset", "retro"}},
         {"style-glass", "Glass", kLight, kSans, "Glass", {"--size", "80", "--preset", "glass"}},
         {"style-fire", "Fire", kDark, kSans, "Fire", {"--size", "80", "--preset", "fire"}},
         {"style-aurora", "Aurora", kDark, kSans, "Aurora", {"--size", "80", "--preset", "aurora"}},
         {"style-paper", "Paper", kLight, kSerif, "Paper", {"--size", "80", "--preset", "paper"}},
         {"style-slime", "Slime", kLight, kSans, "Slime", {"--size", "80", "--preset", "slime"}},
         {"style-gold-arabic",
          "Gold, in Arabic",
          kLight,
          "NotoNaskhArabic-Bold.ttf",
          "ذهب",
          {"--size", "160", "--style", "styles/gold.json"}},
         {"style-sticker-chinese",
          "Sticker, in Chinese",
          kLight,
          "NotoSansCJK-Bold.ttc",
          "贴纸",
          {"--size", "120", "--style", "styles/sticker.json"}},
         {"style-comic-teal",
          "Comic, its shadow replaced on the command line",
          kLight,
          kSans,
          "Comic!",
          {"--style", "styles/comic.json", "--outer-shadow",
           "angle=45,distance=22,size=0,color=#0a9396,opacity=100%"}}}};
}

Picture checks() {
    Picture picture{16, 16, {}};
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) picture.pixels.push_back((x < 8) == (y < 8) ? 0xFFD62839 : 0xFFF6BD60);
    }
    return picture;
}

// Diagonal, shaded across each stripe.
Picture stripes() {
    Picture picture{24, 24, {}};
    for (int y = 0; y < 24; ++y) {
        for (int x = 0; x < 24; ++x) {
            const int across = (x + y) % 24;
            const auto shade = static_cast<uint32_t>(across < 12 ? across : 23 - across) * 10;
            picture.pixels.push_back(across < 12 ? 0xFFE04050 + (shade << 8) : 0xFFFFF0F0 - shade);
        }
    }
    return picture;
}

// Round, on a clear ground; their edges fade over a pixel.
Picture dots() {
    Picture picture{20, 20, {}};
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 20; ++x) {
            const int squared =
                (2 * x - 19) * (2 * x - 19) + (2 * y - 19) * (2 * y - 19);  // of twice the distance
            const uint32_t alpha = squared < 100 ? 0xFF : squared < 144 ? 0x80 : 0;
            picture.pixels.push_back(alpha << 24 | 0xC2255C);
        }
    }
    return picture;
}

}  // namespace

const std::vector<GalleryGroup>& galleryGroups() {
    static const std::vector<GalleryGroup> groups = {styles(),    outerShadow(), innerShadow(), outerGlow(),
                                                     innerGlow(), gradients(),   stroke(),      pattern(),
                                                     bevel(),     emboss(),      picture(),     scripts()};
    return groups;
}

const std::vector<GalleryPattern>& galleryPatterns() {
    static const std::vector<GalleryPattern> patterns = {
        {"checks", checks}, {"stripes", stripes}, {"dots", dots}};
    return patterns;
}

}  // namespace zvtext
