// SPDX-License-Identifier: Apache-2.0
#include "scene/SceneLayout.h"

#include <hwui/MinikinSkia.h>
#include <hwui/Typeface.h>
#include <minikin/LocaleList.h>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <utility>

#include "foundation/ZvString.h"
#include "platform/host/Clusters.h"
#include "platform/host/LineBreaker.h"
#include "scene/Failure.h"
#include "scene/SceneFonts.h"

namespace Zvex::scene {

namespace {

using Zvex::ZvString;
using Zvex::ZvTextObject;

constexpr int kAntiAlias = 1;                // SkPaint's flag bits
constexpr float kMaxLineAdvance = 65535;     // a line's image stores its width in 16 bits
constexpr int kMaxTextHeight = 100'000'000;  // of all lines, shown or not; keeps sums within an int

android::Paint sized(android::Paint paint, double size) {
    paint.setTextSize(static_cast<float>(size));
    return paint;
}

void checkSize(const ShapedLine& line) {
    const InkBox box(line.ink);
    if (!(line.advance <= kMaxLineAdvance)) {
        throw UsageError(
            "--size: a line of the text is wider than 65535 pixels; lower --size or set --width");
    }
    if (int64_t{box.width} * box.height > INT32_MAX)
        throw UsageError("--size: a line of the text has more than 2^31 pixels; lower --size or set --width");
}

// The line's glyphs that may have colours.
ColorRun colorRunOf(const ShapedLine& line, const android::Paint& paint) {
    ColorRun run;
    const InkBox box(line.ink);
    run.left = box.left;
    run.width = box.width;
    run.height = box.height;
    run.baseline = -box.top;
    android::Paint font(paint);
    forEachFont(line, font, [&](size_t begin, size_t end) {
        addGlyphs(run, font, end - begin, [&](size_t i) {
            const ShapedLine::Glyph& glyph = line.glyphs[begin + i];
            return ColorRun::Candidate{glyph.id, glyph.x - static_cast<float>(box.left),
                                       glyph.y - static_cast<float>(box.top), glyph.ink};
        });
    });
    return run;
}

std::vector<LineGlyph> glyphsOf(const ShapedLine& line) {
    std::vector<LineGlyph> glyphs;
    glyphs.reserve(line.glyphs.size());
    for (const ShapedLine::Glyph& glyph : line.glyphs) {
        glyphs.push_back({glyph.cluster,
                          glyph.font->GetSkTypeface()->face().get(),
                          {glyph.ink.mLeft, glyph.ink.mTop, glyph.ink.mRight, glyph.ink.mBottom}});
    }
    return glyphs;
}

// The text object's own UTF-16 form of a wide text is right up to U+1FFFF alone; it keeps surrogates as they
// are.
std::wstring wideOf(const std::u16string& units) {
    std::wstring wide;
    for (size_t i = 0; i < units.size();) {
        UChar32 c;
        U16_NEXT(units.data(), i, units.size(), c);
        if (c > 0x1FFFF) wide += static_cast<wchar_t>(U16_LEAD(c));
        wide += static_cast<wchar_t>(c > 0x1FFFF ? U16_TRAIL(c) : c);
    }
    return wide;
}

// The height for lines; 0: any.
int roomHeightOf(const Scene& scene) {
    if (scene.height == 0) return 0;
    return std::max(scene.height - scene.padding.top - scene.padding.bottom, 1);
}

int trimmedEnd(const std::u16string& units, int start, int end) {
    while (end > start && u_isUWhiteSpace(units[static_cast<size_t>(end - 1)])) --end;
    return end;
}

// A text at one size.
class SizedText {
public:
    SizedText(const Scene& scene, const SceneFonts& fonts, const SceneText& text, const android::Paint& paint,
              double size)
        : mScene(scene),
          mText(text),
          mFont(fonts.first().facts),
          mSize(size),
          mShaper(text, sized(paint, size), Spacing(scene, size), fonts.typeface),
          mWidth(static_cast<float>(wrapWidthOf(scene))) {}

    const LineShaper& shaper() const { return mShaper; }

    std::vector<host::LineRange> breakLines() const {
        const auto measure = [&](int start, int end) { return mShaper.shape({start, end}).advance; };
        return host::breakLines(reinterpret_cast<const uint16_t*>(mText.units.data()),
                                static_cast<int>(mText.units.size()), mWidth, measure, mText.locale.c_str());
    }

    LaidOutText layOut() const {
        LaidOutText laidOut;
        laidOut.size = mSize;
        const std::vector<host::LineRange> ranges = breakLines();
        for (const host::LineRange& range : ranges) {
            const bool wraps = range.end < static_cast<int>(mText.units.size()) && !endsParagraph(range);
            const bool fills = wraps && mScene.align == Scene::Align::Justify;
            add({range.start, range.visibleEnd, fills ? mWidth : 0}, laidOut);
        }
        if (mScene.ellipsis) shorten(ranges, laidOut);
        return laidOut;
    }

