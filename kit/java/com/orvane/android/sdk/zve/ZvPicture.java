// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import java.io.IOException;
import java.io.OutputStream;

/** A picture, straight {@code 0xAARRGGBB} pixels, and the position of its text. Any thread; the pixels do not change. */
public final class ZvPicture extends PictureImages {
    final int[] pixels;
    private final int width;
    private final int height;
    private final int[] margins; // left, top, right, bottom
    private final int[] origin; // x, y

    /**
     * A picture of given pixels, for a pattern.
     *
     * @param argb rows of {@code width} pixels from the top, copied
     * @param width in pixels, at least 1
     * @param height in pixels, at least 1
     * @throws IllegalArgumentException if the number of pixels does not match the sizes
     */
    public ZvPicture(int[] argb, int width, int height) {
        this(argb.clone(), width, height, new int[4], new int[2]);
        if (width < 1 || height < 1 || (long) width * height != argb.length) {
            throw new IllegalArgumentException(argb.length + " pixels are not a picture of " + width + " x " + height);
        }
    }

    ZvPicture(int[] argb, int width, int height, int[] margins, int[] origin) {
        this.pixels = argb;
        this.width = width;
        this.height = height;
        this.margins = margins;
        this.origin = origin;
    }

    /**
     * The picture's width.
     *
     * @return pixels, the margins included
     */
    @Override
    public int width() {
        return width;
    }

    /**
     * The picture's height.
     *
     * @return pixels, the margins included
     */
    @Override
    public int height() {
        return height;
    }

    /**
     * The pixels, rows from the top.
     *
     * @return a copy
     */
    @Override
    public int[] argb() {
        return pixels.clone();
    }

    /**
     * The start of the first line.
     *
     * @return pixels from the picture's left
     */
    public int originX() {
        return origin[0];
    }

    /**
     * The baseline of the first line.
     *
     * @return pixels from the picture's top
     */
    public int originY() {
        return origin[1];
    }

    /**
     * The room that effects take to the left of the text's box.
     *
     * @return pixels
     */
    public int marginLeft() {
        return margins[0];
    }

    /**
     * The room that effects take above the text's box.
     *
     * @return pixels
     */
    public int marginTop() {
        return margins[1];
    }

    /**
     * The room that effects take to the right of the text's box.
     *
     * @return pixels
     */
    public int marginRight() {
        return margins[2];
    }

    /**
     * The room that effects take below the text's box.
     *
     * @return pixels
     */
    public int marginBottom() {
        return margins[3];
    }

    /**
     * Writes a PNG of exactly these pixels. Going by way of the platform's image may round translucent ones.
     *
     * @param out left open
     * @throws IOException as {@code out} does, and if the picture has no pixels
     */
    public void writePng(OutputStream out) throws IOException {
        PngWriter.write(out, pixels, width, height);
    }
}
