// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import com.orvane.android.sdk.zve.Setting.Type;
import java.io.IOException;
import java.io.InputStream;
import java.io.InputStreamReader;
import java.io.Reader;
import java.nio.charset.StandardCharsets;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.Map;

/**
 * How a text looks: a style file as {@code zvtext --style} reads it, or one of the presets. Immutable.
 */
public final class ZvStyle {
    static final Setting SIZE = Setting.number("size", 96, 0, 10000, "px").above();
    static final Setting DESIGNED_FOR = Setting.number("designed-for", 0, 0, 10000, "px").above();
    static final Setting[] SETTINGS = {
        SIZE, Setting.color(0xFF000000), Setting.of("background", Type.COLOR, null), Setting.of("canvas", Type.CANVAS, null),
        Setting.number("letter-spacing", 0, -1, 10, "em"), Setting.number("word-spacing", 0, -1, 10, "em"),
        Setting.number("line-height", 0, 0, 10, "").above(), Setting.of("upper-case", Type.FLAG, null),
        Setting.of("features", Type.FEATURES, null), Setting.opacity(1), Setting.of("color-glyphs", Type.FLAG, null),
        Setting.of("$schema", Type.TEXT, null),
        Setting.of("description", Type.TEXT, null), Setting.of("extends", Type.TEXT, null), DESIGNED_FOR
    };
    static final int MAX_LAYERS = 32;

    private static final String FOLDER = "/examples/styles/";
    private static final List<String> PRESETS = Collections.unmodifiableList(Arrays.asList(
            "aurora", "blocks", "blueprint", "candy", "chrome", "comic", "duotone", "engraved", "fire", "ghost", "glass",
            "glitch", "gold", "ice", "inline", "letterpress", "longshadow", "neon", "paper", "retro", "royal", "slime",
            "spectrum", "sticker", "triple"));

    // Settings that the style leaves out are null or empty.
    final Integer color;
    final Integer background;
    final Object canvas; // an Integer for a colour, or an Effect
    final Double opacity;
    final Boolean colorGlyphs;
    final List<Effect> effects;
    final List<Layer> layers; // from the front
    final double designedFor; // the text's size; 0 for any
    private final Double size;
    private final Double letterSpacing;
    private final Double wordSpacing;
    private final Double lineHeight;
    private final Boolean upperCase;
    private final String features;
    private final String description;

    /** Finds the pictures, and the other styles, that a style names. */
    public interface Pictures {
        /**
         * Gives the picture for a pattern.
         *
         * @param file as the style names it; do not open it just anywhere if the style is not your own
         * @return the picture; null if there is none
         * @throws IOException if it cannot be read
         */
        ZvPicture find(String file) throws IOException;

        /**
         * Gives the content of the style file that a style extends. Presets are not asked for.
         *
         * @param file as the style names it; in a file that was found so, from that file's folder on
         * @return JSON; null if there is none
         * @throws IOException if it cannot be read; the default implementation always throws
         */
        default String findStyle(String file) throws IOException {
            throw new IOException("only presets are known");
        }
    }

    /** One of several layers of a text. */
    static final class Layer {
        static final Setting SPREAD = Setting.number("spread", 0, -100, 100, "px").length().whole();
        static final Setting OFFSET_SIDE = Setting.number("offset", 0, -1000, 1000, "px").length().whole();
        static final Setting[] SETTINGS = {
            Setting.of("color", Type.COLOR, null), Setting.opacity(1), SPREAD,
            Setting.of("offset", Type.OFFSET, new double[2]), blend(), Setting.of("clip", Type.FLAG, false),
            Setting.of("knockout", Type.FLAG, false), Setting.of("color-glyphs", Type.FLAG, null)
        };

        final Integer color; // null: the text's
        final double opacity;
        final int blend;
        final boolean clip;
        final boolean knockout;
        final Boolean colorGlyphs;
        final List<Effect> effects;
        private final double spread;
        private final double[] offset;

        Layer(Map<String, Object> values, List<Effect> effects) {
            color = (Integer) values.get("color");
            opacity = (Double) values.get("opacity");
            spread = (Double) values.get("spread");
            offset = (double[]) values.get("offset");
            blend = (Integer) values.get("blend");
            clip = (Boolean) values.get("clip");
            knockout = (Boolean) values.get("knockout");
            colorGlyphs = (Boolean) values.get("color-glyphs");
            this.effects = effects;
        }

