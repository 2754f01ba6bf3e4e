// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import com.orvane.android.sdk.zve.Setting.Tint;
import com.orvane.android.sdk.zve.Setting.Type;
import java.io.IOException;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.HashMap;
import java.util.Iterator;
import java.util.List;
import java.util.Map;
import java.util.regex.Pattern;
import org.json.JSONArray;
import org.json.JSONObject;

/** Reads the values of settings from JSON. Messages begin with the value's place, such as "effects[2].size". */
final class ValueReader {
    private static final Setting[] STOP = {
        Setting.color(0).required(), Setting.number("position", Double.NaN, 0, 100, "%"), Setting.opacity(1)
    };
    // As HarfBuzz reads it, for the whole text. It takes any word for a value without an equals sign, and lets longer numbers
    // overflow.
    private static final Pattern FEATURE = Pattern.compile((
            "@[-+]?@(\"\\w{4}\"|'\\w{4}'|\\w{1,4}+(?!\\w))@(\\[@(0{0,9}@[:;]@)?]@)?((=@)?[-+]?[0-9]{1,9}|=@(?i:on|off)|[A-Za-z]+)?@")
                    .replace("@", "[ \\f\\n\\r\\t\\x0B]*+"));
    private static final Setting OFFSET_SIDE = ZvStyle.Layer.OFFSET_SIDE;

    private final ZvStyle.Pictures pictures;
    private final String folder; // of the style; "" or with a slash at its end

    ValueReader(ZvStyle.Pictures pictures, String folder) {
        this.pictures = pictures;
        this.folder = folder;
    }

    static IllegalArgumentException refusal(String place, String why) {
        return new IllegalArgumentException(place.isEmpty() ? why : place + ": " + why);
    }

    static String member(String place, String key) {
        return place.isEmpty() ? key : place + "." + key;
    }

    /** The value as JSON, or what it is if that is long. */
    static String shown(Object value) {
        String text = value instanceof String ? JSONObject.quote((String) value)
                : value instanceof Number ? Setting.shown((Number) value) : String.valueOf(value);
        return text.length() <= 40 ? text : value instanceof JSONObject ? "this object"
                : value instanceof JSONArray ? "this array" : "this string";
    }

    /**
     * Reads an object's settings into {@code values}; null is as if the setting were not there.
     *
     * @param values of another style, if {@code changes}: null then gives a setting its value at the start
     * @param others keys that are read elsewhere
     */
    void readObject(
            String place, Object json, Setting[] settings, Map<String, Object> values, boolean changes, String... others) {
        List<String> known = new ArrayList<>(Arrays.asList(others));
        for (Setting setting : settings) {
            known.add(setting.name);
        }
        String names = String.join(", ", known);
        if (!(json instanceof JSONObject)) {
            throw refusal(place, shown(json) + " is not an object with the keys " + names);
        }
        JSONObject object = (JSONObject) json;
        for (Iterator<?> keys = object.keys(); keys.hasNext();) {
            String key = (String) keys.next();
            if (!known.contains(key)) {
                throw refusal(member(place, key), "is not one of the keys here: " + names);
            }
        }
        for (Setting setting : settings) {
            String name = setting.name;
            String where = member(place, name);
            if (!object.isNull(name)) {
                values.put(name, read(where, object.opt(name), setting, changes ? values.get(name) : null));
            } else if (setting.required && (object.has(name) || !changes)) {
                throw refusal(where, "is missing; it takes " + setting.wanted());
            } else if (object.has(name)) {
                values.put(name, setting.start);
            }
        }
    }

    /** @param base the value in the style that this one extends; null if there is none */
    Object read(String place, Object json, Setting setting, Object base) {
        IllegalArgumentException refusal = refusal(place, shown(json) + " is not " + setting.wanted());
        Type type = setting.type;
        if (type == Type.NUMBER && json instanceof Number) {
            return setting.checked(place, (Number) json);
        }
        if (type == Type.FLAG && json instanceof Boolean) {
            return json;
        }
        if (type == Type.CANVAS && json instanceof JSONObject) {
            EffectKind kind = kindOf(place, json, true);
            return new Effect(kind, readEffect(place, json, kind, base instanceof Effect ? (Effect) base : null), 0);
        }
        if (type == Type.TINT) {
            return readTint(place, json, (Tint) setting.start, (Tint) base);
        }
        if (json instanceof JSONArray && type == Type.STOPS) {
            return readStops(place, (JSONArray) json, refusal);
        }
        if (json instanceof JSONArray && type == Type.OFFSET) {
            return readOffset(place, (JSONArray) json, refusal);
        }
        if (!(json instanceof String)) {
            throw refusal;
        }
        return readText(place, (String) json, setting, refusal);
    }

