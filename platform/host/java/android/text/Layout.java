// SPDX-License-Identifier: Apache-2.0
package android.text;

/**
 * Lines of a text, one below the other. Vertical values are pixels from the top of the first line, growing downwards;
 * horizontal ones are pixels from the left of the column; offsets count UTF-16 units.
 *
 * <p>Methods that the platform makes final are open here, so that other line breakers can report their own numbers.
 */
public abstract class Layout {
    /** Alignment of lines in the column: NORMAL is the side where a paragraph of its direction begins. */
    public enum Alignment {
        ALIGN_NORMAL,
        ALIGN_OPPOSITE,
        ALIGN_CENTER,
        ALIGN_LEFT,
        ALIGN_RIGHT
    }

    public static final int DIR_LEFT_TO_RIGHT = 1;
    public static final int DIR_RIGHT_TO_LEFT = -1;

    private final CharSequence text;
    private final TextPaint paint;
    private final int width;
    private final Alignment alignment;
    private final float spacingMultiplier;
    private final float spacingAdd;

    /** @param width of the column, in pixels */
    protected Layout(CharSequence text, TextPaint paint, int width, Alignment align, float spacingMult, float spacingAdd) {
        if (width < 0) {
            throw new IllegalArgumentException("Layout: " + width + " < 0");
        }
        this.text = text;
        this.paint = paint;
        this.width = width;
        this.alignment = align;
        this.spacingMultiplier = spacingMult;
        this.spacingAdd = spacingAdd;
    }

    public abstract int getLineCount();

    /** The top of a line; that of line getLineCount() is the bottom of the last one. */
    public abstract int getLineTop(int line);

    /** The distance from the line's baseline down to its bottom. */
    public abstract int getLineDescent(int line);

    /** The offset of the line's first character; that of line getLineCount() is the end of the text. */
    public abstract int getLineStart(int line);

    /** DIR_LEFT_TO_RIGHT or DIR_RIGHT_TO_LEFT. */
    public abstract int getParagraphDirection(int line);

    /** How much of the first line's height is padding above it, as a number of 0 or less. */
    public abstract int getTopPadding();

    /** How much of the last line's height is padding below it, of 0 or more. */
    public abstract int getBottomPadding();

    public CharSequence getText() {
        return text;
    }

    public TextPaint getPaint() {
        return paint;
    }

    public int getWidth() {
        return width;
    }

    public int getHeight() {
        return getLineTop(getLineCount());
    }

    public Alignment getAlignment() {
        return alignment;
    }

    public float getSpacingMultiplier() {
        return spacingMultiplier;
    }

    public float getSpacingAdd() {
        return spacingAdd;
    }

    public int getLineBottom(int line) {
        return getLineTop(line + 1);
    }

    public int getLineBaseline(int line) {
        return getLineBottom(line) - getLineDescent(line);
    }

    /** The distance from the line's baseline up to its top: a negative number. */
    public int getLineAscent(int line) {
        return getLineTop(line) - getLineBaseline(line);
    }

    /** The offset after the line's last character, blanks and line ending included. */
    public int getLineEnd(int line) {
        return getLineStart(line + 1);
    }

    /** The offset after the line's last visible character. */
    public int getLineVisibleEnd(int line) {
        int end = getLineEnd(line);
        while (end > getLineStart(line) && isBlank(getText().charAt(end - 1))) {
            end--;
        }
        return end;
    }

    private static boolean isBlank(char c) {
        return c == ' ' || c == '\t' || c == '\n' || c == 0x1680
                || (c >= 0x2000 && c <= 0x200A && c != 0x2007) || c == 0x205F || c == 0x3000;
    }

    public int getParagraphLeft(int line) {
        return 0;
    }

    public int getParagraphRight(int line) {
        return getWidth();
    }

    /** The left of the line's text; negative if a line is wider than the column and is aligned right or centred. */
    public float getLineLeft(int line) {
        float room = getWidth() - getLineMax(line);
        boolean leftToRight = getParagraphDirection(line) == DIR_LEFT_TO_RIGHT;
        switch (getAlignment()) {
            case ALIGN_CENTER:
                return (float) Math.floor(room / 2);
            case ALIGN_LEFT:
                return 0;
            case ALIGN_RIGHT:
                return room;
            case ALIGN_OPPOSITE:
                return leftToRight ? room : 0;
            default:
                return leftToRight ? 0 : room;
        }
    }

    public float getLineRight(int line) {
        return getLineLeft(line) + getLineMax(line);
    }

    /** The width of the line's text without the blanks at its end. */
    public float getLineMax(int line) {
        return getPaint().measureText(getText(), getLineStart(line), getLineVisibleEnd(line));
    }

    /** The width of the line's text with the blanks at its end. */
    public float getLineWidth(int line) {
        return getPaint().measureText(getText(), getLineStart(line), getLineEnd(line));
    }
}
