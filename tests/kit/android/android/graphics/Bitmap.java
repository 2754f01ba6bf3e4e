// SPDX-License-Identifier: Apache-2.0
package android.graphics;

/** The platform's names, for compiling alone. */
public abstract class Bitmap {
    public enum Config {
        ARGB_8888
    }

    public static Bitmap createBitmap(int[] colors, int width, int height, Config config) {
        throw new UnsupportedOperationException();
    }

    public abstract int getWidth();

    public abstract int getHeight();

    public abstract void getPixels(int[] pixels, int offset, int stride, int x, int y, int width, int height);
}
