// SPDX-License-Identifier: Apache-2.0
package android.text;

import java.util.ArrayList;
import java.util.List;

/** A layout of a text that does not change. */
public class StaticLayout extends Layout {
    private final List<Integer> starts = new ArrayList<>();
    private final int lineHeight;

    private StaticLayout(Builder b) {
        super(b.text.subSequence(b.start, b.end), b.paint, b.width, b.alignment, b.spacingMultiplier, b.spacingAdd);
        CharSequence text = getText();
        starts.add(0);
        for (int i = 0; i < text.length(); i++) {
            if (text.charAt(i) == '\n') {
                starts.add(i + 1);
            }
        }
        lineHeight = Math.round(b.paint.getTextSize() * 1.2f);
    }

    @Override
    public int getLineCount() {
        return starts.size();
    }

    @Override
    public int getLineTop(int line) {
        return line * lineHeight;
    }

    @Override
    public int getLineDescent(int line) {
        return lineHeight / 5;
    }

    @Override
    public int getLineStart(int line) {
        return line < starts.size() ? starts.get(line) : getText().length();
    }

    @Override
    public int getParagraphDirection(int line) {
        return DIR_LEFT_TO_RIGHT;
    }

    @Override
    public int getTopPadding() {
        return 0;
    }

    @Override
    public int getBottomPadding() {
        return 0;
    }

    @Override
    public float getLineMax(int line) {
        return getWidth();
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
            this.text = text;
            this.start = start;
            this.end = end;
            this.paint = paint;
            this.width = width;
        }

        public static Builder obtain(CharSequence source, int start, int end, TextPaint paint, int width) {
            return new Builder(source, start, end, paint, width);
        }

        public Builder setAlignment(Alignment alignment) {
            this.alignment = alignment;
            return this;
        }

        public Builder setLineSpacing(float spacingAdd, float spacingMult) {
            this.spacingAdd = spacingAdd;
            this.spacingMultiplier = spacingMult;
            return this;
        }

        public Builder setIncludePad(boolean includePad) {
            this.includePad = includePad;
            return this;
        }

        public Builder setMaxLines(int maxLines) {
            this.maxLines = maxLines;
            return this;
        }

        public StaticLayout build() {
            return new StaticLayout(this);
        }
    }
}
