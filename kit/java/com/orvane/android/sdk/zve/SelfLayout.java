// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import android.content.res.AssetManager;
import android.graphics.Paint;
import android.graphics.Typeface;
import android.text.Layout;
import android.text.StaticLayout;
import android.text.TextPaint;
import java.util.Map;
import java.util.concurrent.ConcurrentHashMap;

/** The words, paint and wrapping of a text without a view, and the lines made of them. */
final class SelfLayout {
    private static final int UNBROKEN = 1 << 24; // wider than any line may be
    private static final Map<String, Typeface> FACES = new ConcurrentHashMap<>();

    private final TextPaint paint = new TextPaint(Paint.ANTI_ALIAS_FLAG);
    private Typeface ofPaint;
    private AssetManager assets;
    private String font;
    private String words;
    private int wrap;
    private Layout.Alignment alignment = Layout.Alignment.ALIGN_LEFT;
    private double size = 96; // as it was given; the paint's is rounded to a float
    private double wordSpacing; // ems
    private double lineHeight; // times the size; 0: as the fonts have it
    private boolean upperCase;

    SelfLayout() {
        paint.setFlags(Paint.ANTI_ALIAS_FLAG);
        setSize(size);
    }

    void setPaint(Paint other) {
        paint.set(other);
        ofPaint = other.getTypeface();
        size = Setting.decimal(other.getTextSize());
    }

    /** @param from null for a file */
    void setFont(AssetManager from, String name) {
        assets = from;
        font = name;
    }

    void setWords(String text) {
        words = text;
    }

    boolean hasWords() {
        return words != null;
    }

    /** As they are shown: in upper case by the rules of the paint's language, where a style says so. */
    String words() {
        return upperCase ? words.toUpperCase(paint.getTextLocale()) : words;
    }

    int wrap() {
        return wrap;
    }

    /** 0 left, 1 center, 2 right. */
    int align() {
        return alignment == Layout.Alignment.ALIGN_LEFT ? 0 : alignment == Layout.Alignment.ALIGN_CENTER ? 1 : 2;
    }

    void setSize(double pixels) {
        size = pixels;
        paint.setTextSize((float) pixels);
    }

    double size() {
        return size;
    }

    void setWrap(int pixels) {
        wrap = pixels;
    }

    void setAlign(Paint.Align align) {
        alignment = align == Paint.Align.LEFT ? Layout.Alignment.ALIGN_LEFT
                : align == Paint.Align.CENTER ? Layout.Alignment.ALIGN_CENTER : Layout.Alignment.ALIGN_RIGHT;
    }

    void setSpacing(double ems) {
        paint.setLetterSpacing((float) ems);
    }

    void setWordSpacing(double ems) {
        wordSpacing = ems;
    }

    double wordSpacing() {
        return wordSpacing;
    }

    void setLineHeight(double sizes) {
        lineHeight = sizes;
    }

    double lineHeight() {
        return lineHeight;
    }

    void setUpperCase(boolean upper) {
        upperCase = upper;
    }

    void setFeatures(String features) {
        paint.setFontFeatureSettings(features);
    }

    Paint paint() {
        return paint;
    }

    /**
     * The lines by the platform's own layout, aligned in a column as wide as {@link #width}.
     *
     * @throws IllegalStateException if it lacks what a style asks for
     */
    Layout lines() {
        if (wordSpacing != 0) {
            throw new IllegalStateException("word-spacing: the platform's layout has none");
        }
        paint.setTypeface(ofPaint != null ? ofPaint : font != null ? face() : null);
        Layout lines = build(wrap > 0 ? wrap : UNBROKEN, wrap > 0 ? alignment : Layout.Alignment.ALIGN_LEFT, 0);
        float between = lineHeight > 0 ? (float) (lineHeight * size) - lines.getLineBottom(0) : 0;
        boolean done = between == 0 && (wrap > 0 || alignment == Layout.Alignment.ALIGN_LEFT);
        return done ? lines : build(width(lines), alignment, between);
    }

    /** The width at which lines wrap, or that of the widest line if they do not. */
    int width(Layout lines) {
        if (wrap > 0) {
            return wrap;
        }
        float widest = 1;
        for (int i = 0; i < lines.getLineCount(); i++) {
            widest = Math.max(widest, lines.getLineMax(i));
        }
        return (int) Math.ceil(widest);
    }

    private Layout build(int width, Layout.Alignment align, float between) {
        String shown = words();
        return StaticLayout.Builder.obtain(shown, 0, shown.length(), paint, width)
                .setAlignment(align)
                .setLineSpacing(between, 1)
                .setIncludePad(false)
                .build();
    }

    private Typeface face() {
        AssetManager from = assets;
        try {
            return from != null
                    ? Typeface.createFromAsset(from, font)
                    : FACES.computeIfAbsent(font, Typeface::createFromFile);
        } catch (RuntimeException e) {
            throw new IllegalStateException("the font \"" + font
                    + "\" has no file to measure the text with: give a paint with a typeface, or a layout", e);
        }
    }
}
