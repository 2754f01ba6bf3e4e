// SPDX-License-Identifier: Apache-2.0
package android.host;

import android.graphics.Paint;
import android.graphics.Typeface;
import android.text.FontConfig;
import java.io.File;
import java.util.Objects;

/**
 * Desktop only: the layout engine of the stand-ins, which is also the renderer's. It is a native library,
 * {@code libZvHostJava.so}, loaded on first use from the path in the system property {@code zvex.host.library}, else from the
 * class path ({@link NativeJar}), else by its name. Any thread.
 */
public final class TextEngine {
    private static volatile boolean loaded;

    private TextEngine() {}

    private static void load() {
        if (loaded) {
            return;
        }
        synchronized (TextEngine.class) {
            if (!loaded) {
                String path = System.getProperty("zvex.host.library");
                path = path != null ? path : NativeJar.find("ZvHostJava");
                if (path != null) {
                    System.load(new File(path).getAbsolutePath());
                } else {
                    System.loadLibrary("ZvHostJava");
                }
                loaded = true;
            }
        }
    }

    /** Lines of a text in pixels; see the accessors. */
    public static final class Lines {
        private static final int HEADER = 4;
        private static final int STRIDE = 7;

        private final int[] numbers;

        private Lines(int[] numbers) {
            this.numbers = numbers;
        }

        /** How far all glyphs of the font reach above the baseline. */
        public int fontTop() {
            return numbers[2];
        }

        /** How far all glyphs of the font reach below the baseline. */
        public int fontBottom() {
            return numbers[3];
        }

        public int count() {
            return (numbers.length - HEADER) / STRIDE;
        }

        private int at(int line, int place) {
            return numbers[HEADER + line * STRIDE + place];
        }

        public int start(int line) {
            return at(line, 0);
        }

        /** The offset after the last visible character. */
        public int visibleEnd(int line) {
            return at(line, 1);
        }

        /** The offset after the line ending. */
        public int end(int line) {
            return at(line, 2);
        }

        /** From the baseline up, 0 or more: the font's own, or the line's ink if that reaches further. */
        public int ascent(int line) {
            return at(line, 3);
        }

        /** From the baseline down, 0 or more, like {@link #ascent}. */
        public int descent(int line) {
            return at(line, 4);
        }

        /** The advance up to {@link #visibleEnd}. */
        public float width(int line) {
            return Float.intBitsToFloat(at(line, 5));
        }

        /** The advance with the blanks at the end. */
        public float fullWidth(int line) {
            return Float.intBitsToFloat(at(line, 6));
        }
    }

    /**
     * Cuts {@code text[start, end)} into lines no wider than {@code width} pixels: at line endings, at the last break that
     * the Unicode rules allow, and between clusters in a word that is wider than a line.
     *
     * @throws IllegalStateException if the paint's font cannot be loaded or there is none
     */
    public static Lines breakLines(String text, int start, int end, Paint paint, float width) {
        Objects.checkFromToIndex(start, end, text.length());
        load();
        // A width of 0 asks the engine for no wrapping at all.
        float positive = Math.max(width, Float.MIN_VALUE);
        return new Lines(breakLines(text, start, end, paint, pathOf(paint), positive));
    }

    /**
     * The advance of {@code text[start, end)} as one line, in pixels.
     *
     * @throws IllegalStateException as {@link #breakLines}
     */
    public static float advance(String text, int start, int end, Paint paint) {
        Objects.checkFromToIndex(start, end, text.length());
        load();
        return advance(text, start, end, paint, pathOf(paint));
    }

    /** The {@link Typeface} style bits of the file's first font; -1 if the file is no font. */
    public static int styleOf(String path) {
        load();
        return styleOfFontFile(path);
    }

    /** Sets the fallback families of every font; later calls change nothing. False if it cannot be read. */
    public static boolean setFonts(FontConfig config) {
        load();
        return setSystemFonts(config);
    }

    private static String pathOf(Paint paint) {
        Typeface face = paint.getTypeface();
        return face != null ? face.getPath() : null;
    }

    private static native int[] breakLines(String text, int start, int end, Paint paint, String font, float width);

    private static native float advance(String text, int start, int end, Paint paint, String font);

    private static native int styleOfFontFile(String path);

    private static native boolean setSystemFonts(FontConfig config);
}
