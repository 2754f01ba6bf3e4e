// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import java.util.ArrayList;
import java.util.HashSet;
import java.util.List;
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
        Integer color = ColorText.read(text);
        if (color != null) {
            return color;
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
        Integer color = ColorText.read(text);
        if (color == null) {
            throw refusal(where, text, wanted);
        }
        return color;
    }

    /** What stands in parentheses is not split. */
    private static List<String> split(String text, char separator) {
        int[] closing = new int[text.length()]; // of a parenthesis, its partner
        List<Integer> open = new ArrayList<>();
        for (int i = 0; i < text.length(); i++) {
            if (text.charAt(i) == '(') {
                open.add(i);
            } else if (text.charAt(i) == ')' && !open.isEmpty()) {
                closing[open.remove(open.size() - 1)] = i;
            }
        }
        List<String> parts = new ArrayList<>();
        int begin = 0;
        for (int i = 0; i < text.length(); i = Math.max(i, closing[i]) + 1) {
            if (text.charAt(i) == separator) {
                parts.add(text.substring(begin, i));
                begin = i + 1;
            }
        }
        parts.add(text.substring(begin));
        return parts;
    }

    private static Map<String, Object> readSettings(String where, EffectKind kind, String text, ValueReader files) {
        Map<String, Object> values = kind.starts();
        Set<String> seen = new HashSet<>();
        for (String part : split(text, ',')) {
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
                return "a list of stops; write COLOR[@POSITION[@OPACITY]]:COLOR..., positions from 0 to 100; those left out are"
                        + " spread evenly";
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
        List<String> parts = split(text, ':');
        int[] colors = new int[parts.size()];
        double[] positions = new double[parts.size()];
        double[] opacities = new double[parts.size()];
        for (int i = 0; i < parts.size(); i++) {
            List<String> fields = split(parts.get(i), '@');
            if (fields.size() > 3) {
                throw refusal(where, parts.get(i), wanted);
            }
            colors[i] = readColor(where, fields.get(0), Setting.color(0).wanted());
            boolean placed = fields.size() == 2 || (fields.size() == 3 && !fields.get(1).isEmpty());
            positions[i] = placed ? readNumber(where, Stops.POSITION, fields.get(1)) : Double.NaN;
            opacities[i] = fields.size() == 3 ? readNumber(where, Setting.opacity(1), fields.get(2)) : 1;
        }
        if (parts.size() > Stops.MAX) {
            throw new IllegalArgumentException(where + ": " + parts.size() + " stops are more than " + Stops.MAX);
        }
        Stops.spread(positions);
        Stops stops = new Stops();
        for (int i = 0; i < colors.length; i++) {
            if (i > 0 && positions[i] < positions[i - 1]) {
                throw new IllegalArgumentException(where + ": positions must not fall, but " + Setting.shown(positions[i])
                        + " comes after " + Setting.shown(positions[i - 1]));
            }
            stops.add(colors[i], positions[i], opacities[i]);
        }
        return stops;
    }
}
