// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/preview/Sheet.h"

#include <algorithm>

#include "scene/Failure.h"
#include "scene/Scene.h"

namespace zvtext {

namespace {

constexpr int kMargin = 16, kGap = 16, kAround = 12;  // of the sheet, between styles, around a picture
constexpr int kSheetWidth = 1600;                     // styles begin a new row behind it
constexpr uint32_t kPaper = 0xFFFAFAF8, kInk = 0xFF444444;

int64_t wide(int length) {
    return length;
}

Picture labelPicture(const std::string& text) {
    Scene scene;
    scene.text = text.empty() ? " " : text;
    scene.font = "DejaVu Sans,sans-serif";
    scene.style.size = 14;
    scene.style.color = kInk;
    scene.padding = {0, 2, 0, 4};
    return render(scene).picture;
}

// The colour over an opaque one, each part to the nearest.
uint32_t over(uint32_t color, uint32_t ground) {
    const uint32_t alpha = color >> 24;
    uint32_t result = 0xFF000000;
    for (int shift = 0; shift < 24; shift += 8) {
        const uint32_t parts = (color >> shift & 0xFF) * alpha + (ground >> shift & 0xFF) * (255 - alpha);
        result |= (parts + 127) / 255 << shift;
    }
    return result;
}

class Canvas {
public:
    Canvas(int64_t width, int64_t height)
        : mPicture{static_cast<int>(width), static_cast<int>(height),
                   std::vector<uint32_t>(static_cast<size_t>(width * height), kPaper)} {}

    void fill(int left, int top, int width, int height, const Ground& ground) {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                at(left + x, top + y) = (x / kSquare + y / kSquare) % 2 == 0 ? ground.even : ground.odd;
        }
    }

    void draw(int left, int top, const Picture& picture) {
        const uint32_t* pixel = picture.pixels.data();
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x, ++pixel)
                at(left + x, top + y) = over(*pixel, at(left + x, top + y));
        }
    }

    Picture take() { return std::move(mPicture); }

private:
    uint32_t& at(int x, int y) {
        return mPicture
            .pixels[static_cast<size_t>(y) * static_cast<size_t>(mPicture.width) + static_cast<size_t>(x)];
    }
    Picture mPicture;
};

// The pictures of a style, and where it stands on the sheet. Sizes are summed in 64 bits: there may be
// thousands of styles.
struct Block {
    const ShownStyle& style;
    std::vector<Picture> labels;
    int panel = 0;  // width of a ground
    int64_t left = 0, top = 0, width = 0, height = 0;

    Block(const ShownStyle& shown, size_t grounds) : style(shown) {
        for (const Shown& each : style.pictures) {
            labels.push_back(labelPicture(each.label));
            panel = std::max(panel, each.picture.width + 2 * kAround);
            width = std::max(width, wide(labels.back().width));
            height += wide(each.picture.height) + 2 * kAround + labels.back().height;
        }
        width = std::max(width, wide(panel) * static_cast<int64_t>(grounds));
    }

    void drawOn(Canvas& canvas, const std::vector<Ground>& grounds) const {
        int y = static_cast<int>(top);
        for (size_t i = 0; i < labels.size(); ++i) {
            const Picture& picture = style.pictures[i].picture;
            int x = static_cast<int>(left);
            for (const Ground& ground : grounds) {
                canvas.fill(x, y, panel, picture.height + 2 * kAround, ground);
                canvas.draw(x + (panel - picture.width) / 2, y + kAround, picture);
                x += panel;
            }
            y += picture.height + 2 * kAround;
            canvas.draw(static_cast<int>(left), y, labels[i]);
            y += labels[i].height;
        }
    }
};

}  // namespace

Picture contactSheet(const std::vector<ShownStyle>& styles, const std::vector<Ground>& grounds) {
    std::vector<Block> blocks;
    int64_t x = kMargin, y = kMargin, rowHeight = 0, width = 0;
    for (const ShownStyle& style : styles) {
        Block& block = blocks.emplace_back(style, grounds.size());
        if (x > kMargin && x + block.width + kMargin > kSheetWidth) {
            y += rowHeight + kGap;
            x = kMargin;
            rowHeight = 0;
        }
        block.left = x;
        block.top = y;
        x += block.width + kGap;
        rowHeight = std::max(rowHeight, block.height);
        width = std::max(width, block.left + block.width + kMargin);
    }
    const int64_t height = y + rowHeight + kMargin;
    if (std::max(width, height) > kMaxSide || width * height > kMaxPixels) {
        throw UsageError("--output: the sheet would have " + std::to_string(width) + " x " +
                         std::to_string(height) +
                         " pixels, which is too large; an HTML page takes any number");
    }
    Canvas canvas(width, height);
    for (const Block& block : blocks) block.drawOn(canvas, grounds);
    return canvas.take();
}

}  // namespace zvtext
