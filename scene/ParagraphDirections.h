// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_PARAGRAPHDIRECTIONS_H_
#define ZVEX_SCENE_PARAGRAPHDIRECTIONS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "scene/Scene.h"

namespace Zvex::scene {

// Units of a text that read in one direction.
struct BidiLevelRun {
    int start = 0, end = 0;
    bool rightToLeft = false;
};

// The directions of a text's characters, by the Unicode bidirectional algorithm (UAX #9, through ICU). Each
// paragraph is analysed once, so lines cost only their own length.
class ParagraphDirections {
public:
    // Auto: a paragraph takes the direction of its first letter that has one, else it reads from left to
    // right. Throws std::bad_alloc.
    ParagraphDirections(const std::u16string& text, Scene::Direction direction);

    // The runs of [start, end), a part of one line, from left to right. With `more`, one unit behind them
    // counts too, in the direction of the paragraph.
    std::vector<BidiLevelRun> runsOf(int start, int end, bool more = false) const;

    // Whether the paragraph that holds the unit begins at the right.
    bool beginsRight(int unit) const;

private:
    struct Paragraph {
        int start;
        uint8_t level;
    };
    std::vector<Paragraph> mParagraphs;
    std::vector<uint8_t> mLevels;  // of each unit; empty if all read from left to right
};

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_PARAGRAPHDIRECTIONS_H_