    private Object readText(String place, String text, Setting setting, IllegalArgumentException refusal) {
        switch (setting.type) {
            case COLOR:
                return SettingText.readColor(place, text, setting.wanted());
            case CANVAS:
                return SettingText.readCanvas(place, text, this);
            case TEXT:
                return Setting.checkedText(place, text);
            case FEATURES:
                if (!areFeatures(Setting.checkedText(place, text))) {
                    throw refusal(place, "'" + text + "' is not " + setting.wanted());
                }
                return text;
            case PICTURE:
                if (text.isEmpty()) {
                    throw refusal;
                }
                return findPicture(place, text);
            case CHOICE:
                for (int i = 0; i < setting.choices.length; i++) {
                    if (setting.choices[i].equals(text)) {
                        return setting.numbers[i];
                    }
                }
                throw refusal(place, "'" + text + "' is not " + setting.wanted());
            default:
                throw refusal;
        }
    }

    /** Separated by commas; one may end the list. */
    private static boolean areFeatures(String text) {
        String[] each = text.split(",", -1);
        int count = each[each.length - 1].isEmpty() ? each.length - 1 : each.length;
        return Arrays.stream(each, 0, count).allMatch(one -> FEATURE.matcher(one).matches());
    }

    ZvPicture findPicture(String place, String file) {
        try {
            return found(pictures.find(file.startsWith("/") ? file : folder + file));
        } catch (IOException e) {
            throw new IllegalArgumentException(place + ": " + shown(file) + " cannot be read: " + e.getMessage(), e);
        }
    }

    /** Finders may say with null that there is none. */
    static <T> T found(T thing) throws IOException {
        if (thing == null) {
            throw new IOException("it is not there");
        }
        return thing;
    }

    private Tint readTint(String place, Object json, Tint start, Tint base) {
        Tint from = base != null ? base : start;
        Setting[] settings = {Setting.color(start.color), Setting.opacity(start.opacity)};
        if (base == null) {
            settings[0].required();
        }
        Map<String, Object> values = new HashMap<>();
        values.put("color", from.color);
        values.put("opacity", from.opacity);
        readObject(place, json, settings, values, base != null);
        return new Tint((Integer) values.get("color"), (Double) values.get("opacity"));
    }

    private static double[] readOffset(String place, JSONArray array, IllegalArgumentException refusal) {
        if (array.length() != 2) {
            throw refusal;
        }
        double[] offset = new double[2];
        for (int i = 0; i < 2; i++) {
            String where = place + "[" + i + "]";
            if (!(array.opt(i) instanceof Number)) {
                throw refusal(where, shown(array.opt(i)) + " is not " + OFFSET_SIDE.wanted());
            }
            offset[i] = OFFSET_SIDE.checked(where, (Number) array.opt(i));
        }
        return offset;
    }

    private Stops readStops(String place, JSONArray array, IllegalArgumentException refusal) {
        if (array.length() < 1 || array.length() > Stops.MAX) {
            throw refusal;
        }
        List<Map<String, Object>> read = new ArrayList<>();
        double[] positions = new double[array.length()];
        for (int i = 0; i < array.length(); i++) {
            Map<String, Object> stop = new HashMap<>();
            stop.put("position", Double.NaN);
            stop.put("opacity", 1.0);
            readObject(place + "[" + i + "]", array.opt(i), STOP, stop, false);
            positions[i] = (Double) stop.get("position");
            read.add(stop);
        }
        Stops.spread(positions);
        Stops stops = new Stops();
        for (int i = 0; i < positions.length; i++) {
            stops.add((Integer) read.get(i).get("color"), positions[i], (Double) read.get(i).get("opacity"));
        }
        return stops.checked(place, true);
    }

    // --- Effects

    /** The kind that an effect's object names. */
    static EffectKind kindOf(String place, Object json, boolean canvas) {
        String names = canvas ? EffectKind.canvasNames() : EffectKind.names();
        Object type = json instanceof JSONObject ? ((JSONObject) json).opt("type") : null;
        if (type == null) {
            throw refusal(place, "it is not an object with a type, one of " + names);
        }
        EffectKind kind = type instanceof String ? EffectKind.find((String) type) : null;
        if (kind == null || (canvas && !kind.fillsCanvas())) {
            throw refusal(place + ".type", shown(type) + " is not one of " + names);
        }
        return kind;
    }

    /** @param base is changed if it is of that kind; null if there is none */
    Map<String, Object> readEffect(String place, Object json, EffectKind kind, Effect base, String... others) {
        boolean changes = base != null && base.kind == kind;
        Map<String, Object> values = changes ? base.values() : kind.starts();
        String[] known = Arrays.copyOf(others, others.length + 1);
        known[others.length] = "type";
        readObject(place, json, kind.settings, values, changes, known);
        return values;
    }
}
