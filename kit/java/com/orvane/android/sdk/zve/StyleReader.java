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
import org.json.JSONArray;
import org.json.JSONException;
import org.json.JSONObject;
import org.json.JSONTokener;

/** Reads a style from JSON by the tables of settings. Errors are thrown with their place in front. */
final class StyleReader {
    static final int MAX_CHARS = 4 << 20;

    private static final Setting[] STOP = {Setting.color(0).required(), Stops.POSITION, Setting.opacity(1)};

    private final ZvStyle.Pictures pictures;

    StyleReader(ZvStyle.Pictures pictures) {
        this.pictures = pictures;
    }

    ZvStyle read(String json) {
        JSONObject object = object(json);
        Map<String, Object> values = readObject("", object, ZvStyle.SETTINGS, "effects", "layers");
        List<ZvStyle.Layer> layers = new ArrayList<>();
        if (object.has("layers")) {
            if (object.has("effects")) {
                throw refusal("effects", "belong into the layers where there are some");
            }
            readLayers(object.opt("layers"), layers);
        }
        return new ZvStyle(values, readEffects("", object), layers);
    }

    private static JSONObject object(String json) {
        if (json.length() > MAX_CHARS) {
            throw refusal("", "it is longer than " + MAX_CHARS + " characters");
        }
        try {
            JSONTokener tokens = new JSONTokener(json);
            Object value = tokens.nextValue();
            if (tokens.nextClean() != 0) {
                throw refusal("", "it is no JSON: something follows it");
            }
            if (value instanceof JSONObject) {
                return (JSONObject) value;
            }
            throw refusal("", shown(value) + " is not an object");
        } catch (JSONException e) {
            throw refusal("", "it is no JSON: " + e.getMessage());
        } catch (StackOverflowError e) {
            throw refusal("", "it is nested too deeply");
        }
    }

    private static IllegalArgumentException refusal(String place, String why) {
        return new IllegalArgumentException(place.isEmpty() ? why : place + ": " + why);
    }

    private static String member(String place, String key) {
        return place.isEmpty() ? key : place + "." + key;
    }

    private static String shown(Object value) {
        String text = value instanceof String ? JSONObject.quote((String) value)
                : value instanceof Number ? Setting.shown((Number) value) : String.valueOf(value);
        return text.length() <= 40 ? text : value instanceof JSONObject ? "this object"
                : value instanceof JSONArray ? "this array" : "this string";
    }

    // --- Effects and layers

    private List<Effect> readEffects(String place, JSONObject object) {
        List<Effect> effects = new ArrayList<>();
        Object list = object.opt("effects");
        String where = member(place, "effects");
        if (list == null) {
            return effects;
        }
        if (!(list instanceof JSONArray)) {
            throw refusal(where, shown(list) + " is not an array of effects");
        }
        JSONArray array = (JSONArray) list;
        for (int i = 0; i < array.length(); i++) {
            Effect effect = readEffect(where + "[" + i + "]", array.opt(i), false);
            for (int earlier = 0; earlier < i; earlier++) {
                if (effects.get(earlier).kind == effect.kind) {
                    throw refusal(where + "[" + i + "].type",
                            effect.kind.key + " is there already, as " + where + "[" + earlier + "]");
                }
            }
            effects.add(effect);
        }
        return effects;
    }

    private Effect readEffect(String place, Object value, boolean canvas) {
        String names = canvas ? EffectKind.canvasNames() : EffectKind.names();
        Object type = value instanceof JSONObject ? ((JSONObject) value).opt("type") : null;
        if (type == null) {
            throw refusal(place, "it is not an object with a type, one of " + names);
        }
        EffectKind kind = type instanceof String ? EffectKind.find((String) type) : null;
        if (kind == null || (canvas && !kind.fillsCanvas())) {
            throw refusal(place + ".type", shown(type) + " is not one of " + names);
        }
        Map<String, Object> given = readObject(place, value, kind.settings, "type");
        Object[] values = new Object[kind.settings.length];
        for (int i = 0; i < values.length; i++) {
            values[i] = given.get(kind.settings[i].name);
        }
        return new Effect(kind, values);
    }

    private void readLayers(Object value, List<ZvStyle.Layer> layers) {
        JSONArray array = value instanceof JSONArray ? (JSONArray) value : new JSONArray();
        if (array.length() < 1 || array.length() > ZvStyle.MAX_LAYERS) {
            throw refusal("layers", shown(value) + " is not an array of 1 to " + ZvStyle.MAX_LAYERS + " layers");
        }
        for (int i = 0; i < array.length(); i++) {
            String place = "layers[" + i + "]";
            Map<String, Object> values = readObject(place, array.opt(i), ZvStyle.Layer.SETTINGS, "effects");
            layers.add(new ZvStyle.Layer(values, readEffects(place, (JSONObject) array.opt(i))));
        }
        if (layers.get(layers.size() - 1).clip) {
            throw refusal("layers[" + (layers.size() - 1) + "].clip", "there is no layer behind it to clip it to");
        }
    }

