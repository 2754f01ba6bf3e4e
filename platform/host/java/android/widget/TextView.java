// SPDX-License-Identifier: Apache-2.0
package android.widget;

import android.graphics.Paint;
import android.graphics.Typeface;
import android.text.Layout;
import android.text.StaticLayout;
import android.text.TextPaint;
import android.view.Gravity;

/**
 * The geometry and look of a box of text. It is not a real view: nothing is attached, measured or shown, and sizes must be set.
 * A scaled pixel is a pixel.
 */
public class TextView {
    public static final int TEXT_DIRECTION_FIRST_STRONG = 1;
    public static final int TEXT_DIRECTION_LTR = 3;
    public static final int TEXT_DIRECTION_RTL = 4;
    public static final int LAYOUT_DIRECTION_LTR = 0;
    public static final int LAYOUT_DIRECTION_RTL = 1;

    private final TextPaint paint = new TextPaint(Paint.ANTI_ALIAS_FLAG);
    private int textColor = 0xFF000000;
    private int textDirection = TEXT_DIRECTION_FIRST_STRONG;
    private int layoutDirection = LAYOUT_DIRECTION_LTR;
    private int width;
    private int height;
    private int paddingLeft;
    private int paddingTop;
    private int paddingRight;
    private int paddingBottom;
    private int gravity = Gravity.TOP | Gravity.START;
    private int maxLines = Integer.MAX_VALUE;
    private boolean includeFontPadding = true;
    private CharSequence text = "";

    public TextView() {
        paint.setTextSize(15);
    }

    /** The paint for layout; it holds this box's text size and typeface. */
    public TextPaint getPaint() {
        return paint;
    }

    public float getTextSize() {
        return paint.getTextSize();
    }

    public void setTextSize(float size) {
        paint.setTextSize(size);
    }

    public final int getCurrentTextColor() {
        return textColor;
    }

    /** @param color 0xAARRGGBB */
    public void setTextColor(int color) {
        textColor = color;
    }

    public Typeface getTypeface() {
        return paint.getTypeface();
    }

    public void setTypeface(Typeface tf) {
        paint.setTypeface(tf);
    }

    public int getTextDirection() {
        return textDirection;
    }

    public void setTextDirection(int textDirection) {
        this.textDirection = textDirection;
    }

    public int getLayoutDirection() {
        return layoutDirection;
    }

    public void setLayoutDirection(int layoutDirection) {
        this.layoutDirection = layoutDirection;
    }

    public final int getWidth() {
        return width;
    }

    /** @param pixels the paddings included */
    public void setWidth(int pixels) {
        width = pixels;
    }

    public final int getHeight() {
        return height;
    }

    /** @param pixels the paddings included */
    public void setHeight(int pixels) {
        height = pixels;
    }

    public int getPaddingLeft() {
        return paddingLeft;
    }

    public int getPaddingTop() {
        return paddingTop;
    }

    public int getPaddingRight() {
        return paddingRight;
    }

    public int getPaddingBottom() {
        return paddingBottom;
    }

    public void setPadding(int left, int top, int right, int bottom) {
        paddingLeft = left;
        paddingTop = top;
        paddingRight = right;
        paddingBottom = bottom;
    }

    public int getGravity() {
        return gravity;
    }

    /** @param gravity of {@link Gravity}; without a horizontal part START, without a vertical part TOP is added */
    public void setGravity(int gravity) {
        if ((gravity & Gravity.RELATIVE_HORIZONTAL_GRAVITY_MASK) == 0) {
            gravity |= Gravity.START;
        }
        if ((gravity & Gravity.VERTICAL_GRAVITY_MASK) == 0) {
            gravity |= Gravity.TOP;
        }
        this.gravity = gravity;
    }

    public int getMaxLines() {
        return maxLines;
    }

    public void setMaxLines(int maxLines) {
        this.maxLines = maxLines;
    }

    public boolean getIncludeFontPadding() {
        return includeFontPadding;
    }

    /** Whether the first and the last line extend as far as any glyph of the font; initially true. */
    public void setIncludeFontPadding(boolean includepad) {
        includeFontPadding = includepad;
    }

    public CharSequence getText() {
        return text;
    }

    public void setText(CharSequence text) {
        this.text = text != null ? text : "";
    }

    /**
     * The text, wrapped at the width within the paddings and aligned by the gravity. It has all lines, whatever the limit of
     * lines shown. Each call lays it out again.
     */
    public Layout getLayout() {
        int inner = Math.max(width - paddingLeft - paddingRight, 0);
        return StaticLayout.Builder.obtain(text, 0, text.length(), paint, inner)
                .setAlignment(alignment())
                .setIncludePad(includeFontPadding)
                .build();
    }

    private Layout.Alignment alignment() {
        switch (gravity & Gravity.RELATIVE_HORIZONTAL_GRAVITY_MASK) {
            case Gravity.LEFT:
                return Layout.Alignment.ALIGN_LEFT;
            case Gravity.RIGHT:
                return Layout.Alignment.ALIGN_RIGHT;
            case Gravity.CENTER_HORIZONTAL:
                return Layout.Alignment.ALIGN_CENTER;
            case Gravity.END:
                return Layout.Alignment.ALIGN_OPPOSITE;
            default:
                return Layout.Alignment.ALIGN_NORMAL;
        }
    }
}
