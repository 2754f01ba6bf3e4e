// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_METRICS_H_
#define ZVEX_SCENE_METRICS_H_

#include <cstddef>
#include <string>
#include <vector>

namespace Zvex::scene {

// Where the parts of a picture lie. All lengths are pixels of the picture, y growing downwards; right and
// bottom are exclusive. Offsets into the text are bytes of its UTF-8, or characters (code points).

struct Margins {
    int left = 0, top = 0, right = 0, bottom = 0;
};

struct Box {
    float left = 0, top = 0, right = 0, bottom = 0;
};
Box moved(const Box& box, int x, int y);

struct Point {
    int x = 0, y = 0;
};

// A part of the text, counted both ways.
struct TextRange {
    size_t start = 0, end = 0;                    // bytes
    size_t startCharacter = 0, endCharacter = 0;  // code points
};

struct GlyphMetrics {
    size_t cluster = 0;  // byte at which the characters begin that the glyph stands for
    // Around the glyph's outline, effects left out; a fraction where a mark stands between pixels. A blank
    // glyph's box has no width and no height and is on the baseline where the pen was. It may reach beyond
    // what is drawn: lines are cut off at their advance and at the padding.
    Box box;
};

// Characters that are drawn as one: a letter and its marks, a ligature.
struct ClusterMetrics : TextRange {
    Box box;  // around its glyphs' boxes; without width and height where it is blank
};

// Its range ends before the blanks and the line ending that follow.
struct LineMetrics : TextRange {
    int baseline = 0;
    Box box;                               // as wide as the line's advance: what the background fills
    std::vector<GlyphMetrics> glyphs;      // from left to right
    std::vector<ClusterMetrics> clusters;  // in the order of the text
};

struct Metrics {
    int width = 0, height = 0;
    Margins margins;   // around the view; below 0 where a trimmed picture is smaller than the view
    int baseline = 0;  // of the first line
    Point origin;      // left end of the first line, on its baseline; outside a picture trimmed that far
    std::vector<LineMetrics> lines;  // those that show
};

// Fills in what follows from the lines' bytes and glyphs: offsets in characters, clusters. `text` is UTF-8.
void addClusters(Metrics& metrics, const std::string& text);

// Moves everything to where it lies in the part of `width` x `height` pixels whose top left corner is at
// (left, top) now.
void cropMetrics(Metrics& metrics, int left, int top, int width, int height);

// A JSON object with the names used here and a line ending:
//
//     {"width": 320, "height": 120, "margins": {"left": 8, ...}, "baseline": 96, "lines": [
//       {"start": 0, "end": 5, "baseline": 96, "box": {"left": 8, ...}, "glyphs": [
//         {"cluster": 0, "box": {"left": 11, ...}}]}]}
std::string writeMetrics(const Metrics& metrics);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_METRICS_H_
