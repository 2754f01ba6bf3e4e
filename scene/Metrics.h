// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_METRICS_H_
#define ZVEX_SCENE_METRICS_H_

#include <cstddef>
#include <string>
#include <vector>

namespace Zvex::scene {

// The positions of the parts of a picture. Lengths are pixels of the picture, y growing downwards; right and
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
    size_t cluster = 0;  // first byte of the characters that the glyph stands for
    // The box of the glyph's outline, without effects; fractional if a mark is positioned between pixels. A
    // blank glyph's box has no width and height and lies on the baseline, at the pen.
    Box box;
};

// Characters that are drawn as one unit: a letter and its marks, a ligature.
struct ClusterMetrics : TextRange {
    Box box;  // around its glyphs' boxes; empty if it is blank
};

// Its range ends before the blanks and the line ending that follow.
struct LineMetrics : TextRange {
    int baseline = 0;
    Box box;                               // as wide as the line's advance; filled by the background
    std::vector<GlyphMetrics> glyphs;      // from left to right
    std::vector<ClusterMetrics> clusters;  // in the order of the text
};

struct Metrics {
    int width = 0, height = 0;
    double size = 0;  // of the text, pixels per em; smaller than the style's where it was made to fit
    // Around the view: what the effects take, and ink that leans out of the view, such as the end of an
    // italic f. Below 0 if a trimmed picture is smaller than the view.
    Margins margins;
    int baseline = 0;  // of the first line
    Point origin;  // left end of the first line, on its baseline: the first letter's pen; outside the picture
                   // if that much is trimmed
    std::vector<LineMetrics> lines;  // the visible lines
};

// Computes the character offsets and the clusters from the lines' bytes and glyphs. `text` is UTF-8.
void addClusters(Metrics& metrics, const std::string& text);

// Moves everything to its position in the part of `width` x `height` pixels whose top left corner is now at
// (left, top).
void cropMetrics(Metrics& metrics, int left, int top, int width, int height);

// A JSON object with the names used here and a line ending:
//
//     {"width": 320, "height": 120, "margins": {"left": 8, ...}, "baseline": 96, "lines": [
//       {"start": 0, "end": 5, "baseline": 96, "box": {"left": 8, ...}, "glyphs": [
//         {"cluster": 0, "box": {"left": 11, ...}}]}]}
std::string writeMetrics(const Metrics& metrics);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_METRICS_H_
