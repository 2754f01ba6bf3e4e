// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import java.nio.charset.StandardCharsets;

/** One setting of an effect, a layer or a style: its name, the values it takes, and its default. */
final class Setting {
    /** The kind of values of a setting; in brackets their class. */
    enum Type {
        NUMBER, // Double
        COLOR, // Integer, 0xAARRGGBB
        CHOICE, // Integer, the library's number for one of the names
        FLAG, // Boolean
        OFFSET, // double[2]
        TINT, // Tint
        STOPS, // Stops, perhaps none
        TEXT, // String
        FEATURES, // String
        PICTURE, // ZvPicture
        CANVAS // Integer for a colour, or an Effect
    }

    /** A colour with an opacity of its own. */
    static final class Tint {
        final int color;
        final double opacity;

        Tint(int color, double opacity) {
            this.color = color;
            this.opacity = opacity;
        }
    }

    static final int MAX_TEXT_BYTES = 4096;

    final String name;
    final Type type;
    Object start; // of the class that the type has; null: nothing
    boolean required;
    boolean length; // in the picture: it grows with the text
    String unit = "";
    String[] choices;
    int[] numbers; // of the choices

    private double low = Double.NEGATIVE_INFINITY;
    private double high = Double.POSITIVE_INFINITY;
    private boolean above; // the low end itself is refused
    private boolean whole;

    private Setting(String name, Type type, Object start) {
        this.name = name;
        this.type = type;
        this.start = start;
    }

    static Setting of(String name, Type type, Object start) {
        return new Setting(name, type, start);
    }

    static Setting number(String name, double start, double low, double high, String unit) {
        Setting setting = new Setting(name, Type.NUMBER, start);
        setting.low = low;
        setting.high = high;
        setting.unit = unit;
        return setting;
    }

    static Setting pixels(String name, double start) {
        return number(name, start, 0, 100, "px").length();
    }

    static Setting angle(double start) {
        return number("angle", start, Double.NEGATIVE_INFINITY, Double.POSITIVE_INFINITY, "deg");
    }

    static Setting opacity(double start) {
        return number("opacity", start, 0, 1, "");
    }

    static Setting color(int start) {
        return new Setting("color", Type.COLOR, start);
    }

    /** The first name means the first number and is the default. */
    static Setting choice(String name, String[] choices, int... numbers) {
        Setting setting = new Setting(name, Type.CHOICE, numbers[0]);
        setting.choices = choices;
        setting.numbers = numbers;
        return setting;
    }

    Setting length() {
        length = true;
        return this;
    }

    Setting whole() {
        whole = true;
        return this;
    }

    Setting above() {
        above = true;
        return this;
    }

    Setting required() {
        required = true;
        return this;
    }

    /** Null if none has that name. */
    static Setting find(Setting[] settings, String name) {
        for (Setting setting : settings) {
            if (setting.name.equals(name)) {
                return setting;
            }
        }
        return null;
    }

    static String names(Setting[] settings) {
        StringBuilder names = new StringBuilder();
        for (Setting setting : settings) {
            names.append(names.length() > 0 ? ", " : "").append(setting.name);
        }
        return names.toString();
    }

    /** Whether it is a share of a whole, which text may give in percent. */
    boolean isShare() {
        return type == Type.NUMBER && name.equals("opacity");
    }

    boolean contains(double value) {
        boolean inside = (above ? value > low : value >= low) && value <= high && !Double.isInfinite(value);
        return inside && (!whole || value == Math.rint(value));
    }

    /** @throws IllegalArgumentException with a message that begins with {@code where} and says what is accepted */
    double checked(String where, Number given) {
        double value = given instanceof Float ? decimal((Float) given) : given.doubleValue();
        if (!contains(value)) {
            throw new IllegalArgumentException(where + ": " + shown(given) + " is not " + wanted());
        }
        return value;
    }

    /** What was written: 0.7f is 0.699999988 and means 0.7, as a style file has it. */
    static double decimal(float number) {
        return Double.parseDouble(Float.toString(number));
    }

    /** The value as a person would write it. */
    static String shown(Number number) {
        double value = number.doubleValue();
        return value == Math.rint(value) && Math.abs(value) < 1e15 ? Long.toString((long) value) : number.toString();
    }

    /** "a number from 0 to 100 (px)", for messages. */
    String wanted() {
        switch (type) {
            case COLOR:
                return ColorText.WANTED;
            case CHOICE:
                return "one of " + String.join(", ", choices);
            case FLAG:
                return "true or false";
            case OFFSET:
                return "an array [X, Y] of whole pixels";
            case TINT:
                return "an object with the keys color, opacity";
            case STOPS:
                return "an array of 1 to " + Stops.MAX + " stops, objects with the keys color, position, opacity";
            case TEXT:
                return "a text";
            case FEATURES:
                return "a list of OpenType features, each written tag, -tag or tag=N, with commas between";
            case PICTURE:
                return "the path of a file";
            case CANVAS:
                return "a colour, or an object with a type, one of " + EffectKind.canvasNames();
            default:
                break;
        }
        String text = whole ? "a whole number" : "a number";
        if (low != Double.NEGATIVE_INFINITY) {
            text += (above ? " above " : " from ") + shown(low) + (above ? " and up to " : " to ") + shown(high);
        }
        return unit.isEmpty() ? text : text + " (" + unit + ")";
    }

    /** The value for a text {@code factor} times as large: whole pixels, at least one if there was one, within the range. */
    double fitted(double value, double factor) {
        double size = Math.abs(value);
        double fitted = size * factor;
        if (unit.equals("px")) {
            fitted = Math.max(Math.round(fitted), size >= 1 ? 1 : 0);
        }
        return Math.copySign(Math.min(fitted, high), value);
    }

    static String checkedText(String where, String text) {
        if (text.indexOf('\0') >= 0) {
            throw new IllegalArgumentException(where + ": it holds a NUL character");
        }
        if (text.getBytes(StandardCharsets.UTF_8).length > MAX_TEXT_BYTES) {
            throw new IllegalArgumentException(where + ": it is longer than " + MAX_TEXT_BYTES + " bytes");
        }
        return text;
    }
}
