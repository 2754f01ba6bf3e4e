// SPDX-License-Identifier: Apache-2.0
#include "scene/Metrics.h"

#include <algorithm>

#include "scene/Values.h"

namespace Zvex::scene {

namespace {

template <typename Sides>
std::string sides(const Sides& s) {
    return "{\"left\": " + formatNumber(s.left) + ", \"top\": " + formatNumber(s.top) +
           ", \"right\": " + formatNumber(s.right) + ", \"bottom\": " + formatNumber(s.bottom) + "}";
}

// Counts the characters of a text before a byte. Bytes must be asked for in rising order.
class CharacterCount {
public:
    explicit CharacterCount(const std::string& text) : mText(text) {}

    size_t before(size_t byte) {
        for (; mByte < std::min(byte, mText.size()); ++mByte) {
            const bool begins = (static_cast<unsigned char>(mText[mByte]) & 0xC0) != 0x80;
            mCharacters += begins;
        }
        return mCharacters;
    }

private:
    const std::string& mText;
    size_t mByte = 0, mCharacters = 0;
};

bool isBlank(const Box& box) {
    return box.left >= box.right || box.top >= box.bottom;
}

Box around(const Box& box, const Box& other) {
    if (isBlank(box) || isBlank(other)) return isBlank(box) ? other : box;
    return {std::min(box.left, other.left), std::min(box.top, other.top), std::max(box.right, other.right),
            std::max(box.bottom, other.bottom)};
}

std::vector<ClusterMetrics> clustersOf(std::vector<GlyphMetrics> glyphs, size_t end) {
    std::stable_sort(glyphs.begin(), glyphs.end(),
                     [](const GlyphMetrics& a, const GlyphMetrics& b) { return a.cluster < b.cluster; });
    std::vector<ClusterMetrics> clusters;
    for (const GlyphMetrics& glyph : glyphs) {
        const bool joins = !clusters.empty() && clusters.back().start == glyph.cluster;
        if (!joins && !clusters.empty()) clusters.back().end = glyph.cluster;
        ClusterMetrics& cluster = joins ? clusters.back() : clusters.emplace_back();
        cluster.box = joins ? around(cluster.box, glyph.box) : glyph.box;
        cluster.start = glyph.cluster;
        cluster.end = end;
    }
    return clusters;
}

}  // namespace

void addClusters(Metrics& metrics, const std::string& text) {
    CharacterCount characters(text);
    for (LineMetrics& line : metrics.lines) {
        line.startCharacter = characters.before(line.start);
        line.clusters = clustersOf(line.glyphs, line.end);
        for (ClusterMetrics& cluster : line.clusters) {
            cluster.startCharacter = characters.before(cluster.start);
            cluster.endCharacter = characters.before(cluster.end);
        }
        line.endCharacter = characters.before(line.end);
    }
}

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
    metrics.origin.x -= left;
    metrics.origin.y -= top;
    for (LineMetrics& line : metrics.lines) {
        line.baseline -= top;
        line.box = moved(line.box, -left, -top);
        for (GlyphMetrics& glyph : line.glyphs) glyph.box = moved(glyph.box, -left, -top);
        for (ClusterMetrics& cluster : line.clusters) cluster.box = moved(cluster.box, -left, -top);
    }
}

std::string writeMetrics(const Metrics& metrics) {
    std::string json = "{\n  \"width\": " + std::to_string(metrics.width) +
                       ",\n  \"height\": " + std::to_string(metrics.height) +
                       ",\n  \"size\": " + formatNumber(metrics.size) +
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
