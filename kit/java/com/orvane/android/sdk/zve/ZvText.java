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
 * <p>A text without a view measures itself:
 *
 * <pre>{@code
 * try (ZvText text = new ZvText()) {
 *     text.font(path).size(120).text("Words").style(ZvStyle.preset("gold")).picture().writePng(out);
 * }
 * }</pre>
 *
 * <p>A picture needs a font, and words or a paint, a view and a layout, in any order. They are read when they are given (a
 * layout once there is a view too); later changes to them may have no effect. There is at most one effect of each kind;
 * adding one again replaces it.
 *
 * <p>Colours are {@code 0xAARRGGBB}. Where a method takes an opacity as well, 0 to 1, the colour's alpha scales it. Angles
 * are whole degrees; distances, sizes and stroke widths whole pixels from 0 to 100. An argument outside its range, or none
 * at all (NaN), throws an {@link IllegalArgumentException} that names it.
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
    // Of a text without a view, the effects' margins left aside. A line's picture keeps its width in 16 bits.
    private static final int MAX_SIDE = 32767;
    private static final int MAX_PIXELS = 100_000_000;

    // The native object's handle; negative while there is none. Natives read and write it.
    private int mHandle = -1;

    // Held during every call, and taken before the fonts' lock.
    private final Object lock = new Object();
    private final Handle handle = new Handle();
    private final Release release;
    private boolean closed;

    private boolean hasFont;
    private boolean hasView;
    private Layout layout;
    private boolean drawn; // with the lines as they are placed now

    private final SelfLayout self;
    private boolean measured; // the lines are those of the words, paint and column as they are now
    private int shownLines; // 0: all

    private final Look look;
    private int viewColor = 0xFF000000;
    private double paintSize; // of the text of a view

    // Written after natives that take the handle alone: keeps this text reachable, and its native object, until then.
    private volatile boolean used;

    /**
     * A text with nothing set; makes no native object yet.
     *
     * @throws UnsatisfiedLinkError if the library is not found; see {@link ZvLibrary}
     */
    public ZvText() {
        ZvLibrary.load();
        self = new SelfLayout();
        look = new Look();
        release = Release.of(this, handle);
    }

    // Takes the place of an unreachable text to free its native object.
    private ZvText(int handle) {
        mHandle = handle;
        self = null;
        look = null;
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

    int handle() {
        return mHandle;
    }

    // Every call starts with this, under the lock.
    void begin() {
        if (closed) {
            throw new IllegalStateException("the text is closed");
        }
        if (mHandle < 0) {
            ZvText_GetEffectLeftOffset(); // the first native makes the object
            handle.value = mHandle;
            check(mHandle >= 0, "the text could not be made");
        }
    }

    static void check(boolean done, String otherwise) {
        if (!done) {
            throw new ZvException(otherwise);
        }
    }

    /**
     * Takes the font from a file; it is read once per process.
     *
     * @param path the file, or a name that is known
     * @return this text
     */
    public ZvText font(String path) {
        Objects.requireNonNull(path, "path");
        synchronized (lock) {
            begin();
            Lock fonts = FontLock.addFont(path);
            try {
                gotFont(null, path, ZvText_SetFont(path));
            } finally {
                fonts.unlock();
            }
            return this;
        }
    }

    /**
     * Sets the font from a font file's bytes, which are copied and known by the name from then on, also in {@link
     * #font(String)}. If the name is known already, the bytes are ignored.
     *
     * @param name the name by which it is known from then on
     * @param data a font file's bytes
     * @return this text
     */
    public ZvText font(String name, byte[] data) {
        Objects.requireNonNull(name, "name");
        Objects.requireNonNull(data, "data");
        synchronized (lock) {
            begin();
            Lock fonts = FontLock.addFont(name);
            try {
                gotFont(null, name, ZvText_SetFont2(name, data));
            } finally {
                fonts.unlock();
            }
            return this;
        }
    }

    /**
     * Takes the font from an asset, unless its name is known already.
     *
     * @param assets the application's
     * @param name the name by which it is known from then on
     * @return this text
     */
    public ZvText font(AssetManager assets, String name) {
        Objects.requireNonNull(assets, "assets");
        Objects.requireNonNull(name, "name");
        synchronized (lock) {
            begin();
            Lock fonts = FontLock.addFont(name);
            try {
                gotFont(assets, name, ZvText_SetFont3(assets, name));
            } finally {
                fonts.unlock();
            }
            return this;
        }
    }

    private void gotFont(AssetManager assets, String name, boolean done) {
        check(done, "the font \"" + name + "\" could not be loaded");
        FontLock.learned(name);
        hasFont = true;
        self.setFont(assets, name);
        measured = false;
    }

    /**
     * Takes size, scale, skew, spacing, features, flags and languages of the text. The colour comes from the view.
     *
     * @param paint copied
     * @return this text
     */
    public ZvText paint(Paint paint) {
        Objects.requireNonNull(paint, "paint");
        synchronized (lock) {
            begin();
            check(ZvText_SetPaint(paint), "the paint could not be read");
            self.setPaint(paint);
            paintSize = paint.getTextSize();
            resized();
            return this;
        }
    }

    // The style's effects may follow the text's size.
    private void resized() {
        measured = false;
        look.fit(this, self.hasWords() || paintSize == 0 ? self.size() : paintSize);
    }

    /**
     * Sets the words of a text without a view: it measures them, breaks them and sizes the picture by itself. A render
     * throws an {@link IllegalStateException} if they take more than 32767 pixels a side.
     *
     * @param words line endings begin lines
     * @return this text
     */
    public ZvText text(String words) {
        Objects.requireNonNull(words, "words");
        synchronized (lock) {
            begin();
            self.setWords(words);
            resized();
            return this;
        }
    }

    /**
     * Sets the text's size if it has no view; initially 96.
     *
     * @param pixels per em, above 0 and up to 10000
     * @return this text
     */
    public ZvText size(float pixels) {
        synchronized (lock) {
            begin();
            self.setSize(ZvStyle.SIZE.checked("size", pixels));
            resized();
            return this;
        }
    }

    /**
     * Breaks the lines of a text without a view.
     *
     * @param width of the column in pixels; 0 for none: then only line endings in the text end lines
     * @return this text
     */
    public ZvText wrap(int width) {
        synchronized (lock) {
            begin();
            self.setWrap((int) Setting.number("width", 0, 0, 32767, "px").checked("wrap width", width));
            measured = false;
            return this;
        }
    }

    /**
     * Sets the alignment of the lines of a text without a view in their column; initially left.
     *
     * @param align for all lines
     * @return this text
     */
    public ZvText align(Paint.Align align) {
        Objects.requireNonNull(align, "align");
        synchronized (lock) {
            begin();
            self.setAlign(align);
            measured = false;
            return this;
        }
    }

    private void leaveWords() {
        if (self.hasWords()) {
            self.setWords(null);
            resized();
        }
    }

    // Sets up a view of the size that the words take.
    private void measure() {
        if (!self.hasWords() || measured) {
            return;
        }
        Layout lines = self.lines();
        int shown = shownLines > 0 ? Math.min(shownLines, lines.getLineCount()) : lines.getLineCount();
        int width = self.width(lines);
        int height = Math.max(lines.getLineBottom(shown - 1), 1);
        if (Math.max(width, height) > MAX_SIDE || (long) width * height > MAX_PIXELS) {
            throw new IllegalStateException("the text would be " + width + " x " + height + " pixels; at most " + MAX_SIDE
                    + " a side and " + MAX_PIXELS + " in all");
        }
        check(ZvText_SetPaint(self.paint()), "the paint could not be read");
        check(ZvTextEffects.ZvTextEffects_SetView(mHandle, width, height, shown), "the view could not be set");
        layout = lines;
        hasView = true;
        viewColor = 0xFF000000;
        placeLines();
        measured = true;
    }

    /**
     * Takes size, paddings, gravity, line limit and text colour of the picture.
     *
     * @param view read now
     * @return this text
     */
    public ZvText view(TextView view) {
        Objects.requireNonNull(view, "view");
        synchronized (lock) {
            begin();
            check(ZvText_SetView(view), "the view could not be read");
            hasView = true;
            viewColor = view.getCurrentTextColor();
            leaveWords();
            placeLines();
            return this;
        }
    }

    /**
     * Shows that many lines instead of the view's own limit; 0 restores the view's.
     *
     * @param count 0 or the number of lines
     * @return this text
     */
    public ZvText lines(int count) {
        synchronized (lock) {
            begin();
            check(ZvText_SetLine(count), "the number of lines could not be set");
            shownLines = count;
            measured = false;
            placeLines();
            return this;
        }
    }

    /**
     * Sets the text and its lines, which are placed in the view. The layout is read again when the view or the number of
     * lines changes later.
     *
     * @param layout kept until another is given
     * @return this text
     */
    public ZvText layout(Layout layout) {
        Objects.requireNonNull(layout, "layout");
        synchronized (lock) {
            begin();
            Layout before = this.layout;
            this.layout = layout;
            leaveWords();
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

    /**
     * Fills the box of each line behind its text.
     *
     * @param color 0xAARRGGBB
     * @return this text
     */
    public ZvText background(int color) {
        return setBackground(color);
    }

    /**
     * Fills nothing behind the lines.
     *
     * @return this text
     */
    public ZvText noBackground() {
        return setBackground(null);
    }

    private ZvText setBackground(Integer color) {
        synchronized (lock) {
            begin();
            look.background = color;
            return this;
        }
    }

    /**
     * Sets the text's colour, in the place of the view's or style's.
     *
     * @param color 0xAARRGGBB
     * @return this text
     */
    public ZvText color(int color) {
        synchronized (lock) {
            begin();
            look.color = color;
            return this;
        }
    }

    /**
     * Sets the opacity of the whole picture, 0 to 1.
     *
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText opacity(float opacity) {
        synchronized (lock) {
            begin();
            look.opacity = Setting.opacity(1).checked("opacity", opacity);
            return this;
        }
    }

    /**
     * Takes what the style sets: effects, in the place of those of their kind, colours, layers, the ground, and of a text
     * without a view its size, letter spacing and features. Effects that are designed for a size follow the text's, also
     * when it is set later.
     *
     * @param style any, also several one after the other
     * @return this text
     */
    public ZvText style(ZvStyle style) {
        Objects.requireNonNull(style, "style");
        synchronized (lock) {
            begin();
            style.applyTo(self);
            look.take(this, style);
            resized();
            return this;
        }
    }

    // --- Effects

    /**
     * Outlines the text.
     *
     * @param width in pixels, 0 to 100
     * @param color 0xAARRGGBB
     * @param position on the edge or beside it
     * @return this text
     */
    public ZvText stroke(float width, int color, Stroke position) {
        return stroke(width, color, position, 1);
    }

    /**
     * The same, translucent.
     *
     * @param width in pixels, 0 to 100
     * @param color 0xAARRGGBB
     * @param position on the edge or beside it
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText stroke(float width, int color, Stroke position, float opacity) {
        Objects.requireNonNull(position, "position");
        return add(EffectKind.STROKE, width, color, position.position, opacity);
    }

    /**
     * Casts a shadow behind the text.
     *
     * @param angle direction of the light: 0 is the right, 90 above; the shadow falls on the other side
     * @param distance how far it falls
     * @param size how far its edge is blurred
     * @param color 0xAARRGGBB
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText outerShadow(float angle, float distance, float size, int color, float opacity) {
        return add(EffectKind.OUTER_SHADOW, angle, distance, size, color, opacity);
    }

    /**
     * Casts a shadow of the text's edge into the text; arguments as of {@link #outerShadow}.
     *
     * @param angle where the light comes from, in degrees
     * @param distance in pixels, 0 to 100
     * @param size in pixels, 0 to 100
     * @param color 0xAARRGGBB
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText innerShadow(float angle, float distance, float size, int color, float opacity) {
        return add(EffectKind.INNER_SHADOW, angle, distance, size, color, opacity);
    }

    /**
     * Lets the text shine outwards, over that many pixels.
     *
     * @param size in pixels, 0 to 100
     * @param color 0xAARRGGBB
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText outerGlow(float size, int color, float opacity) {
        return add(EffectKind.OUTER_GLOW, size, color, opacity, new Stops());
    }

    /**
     * The same in several colours, from the text outwards.
     *
     * @param size in pixels, 0 to 100
     * @param stops copied
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText outerGlow(float size, Stops stops, float opacity) {
        return add(EffectKind.OUTER_GLOW, size, 0xFF000000, opacity, Objects.requireNonNull(stops, "stops"));
    }

    /**
     * Lets the text's edge shine inwards, over that many pixels.
     *
     * @param size in pixels, 0 to 100
     * @param color 0xAARRGGBB
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText innerGlow(float size, int color, float opacity) {
        return add(EffectKind.INNER_GLOW, size, color, opacity, new Stops());
    }

    /**
     * The same in several colours, from the edge inwards.
     *
     * @param size in pixels, 0 to 100
     * @param stops copied
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText innerGlow(float size, Stops stops, float opacity) {
        return add(EffectKind.INNER_GLOW, size, 0xFF000000, opacity, Objects.requireNonNull(stops, "stops"));
    }

    /**
     * Fills the text with colours that merge, spread evenly over its box; angles as below.
     *
     * @param angle in degrees
     * @param colors 0xAARRGGBB
     * @return this text
     */
    public ZvText linearGradient(float angle, int... colors) {
        return linearGradient(angle, 1, Stops.of(colors), 1);
    }

    /**
     * Fills the text with a gradient.
     *
     * @param angle 0 runs from left to right, 90 from bottom to top
     * @param scale how far the colours are spread: 1 over the text's box, 2, the most, over twice that, which shows the
     *     middle ones; below 0.1 there is no fill at all
     * @param colors 0xAARRGGBB
     * @param positions of the colours, 0 to 1, used in hundredths
     * @param opacity 0 to 1
     * @return this text
     * @throws IllegalArgumentException if there are not as many positions as colours
     */
    public ZvText linearGradient(float angle, float scale, int[] colors, float[] positions, float opacity) {
        return linearGradient(angle, scale, Stops.at("linear-gradient", colors, positions), opacity);
    }

    /**
     * Fills the text with a gradient; angle and scale as above.
     *
     * @param angle in degrees
     * @param scale 0 to 2
     * @param stops copied
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText linearGradient(float angle, float scale, Stops stops, float opacity) {
        return add(EffectKind.LINEAR_GRADIENT, angle, scale, opacity, Objects.requireNonNull(stops, "stops"));
    }

    /**
     * Fills the text with a gradient from the centre of its box outwards.
     *
     * @param scale the diameter in widths of the box, 0 to 2
     * @param stops copied
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText radialGradient(float scale, Stops stops, float opacity) {
        return add(EffectKind.RADIAL_GRADIENT, scale, opacity, Objects.requireNonNull(stops, "stops"));
    }

    /**
     * Fills the text with a picture in tiles.
     *
     * @param picture copied
     * @param scale pixels for each of the picture's, 0 to 10
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText pattern(ZvPicture picture, float scale, float opacity) {
        return add(EffectKind.PATTERN, Objects.requireNonNull(picture, "picture"), scale, opacity);
    }

    /**
     * Raises the text's edges.
     *
     * @param edge where it lies
     * @param relief copied
     * @return this text
     */
    public ZvText bevel(Relief.Edge edge, Relief relief) {
        return add(relief.bevel(edge));
    }

    /**
     * Presses the text out of a sheet: a relief on both sides of its edge, perhaps lit from both sides.
     *
     * @param bothSides whether it is lit from both sides
     * @param relief copied
     * @return this text
     */
    public ZvText emboss(boolean bothSides, Relief relief) {
        return add(relief.emboss(bothSides));
    }

    private ZvText add(EffectKind kind, Object... arguments) {
        synchronized (lock) {
            begin();
            return add(Effect.of(kind, arguments));
        }
    }

    private ZvText add(Effect effect) {
        synchronized (lock) {
            begin();
            added(effect);
            look.own(effect.kind);
            return this;
        }
    }

    void added(Effect effect) {
        check(effect.addTo(this) >= 0, "the " + effect.kind.key + " could not be added");
    }

    /**
     * Takes all effects away, those of a style and its layers and ground too.
     *
     * @return this text
     */
    public ZvText clearEffects() {
        synchronized (lock) {
            begin();
            ZvText_ClearAllTextEffect();
            look.clear();
            return this;
        }
    }

    /**
     * Takes one effect away, if it is there.
     *
     * @param kind its name in styles, such as {@code "inner-glow"}
     * @return this text
     */
    public ZvText clearEffect(String kind) {
        Objects.requireNonNull(kind, "kind");
        synchronized (lock) {
            begin();
            EffectKind found = EffectKind.find(kind);
            if (found == null) {
                throw new IllegalArgumentException("\"" + kind + "\" is not one of " + EffectKind.names());
            }
            look.forget(found);
            ZvTextEffects.ZvTextEffects_ClearEffect(mHandle, found.number);
            return this;
        }
    }

    /**
     * Bytes that are equal for texts with the same effects, added in the same order, and the same colour.
     *
     * @return the bytes
     */
    public byte[] layerKey() {
        synchronized (lock) {
            begin();
            applyColors();
            byte[] key = ZvTextEffects.ZvTextEffects_GetLayerKey(mHandle);
            used = true;
            check(key != null, "the key could not be made");
            return key;
        }
    }
    /**
     * Renders the picture: rows of {@link #width} pixels from the top, straight {@code 0xAARRGGBB}. Its size is the view
     * plus the margins that the effects need.
     *
     * @return the pixels, rows from the top
     * @throws IllegalStateException if the view, the layout or any font is missing
     */
    public int[] render() {
        synchronized (lock) {
            begin();
            measure();
            require(hasView, "view");
            require(layout != null, "layout");
            if (!hasFont && !FontManager.isConfigured()) {
                throw new IllegalStateException("no font: call font, or FontManager.configure, before");
            }
            look.check();
            applyColors();
            if (look.background != null && drawn) {
                placeLines(); // a render moves the boxes of the lines
            }
            int[] argb;
            Lock fonts = FontLock.read();
            try {
                argb = look.isLayered() ? look.render(this, textColor()) : ZvText_RenderTextEffect();
            } finally {
                fonts.unlock();
            }
            drawn = true;
            check(argb != null, "the picture could not be made");
            return argb;
        }
    }

    private int textColor() {
        return look.color != null ? look.color : viewColor;
    }

    private void applyColors() {
        double share = look.isLayered() ? 1 : look.opacity; // layers are joined before
        int behind = look.background != null ? look.background : 0;
        check(ZvText_SetBackgroundColor(Look.faded(behind, share), look.background != null)
                        && ZvTextEffects.ZvTextEffects_SetTextColor(mHandle, Look.faded(textColor(), share)),
                "the colours could not be set");
    }

    /**
     * The same with its size, its margins and the position of the text.
     *
     * @return the picture
     */
    public ZvPicture picture() {
        synchronized (lock) {
            int[] argb = render();
            int[] size = size();
            int[] margins = margins();
            int[] line = ZvTextEffects.ZvTextEffects_GetOrigin(mHandle);
            used = true;
            int[] origin = line == null ? new int[2] : new int[] {line[0] + margins[0], line[1] + margins[1]};
            return new ZvPicture(argb, size[0], size[1], margins, origin);
        }
    }

    private static void require(boolean there, String method) {
        if (!there) {
            throw new IllegalStateException("call " + method + " before");
        }
    }

    /**
     * Of the last picture, in pixels; 0 before the first.
     *
     * @return pixels
     */
    public int width() {
        return size()[0];
    }

    /**
     * Of the last picture, in pixels; 0 before the first.
     *
     * @return pixels
     */
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

    /**
     * The pixels that the effects need to the left of the view.
     *
     * @return pixels
     */
    public int marginLeft() {
        return margins()[0];
    }

    /**
     * The pixels that the effects need above the view.
     *
     * @return pixels
     */
    public int marginTop() {
        return margins()[1];
    }

    /**
     * The pixels that the effects need to the right of the view.
     *
     * @return pixels
     */
    public int marginRight() {
        return margins()[2];
    }

    /**
     * The pixels that the effects need below the view.
     *
     * @return pixels
     */
    public int marginBottom() {
        return margins()[3];
    }

    private int[] margins() {
        synchronized (lock) {
            begin();
            if (look.isLayered()) {
                int[] margins = look.margins(this, textColor());
                used = true;
                return margins;
            }
            return new int[] {
                ZvText_GetEffectLeftOffset(), ZvText_GetEffectTopOffset(),
                ZvText_GetEffectRightOffset(), ZvText_GetEffectBottomOffset()
            };
        }
    }

    /** Frees the native memory. Every later call but this one gives an {@link IllegalStateException}. */
    @Override
    public void close() {
        synchronized (lock) {
            closed = true;
            layout = null;
            look.clear();
            release.run();
        }
    }

    // In the order of their registration. Angles, sizes and opacities as above; kind is not used; position as in Stroke.

    private native void ZvText_finalize();

    native int ZvText_AddInnerShadowTextEffect(float angle, float distance, float size, int color, float opacity);

    native int ZvText_AddLinearGradientTextEffect(
            float angle, float scale, int[] colors, float[] opacities, float[] positions, float opacity);

    native int ZvText_AddOuterGlowTextEffect(float size, int color, float opacity);

    native int ZvText_AddOuterShadowTextEffect(float angle, float distance, float size, int color, float opacity);

    native int ZvText_AddStrokeTextEffect(float width, int color, float opacity, int kind, int position);

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