    // Whether all of the text is in the box, its words whole.
    bool fits() const {
        const std::vector<host::LineRange> ranges = breakLines();
        if (mScene.maxLines > 0 && ranges.size() > static_cast<size_t>(mScene.maxLines)) return false;
        LaidOutText laidOut;
        for (const host::LineRange& range : ranges) {
            try {
                add({range.start, range.visibleEnd}, laidOut);
            } catch (const UsageError&) {
                return false;  // too large for any picture
            }
            if (mWidth > 0 && laidOut.lines.back().width > mWidth) return false;
            if (roomHeightOf(mScene) > 0 && laidOut.lines.back().bottom > roomHeightOf(mScene)) return false;
        }
        return !(mWidth > 0) || wordsAreWhole(ranges);  // last: it takes long where there are many lines
    }

private:
    bool endsParagraph(const host::LineRange& range) const {
        const char16_t unit =
            range.end > range.start ? mText.units[static_cast<size_t>(range.end - 1)] : u'x';
        return unit == u'\n' || unit == u'\r' || unit == 0x2028 || unit == 0x2029;
    }

    bool wordsAreWhole(const std::vector<host::LineRange>& ranges) const {
        UErrorCode status = U_ZERO_ERROR;
        const std::unique_ptr<UBreakIterator, void (*)(UBreakIterator*)> breaks(
            ubrk_open(UBRK_LINE, mText.locale.c_str(), mText.units.data(),
                      static_cast<int32_t>(mText.units.size()), &status),
            ubrk_close);
        if (U_FAILURE(status)) throw std::bad_alloc();
        return std::all_of(ranges.begin(), ranges.end(),
                           [&](const auto& range) { return ubrk_isBoundary(breaks.get(), range.end) != 0; });
    }

    void add(const LineForm& form, LaidOutText& laidOut) const {
        const ShapedLine shaped = mShaper.shape(form);
        const minikin::MinikinRect& ink = shaped.ink;
        checkSize(shaped);
        laidOut.forms.push_back(form);
        laidOut.forms.back().beginsRight = mText.directions.beginsRight(form.start);
        laidOut.glyphs.push_back(glyphsOf(shaped));
        laidOut.colors.push_back(colorRunOf(shaped, mShaper.paint()));
        laidOut.inks.push_back({ink.mLeft, ink.mTop, ink.mRight, ink.mBottom});
        Zvex::LaidOutLine line;
        place(laidOut.lines.size(), laidOut.lines.empty() ? 0 : laidOut.lines.back().bottom, ink, line);
        line.ascent = line.top - line.baseline;
        line.descent = line.bottom - line.baseline;
        line.width = shaped.advance;
        line.start = form.start;
        line.visibleEnd = form.end;
        laidOut.lines.push_back(line);
        if (line.bottom > kMaxTextHeight) {
            throw UsageError("--size: the lines of the text are higher than " +
                             std::to_string(kMaxTextHeight) + " pixels in all");
        }
    }

    // A line's vertical values. The style's line height has half of what it adds above the letters.
    void place(size_t index, int top, const minikin::MinikinRect& ink, Zvex::LaidOutLine& line) const {
        const double ascent = mFont.ascent * mSize, descent = mFont.descent * mSize;
        const double height = mScene.style.lineHeight * mSize;
        if (height > 0) {
            const auto y = [](double value) { return static_cast<int>(std::round(std::min(value, 2e9))); };
            const double begin = static_cast<double>(index) * height;
            line.top = y(begin);
            line.baseline = y(begin + (height - ascent - descent) / 2 + ascent);
            line.bottom = y(begin + height);
            return;
        }
        const auto size = static_cast<float>(mSize);
        line.top = top;
        line.baseline = top + static_cast<int>(std::ceil(std::max(mFont.ascent * size, -ink.mTop)));
        line.bottom =
            line.baseline + static_cast<int>(std::ceil(std::max(mFont.descent * size, ink.mBottom)));
    }

    // Leaves out the lines that the scene has no room for, and ends the last one with an ellipsis.
    void shorten(const std::vector<host::LineRange>& ranges, LaidOutText& laidOut) const {
        size_t shown = laidOut.lines.size();
        if (mScene.maxLines > 0) shown = std::min(shown, static_cast<size_t>(mScene.maxLines));
        const int room = roomHeightOf(mScene);
        while (room > 0 && shown > 1 && laidOut.lines[shown - 1].bottom > room) --shown;
        if (shown == laidOut.lines.size()) return;
        laidOut.lines.resize(shown - 1);
        laidOut.forms.resize(shown - 1);
        laidOut.glyphs.resize(shown - 1);
        laidOut.colors.resize(shown - 1);
        laidOut.inks.resize(shown - 1);
        add(shortened(ranges[shown - 1]), laidOut);
    }

