// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import com.orvane.android.sdk.zve.Setting.Tint;
import java.util.HashMap;
import java.util.Map;

/** An effect with its settings; immutable. */
final class Effect {
    final EffectKind kind;
    private final Map<String, Object> values; // of all the kind's settings, each of the class that its type has
    private final double designedFor; // the text's size for which its lengths are; 0 for any

    /** @param values within their ranges; not copied */
    Effect(EffectKind kind, Map<String, Object> values, double designedFor) {
        this.kind = kind;
        this.values = values;
        this.designedFor = designedFor;
    }

    /**
     * An effect for texts of any size.
     *
     * @param arguments in the order of the kind's settings; numbers of any class
     * @throws IllegalArgumentException which names the argument and its range
     */
    static Effect of(EffectKind kind, Object... arguments) {
        Map<String, Object> values = new HashMap<>();
        for (int i = 0; i < arguments.length; i++) {
            Setting setting = kind.settings[i];
            String where = kind.key + " " + setting.name;
            Object value = arguments[i];
            if (setting.type == Setting.Type.NUMBER) {
                value = setting.checked(where, (Number) value);
            } else if (setting.type == Setting.Type.STOPS) {
                value = ((Stops) value).checked(where, setting.required);
            } else if (setting.type == Setting.Type.TINT) {
                Setting.opacity(1).checked(where + " opacity", ((Tint) value).opacity);
            }
            values.put(setting.name, value);
        }
        return new Effect(kind, values, 0);
    }

    /** The effect for a text of that size. */
    Effect fitted(double size) {
        if (designedFor == 0) {
            return this;
        }
        Map<String, Object> fitted = new HashMap<>(values);
        for (Setting setting : kind.settings) {
            if (setting.length) {
                fitted.put(setting.name, setting.fitted((Double) values.get(setting.name), size / designedFor));
            }
        }
        return new Effect(kind, fitted, 0);
    }

    /** A copy. */
    Map<String, Object> values() {
        return new HashMap<>(values);
    }

    private Object get(String name) {
        return values.get(name);
    }

    private float number(String name) {
        return ((Double) get(name)).floatValue();
    }

    private int whole(String name) {
        return ((Number) get(name)).intValue();
    }

    // Whole turns go first, so that no angle is too large for a float.
    private float angle() {
        return (float) ((Double) get("angle") % 360);
    }

    // The library reads only the opacity and ignores the colour's alpha.
    static float opacity(int color, double opacity) {
        return (float) (opacity * (color >>> 24) / 255);
    }

    private float colorOpacity() {
        return opacity(whole("color"), (Double) get("opacity"));
    }

    /** Gives it to the text; the id that it has there, or -1. */
    int addTo(ZvText text) {
        switch (kind) {
            case OUTER_SHADOW:
                return text.ZvText_AddOuterShadowTextEffect(
                        angle(), number("distance"), number("size"), whole("color"), colorOpacity());
            case INNER_SHADOW:
                return text.ZvText_AddInnerShadowTextEffect(
                        angle(), number("distance"), number("size"), whole("color"), colorOpacity());
            case STROKE:
                return text.ZvText_AddStrokeTextEffect(
                        number("width"), whole("color"), colorOpacity(), 0, whole("position"));
            case PATTERN:
                ZvPicture picture = (ZvPicture) get("file");
                return ZvTextEffects.ZvTextEffects_AddPattern(text.handle(), picture.pixels, picture.width(),
                        picture.height(), number("scale"), number("opacity"));
            case BEVEL:
            case EMBOSS:
                return addRelief(text.handle());
            default:
                return addStops(text, (Stops) get("stops"));
        }
    }

    private int addStops(ZvText text, Stops stops) {
        int[] colors = stops.colors();
        float[] opacities = stops.opacities();
        float[] positions = stops.positions();
        switch (kind) {
            case OUTER_GLOW:
                return ZvTextEffects.ZvTextEffects_AddOuterGlow(
                        text.handle(), number("size"), whole("color"), colorOpacity(), colors, opacities, positions);
            case INNER_GLOW:
                return ZvTextEffects.ZvTextEffects_AddInnerGlow(
                        text.handle(), number("size"), whole("color"), colorOpacity(), colors, opacities, positions);
            case LINEAR_GRADIENT:
                return text.ZvText_AddLinearGradientTextEffect(
                        angle(), number("scale"), colors, opacities, positions, number("opacity"));
            default:
                return ZvTextEffects.ZvTextEffects_AddRadialGradient(
                        text.handle(), number("scale"), number("opacity"), colors, opacities, positions);
        }
    }

    private int addRelief(int handle) {
        Tint shadow = (Tint) get("shadow");
        Tint highlight = (Tint) get("highlight");
        float shadowOpacity = opacity(shadow.color, shadow.opacity);
        float highlightOpacity = opacity(highlight.color, highlight.opacity);
        if (kind == EffectKind.BEVEL) {
            return ZvTextEffects.ZvTextEffects_AddBevel(handle, whole("style"), number("size"), number("depth"),
                    whole("direction"), whole("technique"), whole("soften"), number("opacity"), angle(),
                    number("altitude"), shadow.color, shadowOpacity, highlight.color, highlightOpacity);
        }
        return ZvTextEffects.ZvTextEffects_AddEmboss(handle, whole("style"), number("size"), number("depth"),
                whole("direction"), whole("technique"), whole("soften"), number("opacity"), angle(),
                number("altitude"), shadow.color, shadowOpacity, highlight.color, highlightOpacity);
    }
}
