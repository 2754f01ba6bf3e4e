// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import com.orvane.android.sdk.zve.Setting.Tint;
import java.util.Objects;

/**
 * Raised or sunken edges in the light, for {@link ZvText#bevel} and {@link ZvText#emboss}, which copy it. At the start they are
 * 8 pixels wide, raised, soft, and lit from the upper left. For one thread at a time.
 */
public final class Relief {
    /** The position of a bevel. */
    public enum Edge {
        /** Around the glyphs. */
        OUTER,
        /** Within the glyphs. */
        INNER
    }

    private boolean down;
    private boolean hard;
    private float size = 8;
    private float depth = 1;
    private float soften;
    private float angle = 135;
    private float altitude = 30;
    private Tint highlight = new Tint(0xFFFFFFFF, 0.5);
    private Tint shadow = new Tint(0xFF000000, 0.5);
    private float opacity = 1;

    /** A relief as described above. */
    public Relief() {}

    /**
     * Makes the edges sink.
     *
     * @return this relief
     */
    public Relief down() {
        down = true;
        return this;
    }

    /**
     * Makes the edges sharp.
     *
     * @return this relief
     */
    public Relief hard() {
        hard = true;
        return this;
    }

    /**
     * Sets how wide the edges are.
     *
     * @param pixels 0 to 100
     * @return this relief
     */
    public Relief size(float pixels) {
        size = pixels;
        return this;
    }

    /**
     * Sets how steep the edges are.
     *
     * @param factor 0 to 10; 1 at the start
     * @return this relief
     */
    public Relief depth(float factor) {
        depth = factor;
        return this;
    }

    /**
     * Blurs light and shadow.
     *
     * @param pixels 0 to 16
     * @return this relief
     */
    public Relief soften(float pixels) {
        soften = pixels;
        return this;
    }

    /**
     * Sets the direction of the light.
     *
     * @param degrees counter-clockwise from the right
     * @param altitude above the page, 0 to 89 degrees
     * @return this relief
     */
    public Relief light(float degrees, float altitude) {
        this.angle = degrees;
        this.altitude = altitude;
        return this;
    }

    /**
     * Sets the colour of edges that face the light.
     *
     * @param color 0xAARRGGBB
     * @param opacity 0 to 1, times the colour's alpha
     * @return this relief
     */
    public Relief highlight(int color, float opacity) {
        highlight = new Tint(color, opacity);
        return this;
    }

    /**
     * Sets the colour of edges that face away from the light.
     *
     * @param color 0xAARRGGBB
     * @param opacity 0 to 1, times the colour's alpha
     * @return this relief
     */
    public Relief shadow(int color, float opacity) {
        shadow = new Tint(color, opacity);
        return this;
    }

    /**
     * Sets the opacity of light and shadow together.
     *
     * @param opacity 0 to 1
     * @return this relief
     */
    public Relief opacity(float opacity) {
        this.opacity = opacity;
        return this;
    }

    Effect bevel(Edge edge) {
        return effect(EffectKind.BEVEL, Objects.requireNonNull(edge, "edge") == Edge.INNER ? 1 : 0);
    }

    Effect emboss(boolean bothSides) {
        return effect(EffectKind.EMBOSS, bothSides ? 3 : 1);
    }

    private Effect effect(EffectKind kind, int style) {
        return Effect.of(kind, style, hard ? 1 : 0, down ? 0 : 1, size, depth, angle, altitude, soften, highlight, shadow,
                opacity);
    }
}
