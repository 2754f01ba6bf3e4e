// SPDX-License-Identifier: Apache-2.0
package android.graphics;

import android.host.TextEngine;
import android.os.LocaleList;
import java.util.Locale;

/** How text is drawn: the settings that the layout engine and the renderer read. One thread at a time. */
public class Paint {
    public static final int ANTI_ALIAS_FLAG = 0x01;
    public static final int FILTER_BITMAP_FLAG = 0x02;
    public static final int DITHER_FLAG = 0x04;
    public static final int UNDERLINE_TEXT_FLAG = 0x08;
    public static final int STRIKE_THRU_TEXT_FLAG = 0x10;
    public static final int FAKE_BOLD_TEXT_FLAG = 0x20;
    public static final int LINEAR_TEXT_FLAG = 0x40;
    public static final int SUBPIXEL_TEXT_FLAG = 0x80;
    public static final int EMBEDDED_BITMAP_TEXT_FLAG = 0x400;

    // Always set in a new paint: kerning by the device and embedded bitmaps.
    private static final int DEFAULT_FLAGS = 0x100 | EMBEDDED_BITMAP_TEXT_FLAG;

    /** The position of a text's origin within the text. */
    public enum Align {
        LEFT,
        CENTER,
        RIGHT
    }

    private int flags;
    private int color;
    private float textSize;
    private float textScaleX;
    private float textSkewX;
    private float letterSpacing;
    private boolean elegantTextHeight;
    private String fontFeatureSettings;
    private Align textAlign;
    private Typeface typeface;
    private LocaleList textLocales;

    public Paint() {
        this(0);
    }

    /** @param flags {@code _FLAG} constants, in addition to those that a new paint always has */
    public Paint(int flags) {
        reset();
        setFlags(flags | DEFAULT_FLAGS);
    }

    public Paint(Paint paint) {
        set(paint);
    }

    /** Makes this paint a copy of the other. */
    public void set(Paint src) {
        flags = src.flags;
        color = src.color;
        textSize = src.textSize;
        textScaleX = src.textScaleX;
        textSkewX = src.textSkewX;
        letterSpacing = src.letterSpacing;
        elegantTextHeight = src.elegantTextHeight;
        fontFeatureSettings = src.fontFeatureSettings;
        textAlign = src.textAlign;
        typeface = src.typeface;
        textLocales = src.textLocales;
    }

    /** Resets all settings to those of a new paint. */
    public void reset() {
        flags = DEFAULT_FLAGS;
        color = 0xFF000000;
        textSize = 12;
        textScaleX = 1;
        textSkewX = 0;
        letterSpacing = 0;
        elegantTextHeight = false;
        fontFeatureSettings = null;
        textAlign = Align.LEFT;
        typeface = null;
        textLocales = LocaleList.getAdjustedDefault();
    }

    public int getFlags() {
        return flags;
    }

    public void setFlags(int flags) {
        this.flags = flags;
    }

    private boolean has(int flag) {
        return (flags & flag) != 0;
    }

    private void put(int flag, boolean on) {
        setFlags(on ? flags | flag : flags & ~flag);
    }

    public final boolean isAntiAlias() {
        return has(ANTI_ALIAS_FLAG);
    }

    public void setAntiAlias(boolean aa) {
        put(ANTI_ALIAS_FLAG, aa);
    }

    public final boolean isLinearText() {
        return has(LINEAR_TEXT_FLAG);
    }

    public void setLinearText(boolean linearText) {
        put(LINEAR_TEXT_FLAG, linearText);
    }

    public final boolean isSubpixelText() {
        return has(SUBPIXEL_TEXT_FLAG);
    }

    public void setSubpixelText(boolean subpixelText) {
        put(SUBPIXEL_TEXT_FLAG, subpixelText);
    }

    public final boolean isUnderlineText() {
        return has(UNDERLINE_TEXT_FLAG);
    }

    public void setUnderlineText(boolean underlineText) {
        put(UNDERLINE_TEXT_FLAG, underlineText);
    }

    public final boolean isStrikeThruText() {
        return has(STRIKE_THRU_TEXT_FLAG);
    }

    public void setStrikeThruText(boolean strikeThruText) {
        put(STRIKE_THRU_TEXT_FLAG, strikeThruText);
    }

    public final boolean isFakeBoldText() {
        return has(FAKE_BOLD_TEXT_FLAG);
    }

    public void setFakeBoldText(boolean fakeBoldText) {
        put(FAKE_BOLD_TEXT_FLAG, fakeBoldText);
    }

    public int getColor() {
        return color;
    }

    /** @param color 0xAARRGGBB */
    public void setColor(int color) {
        this.color = color;
    }

    /** In pixels. */
    public float getTextSize() {
        return textSize;
    }

    /** @param textSize pixels, above 0; a negative size is ignored */
    public void setTextSize(float textSize) {
        if (textSize >= 0) {
            this.textSize = textSize;
        }
    }

    public float getTextScaleX() {
        return textScaleX;
    }

    /** @param scaleX 1 is the font's own width */
    public void setTextScaleX(float scaleX) {
        textScaleX = scaleX;
    }

    public float getTextSkewX() {
        return textSkewX;
    }

    /** @param skewX 0 is upright, about -0.25 a slant to the right */
    public void setTextSkewX(float skewX) {
        textSkewX = skewX;
    }

    /** In ems. */
    public float getLetterSpacing() {
        return letterSpacing;
    }

    public void setLetterSpacing(float letterSpacing) {
        this.letterSpacing = letterSpacing;
    }

    public boolean isElegantTextHeight() {
        return elegantTextHeight;
    }

    /** @param elegant whether to use the taller of two designs of a fallback font */
    public void setElegantTextHeight(boolean elegant) {
        elegantTextHeight = elegant;
    }

    public String getFontFeatureSettings() {
        return fontFeatureSettings;
    }

    /** @param settings OpenType features, for example {@code "'smcp', 'liga' 0"}; null or "" for the font's own */
    public void setFontFeatureSettings(String settings) {
        fontFeatureSettings = settings != null && settings.isEmpty() ? null : settings;
    }

    public Align getTextAlign() {
        return textAlign;
    }

    public void setTextAlign(Align align) {
        textAlign = align;
    }

    public Typeface getTypeface() {
        return typeface;
    }

    /** @return the typeface that was set; null means the system's own */
    public Typeface setTypeface(Typeface typeface) {
        this.typeface = typeface;
        return typeface;
    }

    public LocaleList getTextLocales() {
        return textLocales;
    }

    /** @throws IllegalArgumentException for null and the empty list */
    public void setTextLocales(LocaleList locales) {
        if (locales == null || locales.isEmpty()) {
            throw new IllegalArgumentException("locales cannot be null or empty");
        }
        textLocales = locales;
    }

    public Locale getTextLocale() {
        return textLocales.get(0);
    }

    /** @throws IllegalArgumentException for null */
    public void setTextLocale(Locale locale) {
        if (locale == null) {
            throw new IllegalArgumentException("locale cannot be null");
        }
        textLocales = new LocaleList(locale);
    }

    /** The advance of the text as one line, in pixels. */
    public float measureText(String text) {
        return measureText(text, 0, text.length());
    }

    public float measureText(CharSequence text, int start, int end) {
        return TextEngine.advance(text.toString(), start, end, this);
    }
}
