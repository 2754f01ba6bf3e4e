// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import com.orvane.android.sdk.zve.Setting.Tint;
import java.util.HashMap;
import java.util.Map;

/** An effect with its settings; immutable. */
final class Effect {
    final EffectKind kind;
    final Double designedFor; // the text's size, 0 for any; null: as the style
    private final Object[] values; // in the order of the kind's settings

    /** Values of the classes that the settings' types have, and in their ranges. */
    Effect(EffectKind kind, Object[] values, Double designedFor) {
        this.kind = kind;
        this.values = values;
        this.designedFor = designedFor;
    }

    /** By the names of the settings. */
    Map<String, Object> values() {
        Map<String, Object> named = new HashMap<>();
        for (int i = 0; i < values.length; i++) {
            named.put(kind.settings[i].name, values[i]);
        }
        return named;
    }

    /**
     * The same from arguments, numbers of any class among them.
     *
     * @throws IllegalArgumentException which names the argument and its range
     */
    static Effect of(EffectKind kind, Object... arguments) {
        Object[] values = arguments.clone();
        for (int i = 0; i < values.length; i++) {
            Setting setting = kind.settings[i];
            String where = kind.key + " " + setting.name;
            if (setting.type == Setting.Type.NUMBER) {
                values[i] = setting.checked(where, (Number) values[i]);
            } else if (setting.type == Setting.Type.STOPS) {
                values[i] = ((Stops) values[i]).checked(where, setting.required);
            } else if (setting.type == Setting.Type.TINT) {
                Setting.opacity(1).checked(where + " opacity", ((Tint) values[i]).opacity);
            }
        }
        return new Effect(kind, values, null);
    }

    /** For a text of the size, in a style that is designed for another; 0 for any. */
    Effect fitted(double size, double styleDesignedFor) {
        double designed = designedFor != null ? designedFor : styleDesignedFor;
        if (designed == 0) {
            return this;
        }
        double factor = size / designed;
        Object[] fitted = values.clone();
        for (int i = 0; i < fitted.length; i++) {
            if (kind.settings[i].length) {
                fitted[i] = kind.settings[i].fitted((Double) fitted[i], factor);
            }
        }
        return new Effect(kind, fitted, 0.0);
    }

    private Object get(String name) {
        for (int i = 0; i < values.length; i++) {
            if (kind.settings[i].name.equals(name)) {
                return values[i];
            }
        }
        throw new AssertionError(kind + " " + name);
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
