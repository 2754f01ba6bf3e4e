// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import android.content.res.AssetManager;
import android.graphics.Paint;
import android.text.Layout;
import android.widget.TextView;
import com.orvane.android.sdk.zve.font.FontManager;
import com.orvane.android.sdk.zve.util.FontLock;
import java.util.Objects;
import java.util.concurrent.locks.Lock;

/**
 * A text with effects, rendered into pixels.
 *
 * <pre>{@code
 * try (ZvText text = new ZvText()) {
 *     text.font(path).paint(paint).view(textView).layout(layout)
 *             .stroke(8, 0xFF202020, Stroke.OUTSIDE)
 *             .outerShadow(135, 8, 20, 0xFF000000, .6f);
 *     int[] argb = text.render();
 *     bitmap = Bitmap.createBitmap(argb, text.width(), text.height(), Bitmap.Config.ARGB_8888);
 * }
 * }</pre>
 *
 * <p>A picture needs a font, a paint, a view and a layout, in any order. They are read when they are given (a layout once
 * there is a view too); later changes to them may have no effect. There is at most one effect of each kind; adding one again
 * replaces it.
 *
 * <p>Colours are {@code 0xAARRGGBB}. Where a method takes an opacity as well, 0 to 1, the colour's alpha scales it. Angles
 * are whole degrees; distances, sizes and stroke widths whole pixels from 0 to 100. Values outside a range are clamped.
 *
 * <p>Null arguments throw a {@link NullPointerException}, and values that the library refuses a {@link ZvException}; the
 * text is then unchanged. An exception thrown by a given object propagates from the call that reads the object.
 *
 * <p>Threads: a text may be used from any thread; calls on one text wait for each other, and renders of several texts run in
 * parallel. The objects handed in must not call back into the kit while they are read.
 *
 * <p>{@link #close} frees the native memory, including the picture's. If a text is not closed, this happens some time after
 * it became unreachable.
 */
public final class ZvText implements AutoCloseable {
    // The native object's handle; negative while there is none. Natives read and write it.
    private int mHandle = -1;

    // Held during every call, and taken before the fonts' lock.
    private final Object lock = new Object();
    private final Handle handle = new Handle();
    private final Release release;
    private boolean closed;

    private boolean hasFont;
    private boolean hasView;
    private boolean hasBackground;
    private Layout layout;
    private boolean drawn; // with the lines as they are placed now

    /** @throws UnsatisfiedLinkError where the library is not found; see {@link ZvLibrary} */
    public ZvText() {
        ZvLibrary.load();
        release = Release.of(this, handle);
    }

    // Takes the place of an unreachable text to free its native object.
    private ZvText(int handle) {
        mHandle = handle;
        release = null;
    }

    private static final class Handle implements Runnable {
        private volatile int value = -1;

        @Override
        public void run() {
            if (value >= 0) {
                new ZvText(value).ZvText_finalize();
            }
        }
    }

    // Every call starts with this, under the lock.
    private void begin() {
        if (closed) {
            throw new IllegalStateException("the text is closed");
        }
        if (mHandle < 0) {
            ZvText_GetEffectLeftOffset(); // the first native makes the object
            handle.value = mHandle;
            check(mHandle >= 0, "the text could not be made");
        }
    }

    private static void check(boolean done, String otherwise) {
        if (!done) {
            throw new ZvException(otherwise);
        }
    }

    /** Takes the font from a file; it is read once per process. */
    public ZvText font(String path) {
        Objects.requireNonNull(path, "path");
        synchronized (lock) {
            begin();
            Lock fonts = FontLock.addFont(path);
            try {
                gotFont(path, ZvText_SetFont(path));
            } finally {
                fonts.unlock();
            }
            return this;
        }
    }

    /**
     * Sets the font from a font file's bytes, which are copied and known by the name from then on, also in {@link
     * #font(String)}. If the name is known already, the bytes are ignored.
     */
    public ZvText font(String name, byte[] data) {
        Objects.requireNonNull(name, "name");
        Objects.requireNonNull(data, "data");
        synchronized (lock) {
            begin();
            Lock fonts = FontLock.addFont(name);
            try {
                gotFont(name, ZvText_SetFont2(name, data));
            } finally {
                fonts.unlock();
            }
            return this;
        }
    }

    /** Takes the font from an asset, unless its name is known already. */
    public ZvText font(AssetManager assets, String name) {
        Objects.requireNonNull(assets, "assets");
        Objects.requireNonNull(name, "name");
        synchronized (lock) {
            begin();
            Lock fonts = FontLock.addFont(name);
            try {
                gotFont(name, ZvText_SetFont3(assets, name));
            } finally {
                fonts.unlock();
            }
            return this;
        }
    }

