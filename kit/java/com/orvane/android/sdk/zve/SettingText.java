// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import java.util.HashSet;
import java.util.Map;
import java.util.Set;

/** Settings in the form that they have on a command line: {@code angle=90,stops=#f00@0:#00f@100}. */
final class SettingText {
    private static final String NUMBER = "-?([0-9]+\\.?[0-9]*|\\.[0-9]+)([eE][-+]?[0-9]+)?";

    private SettingText() {}

    private static IllegalArgumentException refusal(String where, String text, String wanted) {
        return new IllegalArgumentException(where + ": '" + text + "' is not " + wanted);
    }

    /** A colour, or an effect's name and its settings: {@code pattern:tile.png,scale=2}. */
    static Object readCanvas(String where, String text, ValueReader files) {
        if (text.startsWith("#")) {
            return readColor(where, text, Setting.color(0).wanted());
        }
        int colon = text.indexOf(':');
        EffectKind kind = colon < 0 ? null : EffectKind.find(text.substring(0, colon));
        if (kind == null || !kind.fillsCanvas()) {
            throw refusal(where, text, "a canvas; write a colour, or KIND:KEY=VALUE,... with one of the kinds "
                    + EffectKind.canvasNames());
        }
        return new Effect(kind, readSettings(where + " " + kind.key, kind, text.substring(colon + 1), files), 0);
    }

    static int readColor(String where, String text, String wanted) {
        if (!text.matches("#([0-9a-fA-F]{3}|[0-9a-fA-F]{6}|[0-9a-fA-F]{8})")) {
            throw refusal(where, text, wanted);
        }
        int value = (int) Long.parseLong(text.substring(1), 16);
        switch (text.length()) {
            case 4:
                return 0xFF000000 | (value >> 8) * 0x110000 | (value >> 4 & 0xF) * 0x1100 | (value & 0xF) * 0x11;
            case 7:
                return 0xFF000000 | value;
            default:
                return value;
        }
    }

    private static Map<String, Object> readSettings(String where, EffectKind kind, String text, ValueReader files) {
        Map<String, Object> values = kind.starts();
        Set<String> seen = new HashSet<>();
        for (String part : text.split(",", -1)) {
            int equals = part.indexOf('=');
            boolean bareFile = seen.isEmpty() && equals < 0 && kind == EffectKind.PATTERN;
            String name = bareFile ? "file" : equals < 0 ? part : part.substring(0, equals);
            Setting setting = Setting.find(kind.settings, name);
            if (setting == null) {
                throw new IllegalArgumentException(where + ": '" + name + "' is not one of its keys: " + Setting.names(kind.settings));
            }
            String place = where + " " + name;
            if (equals < 0 && !bareFile) {
                throw new IllegalArgumentException(
                        place + ": has no value; write " + name + "=VALUE, " + wanted(setting));
            }
            if (!seen.add(name)) {
                throw new IllegalArgumentException(place + ": is given twice");
            }
            values.put(name, read(place, setting, part.substring(equals + 1), files));
        }
        for (Setting setting : kind.settings) {
            if (setting.required && !seen.contains(setting.name)) {
                throw new IllegalArgumentException(where + " " + setting.name + ": is missing; it takes " + wanted(setting));
            }
        }
        return values;
    }

    private static String wanted(Setting setting) {
        switch (setting.type) {
            case STOPS:
                return "a list of stops; write COLOR@POSITION[@OPACITY]:COLOR@POSITION..., positions from 0 to 100";
            case NUMBER:
                return setting.isShare() ? "an opacity; write 0 to 1 or 0% to 100%" : setting.wanted();
            default:
                return setting.wanted();
        }
    }

    // Canvases have only numbers, stops and pictures.
    private static Object read(String where, Setting setting, String text, ValueReader files) {
        switch (setting.type) {
            case STOPS:
                return readStops(where, text, wanted(setting));
            case PICTURE:
                if (text.isEmpty()) {
                    throw refusal(where, text, wanted(setting));
                }
                return files.findPicture(where, text);
            default:
                return readNumber(where, setting, text);
        }
    }

    private static double readNumber(String where, Setting setting, String text) {
        String unit = setting.isShare() ? "%" : setting.unit;
        boolean hasUnit = !unit.isEmpty() && text.endsWith(unit);
        String digits = hasUnit ? text.substring(0, text.length() - unit.length()) : text;
        double value = digits.matches(NUMBER) ? Double.parseDouble(digits) : Double.NaN;
        value = setting.isShare() && hasUnit ? value / 100 : value;
        if (!setting.contains(value)) {
            throw refusal(where, text, wanted(setting));
        }
        return value;
    }

    private static Stops readStops(String where, String text, String wanted) {
        Stops stops = new Stops();
        double last = 0;
        String[] parts = text.split(":", -1);
        for (String part : parts) {
            String[] fields = part.split("@", -1);
            if (fields.length < 2 || fields.length > 3) {
                throw refusal(where, part, wanted);
            }
            int color = readColor(where, fields[0], Setting.color(0).wanted());
            double position = readNumber(where, Stops.POSITION, fields[1]);
            double opacity = fields.length == 3 ? readNumber(where, Setting.opacity(1), fields[2]) : 1;
            if (parts.length > Stops.MAX) {
                continue;
            }
            if (position < last) {
                throw new IllegalArgumentException(where + ": positions must not fall, but " + Setting.shown(position)
                        + " comes after " + Setting.shown(last));
            }
            last = position;
            stops.add(color, position, opacity);
        }
        if (parts.length > Stops.MAX) {
            throw new IllegalArgumentException(where + ": " + parts.length + " stops are more than " + Stops.MAX);
        }
        return stops;
    }
}
