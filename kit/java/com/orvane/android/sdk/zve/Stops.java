// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import java.util.Arrays;

/**
 * The colours of a gradient or glow and their positions: at most 256, none before the one added earlier. For one thread at a
 * time.
 */
public final class Stops {
    static final int MAX = 256;
    static final Setting POSITION = Setting.number("position", 0, 0, 100, "%");

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

    /** Stops at positions from 0 to 1. */
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
     * @param percent of the gradient's length; fractions are cut off
     * @return these stops
     */
    public Stops add(int color, double percent) {
        return add(color, percent, 1);
    }

    /**
     * Adds a translucent stop.
     *
     * @param color 0xAARRGGBB
     * @param percent of the gradient's length; fractions are cut off
     * @param opacity 0 to 1, times the colour's alpha
     * @return these stops
     */
    public Stops add(int color, double percent, double opacity) {
        double position = POSITION.checked("stop position", percent);
        Setting.opacity(1).checked("stop opacity", opacity);
        put(color, hundredths(position), opacity);
        return this;
    }

    /**
     * Puts positions evenly in the place of those that are NaN, in hundredths of a percent: the first is at 0, the last at 100,
     * the others between those that are known.
     */
    static void spread(double[] positions) {
        int last = positions.length - 1;
        positions[0] = Double.isNaN(positions[0]) ? 0 : positions[0];
        positions[last] = Double.isNaN(positions[last]) ? 100 : positions[last];
        int from = 0;
        for (int to = 1; to <= last; to++) {
            if (Double.isNaN(positions[to])) {
                continue;
            }
            for (int i = from + 1; i < to; i++) {
                double exact = positions[from] + (positions[to] - positions[from]) * (i - from) / (to - from);
                positions[i] = Math.floor(exact * 100 + 1e-6) / 100;
            }
            from = to;
        }
    }

    // The library multiplies by 100 in single precision and cuts the fraction off, which makes 52 of 53 / 100f. The next
    // larger float gives 53.
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

    /** A copy; throws if there are too few or too many, or if positions fall. */
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
