// SPDX-License-Identifier: Apache-2.0
// Renders a line of text with a gradient, an outline and a shadow, and writes it as a PAM picture (the
// simplest format with alpha).
//     title FONT.ttf "Text" out.pam
#include <hwui/Paint.h>

#include <cstdint>
#include <cstdio>

#include "text/ZvTextObject.h"

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: title FONT TEXT OUTPUT.pam\n");
        return 2;
    }
    const int viewWidth = 640, viewHeight = 160;

    Zvex::ZvTextObject object;
    Zvex::ZvString text;
    if (!object.Construct() || text.Construct(argv[2]) == 0 || !object.SetText(&text)) {
        std::fprintf(stderr, "title: this text cannot be set\n");
        return 1;
    }
    if (!object.SetFont(argv[1])) {
        std::fprintf(stderr, "title: %s is not a font\n", argv[1]);
        return 1;
    }
    android::Paint paint;
    paint.setFlags(1);  // anti-aliased
    paint.setTextSize(96);
    object.SetPaint(paint);
    Zvex::ZvEffect* effect = object.GetEffect();
    Zvex::ZvGradient stops[] = {{0xFFFF4010, 1, 0}, {0xFFFFC830, 1, 1}};
    effect->addLinearGradientText(90, 1, 1, 2, stops);
    effect->addStrokeText(6, 0xFF202020, 1, 0, Zvex::ZV_STROKE_OUTSIDE);
    effect->addOuterShadowText(135, 10, 8, 0xFF000000, 0.5f);  // light from the upper left

    // One line with its left end at x = 20 and its baseline at y = 110 holds the whole text.
    auto* line = new Zvex::ZvLineInfo;  // the text object frees it
    line->x = 20;
    line->y = 110;
    int units = 0;
    delete[] text.GetUTF16(units);
    line->end = units;
    Zvex::List lines;
    lines.Construct();
    lines.Add(line);
    object.SetLineInfo(&lines);

    const int width = effect->getLeftOffset() + viewWidth + effect->getRightOffset();
    const int height = effect->getTopOffset() + viewHeight + effect->getBottomOffset();
    object.GetView()->SetSize(viewWidth, viewHeight);
    object.GetView()->SetBitmapWidth(width);
    object.GetView()->SetBitmapHeight(height);
    const uint32_t* pixels = object.RenderTextEffect(width, height);  // 0xAARRGGBB, straight alpha
    if (pixels == nullptr) {
        std::fprintf(stderr, "title: the text could not be drawn\n");
        return 1;
    }

    std::FILE* file = std::fopen(argv[3], "wb");
    if (file == nullptr) {
        std::perror(argv[3]);
        return 1;
    }
    std::fprintf(file, "P7\nWIDTH %d\nHEIGHT %d\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n", width,
                 height);
    for (int i = 0; i < width * height; ++i) {
        const uint32_t p = pixels[i];
        std::fputc(static_cast<int>(p >> 16 & 0xFF), file);
        std::fputc(static_cast<int>(p >> 8 & 0xFF), file);
        std::fputc(static_cast<int>(p & 0xFF), file);
        std::fputc(static_cast<int>(p >> 24), file);
    }
    const bool failed = std::ferror(file) != 0;
    if (std::fclose(file) == 0 && !failed) return 0;
    std::perror(argv[3]);
    return 1;
}
