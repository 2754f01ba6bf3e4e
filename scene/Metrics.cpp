// SPDX-License-Identifier: Apache-2.0
#include "scene/Metrics.h"

#include "scene/Values.h"

namespace Zvex::scene {

namespace {

template <typename Sides>
std::string sides(const Sides& s) {
    return "{\"left\": " + formatNumber(s.left) + ", \"top\": " + formatNumber(s.top) +
           ", \"right\": " + formatNumber(s.right) + ", \"bottom\": " + formatNumber(s.bottom) + "}";
}

}  // namespace

Box moved(const Box& box, int x, int y) {
    const auto dx = static_cast<float>(x), dy = static_cast<float>(y);
    return {box.left + dx, box.top + dy, box.right + dx, box.bottom + dy};
}

void cropMetrics(Metrics& metrics, int left, int top, int width, int height) {
    metrics.margins.left -= left;
    metrics.margins.top -= top;
    metrics.margins.right -= metrics.width - left - width;
    metrics.margins.bottom -= metrics.height - top - height;
    metrics.width = width;
    metrics.height = height;
    metrics.baseline -= top;
    for (LineMetrics& line : metrics.lines) {
        line.baseline -= top;
        line.box = moved(line.box, -left, -top);
        for (GlyphMetrics& glyph : line.glyphs) glyph.box = moved(glyph.box, -left, -top);
    }
}

std::string writeMetrics(const Metrics& metrics) {
    std::string json = "{\n  \"width\": " + std::to_string(metrics.width) +
                       ",\n  \"height\": " + std::to_string(metrics.height) +
                       ",\n  \"margins\": " + sides(metrics.margins) +
                       ",\n  \"baseline\": " + std::to_string(metrics.baseline) + ",\n  \"lines\": [";
    const char* lineSeparator = "";
    for (const LineMetrics& line : metrics.lines) {
        json += lineSeparator;
        json += "\n    {\"start\": " + std::to_string(line.start) + ", \"end\": " + std::to_string(line.end) +
                ", \"baseline\": " + std::to_string(line.baseline) + ", \"box\": " + sides(line.box) +
                ", \"glyphs\": [";
        lineSeparator = ",";
        const char* glyphSeparator = "";
        for (const GlyphMetrics& glyph : line.glyphs) {
            json += glyphSeparator;
            json += "\n      {\"cluster\": " + std::to_string(glyph.cluster) +
                    ", \"box\": " + sides(glyph.box) + "}";
            glyphSeparator = ",";
        }
        json += "]}";
    }
    return json + "]\n}\n";
}

}  // namespace Zvex::scene
