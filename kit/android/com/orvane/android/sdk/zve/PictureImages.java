// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import android.graphics.Bitmap;

/** The members of a picture that exist only on Android. */
abstract class PictureImages {
    PictureImages() {}

    abstract int width();

    abstract int height();

    abstract int[] argb();

    /**
     * A copy as a bitmap, which may round translucent colours.
     *
     * @return of the configuration {@code ARGB_8888}
     * @throws IllegalArgumentException if the picture has no pixels
     */
    public Bitmap toBitmap() {
        return Bitmap.createBitmap(argb(), width(), height(), Bitmap.Config.ARGB_8888);
    }

    /**
     * A picture of a bitmap's pixels.
     *
     * @param bitmap readable
     * @return the pixels as they are now
     */
    public static ZvPicture of(Bitmap bitmap) {
        int width = bitmap.getWidth();
        int height = bitmap.getHeight();
        int[] argb = new int[width * height];
        bitmap.getPixels(argb, 0, width, 0, 0, width, height);
        return new ZvPicture(argb, width, height);
    }
}
