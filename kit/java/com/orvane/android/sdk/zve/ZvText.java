// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import android.content.res.AssetManager;
import android.graphics.Paint;
import android.text.Layout;
import android.widget.TextView;

/** A text with effects, rendered into pixels. */
public class ZvText {
    // The native object's handle; negative while there is none. Natives read and write it.
    private int mHandle = -1;

    public ZvText() {
        ZvLibrary.load();
    }

    private native void ZvText_finalize();

    private native int ZvText_AddInnerShadowTextEffect(float angle, float distance, float size, int color, float opacity);

    private native int ZvText_AddLinearGradientTextEffect(
            float angle, float scale, int[] colors, float[] opacities, float[] positions, float opacity);

    private native int ZvText_AddOuterGlowTextEffect(float size, int color, float opacity);

    private native int ZvText_AddOuterShadowTextEffect(float angle, float distance, float size, int color, float opacity);

    private native int ZvText_AddStrokeTextEffect(float width, int color, float opacity, int kind, int position);

    private native void ZvText_ClearAllTextEffect();

    private native int[] ZvText_RenderTextEffect();

    private native boolean ZvText_SetFont(String path);

    private native boolean ZvText_SetFont2(String name, byte[] data);

    private native boolean ZvText_SetFont3(AssetManager assets, String name);

    private native boolean ZvText_SetPaint(Paint paint);

    private native boolean ZvText_SetLayout(Layout layout);

    private native boolean ZvText_SetLine(int lines);

    private native boolean ZvText_SetView(TextView view);

    private native int[] ZvText_GetDrawingBitmapSize();

    private native boolean ZvText_SetBackgroundColor(int color, boolean enabled);

    private native int ZvText_GetEffectLeftOffset();

    private native int ZvText_GetEffectTopOffset();

    private native int ZvText_GetEffectRightOffset();

    private native int ZvText_GetEffectBottomOffset();
}
