// SPDX-License-Identifier: Apache-2.0
package android.text;

import android.host.TextEngine;
import java.text.Bidi;
import java.util.Objects;

/**
 * A layout of a text that does not change, measured by the engine that draws it: a line's height comes from its font, or
 * from its ink if fallback fonts reach further, so that no line cuts off another's marks. Lines end where the Unicode rules
 * allow, at every line ending, and between clusters of a word that is wider than the column. No hyphenation, justification
 * or ellipsis. The paint is read when the layout is built.
 */
public class StaticLayout extends Layout {
    private final TextEngine.Lines lines;
    private final int count;
    private final int[] tops;
    private final int[] descents;
    private final boolean[] rightToLeft;
    private final int topPadding;
    private final int bottomPadding;

    private StaticLayout(Builder b) {
        super(b.text, b.paint, b.width, b.alignment, b.spacingMultiplier, b.spacingAdd);
        String text = b.text.toString();
        lines = TextEngine.breakLines(text, b.start, b.end, b.paint, b.width);
        count = Math.min(lines.count(), b.maxLines);
        rightToLeft = paragraphDirections(text);
        tops = new int[count + 1];
        descents = new int[count];
        int paddingAbove = 0;
        int paddingBelow = 0;
        for (int i = 0; i < count; i++) {
            int ascent = lines.ascent(i);
            int descent = lines.descent(i);
            if (b.includePad && i == 0) {
                paddingAbove = Math.max(lines.fontTop() - ascent, 0);
                ascent += paddingAbove;
            }
            if (b.includePad && i == count - 1) {
                paddingBelow = Math.max(lines.fontBottom() - descent, 0);
                descent += paddingBelow;
            }
            int extra = i < count - 1 ? extraSpacing(ascent + descent) : 0;
            descents[i] = descent + extra;
            tops[i + 1] = tops[i] + ascent + descent + extra;
        }
        topPadding = -paddingAbove;
        bottomPadding = paddingBelow;
    }

    private int extraSpacing(int height) {
        return (int) Math.rint(height * ((double) getSpacingMultiplier() - 1) + getSpacingAdd());
    }

    // A paragraph goes from one line ending to the next, over the lines it was wrapped into.
    private boolean[] paragraphDirections(String text) {
        boolean[] result = new boolean[count];
        int first = 0;
        for (int i = 0; i < count; i++) {
            boolean paragraphEnds = i + 1 == lines.count() || endsParagraph(text, lines.end(i));
            if (!paragraphEnds && i + 1 < count) {
                continue;
            }
            String paragraph = text.substring(lines.start(first), lines.end(i));
            boolean leftToRight = new Bidi(paragraph, Bidi.DIRECTION_DEFAULT_LEFT_TO_RIGHT).baseIsLeftToRight();
            for (; first <= i; first++) {
                result[first] = !leftToRight;
            }
        }
        return result;
    }

    private static boolean endsParagraph(String text, int end) {
        return end > 0 && "\n\r\u2028\u2029".indexOf(text.charAt(end - 1)) >= 0;
    }

    private int checked(int line) {
        return Objects.checkIndex(line, count);
    }

    @Override
    public int getLineCount() {
        return count;
    }

    @Override
    public int getLineTop(int line) {
        return tops[line];
    }

    @Override
    public int getLineDescent(int line) {
        return descents[line];
    }

    @Override
    public int getLineStart(int line) {
        return line == count ? lines.end(count - 1) : lines.start(checked(line));
    }

    @Override
    public int getLineVisibleEnd(int line) {
        return lines.visibleEnd(checked(line));
    }

    @Override
    public int getParagraphDirection(int line) {
        return rightToLeft[line] ? DIR_RIGHT_TO_LEFT : DIR_LEFT_TO_RIGHT;
    }

    @Override
    public float getLineMax(int line) {
        return lines.width(checked(line));
    }

    @Override
    public float getLineWidth(int line) {
        return lines.fullWidth(checked(line));
    }

    @Override
    public int getTopPadding() {
        return topPadding;
    }

    @Override
    public int getBottomPadding() {
        return bottomPadding;
    }

    /** Takes the settings of a layout. */
    public static final class Builder {
        private final CharSequence text;
        private final int start;
        private final int end;
        private final TextPaint paint;
        private final int width;
        private Alignment alignment = Alignment.ALIGN_NORMAL;
        private float spacingAdd = 0;
        private float spacingMultiplier = 1;
        private boolean includePad = true;
        private int maxLines = Integer.MAX_VALUE;

        private Builder(CharSequence text, int start, int end, TextPaint paint, int width) {
            this.text = Objects.requireNonNull(text, "source");
            this.paint = Objects.requireNonNull(paint, "paint");
            this.start = start;
            this.end = end;
            this.width = width;
            Objects.checkFromToIndex(start, end, text.length());
        }

        /** Lays out {@code source[start, end)}; offsets of the layout count from the beginning of the source. */
        public static Builder obtain(CharSequence source, int start, int end, TextPaint paint, int width) {
            return new Builder(source, start, end, paint, width);
        }

        public Builder setAlignment(Alignment alignment) {
            this.alignment = Objects.requireNonNull(alignment, "alignment");
            return this;
        }

        /** Line spacing: the distance between line tops is a line's height times the factor, plus the pixels. */
        public Builder setLineSpacing(float spacingAdd, float spacingMult) {
            this.spacingAdd = spacingAdd;
            this.spacingMultiplier = spacingMult;
            return this;
        }

        /**
         * Whether the first line extends as far up, and the last as far down, as any glyph of the font; initially true.
         */
        public Builder setIncludePad(boolean includePad) {
            this.includePad = includePad;
            return this;
        }

        /** The layout ends after that many lines. */
        public Builder setMaxLines(int maxLines) {
            this.maxLines = Math.max(maxLines, 1);
            return this;
        }

        /** @throws IllegalStateException if the paint's font cannot be loaded, or if there is no font at all */
        public StaticLayout build() {
            return new StaticLayout(this);
        }
    }
}