        private static Setting blend() {
            String[] names = {
                "normal", "multiply", "screen", "overlay", "darken", "lighten", "color-dodge", "color-burn", "hard-light",
                "soft-light", "difference", "exclusion", "hue", "saturation", "color", "luminosity", "plus-lighter"
            };
            int[] numbers = new int[names.length];
            for (int i = 0; i < numbers.length; i++) {
                numbers[i] = i;
            }
            return Setting.choice("blend", names, numbers);
        }

        /** Spread, x and y for a text {@code factor} times as large. */
        int[] lengths(double factor) {
            return new int[] {
                (int) SPREAD.fitted(spread, factor), (int) OFFSET_SIDE.fitted(offset[0], factor),
                (int) OFFSET_SIDE.fitted(offset[1], factor)
            };
        }
    }

    ZvStyle(Map<String, Object> values, List<Effect> effects, List<Layer> layers) {
        color = (Integer) values.get("color");
        background = (Integer) values.get("background");
        canvas = values.get("canvas");
        opacity = (Double) values.get("opacity");
        colorGlyphs = (Boolean) values.get("color-glyphs");
        size = (Double) values.get("size");
        letterSpacing = (Double) values.get("letter-spacing");
        wordSpacing = (Double) values.get("word-spacing");
        lineHeight = (Double) values.get("line-height");
        upperCase = (Boolean) values.get("upper-case");
        features = (String) values.get("features");
        String given = (String) values.get("description");
        description = given != null ? given : "";
        Double designed = (Double) values.get("designed-for");
        designedFor = designed != null ? designed : 0;
        this.effects = Collections.unmodifiableList(effects);
        this.layers = Collections.unmodifiableList(layers);
    }

    /**
     * Reads a style.
     *
     * @param json the file's content; a pattern in it is refused, having no folder to lie in
     * @return the style
     * @throws IllegalArgumentException with one line that names the place in it ("effects[2].stops[0].position") and what is
     *     accepted there
     */
    public static ZvStyle parse(String json) {
        return parse(json, file -> {
            throw new IOException("give parse a way to find pictures");
        });
    }

    /**
     * Reads a style with patterns.
     *
     * @param json the file's content
     * @param pictures finds them, each once
     * @return the style
     * @throws IllegalArgumentException as above, and if a picture cannot be found
     */
    public static ZvStyle parse(String json, Pictures pictures) {
        try {
            return StyleReader.read(json, pictures);
        } catch (NoClassDefFoundError e) {
            throw new IllegalStateException("styles need org.json on the class path, such as Debian's com.android.json.jar", e);
        }
    }

    /**
     * Reads a style.
     *
     * @param json the file's content; left open
     * @return the style
     * @throws IllegalArgumentException as above
     * @throws IOException as the reader does
     */
    public static ZvStyle parse(Reader json) throws IOException {
        return parse(readAll(json));
    }

    // Up to a little more than a style may have.
    private static String readAll(Reader json) throws IOException {
        StringBuilder text = new StringBuilder();
        char[] buffer = new char[8192];
        for (int got = json.read(buffer); got >= 0 && text.length() <= StyleReader.MAX_CHARS; got = json.read(buffer)) {
            text.append(buffer, 0, got);
        }
        return text.toString();
    }

    /**
     * One of the styles that come with the kit.
     *
     * @param name one of {@link #presets}
     * @return the style
     * @throws IllegalArgumentException if there is none of that name
     */
    public static ZvStyle preset(String name) {
        if (!PRESETS.contains(name)) {
            throw new IllegalArgumentException("\"" + name + "\" is not one of " + String.join(", ", PRESETS));
        }
        return parse(presetText(name));
    }

    static String presetText(String name) {
        try (InputStream in = ZvStyle.class.getResourceAsStream(FOLDER + name + ".json")) {
            return readAll(new InputStreamReader(in, StandardCharsets.UTF_8));
        } catch (IOException e) {
            throw new IllegalStateException(e);
        }
    }

    /**
     * The names of the styles that come with the kit.
     *
     * @return in alphabetical order
     */
    public static List<String> presets() {
        return PRESETS;
    }

    /**
     * The description in the style file.
     *
     * @return a line, or ""
     */
    public String description() {
        return description;
    }

    void applyTo(SelfLayout text) {
        if (size != null) {
            text.setSize(size);
        }
        if (letterSpacing != null) {
            text.setSpacing(letterSpacing);
        }
        if (wordSpacing != null) {
            text.setWordSpacing(wordSpacing);
        }
        if (lineHeight != null) {
            text.setLineHeight(lineHeight);
        }
        if (upperCase != null) {
            text.setUpperCase(upperCase);
        }
        if (features != null) {
            text.setFeatures(features);
        }
    }
}