    // --- Values

    /**
     * What the object has for the settings. What it lacks has the value at the start, but in a style itself. The other keys
     * are read elsewhere.
     */
    private Map<String, Object> readObject(String place, Object value, Setting[] settings, String... others) {
        List<String> known = new ArrayList<>(Arrays.asList(others));
        for (Setting setting : settings) {
            known.add(setting.name);
        }
        String names = String.join(", ", known);
        if (!(value instanceof JSONObject)) {
            throw refusal(place, shown(value) + " is not an object with the keys " + names);
        }
        JSONObject object = (JSONObject) value;
        Map<String, Object> values = new HashMap<>();
        for (Setting setting : settings) {
            String where = member(place, setting.name);
            if (object.has(setting.name)) {
                values.put(setting.name, readValue(where, object.opt(setting.name), setting));
            } else if (setting.required) {
                throw refusal(where, "is missing; it takes " + setting.wanted());
            } else if (settings != ZvStyle.SETTINGS) {
                values.put(setting.name, setting.start);
            }
        }
        for (Iterator<?> keys = object.keys(); keys.hasNext();) {
            String key = (String) keys.next();
            if (!known.contains(key)) {
                throw refusal(member(place, key), "is not one of the keys here: " + names);
            }
        }
        return values;
    }

    private Object readValue(String place, Object value, Setting setting) {
        IllegalArgumentException refusal = refusal(place, shown(value) + " is not " + setting.wanted());
        Type type = setting.type;
        if (type == Type.NUMBER && value instanceof Number) {
            return setting.checked(place, (Number) value);
        }
        if (type == Type.FLAG && value instanceof Boolean) {
            return value;
        }
        if (type == Type.CANVAS && value instanceof JSONObject) {
            return readEffect(place, value, true);
        }
        if (type == Type.TINT) {
            Setting[] settings = {Setting.color(0).required(), Setting.opacity(((Tint) setting.start).opacity)};
            Map<String, Object> tint = readObject(place, value, settings);
            return new Tint((Integer) tint.get("color"), (Double) tint.get("opacity"));
        }
        if (value instanceof JSONArray && type == Type.STOPS) {
            return readStops(place, (JSONArray) value, refusal);
        }
        if (value instanceof JSONArray && type == Type.OFFSET) {
            return readOffset(place, (JSONArray) value, refusal);
        }
        if (!(value instanceof String)) {
            throw refusal;
        }
        return readText(place, (String) value, setting);
    }

    private Object readText(String place, String text, Setting setting) {
        boolean quoted = setting.type == Type.COLOR || setting.type == Type.CANVAS || setting.type == Type.CHOICE;
        String given = quoted ? "'" + text + "'" : shown(text);
        IllegalArgumentException refusal = refusal(place, given + " is not " + setting.wanted());
        switch (setting.type) {
            case COLOR:
            case CANVAS:
                return readColor(text, refusal);
            case TEXT:
                return Setting.checkedText(place, text);
            case PICTURE:
                return readPicture(place, text, refusal);
            case CHOICE:
                for (int i = 0; i < setting.choices.length; i++) {
                    if (setting.choices[i].equals(text)) {
                        return setting.numbers[i];
                    }
                }
                throw refusal;
            default:
                throw refusal;
        }
    }

    private static int readColor(String text, IllegalArgumentException refusal) {
        if (!text.matches("#([0-9a-fA-F]{3}|[0-9a-fA-F]{6}|[0-9a-fA-F]{8})")) {
            throw refusal;
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

    private ZvPicture readPicture(String place, String file, IllegalArgumentException refusal) {
        if (file.isEmpty()) {
            throw refusal;
        }
        try {
            return pictures.find(file);
        } catch (IOException e) {
            throw new IllegalArgumentException(place + ": " + shown(file) + " cannot be read: " + e.getMessage(), e);
        }
    }

    private static double[] readOffset(String place, JSONArray array, IllegalArgumentException refusal) {
        if (array.length() != 2) {
            throw refusal;
        }
        double[] offset = new double[2];
        for (int i = 0; i < 2; i++) {
            String where = place + "[" + i + "]";
            if (!(array.opt(i) instanceof Number)) {
                throw refusal(where, shown(array.opt(i)) + " is not " + ZvStyle.Layer.OFFSET_SIDE.wanted());
            }
            offset[i] = ZvStyle.Layer.OFFSET_SIDE.checked(where, (Number) array.opt(i));
        }
        return offset;
    }

    private Stops readStops(String place, JSONArray array, IllegalArgumentException refusal) {
        if (array.length() < 1 || array.length() > Stops.MAX) {
            throw refusal;
        }
        Stops stops = new Stops();
        for (int i = 0; i < array.length(); i++) {
            Map<String, Object> stop = readObject(place + "[" + i + "]", array.opt(i), STOP);
            stops.add((Integer) stop.get("color"), (Double) stop.get("position"), (Double) stop.get("opacity"));
        }
        return stops.checked(place, true);
    }
}
