// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

/**
 * The natives beside those of {@link ZvText}: the effects that it has none for, texts without a view, and texts in layers.
 * Each takes the handle of a text's native object, or several. Adders return the effect's id, or -1; the others false or null
 * if they fail. The error is 19 for a handle without an object and 7 for arrays that do not match.
 *
 * <p>Sizes are pixels, angles degrees, opacities 0 to 1; an opacity takes the place of its colour's alpha. A stop is one
 * place of three arrays, its position 0 to 1.
 */
final class ZvTextEffects {
    private ZvTextEffects() {}

    /** With stops, from the glyphs outwards, the colour is ignored; without stops the arrays are empty. */
    static native int ZvTextEffects_AddOuterGlow(
            int handle, float size, int color, float opacity, int[] colors, float[] opacities, float[] positions);

    static native int ZvTextEffects_AddInnerGlow(
            int handle, float size, int color, float opacity, int[] colors, float[] opacities, float[] positions);

    static native int ZvTextEffects_AddRadialGradient(
            int handle, float scale, float opacity, int[] colors, float[] opacities, float[] positions);

    /** @param argb rows of straight 0xAARRGGBB, copied */
    static native int ZvTextEffects_AddPattern(
            int handle, int[] argb, int width, int height, float scale, float opacity);

    /** @param style 0 outer, 1 inner */
    static native int ZvTextEffects_AddBevel(
            int handle, int style, float size, float depth, int direction, int technique, int soften, float opacity,
            float angle, float altitude, int shadow, float shadowOpacity, int highlight, float highlightOpacity);

    /** @param style 1 single, 3 double */
    static native int ZvTextEffects_AddEmboss(
            int handle, int style, float size, float depth, int direction, int technique, int soften, float opacity,
            float angle, float altitude, int shadow, float shadowOpacity, int highlight, float highlightOpacity);

    /** False if the text has no effect with that id. */
    static native boolean ZvTextEffects_RemoveEffect(int handle, int id);

    /** The same by the library's number of the kind. */
    static native boolean ZvTextEffects_ClearEffect(int handle, int type);

    static native boolean ZvTextEffects_SetTextOpacity(int handle, float opacity);

    /** Bytes that differ if the effects or colours of two texts do; none of them is 0. */
    static native byte[] ZvTextEffects_GetLayerKey(int handle);

    /** A view without paddings in the place of {@code ZvText_SetView}'s. */
    static native boolean ZvTextEffects_SetView(int handle, int width, int height, int maxLines);

    static native boolean ZvTextEffects_SetTextColor(int handle, int color);

    /** The start of the first line on its baseline, x and y in the view; null without lines. */
    static native int[] ZvTextEffects_GetOrigin(int handle);

    /**
     * Left, top, right, bottom: the pixels that layers need beside the view.
     *
     * @param layers from the back, for each its handle, colour, spread, x, y, blend, and the sum of 1 if it is clipped, 2 if
     *     knocked out, 4 if glyphs have their own colours
     * @param opacities one a layer
     */
    static native int[] ZvTextEffects_GetLayerMargins(int[] layers, float[] opacities);

    /**
     * The picture with these layers in the place of the text's own effects.
     *
     * @param canvas the handle of a text whose effects fill the canvas, or 0 for a canvas of {@code canvasColor}
     * @param background whether the text has one
     */
    static native int[] ZvTextEffects_RenderLayers(
            int handle, int[] layers, float[] opacities, int canvas, int canvasColor, boolean background, float opacity);

    /** The picture with the text's own effects. @param colored whether glyphs have their own colours */
    static native int[] ZvTextEffects_Render(int handle, boolean colored, boolean background);

    /**
     * Lays words out and gives the text a view of their size, on a desktop.
     *
     * @param align 0 left, 1 center, 2 right
     * @param lines shown at most; 0 for all
     * @param size of the text, which spaces and line heights follow
     * @param wordSpacing -1 to 10, ems for each space
     * @param lineHeight 0 to 10, times the size; 0 for the fonts' own
     * @return the room that the view has for ink beyond the lines: left, top, right, bottom. Empty, with nothing done, on
     *     Android, where {@code StaticLayout} does this. Null if memory is short
     * @throws IllegalStateException which says why the words make no picture
     */
    static native int[] ZvTextEffects_LayOut(
            int handle, String words, int wrap, int align, int lines, double size, double wordSpacing, double lineHeight);

    /** The next lines are those of a layout. */
    static native boolean ZvTextEffects_LeaveWords(int handle);

    /** Sets the layout's text once more, after {@code ZvText_SetLayout}, which loses part of characters above U+1FFFF. */
    static native boolean ZvTextEffects_SetWords(int handle, String words);
}