    private void gotFont(String name, boolean done) {
        check(done, "the font \"" + name + "\" could not be loaded");
        FontLock.learned(name);
        hasFont = true;
    }

    /** Takes size, scale, skew, spacing, features, flags and languages of the text. The colour comes from the view. */
    public ZvText paint(Paint paint) {
        Objects.requireNonNull(paint, "paint");
        synchronized (lock) {
            begin();
            check(ZvText_SetPaint(paint), "the paint could not be read");
            return this;
        }
    }

    /** Takes size, paddings, gravity, line limit and text colour of the picture. */
    public ZvText view(TextView view) {
        Objects.requireNonNull(view, "view");
        synchronized (lock) {
            begin();
            check(ZvText_SetView(view), "the view could not be read");
            hasView = true;
            placeLines();
            return this;
        }
    }

    /** Shows that many lines in place of the view's own limit; 0 goes back to the view's. */
    public ZvText lines(int count) {
        synchronized (lock) {
            begin();
            check(ZvText_SetLine(count), "the number of lines could not be set");
            placeLines();
            return this;
        }
    }

    /**
     * Sets the text and its lines, which are placed in the view. The layout is read again when the view or the number of
     * lines changes later.
     */
    public ZvText layout(Layout layout) {
        Objects.requireNonNull(layout, "layout");
        synchronized (lock) {
            begin();
            Layout before = this.layout;
            this.layout = layout;
            boolean done = false;
            try {
                placeLines();
                done = true;
            } finally {
                if (!done) {
                    this.layout = before;
                }
            }
            return this;
        }
    }

    // Lines are placed by the view as it is at that moment: without one there is nothing to place them in.
    private void placeLines() {
        if (layout == null || !hasView) {
            return;
        }
        Lock fonts = FontLock.setText(layout);
        try {
            check(ZvText_SetLayout(layout), "the layout could not be read");
        } finally {
            fonts.unlock();
        }
        drawn = false;
    }

    /** Fills the box of each line behind its text. */
    public ZvText background(int color) {
        return setBackground(color, true);
    }

    public ZvText noBackground() {
        return setBackground(0, false);
    }

    private ZvText setBackground(int color, boolean enabled) {
        synchronized (lock) {
            begin();
            check(ZvText_SetBackgroundColor(color, enabled), "the background could not be set");
            hasBackground = enabled;
            return this;
        }
    }

    /** Outlines the text. */
    public ZvText stroke(float width, int color, Stroke position) {
        return stroke(width, color, position, 1);
    }

    public ZvText stroke(float width, int color, Stroke position, float opacity) {
        Objects.requireNonNull(position, "position");
        synchronized (lock) {
            begin();
            return added("stroke",
                    ZvText_AddStrokeTextEffect(width, color, scaled(opacity, color), 0, position.position));
        }
    }

    /**
     * Casts a shadow behind the text.
     *
     * @param angle where the light comes from: 0 is the right, 90 above; the shadow falls on the other side
     * @param distance how far it falls
     * @param size how far its edge is blurred
     */
    public ZvText outerShadow(float angle, float distance, float size, int color, float opacity) {
        synchronized (lock) {
            begin();
            return added("outer shadow",
                    ZvText_AddOuterShadowTextEffect(angle, distance, size, color, scaled(opacity, color)));
        }
    }

    /** Casts a shadow of the text's edge into the text; arguments as of {@link #outerShadow}. */
    public ZvText innerShadow(float angle, float distance, float size, int color, float opacity) {
        synchronized (lock) {
            begin();
            return added("inner shadow",
                    ZvText_AddInnerShadowTextEffect(angle, distance, size, color, scaled(opacity, color)));
        }
    }

    /** Lets the text shine outwards, over that many pixels. */
    public ZvText outerGlow(float size, int color, float opacity) {
        synchronized (lock) {
            begin();
            return added("outer glow", ZvText_AddOuterGlowTextEffect(size, color, scaled(opacity, color)));
        }
    }

    /** Fills the text with colours that merge, spread evenly over its box; angles as below. */
    public ZvText linearGradient(float angle, int... colors) {
        float[] positions = new float[colors.length];
        for (int i = 1; i < positions.length; i++) {
            positions[i] = (float) i / (positions.length - 1);
        }
        return linearGradient(angle, 1, colors, positions, 1);
    }

