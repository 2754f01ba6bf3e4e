// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import java.util.Arrays;

/**
 * The colours of a gradient or glow and where they stand, from its beginning: at most 256, each no further back than the one
 * before. A gradient or glow copies them. Not for several threads at once.
 */
public final class Stops {
    static final int MAX = 256;
    static final Setting POSITION = Setting.number("position", 0, 0, 100, "%").required();

    private int count;
    private int[] colors = new int[4];
    private float[] opacities = new float[4];
    private float[] positions = new float[4];

    /** No stops yet. */
    public Stops() {}

    /**
     * The colours spread evenly.
     *
     * @param colors 0xAARRGGBB
     * @return stops at equal distances, the first at 0 and the last at 100 percent
     */
    public static Stops of(int... colors) {
        Stops stops = new Stops();
        for (int i = 0; i < colors.length; i++) {
            stops.put(colors[i], i == 0 ? 0 : (float) i / (colors.length - 1), 1);
        }
        return stops;
    }

    /** With positions as the library takes them, 0 to 1. */
    static Stops at(String where, int[] colors, float[] positions) {
        if (colors.length != positions.length) {
            throw new IllegalArgumentException(colors.length + " colors, " + positions.length + " positions");
        }
        Setting range = Setting.number("position", 0, 0, 1, "");
        Stops stops = new Stops();
        for (int i = 0; i < colors.length; i++) {
            range.checked(where + " positions[" + i + "]", positions[i]);
            stops.put(colors[i], positions[i], 1);
        }
        return stops;
    }

    /**
     * Adds a stop.
     *
     * @param color 0xAARRGGBB
     * @param percent of the way, whole ones count
     * @return these stops
     */
    public Stops add(int color, double percent) {
        return add(color, percent, 1);
    }

    /**
     * Adds a translucent stop.
     *
     * @param color 0xAARRGGBB
     * @param percent of the way, whole ones count
     * @param opacity 0 to 1, times the colour's alpha
     * @return these stops
     */
    public Stops add(int color, double percent, double opacity) {
        double position = POSITION.checked("stop position", percent);
        Setting.opacity(1).checked("stop opacity", opacity);
        put(color, hundredths(position), opacity);
        return this;
    }

    // The library's positions are hundredths, cut off after a multiplication in single precision: 53 / 100 would arrive
    // as 52. The next float above arrives as 53.
    private static float hundredths(double percent) {
        float position = (float) (percent / 100);
        return Math.floor(position * 100.0f) < Math.floor(percent) ? Math.nextUp(position) : position;
    }

    private void put(int color, float position, double opacity) {
        if (count == colors.length) {
            colors = Arrays.copyOf(colors, count * 2);
            opacities = Arrays.copyOf(opacities, count * 2);
            positions = Arrays.copyOf(positions, count * 2);
        }
        colors[count] = color;
        opacities[count] = Effect.opacity(color, opacity);
        positions[count++] = position;
    }

    /** A copy. */
    Stops checked(String where, boolean required) {
        if (count > MAX || (required && count == 0)) {
            throw new IllegalArgumentException(
                    where + ": " + count + " stops, not " + (required ? 1 : 0) + " to " + MAX);
        }
        for (int i = 1; i < count; i++) {
            if (positions[i] < positions[i - 1]) {
                throw new IllegalArgumentException(where + "[" + i + "].position: positions must not fall");
            }
        }
        Stops copy = new Stops();
        copy.count = count;
        copy.colors = colors();
        copy.opacities = opacities();
        copy.positions = positions();
        return copy;
    }

    int[] colors() {
        return Arrays.copyOf(colors, count);
    }

    float[] opacities() {
        return Arrays.copyOf(opacities, count);
    }

    float[] positions() {
        return Arrays.copyOf(positions, count);
    }
}
