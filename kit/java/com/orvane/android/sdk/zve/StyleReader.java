// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import java.io.IOException;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import org.json.JSONArray;
import org.json.JSONException;
import org.json.JSONObject;
import org.json.JSONTokener;

/** Reads style files: what they say, alone or on top of the style that they extend. */
final class StyleReader {
    static final int MAX_CHARS = 4 << 20;
    private static final int MAX_BASES = 8;
    private static final String DESIGNED_FOR = "designed-for";
    private static final Setting EFFECT_DESIGNED_FOR = Setting.number(DESIGNED_FOR, 0, 0, 10000, "px");

    private final ZvStyle.Pictures files;
    private final List<String> above; // the names of the files that extend this one
    private final String folder;
    private final ValueReader values;

    private StyleReader(ZvStyle.Pictures files, List<String> above) {
        this.files = files;
        this.above = above;
        String name = above.isEmpty() ? "" : above.get(above.size() - 1);
        folder = name.substring(0, name.lastIndexOf('/') + 1);
        values = new ValueReader(files, folder);
    }

    /** @throws IllegalArgumentException whose message begins with the place of what is wrong */
    static ZvStyle read(String json, ZvStyle.Pictures files) {
        return new StyleReader(files, new ArrayList<>()).read(json).finished();
    }

    // --- What a style says, together with those that it extends

    private static final class Content {
        final Map<String, Object> settings = new HashMap<>(); // those that are given
        final Effects effects = new Effects();
        final List<Layer> layers = new ArrayList<>(); // from the front

        ZvStyle finished() {
            Object designed = settings.get(DESIGNED_FOR);
            double size = designed != null ? (Double) designed : 0;
            List<ZvStyle.Layer> finished = new ArrayList<>();
            for (Layer layer : layers) {
                finished.add(new ZvStyle.Layer(layer.settings, layer.effects.finished(size)));
            }
            return new ZvStyle(settings, effects.finished(size), finished);
        }
    }

    private static final class Layer {
        final Map<String, Object> settings = new HashMap<>();
        final Effects effects = new Effects();

        Layer() {
            for (Setting setting : ZvStyle.Layer.SETTINGS) {
                settings.put(setting.name, setting.start);
            }
        }
    }

    // The effects from the lowest on, and the sizes that they themselves are designed for.
    private static final class Effects {
        final Map<EffectKind, Effect> values = new LinkedHashMap<>();
        final Map<EffectKind, Double> designedFor = new HashMap<>();

        List<Effect> finished(double ofStyle) {
            List<Effect> list = new ArrayList<>();
            for (Effect effect : values.values()) {
                Double own = designedFor.get(effect.kind);
                list.add(new Effect(effect.kind, effect.values(), own != null ? own : ofStyle));
            }
            return list;
        }
    }

    // --- Reading

    private Content read(String text) {
        JSONObject json = parse(text);
        Content content = json.isNull("extends") ? new Content() : readBase(json.opt("extends"));
        readSettings(json, content);
        readLayers(json, content);
        readEffects("", json, content.effects);
        if (!json.isNull("effects") && !content.layers.isEmpty()) {
            throw ValueReader.refusal("effects", "belong into the layers where there are some");
        }
        return content;
    }

    private JSONObject parse(String text) {
        if (text.length() > MAX_CHARS) {
            throw new IllegalArgumentException("it is longer than " + MAX_CHARS + " characters");
        }
        try {
            Object value = new JSONTokener(JsonText.checked(text)).nextValue();
            if (!(value instanceof JSONObject)) {
                values.readObject("", value, ZvStyle.SETTINGS, new HashMap<>(), true, "effects", "layers"); // throws
            }
            return (JSONObject) value;
        } catch (JSONException e) {
            throw new IllegalArgumentException("it is not JSON: " + e.getMessage(), e);
        }
    }

    private Content readBase(Object json) {
        if (!(json instanceof String) || ((String) json).isEmpty()) {
            String given = json instanceof String ? "''" : ValueReader.shown(json);
            throw ValueReader.refusal("extends", given + " is not the name of a preset or the path of a style file");
        }
        String name = Setting.checkedText("extends", (String) json);
        if (ZvStyle.presets().contains(name)) {
            return within("extends: '" + name + "'", ZvStyle.presetText(name), new ArrayList<>());
        }
        if (above.size() >= MAX_BASES) {
            throw ValueReader.refusal("extends", "more than " + MAX_BASES + " style files extend one another");
        }
        String file = name.startsWith("/") ? name : folder + name;
        if (above.contains(file)) {
            throw ValueReader.refusal("extends", "'" + file + "' extends this style itself");
        }
        List<String> below = new ArrayList<>(above);
        below.add(file);
        try {
            return within("extends: '" + file + "'", ValueReader.found(files.findStyle(file)), below);
        } catch (IOException e) {
            String why = name.matches("[^./]*") ? "is not a file, and not one of " + String.join(", ", ZvStyle.presets())
                    : "cannot be read: " + e.getMessage();
            throw new IllegalArgumentException("extends: '" + file + "' " + why, e);
        }
    }