    /**
     * Fills the text with a gradient.
     *
     * @param angle 0 runs from left to right, 90 from bottom to top
     * @param scale how far the colours are spread: 1 over the text's box, 2, the most, over twice that, which shows the
     *     middle ones; below 0.1 there is no fill at all
     * @param positions of the colours, 0 to 1, used in hundredths
     * @throws IllegalArgumentException if there are not as many positions as colours
     */
    public ZvText linearGradient(float angle, float scale, int[] colors, float[] positions, float opacity) {
        if (colors.length != positions.length) {
            throw new IllegalArgumentException(colors.length + " colors, " + positions.length + " positions");
        }
        float[] opacities = new float[colors.length];
        for (int i = 0; i < colors.length; i++) {
            opacities[i] = scaled(1, colors[i]);
        }
        synchronized (lock) {
            begin();
            return added("linear gradient",
                    ZvText_AddLinearGradientTextEffect(angle, scale, colors, opacities, positions, opacity));
        }
    }

    // The library reads only the opacity and ignores the colour's alpha.
    private static float scaled(float opacity, int color) {
        return opacity * ((color >>> 24) / 255.0f);
    }

    private ZvText added(String effect, int id) {
        check(id >= 0, "the " + effect + " could not be added");
        return this;
    }

    /** Takes all effects away. */
    public ZvText clearEffects() {
        synchronized (lock) {
            begin();
            ZvText_ClearAllTextEffect();
            return this;
        }
    }

    /**
     * Renders the picture: rows of {@link #width} pixels from the top, straight {@code 0xAARRGGBB}. Its size is the view
     * plus the margins that the effects need.
     *
     * @throws IllegalStateException where the view, the layout or any font is missing
     */
    public int[] render() {
        synchronized (lock) {
            begin();
            require(hasView, "view");
            require(layout != null, "layout");
            if (!hasFont && !FontManager.isConfigured()) {
                throw new IllegalStateException("no font: call font, or FontManager.configure, before");
            }
            if (hasBackground && drawn) {
                placeLines(); // a render moves the boxes of the lines
            }
            int[] argb;
            Lock fonts = FontLock.read();
            try {
                argb = ZvText_RenderTextEffect();
            } finally {
                fonts.unlock();
            }
            drawn = true;
            check(argb != null, "the picture could not be made");
            return argb;
        }
    }

    private static void require(boolean there, String method) {
        if (!there) {
            throw new IllegalStateException("call " + method + " before");
        }
    }

    /** Of the picture made last, in pixels; 0 before. */
    public int width() {
        return size()[0];
    }

    /** Of the picture made last, in pixels; 0 before. */
    public int height() {
        return size()[1];
    }

    private int[] size() {
        synchronized (lock) {
            begin();
            int[] size = ZvText_GetDrawingBitmapSize();
            check(size != null, "the size could not be read");
            return size;
        }
    }

    /** The pixels that the effects need to the left of the view. */
    public int marginLeft() {
        synchronized (lock) {
            begin();
            return ZvText_GetEffectLeftOffset();
        }
    }

    public int marginTop() {
        synchronized (lock) {
            begin();
            return ZvText_GetEffectTopOffset();
        }
    }

    public int marginRight() {
        synchronized (lock) {
            begin();
            return ZvText_GetEffectRightOffset();
        }
    }

    public int marginBottom() {
        synchronized (lock) {
            begin();
            return ZvText_GetEffectBottomOffset();
        }
    }

    /** Frees the native memory. Every later call but this one gives an {@link IllegalStateException}. */
    @Override
    public void close() {
        synchronized (lock) {
            closed = true;
            layout = null;
            release.run();
        }
    }

    // In the order of their registration. Angles, sizes and opacities as above; kind is not used; position as in Stroke.

    private native void ZvText_finalize();

    private native int ZvText_AddInnerShadowTextEffect(float angle, float distance, float size, int color, float opacity);

    private native int ZvText_AddLinearGradientTextEffect(
            float angle, float scale, int[] colors, float[] opacities, float[] positions, float opacity);

    private native int ZvText_AddOuterGlowTextEffect(float size, int color, float opacity);

    private native int ZvText_AddOuterShadowTextEffect(float angle, float distance, float size, int color, float opacity);

    private native int ZvText_AddStrokeTextEffect(float width, int color, float opacity, int kind, int position);

    private native void ZvText_ClearAllTextEffect();

    private native int[] ZvText_RenderTextEffect();

    private native boolean ZvText_SetFont(String path);

    private native boolean ZvText_SetFont2(String name, byte[] data);

    private native boolean ZvText_SetFont3(AssetManager assets, String name);

    private native boolean ZvText_SetPaint(Paint paint);

    private native boolean ZvText_SetLayout(Layout layout);

    private native boolean ZvText_SetLine(int lines);

    private native boolean ZvText_SetView(TextView view);

    private native int[] ZvText_GetDrawingBitmapSize();

    private native boolean ZvText_SetBackgroundColor(int color, boolean enabled);

    private native int ZvText_GetEffectLeftOffset();

    private native int ZvText_GetEffectTopOffset();

    private native int ZvText_GetEffectRightOffset();

    private native int ZvText_GetEffectBottomOffset();
}
