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
 * <p>A picture needs a font, and either words or a paint, a view and a layout, set in any order. Paint and view are read when
 * they are set, a layout when both it and a view are set; later changes to these objects may have no effect. A text has at most
 * one effect of each kind: another one of the kind replaces it.
 *
 * <p>Colours are {@code 0xAARRGGBB}. Where a method takes an opacity too, the colour's alpha multiplies it. Angles are used as
 * whole degrees; distances, sizes and stroke widths as whole pixels. A number that is outside its range or NaN throws an {@link
 * IllegalArgumentException} that names the argument.
 *
 * <p>Null arguments throw a {@link NullPointerException}, and values that the library refuses a {@link ZvException}; the
 * text is then unchanged. If a paint, view or layout throws an exception, the call that reads it throws that exception.
 *
 * <p>Threads: a text may be used from any thread; calls on one text wait for each other, and renders of several texts run in
 * parallel. Paints, views and layouts must not call the kit while they are read.
 *
 * <p>{@link #close} frees the native memory. If it is not called, the memory is freed some time after the text became
 * unreachable.
 */
public final class ZvText extends TextLook implements AutoCloseable {
    // The first half of U+20000. SetLayout loses a part of such characters.
    private static final char FIRST_ABOVE_1FFFF = '\uD840';

    // The native object's handle; negative while there is none. Natives read and write it.
    private int mHandle = -1;

    private final Handle handle = new Handle();
    private final Release release;
    private final TextLines lines;
    private boolean closed;
    private boolean hasFont;

    // Written after natives that take the handle alone: this text, and so its native object, stays reachable until then.
    private volatile boolean used;

    /**
     * A text with nothing set.
     *
     * @throws UnsatisfiedLinkError if the library is not found; see {@link ZvLibrary}
     */
    public ZvText() {
        ZvLibrary.load();
        lines = new TextLines(this);
        release = Release.of(this, handle);
    }

    // Stands in for an unreachable text to free its native object.
    private ZvText(int handle) {
        mHandle = handle;
        lines = null;
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

    @Override
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

    @Override
    void give(Effect effect) {
        check(effect.addTo(this) >= 0, "the " + effect.kind.key + " could not be added");
    }

    @Override
    void takeAway(EffectKind kind) {
        ZvTextEffects.ZvTextEffects_ClearEffect(mHandle, kind.number);
        used = true;
    }

    @Override
    void takeAllAway() {
        ZvText_ClearAllTextEffect();
    }

    /** Null where words need a layout of the platform's. Else the room in the view for ink beyond the lines. */
    int[] layOut(SelfLayout self, int count) {
        check(ZvText_SetPaint(self.paint()), "the paint could not be read");
        int[] lean = ZvTextEffects.ZvTextEffects_LayOut(
                mHandle, self.words(), self.wrap(), self.align(), count, self.size(), self.wordSpacing(), self.lineHeight());
        check(lean != null, "the words could not be laid out");
        return lean.length == 0 ? null : lean;
    }

    void leaveWords() {
        check(ZvTextEffects.ZvTextEffects_LeaveWords(mHandle), "the words could not be taken away");
    }

    // Without paddings.
    void setView(int width, int height, int maxLines) {
        check(ZvTextEffects.ZvTextEffects_SetView(mHandle, width, height, maxLines), "the view could not be set");
    }

    void setLines(Layout layout) {
        check(ZvText_SetLayout(layout), "the layout could not be read");
        CharSequence words = layout.getText();
        if (words != null && words.chars().anyMatch(c -> c >= FIRST_ABOVE_1FFFF && c <= Character.MAX_HIGH_SURROGATE)) {
            check(ZvTextEffects.ZvTextEffects_SetWords(mHandle, words.toString()), "the text could not be set");
        }
    }

    static void check(boolean done, String otherwise) {
        if (!done) {
            throw new ZvException(otherwise);
        }
    }

    /**
     * Sets the font from a file, which is read once per process.
     *
     * @param path the file, or the name under which a font was added earlier
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
     * Sets the font from a font file's bytes. Later calls, also {@link #font(String)}, need its name only. If a font has that
     * name already, that one is set.
     *
     * @param name any
     * @param data the bytes of a font file; copied
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
     * Sets the font from an asset of the application. If a font has that name already, that one is set.
     *
     * @param assets the application's
     * @param name of the asset, and from then on of the font
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
        lines.self.setFont(assets, name);
        lines.changed();
    }

    /**
     * Sets size, scale, skew, spacing, features, flags and languages of the text as the paint has them. The colour comes from
     * the view.
     *
     * @param paint copied
     * @return this text
     */
    public ZvText paint(Paint paint) {
        Objects.requireNonNull(paint, "paint");
        synchronized (lock) {
            begin();
            check(ZvText_SetPaint(paint), "the paint could not be read");
            lines.setPaint(paint);
            resized();
            return this;
        }
    }

    // A style's effects may follow the text's size.
    private void resized() {
        lines.changed();
        look.fit(this, lines.size());
    }

    /**
     * Sets the words of a text without a view. It measures them, breaks them into lines and makes the picture as large as they
     * are. A render throws an {@link IllegalStateException} if that is more than 32767 pixels a side.
     *
     * @param words line endings begin lines
     * @return this text
     */
    public ZvText text(String words) {
        Objects.requireNonNull(words, "words");
        synchronized (lock) {
            begin();
            lines.self.setWords(words);
            resized();
            return this;
        }
    }

    /**
     * Sets the size of a text without a view; 96 at the start.
     *
     * @param pixels per em, above 0 and up to 10000
     * @return this text
     */
    public ZvText size(float pixels) {
        synchronized (lock) {
            begin();
            lines.self.setSize(ZvStyle.SIZE.checked("size", pixels));
            resized();
            return this;
        }
    }

    /**
     * Breaks the lines of a text without a view.
     *
     * @param width in pixels above which a line is broken; 0 breaks only at line endings in the text
     * @return this text
     */
    public ZvText wrap(int width) {
        synchronized (lock) {
            begin();
            lines.self.setWrap((int) Setting.number("width", 0, 0, 32767, "px").checked("wrap width", width));
            lines.changed();
            return this;
        }
    }

    /**
     * Sets the alignment of the lines of a text without a view; left at the start.
     *
     * @param align for all lines
     * @return this text
     */
    public ZvText align(Paint.Align align) {
        Objects.requireNonNull(align, "align");
        synchronized (lock) {
            begin();
            lines.self.setAlign(align);
            lines.changed();
            return this;
        }
    }

    /**
     * Sets the picture's size, paddings, gravity, line limit and text colour as the view has them.
     *
     * @param view read now
     * @return this text
     */
    public ZvText view(TextView view) {
        Objects.requireNonNull(view, "view");
        synchronized (lock) {
            begin();
            check(ZvText_SetView(view), "the view could not be read");
            if (lines.setView(view.getCurrentTextColor())) {
                resized();
            }
            return this;
        }
    }

    /**
     * Sets how many lines show at most.
     *
     * @param count the number of lines; 0 for as many as the view, or a text without a view, has
     * @return this text
     */
    public ZvText lines(int count) {
        synchronized (lock) {
            begin();
            check(ZvText_SetLine(count), "the number of lines could not be set");
            lines.setCount(count);
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
            if (lines.setLayout(layout)) {
                resized();
            }
            return this;
        }
    }

    /**
     * Sets what the style says: effects, which replace those of their kind, colours, layers and canvas; for a text without a view
     * also size, letter and word spacing, line height, features, and upper case by the rules of the paint's language. Effects that
     * are designed for a size grow and shrink with the text, also when its size is set later.
     *
     * @param style on top of those set before
     * @return this text
     */
    public ZvText style(ZvStyle style) {
        Objects.requireNonNull(style, "style");
        synchronized (lock) {
            begin();
            style.applyTo(lines.self);
            look.take(this, style);
            resized();
            return this;
        }
    }

    /**
     * A key for caches: equal for texts with the same effects, added in the same order, and the same colour; with a style of
     * layers or a canvas, also with these.
     *
     * @return a copy
     */
    public byte[] layerKey() {
        synchronized (lock) {
            begin();
            applyColors();
            byte[] key = ZvTextEffects.ZvTextEffects_GetLayerKey(mHandle);
            check(key != null, "the key could not be made");
            key = look.isLayered() ? look.layeredKey(key, this, textColor()) : key;
            used = true;
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
            lines.ready(look.background != null);
            if (!hasFont && !FontManager.isConfigured()) {
                throw new IllegalStateException("no font: call font, or FontManager.configure, before");
            }
            look.check();
            applyColors();
            int[] argb;
            Lock fonts = FontLock.read();
            try {
                argb = look.render(this, textColor());
            } finally {
                fonts.unlock();
            }
            lines.drawn();
            used = true;
            check(argb != null, "the picture could not be made");
            return argb;
        }
    }

    private int textColor() {
        return look.color != null ? look.color : lines.viewColor;
    }

    private void applyColors() {
        double share = look.isLayered() ? 1 : look.opacity; // joined layers become translucent as a whole
        int behind = look.background != null ? look.background : 0;
        check(ZvText_SetBackgroundColor(Look.faded(behind, share), look.background != null)
                        && ZvTextEffects.ZvTextEffects_SetTextColor(mHandle, Look.faded(textColor(), share)),
                "the colours could not be set");
    }

    /**
     * Renders the picture, together with its size, its margins and the position of the text.
     *
     * @return the picture
     */
    public ZvPicture picture() {
        synchronized (lock) {
            int[] argb = render();
            int[] size = size();
            int[] effects = effectMargins();
            int[] line = ZvTextEffects.ZvTextEffects_GetOrigin(mHandle);
            used = true;
            int[] origin = line == null ? new int[2] : new int[] {line[0] + effects[0], line[1] + effects[1]};
            return new ZvPicture(argb, size[0], size[1], margins(), origin);
        }
    }

    /**
     * The width of the last picture.
     *
     * @return pixels; 0 before the first picture
     */
    public int width() {
        return size()[0];
    }

    /**
     * The height of the last picture.
     *
     * @return pixels; 0 before the first picture
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
     * The pixels to the left of the view: for effects, and without a view also for ink that leans out of the lines.
     *
     * @return pixels
     */
    public int marginLeft() {
        return margins()[0];
    }

    /**
     * The pixels above the view, for the same.
     *
     * @return pixels
     */
    public int marginTop() {
        return margins()[1];
    }

    /**
     * The pixels to the right of the view, for the same.
     *
     * @return pixels
     */
    public int marginRight() {
        return margins()[2];
    }

    /**
     * The pixels below the view, for the same.
     *
     * @return pixels
     */
    public int marginBottom() {
        return margins()[3];
    }

    private int[] margins() {
        synchronized (lock) {
            int[] margins = effectMargins();
            for (int i = 0; i < margins.length; i++) {
                margins[i] += lines.lean[i];
            }
            return margins;
        }
    }

    private int[] effectMargins() {
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

    /** Frees the native memory. Every later call except this one throws an {@link IllegalStateException}. */
    @Override
    public void close() {
        synchronized (lock) {
            closed = true;
            lines.forget();
            look.clear();
            release.run();
        }
    }

    // In the order of their registration. A stroke's kind is not used; its position is that of Stroke.

    private native void ZvText_finalize();

    native int ZvText_AddInnerShadowTextEffect(float angle, float distance, float size, int color, float opacity);

    native int ZvText_AddLinearGradientTextEffect(
            float angle, float scale, int[] colors, float[] opacities, float[] positions, float opacity);

    native int ZvText_AddOuterGlowTextEffect(float size, int color, float opacity);

    native int ZvText_AddOuterShadowTextEffect(float angle, float distance, float size, int color, float opacity);

    native int ZvText_AddStrokeTextEffect(float width, int color, float opacity, int kind, int position);

    private native void ZvText_ClearAllTextEffect();

    native int[] ZvText_RenderTextEffect();

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
