// SPDX-License-Identifier: Apache-2.0
//
// Cairo and Pango in scripts/compare: answers requests in lines on standard input (README.md).
//
// Timed: a new image surface and layout, shaping, drawing. The surface is in memory, so nothing has to be
// read back. Cairo has no blur, so this uses the common substitute, three running box sums over 8-bit
// coverage. It has no lighting either, so there is no bevel.
//
// Cairo's fonts keep up to 256 glyphs after their last use. Dropping its static data needs all fonts to be
// gone, which Pango does not allow. So each render uses a font size of its own, 1/1024 pixel apart. First it
// draws one glyph that is not in the text, so that loading the font is not timed.
#include <pango/pangocairo.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr char kText[] = "Hamburgefonst";
constexpr char kFont[] = "DejaVu Sans Bold";

// --- Ownership

template <auto destroy>
struct Destroy {
    template <typename T>
    void operator()(T* object) const {
        destroy(object);
    }
};
using Surface = std::unique_ptr<cairo_surface_t, Destroy<cairo_surface_destroy>>;
using Context = std::unique_ptr<cairo_t, Destroy<cairo_destroy>>;
using Pattern = std::unique_ptr<cairo_pattern_t, Destroy<cairo_pattern_destroy>>;
using FontMap = std::unique_ptr<PangoFontMap, Destroy<g_object_unref>>;
using Layout = std::unique_ptr<PangoLayout, Destroy<g_object_unref>>;

// --- Blur

// Writes the mean of `window` (odd) bytes around each byte of a row to the target; outside is 0.
void boxRow(const uint8_t* source, uint8_t* target, int width, int window) {
    const uint32_t inverse = (1u << 24) / static_cast<uint32_t>(window);
    const int half = window / 2;
    uint32_t sum = 0;
    for (int x = 0; x < std::min(half, width); ++x) sum += source[x];
    for (int x = 0; x < width; ++x) {
        if (x + half < width) sum += source[x + half];
        target[x] = static_cast<uint8_t>((sum * inverse + (1u << 23)) >> 24);
        if (x - half >= 0) sum -= source[x - half];
    }
}

// The same down the columns, all side by side, row by row.
void boxColumns(const uint8_t* source, uint8_t* target, int width, int height, int stride, int window) {
    const uint32_t inverse = (1u << 24) / static_cast<uint32_t>(window);
    const int half = window / 2;
    std::vector<uint32_t> sums(static_cast<size_t>(width));
    uint32_t* __restrict sum = sums.data();
    const auto row = [=](int y) { return source + static_cast<ptrdiff_t>(y) * stride; };
    for (int y = 0; y < std::min(half, height); ++y) {
        for (int x = 0; x < width; ++x) sum[x] += row(y)[x];
    }
    for (int y = 0; y < height; ++y) {
        if (y + half < height) {
            const uint8_t* added = row(y + half);
            for (int x = 0; x < width; ++x) sum[x] += added[x];
        }
        uint8_t* __restrict out = target + static_cast<ptrdiff_t>(y) * stride;
        for (int x = 0; x < width; ++x) out[x] = static_cast<uint8_t>((sum[x] * inverse + (1u << 23)) >> 24);
        if (y - half >= 0) {
            const uint8_t* removed = row(y - half);
            for (int x = 0; x < width; ++x) sum[x] -= removed[x];
        }
    }
}

// Three boxes in sequence are close to a Gaussian of this deviation.
void blur(cairo_surface_t* coverage, double deviation) {
    cairo_surface_flush(coverage);
    const int width = cairo_image_surface_get_width(coverage),
              stride = cairo_image_surface_get_stride(coverage);
    const int height = cairo_image_surface_get_height(coverage);
    uint8_t* pixels = cairo_image_surface_get_data(coverage);
    const int window = static_cast<int>(deviation * 3 * std::sqrt(2 * G_PI) / 4 + 0.5) | 1;
    std::vector<uint8_t> other(static_cast<size_t>(stride) * static_cast<size_t>(height));
    std::vector<uint8_t> row(static_cast<size_t>(width));
    for (int y = 0; y < height; ++y) {
        uint8_t* line = pixels + static_cast<ptrdiff_t>(y) * stride;
        uint8_t* scratch = other.data() + static_cast<ptrdiff_t>(y) * stride;
        boxRow(line, scratch, width, window);
        boxRow(scratch, row.data(), width, window);
        boxRow(row.data(), scratch, width, window);
    }
    boxColumns(other.data(), pixels, width, height, stride, window);
    boxColumns(pixels, other.data(), width, height, stride, window);
    boxColumns(other.data(), pixels, width, height, stride, window);
    cairo_surface_mark_dirty(coverage);
}

// --- Scenes

void useColor(cairo_t* context, uint32_t rgb) {
    cairo_set_source_rgb(context, (rgb >> 16 & 255) / 255.0, (rgb >> 8 & 255) / 255.0, (rgb & 255) / 255.0);
}

struct Scene {
    cairo_t* context;
    PangoLayoutLine* line;
    int scale;

    void moveToPen(cairo_t* to, double dx = 0, double dy = 0) const {
        cairo_move_to(to, 10 * scale + dx, 192 * scale + dy);
    }

    void fill(uint32_t color) const {
        useColor(context, color);
        moveToPen(context);
        pango_cairo_show_layout_line(context, line);
    }

    void fillGradient() const {
        Pattern gradient(cairo_pattern_create_linear(21 * scale, 0, 1024 * scale, 0));
        cairo_pattern_add_color_stop_rgb(gradient.get(), 0, 1, 0, 0);
        cairo_pattern_add_color_stop_rgb(gradient.get(), 1, 0, 0, 1);
        cairo_set_source(context, gradient.get());
        moveToPen(context);
        pango_cairo_show_layout_line(context, line);
    }

