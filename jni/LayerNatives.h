// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_LAYERNATIVES_H_
#define ZVEX_JNI_LAYERNATIVES_H_

#include <jni.h>

namespace Zvex {

// Natives of ZvTextEffects for a text in layers (effect/TextLayers.h). The layers come from the back. Each
// has an opacity and kLayerNumbers numbers: the handle of a text object whose effects it uses, the text's
// colour, spread, x, y, blend (LayerBlend), and 1 for clipped plus 2 for knocked out plus 4 for glyphs in
// their own colours. No handle may occur twice.
constexpr int kLayerNumbers = 7;

// Left, top, right, bottom: the room that the layers need beside the view. Null if they are refused.
jintArray JNICALL ZvTextEffects_GetLayerMargins(JNIEnv* env, jclass, jintArray layers, jfloatArray opacities);

// Like ZvText_RenderTextEffect, with the layers instead of the text object's own effects, which may belong to
// one of the layers. Behind them are the background, if `background` says that the text has one, and the
// canvas: the effects of the text object with that handle or, if it is 0, the colour.
jintArray JNICALL ZvTextEffects_RenderLayers(JNIEnv* env, jclass, jint handle, jintArray layers,
                                             jfloatArray opacities, jint canvas, jint canvasColor,
                                             jboolean background, jfloat opacity);

// Like ZvText_RenderTextEffect, and glyphs that have colours of their own (GlyphColors) are drawn in these
// if `colored`.
jintArray JNICALL ZvTextEffects_Render(JNIEnv* env, jclass, jint handle, jboolean colored,
                                       jboolean background);

}  // namespace Zvex

#endif  // ZVEX_JNI_LAYERNATIVES_H_
