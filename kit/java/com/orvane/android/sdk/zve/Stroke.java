// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

/** The position of a stroke. */
public enum Stroke {
    /** Half of its width on either side of the glyphs' edge. */
    CENTER(0),
    /** Around the glyphs. */
    OUTSIDE(1),
    /** Within the glyphs. */
    INSIDE(2);

    final int position;

    Stroke(int position) {
        this.position = position;
    }
}