    // As much of the line's paragraph as fits before an ellipsis.
    LineForm shortened(const host::LineRange& range) const {
        LineForm form = {range.start, range.visibleEnd, 0, true};
        if (!(mWidth > 0)) return form;
        const auto limit = static_cast<size_t>(range.end) + kContinued;
        size_t end = mText.units.find_first_of(u"\n\r\u2028\u2029", static_cast<size_t>(range.visibleEnd));
        end = std::min({end, limit, mText.units.size()});
        std::vector<int> ends = {range.start};
        for (auto at = static_cast<size_t>(range.start); at < end;) {
            at = host::clusterEnd(reinterpret_cast<const uint16_t*>(mText.units.data()), at, end);
            ends.push_back(static_cast<int>(at));
        }
        const auto tooLong = [&](int, int at) {
            form.end = trimmedEnd(mText.units, range.start, at);
            return mShaper.shape(form).advance > mWidth;
        };
        // The first that is too long; the one before it fits, or nothing but the ellipsis does.
        const auto after = std::upper_bound(ends.begin() + 1, ends.end(), 0, tooLong);
        form.end = trimmedEnd(mText.units, range.start, *(after - 1));
        return form;
    }

    // Units behind a line's end of which some may have room in the place of a word that wrapped.
    static constexpr size_t kContinued = 256;

    const Scene& mScene;
    const SceneText& mText;
    const FontFacts& mFont;
    const double mSize;
    const LineShaper mShaper;
    const float mWidth;
};

// Shrinks the text, in whole pixels below the scene's size, until it fits.
LaidOutText fittedLines(const Scene& scene, const SceneFonts& fonts, const SceneText& text,
                        const android::Paint& paint) {
    const auto fitsAt = [&](double size) { return SizedText(scene, fonts, text, paint, size).fits(); };
    double size = scene.style.size;
    bool fits = true;
    if (scene.fit > 0 && !fitsAt(size)) {
        double tooLarge = std::exchange(size, scene.fit);
        fits = fitsAt(size);
        while (fits && std::ceil(tooLarge) - std::floor(size) > 1) {
            const double middle = std::floor((std::floor(size) + std::ceil(tooLarge)) / 2);
            (fitsAt(middle) ? size : tooLarge) = middle;
        }
    }
    LaidOutText laidOut = SizedText(scene, fonts, text, paint, size).layOut();
    laidOut.fits = fits;
    return laidOut;
}

}  // namespace

android::Paint paintOf(const Scene& scene) {
    android::Paint paint;
    paint.setFlags(kAntiAlias);
    paint.setLetterSpacing(static_cast<float>(scene.style.letterSpacing));
    paint.setFontFeatureSettings(scene.style.features);
    paint.setMinikinLocaleListId(minikin::registerLocaleList(scene.language));
    return paint;
}

int wrapWidthOf(const Scene& scene) {
    if (scene.width == 0) return 0;
    const int width = scene.width - scene.padding.left - scene.padding.right;
    if (width < 1) throw UsageError("--width: the padding leaves no room for text");
    return width;
}

SceneLayout::SceneLayout(const Scene& scene, const SceneFonts& fonts, const SceneText& text,
                         const android::Paint& paint)
    : mText(text),
      mLines(fittedLines(scene, fonts, text, paint)),
      mShaper(text, sized(paint, mLines.size), Spacing(scene, mLines.size), fonts.typeface) {}

void SceneLayout::setUp(ZvTextObject& object, const SceneFonts& fonts) const {
    ZvString string;
    if (!object.SetTypeface(fonts.typeface) || string.Construct(wideOf(mText.units).c_str()) == 0 ||
        !object.SetText(&string)) {
        throw Failure("TEXT: the text could not be taken over");
    }
    android::Paint paint = mShaper.paint();
    object.SetPaint(paint);
    object.GetFont()->SetLinePainter({std::shared_ptr<void>(), this});
}

Zvex::DrawnLines::Image SceneLayout::paint(const Zvex::DrawnLines::Range& range, float* advance) const {
    const auto after = std::upper_bound(mLines.forms.begin(), mLines.forms.end(), range.start,
                                        [](int start, const LineForm& form) { return start < form.start; });
    return after == mLines.forms.begin() ? nullptr : mShaper.draw(*(after - 1), advance);
}

}  // namespace Zvex::scene
