// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import java.awt.image.BufferedImage;

/** The members of a picture that exist only on a desktop JVM. */
abstract class PictureImages {
    PictureImages() {}

    abstract int width();

    abstract int height();

    abstract int[] argb();

    /**
     * A copy as an image.
     *
     * @return of the type {@code TYPE_INT_ARGB}
     * @throws IllegalArgumentException if the picture has no pixels
     */
    public BufferedImage toBufferedImage() {
        BufferedImage image = new BufferedImage(width(), height(), BufferedImage.TYPE_INT_ARGB);
        image.setRGB(0, 0, width(), height(), argb(), 0, width());
        return image;
    }

    /**
     * A picture of an image's pixels.
     *
     * @param image of any type
     * @return the pixels as they are now
     */
    public static ZvPicture of(BufferedImage image) {
        int width = image.getWidth();
        int height = image.getHeight();
        return new ZvPicture(image.getRGB(0, 0, width, height, null, 0, width), width, height);
    }
}
