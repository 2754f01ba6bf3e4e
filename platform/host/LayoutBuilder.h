// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_LAYOUTBUILDER_H_
#define ZVEX_PLATFORM_HOST_LAYOUTBUILDER_H_

#include <minikin/Layout.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/host/WordShaper.h"

namespace host {

// Makes one layout: runs of one direction, each word by word. Words are kept for later layouts.
class LayoutBuilder {
public:
    explicit LayoutBuilder(const LayoutRequest& request);

    // Call it once. start <= end <= size <= INT32_MAX.
    minikin::Layout build(minikin::Bidi bidi, const uint16_t* text, size_t start, size_t end, size_t size);

private:
    // A word of the line, [start, end), and the context for shaping its letters, [contextStart, contextEnd).
    struct WordRange {
        size_t start, end, contextStart, contextEnd;
    };

    void layLeftToRight(size_t start, size_t end);
    void layRightToLeft(size_t start, size_t end);
    void layWord(const WordRange& range, bool rightToLeft);
    WordShaper& shaper();
    void append(const Word& word, size_t origin);
    uint32_t faceIndexOf(size_t family);

    const LayoutRequest& mRequest;
    FontFallback mFallback;
    const std::vector<hb_feature_t> mFeatures;
    std::optional<WordShaper> mShaper;  // made for the first word that is not kept
    std::string mKey;  // of the current word; begins with the part that all words of the request share
    size_t mKeyStart = 0;
    std::vector<uint32_t> mFaceOfFamily;  // index into mLayout.mFaces, or none yet
    const uint16_t* mText = nullptr;
    size_t mSize = 0;
    minikin::Layout mLayout;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_LAYOUTBUILDER_H_