    private Content within(String where, String text, List<String> names) {
        try {
            return new StyleReader(files, names).read(text);
        } catch (IllegalArgumentException e) {
            throw new IllegalArgumentException(where + ": " + e.getMessage(), e);
        }
    }

    private void readSettings(JSONObject json, Content content) {
        values.readObject("", json, ZvStyle.SETTINGS, content.settings, true, "effects", "layers");
        for (Setting setting : ZvStyle.SETTINGS) {
            if (json.isNull(setting.name) && json.has(setting.name)) {
                content.settings.remove(setting.name); // it is not given any more
            }
        }
    }

    // The first layer changes the first of the style below, and so on. More go behind them; null takes one away.
    private void readLayers(JSONObject json, Content content) {
        if (!json.has("layers")) {
            return;
        }
        if (json.isNull("layers")) {
            content.layers.clear();
            return;
        }
        Object list = json.opt("layers");
        JSONArray array = list instanceof JSONArray ? (JSONArray) list : new JSONArray();
        if (array.length() < 1 || array.length() > ZvStyle.MAX_LAYERS) {
            throw ValueReader.refusal("layers",
                    ValueReader.shown(list) + " is not an array of 1 to " + ZvStyle.MAX_LAYERS + " layers");
        }
        if (!content.effects.values.isEmpty() && !json.has("effects")) {
            throw ValueReader.refusal("layers",
                    "the style that this one extends has effects; \"effects\": null takes them away");
        }
        List<Layer> below = new ArrayList<>(content.layers);
        content.layers.clear();
        for (int i = 0; i < Math.max(array.length(), below.size()); i++) {
            if (i >= array.length()) {
                content.layers.add(below.get(i));
            } else if (!array.isNull(i)) {
                Layer layer = i < below.size() ? below.get(i) : new Layer();
                String place = "layers[" + i + "]";
                values.readObject(place, array.opt(i), ZvStyle.Layer.SETTINGS, layer.settings, true, "effects");
                readEffects(place, (JSONObject) array.opt(i), layer.effects);
                content.layers.add(layer);
            }
        }
        checkLayers(content.layers);
    }

    private static void checkLayers(List<Layer> layers) {
        if (layers.size() > ZvStyle.MAX_LAYERS) {
            throw ValueReader.refusal("layers", layers.size() + " are more than " + ZvStyle.MAX_LAYERS);
        }
        int last = layers.size() - 1;
        if (last >= 0 && (Boolean) layers.get(last).settings.get("clip")) {
            throw ValueReader.refusal("layers[" + last + "].clip", "there is no layer behind it to clip it to");
        }
    }

    // They change those of their kind; new ones go on top.
    private void readEffects(String place, JSONObject json, Effects effects) {
        String list = ValueReader.member(place, "effects");
        if (!json.has("effects")) {
            return;
        }
        if (json.isNull("effects")) {
            effects.values.clear();
            effects.designedFor.clear();
            return;
        }
        if (!(json.opt("effects") instanceof JSONArray)) {
            throw ValueReader.refusal(list, ValueReader.shown(json.opt("effects")) + " is not an array of effects");
        }
        JSONArray array = (JSONArray) json.opt("effects");
        Map<EffectKind, String> seen = new HashMap<>();
        for (int i = 0; i < array.length(); i++) {
            String where = list + "[" + i + "]";
            EffectKind kind = readEffect(where, array.opt(i), effects);
            String earlier = seen.put(kind, where);
            if (earlier != null) {
                throw ValueReader.refusal(where + ".type", kind.key + " is there already, as " + earlier);
            }
        }
    }

    private EffectKind readEffect(String place, Object json, Effects effects) {
        EffectKind away = takenAway(json);
        if (away != null) {
            effects.values.remove(away);
            effects.designedFor.remove(away);
            return away;
        }
        EffectKind kind = ValueReader.kindOf(place, json, false);
        Map<String, Object> read = values.readEffect(place, json, kind, effects.values.get(kind), DESIGNED_FOR);
        JSONObject object = (JSONObject) json;
        if (object.has(DESIGNED_FOR)) {
            effects.designedFor.remove(kind);
        }
        if (!object.isNull(DESIGNED_FOR)) {
            String where = ValueReader.member(place, DESIGNED_FOR);
            effects.designedFor.put(
                    kind, (Double) values.read(where, object.opt(DESIGNED_FOR), EFFECT_DESIGNED_FOR, null));
        }
        effects.values.put(kind, new Effect(kind, read, 0));
        return kind;
    }

    /** The kind that {@code {"stroke": null}} takes away; null for any other object. */
    private static EffectKind takenAway(Object json) {
        if (!(json instanceof JSONObject) || ((JSONObject) json).length() != 1) {
            return null;
        }
        String key = ((JSONObject) json).keys().next();
        return ((JSONObject) json).isNull(key) ? EffectKind.find(key) : null;
    }
}
