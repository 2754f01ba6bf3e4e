// SPDX-License-Identifier: Apache-2.0
#include "platform/host/LayoutBuilder.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "platform/host/BidiRuns.h"
#include "platform/host/WordCache.h"

namespace host {
namespace {

constexpr uint32_t kNoFace = UINT32_MAX;
// How many units before and after a word are passed as context. HarfBuzz looks at five characters.
constexpr size_t kContext = 16;
constexpr size_t kKeptUnits = 128;  // longer words are not kept
constexpr size_t kKeyBytes = 128;   // enough for the request and a word of usual length

// Blanks and directional controls; each is a word of its own.
bool isBlankOrControl(uint16_t unit) {
    return unit == ' ' || (unit >= 0x2000 && unit <= 0x200A) || unit == 0x3000 ||
           (unit >= 0x2066 && unit <= 0x2069) || (unit >= 0x202A && unit <= 0x202E) || unit == 0x200E ||
           unit == 0x200F;
}
bool isIdeograph(uint16_t unit) {
    return unit >= 0x3400 && unit <= 0x9FFF;
}
// Whether a word begins at `at` (not the first unit of the text). Kana stay together: fonts kern them.
bool breaksAt(const uint16_t* text, size_t at) {
    return isBlankOrControl(text[at - 1]) || isBlankOrControl(text[at]) || isIdeograph(text[at]);
}

// The first break after `at`, at most `limit`, and the last break before `at`, at least `limit`.
size_t nextBreak(const uint16_t* text, size_t at, size_t limit) {
    for (at++; at < limit && !breaksAt(text, at);) at++;
    return at;
}
size_t previousBreak(const uint16_t* text, size_t at, size_t limit) {
    for (at--; at > limit && !breaksAt(text, at);) at--;
    return at;
}

template <typename T>
void put(std::string* key, const T& value) {
    key->append(reinterpret_cast<const char*>(&value), sizeof value);
}

std::string keyOf(const LayoutRequest& request, const std::vector<hb_feature_t>& features) {
    const GlyphStyle& glyph = request.glyph;
    std::string key;
    key.reserve(kKeyBytes + features.size() * (sizeof features[0].tag + sizeof features[0].value));
    put(&key, request.collection->id());
    put(&key, request.style.weight());
    put(&key, request.localeListId);
    for (const float value : {glyph.size, glyph.scaleX, glyph.skewX, request.letterSpacing}) put(&key, value);
    const bool italic = request.style.slant() == minikin::FontStyle::Slant::ITALIC;
    for (const bool flag : {italic, glyph.fakeBold, glyph.antiAlias, glyph.subpixel, glyph.linear}) {
        put(&key, flag);
    }
    put(&key, glyph.rendering);
    put(&key, request.variant);
    put(&key, features.size());
    for (const hb_feature_t& feature : features) {
        put(&key, feature.tag);
        put(&key, feature.value);
    }
    return key;
}

minikin::MinikinRect moved(const minikin::MinikinRect& box, float x) {
    return {box.mLeft + x, box.mTop, box.mRight + x, box.mBottom};
}

}  // namespace

LayoutBuilder::LayoutBuilder(const LayoutRequest& request)
    : mRequest(request),
      mFallback(*request.collection, request.style, request.localeListId, request.variant),
      mFeatures(featuresOf(request)),
      mKey(keyOf(request, mFeatures)),
      mKeyStart(mKey.size()),
      mFaceOfFamily(request.collection->families().size(), kNoFace) {}

minikin::Layout LayoutBuilder::build(minikin::Bidi bidi, const uint16_t* text, size_t start, size_t end,
                                     size_t size) {
    mText = text;
    mSize = size;
    if (!mFaceOfFamily.empty()) {
        for (const BidiRun& run : visualRuns(text, start, end, size, bidi)) {
            if (run.rightToLeft) {
                layRightToLeft(run.start, run.end);
            } else {
                layLeftToRight(run.start, run.end);
            }
        }
    }
    return std::move(mLayout);
}

void LayoutBuilder::layLeftToRight(size_t start, size_t end) {
    const size_t limit = std::min(mSize, end + kContext);
    size_t wordStart = previousBreak(mText, start + 1, start - std::min(start, kContext));
    for (size_t at = start, wordEnd; at < end; at = wordStart = wordEnd) {
        wordEnd = nextBreak(mText, at, limit);
        layWord({at, std::min(end, wordEnd), wordStart, wordEnd}, false);
    }
}

void LayoutBuilder::layRightToLeft(size_t start, size_t end) {
    const size_t limit = start - std::min(start, kContext);
    size_t wordEnd = nextBreak(mText, end - 1, std::min(mSize, end + kContext));
    for (size_t at = end, wordStart; at > start; at = wordEnd = wordStart) {
        wordStart = previousBreak(mText, at, limit);
        layWord({std::max(start, wordStart), at, wordStart, wordEnd}, true);
    }
}

void LayoutBuilder::layWord(const WordRange& range, bool rightToLeft) {
    const uint16_t* text = mText + range.contextStart;
    const size_t size = range.contextEnd - range.contextStart, start = range.start - range.contextStart,
                 end = range.end - range.contextStart;
    if (size > kKeptUnits) {
        append(shaper().shape(text, start, end, size, rightToLeft), range.contextStart);
        return;
    }
    mKey.resize(mKeyStart);
    for (const uint16_t number : {static_cast<uint16_t>(start), static_cast<uint16_t>(end),
                                  static_cast<uint16_t>(rightToLeft ? 1 : 0)}) {
        put(&mKey, number);
    }
    mKey.append(reinterpret_cast<const char*>(text), size * sizeof *text);
    std::shared_ptr<const Word> word = findWord(mKey);
    if (!word) {
        word = std::make_shared<const Word>(shaper().shape(text, start, end, size, rightToLeft));
        keepWord(mKey, word);
    }
    append(*word, range.contextStart);
}

WordShaper& LayoutBuilder::shaper() {
    return mShaper ? *mShaper : mShaper.emplace(mRequest, mFeatures, mFallback);
}

// A word begins at a whole pixel, wherever the word before it ended.
void LayoutBuilder::append(const Word& word, size_t origin) {
    const float x = std::trunc(mLayout.mAdvance);
    if (mLayout.mGlyphs.empty()) mLayout.mGlyphs.reserve(word.glyphs.size());
    for (const Word::Glyph& glyph : word.glyphs) {
        mLayout.mGlyphs.push_back({faceIndexOf(glyph.family), glyph.id, x + glyph.x, glyph.y,
                                   static_cast<uint32_t>(origin) + glyph.cluster, moved(glyph.ink, x)});
    }
    join(&mLayout.mBounds, moved(word.bounds, x));
    mLayout.mAdvance += word.advance;
}

uint32_t LayoutBuilder::faceIndexOf(size_t family) {
    uint32_t& index = mFaceOfFamily[family];
    if (index == kNoFace) {
        index = static_cast<uint32_t>(mLayout.mFaces.size());
        const minikin::FakedFont& chosen = mFallback.fontOf(family);
        mLayout.mFaces.push_back({chosen.font->typeface(), chosen.fakery});
    }
    return index;
}

}  // namespace host
