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

    private static final int MAX_BASES = 8;
    private static final Setting EFFECT_DESIGNED_FOR = Setting.number("designed-for", 0, 0, 10000, "px");
    private static final Setting[] STOP = {Setting.color(0).required(), Stops.POSITION, Setting.opacity(1)};

    private final ZvStyle.Pictures pictures;

    StyleReader(ZvStyle.Pictures pictures) {
        this.pictures = pictures;
    }

    /** What a style says, together with those that it extends. */
    private static final class Content {
        Map<String, Object> values = new HashMap<>();
        List<Effect> effects = new ArrayList<>();
        List<Content> layers = new ArrayList<>(); // these have none
    }

    ZvStyle read(String json) {
        Content content = readContent(json, new ArrayList<>());
        List<ZvStyle.Layer> layers = new ArrayList<>();
        for (Content layer : content.layers) {
            layers.add(new ZvStyle.Layer(layer.values, layer.effects));
        }
        return new ZvStyle(content.values, content.effects, layers);
    }

    /** {@code above} are the styles that led here. */
    private Content readContent(String json, List<String> above) {
        JSONObject object = object(json);
        Content content = object.isNull("extends") ? new Content() : readBase(object.opt("extends"), above);
        content.values = readObject("", object, ZvStyle.SETTINGS, content.values, "effects", "layers");
        readLayers(object, content);
        readEffects("", object, content.effects);
        if (!object.isNull("effects") && !content.layers.isEmpty()) {
            throw refusal("effects", "belong into the layers where there are some");
        }
        return content;
    }

    private Content readBase(Object extended, List<String> above) {
        if (!(extended instanceof String) || ((String) extended).isEmpty()) {
            String given = extended instanceof String ? "''" : shown(extended);
            throw refusal("extends", given + " is not the name of a preset or the path of a style file");
        }
        String name = (String) extended;
        String where = "extends: '" + name + "'";
        boolean preset = ZvStyle.presets().contains(name);
        List<String> chain = new ArrayList<>(above);
        chain.add(name);
        if (!preset && chain.size() > MAX_BASES) {
            throw refusal("extends", "more than " + MAX_BASES + " style files extend one another");
        }
        if (above.contains(name)) {
            throw refusal(where + " extends this style itself", "");
        }
        String json;
        try {
            json = preset ? ZvStyle.presetJson(name) : pictures.findStyle(name);
        } catch (IOException e) {
            throw new IllegalArgumentException(where + " cannot be read: " + e.getMessage(), e);
        }
        try {
            return readContent(json, chain);
        } catch (IllegalArgumentException e) {
            throw refusal(where, e.getMessage());
        }
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
        return new IllegalArgumentException(place.isEmpty() ? why : why.isEmpty() ? place : place + ": " + why);
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

    // They change those of their kind; new ones go on top.
    private void readEffects(String place, JSONObject object, List<Effect> effects) {
        Object list = object.opt("effects");
        String where = member(place, "effects");
        if (list == null) {
            return;
        }
        if (list == JSONObject.NULL) {
            effects.clear();
            return;
        }
        if (!(list instanceof JSONArray)) {
            throw refusal(where, shown(list) + " is not an array of effects");
        }
        JSONArray array = (JSONArray) list;
        Map<EffectKind, Integer> seen = new HashMap<>();
        for (int i = 0; i < array.length(); i++) {
            String at = where + "[" + i + "]";
            EffectKind kind = takenAway(array.opt(i));
            if (kind != null) {
                EffectKind gone = kind;
                effects.removeIf(effect -> effect.kind == gone);
            } else {
                kind = readEffectInto(at, array.opt(i), effects);
            }
            Integer earlier = seen.putIfAbsent(kind, i);
            if (earlier != null) {
                throw refusal(at + ".type", kind.key + " is there already, as " + where + "[" + earlier + "]");
            }
        }
    }

    private EffectKind readEffectInto(String place, Object value, List<Effect> effects) {
        Object type = value instanceof JSONObject ? ((JSONObject) value).opt("type") : null;
        EffectKind named = type instanceof String ? EffectKind.find((String) type) : null;
        int index = 0;
        while (index < effects.size() && effects.get(index).kind != named) {
            index++;
        }
        Effect base = index < effects.size() ? effects.get(index) : null;
        Effect effect = readEffect(place, value, false, base);
        if (base == null) {
            effects.add(effect);
        } else {
            effects.set(index, effect);
        }
        return effect.kind;
    }

    /** Of {"stroke": null}. */
    private static EffectKind takenAway(Object value) {
        JSONObject object = value instanceof JSONObject ? (JSONObject) value : new JSONObject();
        if (object.length() != 1) {
            return null;
        }
        String key = object.keys().next();
        return object.isNull(key) ? EffectKind.find(key) : null;
    }

    private Effect readEffect(String place, Object value, boolean canvas, Effect base) {
        String names = canvas ? EffectKind.canvasNames() : EffectKind.names();
        Object type = value instanceof JSONObject ? ((JSONObject) value).opt("type") : null;
        if (type == null) {
            throw refusal(place, "it is not an object with a type, one of " + names);
        }
        EffectKind kind = type instanceof String ? EffectKind.find((String) type) : null;
        if (kind == null || (canvas && !kind.fillsCanvas())) {
            throw refusal(place + ".type", shown(type) + " is not one of " + names);
        }
        boolean changes = base != null && base.kind == kind;
        String[] others = canvas ? new String[] {"type"} : new String[] {"designed-for", "type"};
        Map<String, Object> given = readObject(place, value, kind.settings, changes ? base.values() : null, others);
        Object[] values = new Object[kind.settings.length];
        for (int i = 0; i < values.length; i++) {
            values[i] = given.get(kind.settings[i].name);
        }
        return new Effect(kind, values, designedFor(place, (JSONObject) value, changes ? base.designedFor : null));
    }

    private static Double designedFor(String place, JSONObject effect, Double base) {
        Object given = effect.opt("designed-for");
        if (given == null || given == JSONObject.NULL) {
            return given == null ? base : null;
        }
        String where = place + ".designed-for";
        if (!(given instanceof Number)) {
            throw refusal(where, shown(given) + " is not " + EFFECT_DESIGNED_FOR.wanted());
        }
        return EFFECT_DESIGNED_FOR.checked(where, (Number) given);
    }

    // The first layer changes the first, and so on; more go behind them.
    private void readLayers(JSONObject object, Content content) {
        if (object.isNull("layers")) {
            if (object.has("layers")) {
                content.layers.clear();
            }
            return;
        }
        Object value = object.opt("layers");
        JSONArray array = value instanceof JSONArray ? (JSONArray) value : new JSONArray();
        if (array.length() < 1 || array.length() > ZvStyle.MAX_LAYERS) {
            throw refusal("layers", shown(value) + " is not an array of 1 to " + ZvStyle.MAX_LAYERS + " layers");
        }
        if (!content.effects.isEmpty() && !object.has("effects")) {
            throw refusal("layers", "the style that this one extends has effects; \"effects\": null takes them away");
        }
        List<Content> layers = new ArrayList<>();
        for (int i = 0; i < Math.max(array.length(), content.layers.size()); i++) {
            if (i < array.length() && array.isNull(i)) {
                continue;
            }
            boolean changes = i < content.layers.size();
            Content layer = changes ? content.layers.get(i) : new Content();
            if (i < array.length()) {
                String place = "layers[" + i + "]";
                layer.values = readObject(
                        place, array.opt(i), ZvStyle.Layer.SETTINGS, changes ? layer.values : null, "effects");
                readEffects(place, (JSONObject) array.opt(i), layer.effects);
            }
            layers.add(layer);
        }
        if (layers.size() > ZvStyle.MAX_LAYERS) {
            throw refusal("layers", layers.size() + " are more than " + ZvStyle.MAX_LAYERS);
        }
        int last = layers.size() - 1;
        if (last >= 0 && (Boolean) layers.get(last).values.get("clip")) {
            throw refusal("layers[" + last + "].clip", "there is no layer behind it to clip it to");
        }
        content.layers = layers;
    }

    // --- Values

    /**
     * What the object has for the settings; null takes a value away. What it lacks has the value of {@code base}, or without
     * one the value at the start, but in a style itself. The other keys are read elsewhere.
     */
    private Map<String, Object> readObject(
            String place, Object value, Setting[] settings, Map<String, Object> base, String... others) {
        List<String> known = new ArrayList<>(Arrays.asList(others));
        for (Setting setting : settings) {
            known.add(setting.name);
        }
        String names = String.join(", ", known);
        if (!(value instanceof JSONObject)) {
            throw refusal(place, shown(value) + " is not an object with the keys " + names);
        }
        JSONObject object = (JSONObject) value;
        Map<String, Object> values = base != null ? new HashMap<>(base) : new HashMap<>();
        for (Setting setting : settings) {
            String where = member(place, setting.name);
            if (!object.isNull(setting.name)) {
                Object below = base != null ? base.get(setting.name) : null;
                values.put(setting.name, readValue(where, object.opt(setting.name), setting, below));
            } else if (setting.required && (base == null || object.has(setting.name))) {
                throw refusal(where, "is missing; it takes " + setting.wanted());
            } else if (base == null || object.has(setting.name)) {
                values.remove(setting.name);
                if (settings != ZvStyle.SETTINGS) {
                    values.put(setting.name, setting.start);
                }
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

    private Object readValue(String place, Object value, Setting setting, Object below) {
        IllegalArgumentException refusal = refusal(place, shown(value) + " is not " + setting.wanted());
        Type type = setting.type;
        if (type == Type.NUMBER && value instanceof Number) {
            return setting.checked(place, (Number) value);
        }
        if (type == Type.FLAG && value instanceof Boolean) {
            return value;
        }
        if (type == Type.CANVAS && value instanceof JSONObject) {
            return readEffect(place, value, true, below instanceof Effect ? (Effect) below : null);
        }
        if (type == Type.TINT) {
            Setting[] settings = {Setting.color(0).required(), Setting.opacity(((Tint) setting.start).opacity)};
            Map<String, Object> base = null;
            if (below != null) {
                base = new HashMap<>();
                base.put("color", ((Tint) below).color);
                base.put("opacity", ((Tint) below).opacity);
            }
            Map<String, Object> tint = readObject(place, value, settings, base);
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
            Map<String, Object> stop = readObject(place + "[" + i + "]", array.opt(i), STOP, null);
            stops.add((Integer) stop.get("color"), (Double) stop.get("position"), (Double) stop.get("opacity"));
        }
        return stops.checked(place, true);
    }
}
