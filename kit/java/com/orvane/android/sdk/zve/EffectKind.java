// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import com.orvane.android.sdk.zve.Setting.Tint;
import com.orvane.android.sdk.zve.Setting.Type;
import java.util.HashMap;
import java.util.Map;

/** The effects: the names they have in styles, the library's numbers for them, and their settings. */
enum EffectKind {
    OUTER_SHADOW("outer-shadow", 1, shadow(6, 8)),
    INNER_SHADOW("inner-shadow", 2, shadow(4, 6)),
    OUTER_GLOW("outer-glow", 3, glow(12, 0xFFFFD860)),
    INNER_GLOW("inner-glow", 4, glow(8, 0xFFFFFFFF)),
    LINEAR_GRADIENT("linear-gradient", 7,
            Setting.angle(90), Setting.number("scale", 1, 0, 2, ""), Setting.opacity(1), stops().required()),
    RADIAL_GRADIENT("radial-gradient", 8,
            Setting.number("scale", 1, 0, 2, ""), Setting.opacity(1), stops().required()),
    STROKE("stroke", 10,
            Setting.pixels("width", 4), Setting.color(0xFF000000),
            Setting.choice("position", new String[] {"outside", "inside", "center"}, 1, 2, 0), Setting.opacity(1)),
    PATTERN("pattern", 11,
            Setting.of("file", Type.PICTURE, null).required(), Setting.number("scale", 1, 0, 10, "").length(),
            Setting.opacity(1)),
    BEVEL("bevel", 5, relief(Setting.choice("style", new String[] {"inner", "outer"}, 1, 0))),
    EMBOSS("emboss", 6, relief(Setting.choice("style", new String[] {"single", "double"}, 1, 3)));

    final String key;
    final int number;
    final Setting[] settings;

    EffectKind(String key, int number, Setting... settings) {
        this.key = key;
        this.number = number;
        this.settings = settings;
    }

    private static Setting stops() {
        return Setting.of("stops", Type.STOPS, new Stops());
    }

    private static Setting[] shadow(double distance, double size) {
        return new Setting[] {
            Setting.angle(135), Setting.pixels("distance", distance), Setting.pixels("size", size),
            Setting.color(0xFF000000), Setting.opacity(0.6)
        };
    }

    private static Setting[] glow(double size, int color) {
        return new Setting[] {Setting.pixels("size", size), Setting.color(color), Setting.opacity(0.8), stops()};
    }

    private static Setting[] relief(Setting style) {
        return new Setting[] {
            style,
            Setting.choice("technique", new String[] {"soft", "hard"}, 0, 1),
            Setting.choice("direction", new String[] {"up", "down"}, 1, 0),
            Setting.pixels("size", 8),
            Setting.number("depth", 1, 0, 10, ""),
            Setting.angle(135),
            Setting.number("altitude", 30, 0, 89, "deg"),
            Setting.number("soften", 0, 0, 16, "px").length(),
            Setting.of("highlight", Type.TINT, new Tint(0xFFFFFFFF, 0.5)),
            Setting.of("shadow", Type.TINT, new Tint(0xFF000000, 0.5)),
            Setting.opacity(1)
        };
    }

    /** Whether it can fill a whole picture, as its canvas. */
    boolean fillsCanvas() {
        return this == LINEAR_GRADIENT || this == RADIAL_GRADIENT || this == PATTERN;
    }

    /** All settings as they are at the start. */
    Map<String, Object> starts() {
        Map<String, Object> starts = new HashMap<>();
        for (Setting setting : settings) {
            starts.put(setting.name, setting.start);
        }
        return starts;
    }

    /** Null if there is none of that name. */
    static EffectKind find(String key) {
        for (EffectKind kind : values()) {
            if (kind.key.equals(key)) {
                return kind;
            }
        }
        return null;
    }

    static String names() {
        return names(false);
    }

    static String canvasNames() {
        return names(true);
    }

    private static String names(boolean onlyCanvas) {
        StringBuilder names = new StringBuilder();
        for (EffectKind kind : values()) {
            if (!onlyCanvas || kind.fillsCanvas()) {
                names.append(names.length() > 0 ? ", " : "").append(kind.key);
            }
        }
        return names.toString();
    }
}