    // Half of the line lies under the fill that follows.
    void strokeOutside() const {
        useColor(context, 0x202020);
        cairo_set_line_width(context, 16 * scale);
        cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
        moveToPen(context);
        pango_cairo_layout_line_path(context, line);
        cairo_stroke(context);
    }

    // Uses only the rows that the blurred text can reach.
    void shadow(uint32_t color, int offset, double deviation) const {
        PangoRectangle ink;
        pango_layout_line_get_pixel_extents(line, &ink, nullptr);
        const int reach = static_cast<int>(3 * deviation) + 1, width = 1024 * scale;
        const int top = 192 * scale + ink.y - reach, height = ink.height + 2 * reach;
        Surface coverage(cairo_image_surface_create(CAIRO_FORMAT_A8, width, height));
        Context drawing(cairo_create(coverage.get()));
        moveToPen(drawing.get(), 0, -top);
        pango_cairo_show_layout_line(drawing.get(), line);
        blur(coverage.get(), deviation);
        useColor(context, color);
        cairo_mask_surface(context, coverage.get(), offset, top + offset);
    }

    bool draw(const std::string& name) const {
        constexpr uint32_t kOrange = 0xFF8800, kBlack = 0, kGlow = 0x0060FF;
        if (name == "S3" || name == "S5") shadow(kBlack, 8 * scale, 10 * scale);
        if (name == "S6") shadow(kGlow, 0, 10 * scale);
        if (name == "S2" || name == "S5") strokeOutside();
        if (name == "S4" || name == "S5") {
            fillGradient();
        } else if (name == "S1" || name == "S2" || name == "S3" || name == "S6") {
            fill(kOrange);
        } else {
            return false;
        }
        return true;
    }
};

// size: in Pango's units, 1/1024 pixel.
Layout makeLayout(PangoFontMap* fonts, cairo_t* context, int size, const char* text) {
    std::unique_ptr<PangoContext, Destroy<g_object_unref>> settings(pango_font_map_create_context(fonts));
    std::unique_ptr<cairo_font_options_t, Destroy<cairo_font_options_destroy>> options(
        cairo_font_options_create());
    cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    pango_cairo_context_set_font_options(settings.get(), options.get());
    pango_cairo_update_context(context, settings.get());
    Layout layout(pango_layout_new(settings.get()));
    std::unique_ptr<PangoFontDescription, Destroy<pango_font_description_free>> font(
        pango_font_description_from_string(kFont));
    pango_font_description_set_absolute_size(font.get(), size);
    pango_layout_set_font_description(layout.get(), font.get());
    pango_layout_set_text(layout.get(), text, -1);
    return layout;
}

Surface drawScene(PangoFontMap* fonts, const std::string& scene, int scale, int size) {
    Surface canvas(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1024 * scale, 256 * scale));
    Context context(cairo_create(canvas.get()));
    Layout layout = makeLayout(fonts, context.get(), size, kText);
    const Scene drawing{context.get(), pango_layout_get_line_readonly(layout.get(), 0), scale};
    if (!drawing.draw(scene)) return nullptr;
    cairo_surface_flush(canvas.get());
    return canvas;
}

// --- Requests

void loadFont(PangoFontMap* fonts, int size) {
    Surface canvas(cairo_image_surface_create(CAIRO_FORMAT_A8, 16, 16));
    Context context(cairo_create(canvas.get()));
    Layout layout = makeLayout(fonts, context.get(), size, ".");
    cairo_move_to(context.get(), 0, 16);
    pango_cairo_show_layout_line(context.get(), pango_layout_get_line_readonly(layout.get(), 0));
}

// The picture as rows of red, green, blue, alpha bytes, straight.
bool writePixels(cairo_surface_t* canvas, const std::string& path) {
    const int width = cairo_image_surface_get_width(canvas), height = cairo_image_surface_get_height(canvas);
    const auto* pixels = reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(canvas));
    std::vector<uint8_t> bytes;
    for (int i = 0; i < width * height; ++i) {
        const uint32_t alpha = pixels[i] >> 24;
        for (const int shift : {16, 8, 0}) {
            const uint32_t channel = pixels[i] >> shift & 255;
            bytes.push_back(alpha == 0 ? uint8_t{0}
                                       : static_cast<uint8_t>((channel * 255 + alpha / 2) / alpha));
        }
        bytes.push_back(static_cast<uint8_t>(alpha));
    }
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) return false;
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && written;
}

// render: a number that grows with each render.
std::string answer(PangoFontMap* fonts, int render, const std::string& scene, const std::string& size,
                   const std::string& file) {
    const int scale = size == "large" ? 4 : 1;
    const int fontSize = 120 * scale * PANGO_SCALE + render % 512 - 256;
    loadFont(fonts, fontSize);
    const auto begin = Clock::now();
    const Surface canvas = drawScene(fonts, scene, scale, fontSize);
    const std::chrono::duration<double, std::milli> elapsed = Clock::now() - begin;
    if (canvas == nullptr) return "none";
    if (file.empty()) return std::to_string(elapsed.count());
    return writePixels(canvas.get(), file) ? "written" : "none";
}

}  // namespace

int main() {
    const FontMap fonts(pango_cairo_font_map_new());
    int render = 0;
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string scene, size, file;
        words >> scene >> size >> file;
        std::cout << answer(fonts.get(), ++render, scene, size, file) << std::endl;
    }
    return 0;
}
