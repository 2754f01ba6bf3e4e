// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import java.util.Objects;

/** The colours and effects of a {@link ZvText}, which is the only subclass. */
abstract class TextLook {
    // Held during every call, and taken before the fonts' lock.
    final Object lock = new Object();
    final Look look = new Look();

    TextLook() {}

    /** Every call starts with this, under the lock. It makes the native object; a closed text throws. */
    abstract void begin();

    /** Gives the effect to the native object, in the place of an earlier one of its kind. */
    abstract void give(Effect effect);

    /** Takes the effect of that kind from the native object. */
    abstract void takeAway(EffectKind kind);

    abstract void takeAllAway();

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
            return (ZvText) this;
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
            return (ZvText) this;
        }
    }

    /**
     * Sets whether emoji and other glyphs with colours of their own are drawn in these, over the effects; initially, and if
     * no style says otherwise, they are. Else they are silhouettes in the text's colour. Android draws silhouettes always.
     *
     * @param own whether in their own colours
     * @return this text
     */
    public ZvText colorGlyphs(boolean own) {
        synchronized (lock) {
            begin();
            look.colorGlyphs = own;
            return (ZvText) this;
        }
    }

    /**
     * Sets the opacity of the picture. Text, background and emoji fade each by itself, layers and a canvas as a whole.
     *
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText opacity(float opacity) {
        synchronized (lock) {
            begin();
            look.opacity = Setting.opacity(1).checked("opacity", opacity);
            return (ZvText) this;
        }
    }

    // --- Effects

    private ZvText add(EffectKind kind, Object... arguments) {
        synchronized (lock) {
            begin();
            return add(Effect.of(kind, arguments));
        }
    }

    private ZvText add(Effect effect) {
        synchronized (lock) {
            begin();
            give(effect);
            look.own(effect.kind);
            return (ZvText) this;
        }
    }

    /**
     * Outlines the text.
     *
     * @param width in pixels, 0 to 100
     * @param color 0xAARRGGBB
     * @param position around the glyphs, within them, or half on either side of their edge
     * @return this text
     */
    public ZvText stroke(float width, int color, Stroke position) {
        return stroke(width, color, position, 1);
    }

    /**
     * Outlines the text with a translucent line.
     *
     * @param width in pixels, 0 to 100
     * @param color 0xAARRGGBB
     * @param position around the glyphs, within them, or half on either side of their edge
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
     * @param distance from the text to its shadow in pixels, 0 to 100
     * @param size of the blur at the shadow's edge in pixels, 0 to 100
     * @param color 0xAARRGGBB
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText outerShadow(float angle, float distance, float size, int color, float opacity) {
        return add(EffectKind.OUTER_SHADOW, angle, distance, size, color, opacity);
    }

    /**
     * Casts a shadow of the text's edge into the text, as if it were cut out of a sheet.
     *
     * @param angle direction of the light: 0 is the right, 90 above
     * @param distance from the edge to its shadow in pixels, 0 to 100
     * @param size of the blur at the shadow's edge in pixels, 0 to 100
     * @param color 0xAARRGGBB
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText innerShadow(float angle, float distance, float size, int color, float opacity) {
        return add(EffectKind.INNER_SHADOW, angle, distance, size, color, opacity);
    }

    /**
     * Lets the text glow outwards.
     *
     * @param size how far the glow reaches in pixels, 0 to 100
     * @param color 0xAARRGGBB
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText outerGlow(float size, int color, float opacity) {
        return add(EffectKind.OUTER_GLOW, size, color, opacity, new Stops());
    }

    /**
     * Lets the text glow outwards in several colours.
     *
     * @param size how far the glow reaches in pixels, 0 to 100
     * @param stops the colours from the text outwards; copied
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText outerGlow(float size, Stops stops, float opacity) {
        return add(EffectKind.OUTER_GLOW, size, 0xFF000000, opacity, Objects.requireNonNull(stops, "stops"));
    }

    /**
     * Lets the text's edge glow inwards.
     *
     * @param size how far the glow reaches in pixels, 0 to 100
     * @param color 0xAARRGGBB
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText innerGlow(float size, int color, float opacity) {
        return add(EffectKind.INNER_GLOW, size, color, opacity, new Stops());
    }

    /**
     * Lets the text's edge glow inwards in several colours.
     *
     * @param size how far the glow reaches in pixels, 0 to 100
     * @param stops the colours from the edge inwards; copied
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText innerGlow(float size, Stops stops, float opacity) {
        return add(EffectKind.INNER_GLOW, size, 0xFF000000, opacity, Objects.requireNonNull(stops, "stops"));
    }

    /**
     * Fills the text with colours that merge, spread evenly over its box.
     *
     * @param angle 0 runs from left to right, 90 from bottom to top
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
     * @param scale length of the gradient in lengths of the text's box, 0 to 2; below 0.1 there is no fill at all
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
     * Fills the text with a gradient.
     *
     * @param angle 0 runs from left to right, 90 from bottom to top
     * @param scale length of the gradient in lengths of the text's box, 0 to 2; below 0.1 there is no fill at all
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
     * Fills the text with a picture that repeats.
     *
     * @param picture copied
     * @param scale pixels for each pixel of the picture, 0 to 10
     * @param opacity 0 to 1
     * @return this text
     */
    public ZvText pattern(ZvPicture picture, float scale, float opacity) {
        return add(EffectKind.PATTERN, Objects.requireNonNull(picture, "picture"), scale, opacity);
    }

    /**
     * Raises or sinks the text's edges.
     *
     * @param edge around the glyphs or within them
     * @param relief copied
     * @return this text
     */
    public ZvText bevel(Relief.Edge edge, Relief relief) {
        return add(relief.bevel(edge));
    }

    /**
     * Presses the text out of a sheet: a relief on both sides of its edge.
     *
     * @param bothSides whether the light falls from both sides
     * @param relief copied
     * @return this text
     */
    public ZvText emboss(boolean bothSides, Relief relief) {
        return add(relief.emboss(bothSides));
    }

    /**
     * Removes all effects, also those of styles, their layers and their canvas.
     *
     * @return this text
     */
    public ZvText clearEffects() {
        synchronized (lock) {
            begin();
            takeAllAway();
            look.clear();
            return (ZvText) this;
        }
    }

    /**
     * Removes one effect, if the text has it.
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
            takeAway(found);
            return (ZvText) this;
        }
    }
}
