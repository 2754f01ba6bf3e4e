// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.EnumMap;
import java.util.EnumSet;
import java.util.List;
import java.util.Map;
import java.util.Set;

/** A text's colours, and what styles gave it: effects that scale with the text's size, layers, a canvas. */
final class Look {
    // Of a layer, see ZvTextEffects.
    private static final int NUMBERS = 7;
    private static final int CLIPPED = 1;
    private static final int KNOCKOUT = 2;
    private static final int COLORED = 4;

    Integer color; // null: the view's
    Integer background;
    double opacity = 1;
    boolean colorGlyphs = true;

    private final Map<EffectKind, Effect> styled = new EnumMap<>(EffectKind.class);
    private final Set<EffectKind> own = EnumSet.noneOf(EffectKind.class); // those that no style gave
    private final List<StyledLayer> layers = new ArrayList<>(); // from the front
    private Object canvas; // null, an Integer for a colour, or an Effect
    private ZvText canvasText; // has the canvas's effect; null if there is none

    /** A layer of a style, the text object that has its effects, and its spread and offset for the text's size. */
    private static final class StyledLayer {
        final ZvStyle.Layer layer;
        final double designedFor;
        final ZvText stack = new ZvText();
        int[] lengths;

        StyledLayer(ZvStyle.Layer layer, double designedFor) {
            this.layer = layer;
            this.designedFor = designedFor;
        }
    }

    static int faded(int color, double share) {
        return (int) Math.round((color >>> 24) * share) << 24 | (color & 0xFFFFFF);
    }

    /** Applies the style's settings. {@link #fit} scales its effects and layers to the text's size. */
    void take(ZvText text, ZvStyle style) {
        color = style.color != null ? style.color : color;
        background = style.background != null ? style.background : background;
        opacity = style.opacity != null ? style.opacity : opacity;
        colorGlyphs = style.colorGlyphs != null ? style.colorGlyphs : colorGlyphs;
        for (Effect effect : style.effects) {
            own.remove(effect.kind);
            styled.put(effect.kind, effect);
            text.give(effect); // in the style's order
        }
        if (style.canvas != null) {
            setCanvas(style.canvas);
        }
        if (!style.layers.isEmpty()) {
            closeLayers();
            for (ZvStyle.Layer layer : style.layers) {
                layers.add(new StyledLayer(layer, style.designedFor));
            }
        }
    }

    private void setCanvas(Object ground) {
        if (canvasText != null) {
            canvasText.close();
            canvasText = null;
        }
        canvas = ground;
        if (ground instanceof Effect) {
            canvasText = new ZvText();
            canvasText.begin();
            canvasText.give((Effect) ground);
        }
    }

    /** Scales what is designed for a certain size to this one. */
    void fit(ZvText text, double size) {
        for (Effect effect : styled.values()) {
            text.give(effect.fitted(size));
        }
        for (StyledLayer one : layers) {
            one.lengths = one.layer.lengths(one.designedFor == 0 ? 1 : size / one.designedFor);
            one.stack.begin();
            for (Effect effect : one.layer.effects) {
                one.stack.give(effect.fitted(size));
            }
        }
    }

    /** The effect is the text's own from now on. */
    void own(EffectKind kind) {
        styled.remove(kind);
        own.add(kind);
    }

    /** The text has no such effect any more. */
    void forget(EffectKind kind) {
        styled.remove(kind);
        own.remove(kind);
    }

    void check() {
        if (!layers.isEmpty() && !(own.isEmpty() && styled.isEmpty())) {
            EffectKind kind = own.isEmpty() ? styled.keySet().iterator().next() : own.iterator().next();
            throw new IllegalStateException(
                    kind.key + ": the style has layers, and effects belong into one of them");
        }
    }

    void clear() {
        own.clear();
        styled.clear();
        closeLayers();
        setCanvas(null);
    }

    private void closeLayers() {
        for (StyledLayer one : layers) {
            one.stack.close();
        }
        layers.clear();
    }

    /** Whether the picture is joined from layers; with just a canvas, the one layer is the text with its own effects. */
    boolean isLayered() {
        return !layers.isEmpty() || canvas != null;
    }

    int[] margins(ZvText text, int textColor) {
        int[] margins = ZvTextEffects.ZvTextEffects_GetLayerMargins(numbers(text, textColor), opacities());
        ZvText.check(margins != null, "the margins could not be read");
        return margins;
    }

    /** Null if the library refuses. */
    int[] render(ZvText text, int textColor) {
        if (!isLayered()) {
            return ZvTextEffects.ZvTextEffects_Render(text.handle(), colorGlyphs, background != null);
        }
        boolean byEffect = canvas instanceof Effect;
        int ground = canvas instanceof Integer ? (Integer) canvas : 0;
        return ZvTextEffects.ZvTextEffects_RenderLayers(text.handle(), numbers(text, textColor), opacities(),
                byEffect ? canvasText.handle() : 0, ground, background != null, (float) opacity);
    }

    private int[] numbers(ZvText text, int textColor) {
        if (layers.isEmpty()) {
            return new int[] {text.handle(), textColor, 0, 0, 0, 0, colorGlyphs ? COLORED : 0};
        }
        int[] numbers = new int[NUMBERS * layers.size()];
        int at = 0;
        for (int i = layers.size() - 1; i >= 0; i--) {
            StyledLayer one = layers.get(i);
            numbers[at++] = one.stack.handle();
            numbers[at++] = one.layer.color != null ? one.layer.color : textColor;
            for (int length : one.lengths) {
                numbers[at++] = length;
            }
            numbers[at++] = one.layer.blend;
            numbers[at++] = (one.layer.clip ? CLIPPED : 0) + (one.layer.knockout ? KNOCKOUT : 0)
                    + (isColored(i) ? COLORED : 0);
        }
        return numbers;
    }

    /** The text's own key with those of its layers and its canvas. */
    byte[] layeredKey(byte[] own, ZvText text, int textColor) {
        StringBuilder key = new StringBuilder(textOf(own)).append(opacity);
        int[] numbers = numbers(text, textColor);
        float[] opacities = opacities();
        for (int i = 0; i < numbers.length; i += NUMBERS) {
            key.append(keyOf(numbers[i])).append(opacities[i / NUMBERS])
                    .append(Arrays.toString(Arrays.copyOfRange(numbers, i + 1, i + NUMBERS)));
        }
        key.append(canvas instanceof Effect ? keyOf(canvasText.handle()) : canvas);
        return key.toString().getBytes(StandardCharsets.ISO_8859_1);
    }

    private static String keyOf(int handle) {
        byte[] key = ZvTextEffects.ZvTextEffects_GetLayerKey(handle);
        ZvText.check(key != null, "the key could not be made");
        return textOf(key);
    }

    private static String textOf(byte[] key) {
        return new String(key, StandardCharsets.ISO_8859_1);
    }

    // Glyphs have their own colours in the layers that say so; in the front one if no layer does.
    private boolean isColored(int index) {
        for (StyledLayer one : layers) {
            if (Boolean.TRUE.equals(one.layer.colorGlyphs)) {
                return Boolean.TRUE.equals(layers.get(index).layer.colorGlyphs);
            }
        }
        return index == 0 && colorGlyphs && layers.get(0).layer.colorGlyphs == null;
    }

    private float[] opacities() {
        float[] opacities = new float[Math.max(layers.size(), 1)];
        opacities[0] = 1;
        for (int i = 0; i < layers.size(); i++) {
            opacities[i] = (float) layers.get(layers.size() - 1 - i).layer.opacity;
        }
        return opacities;
    }
}
