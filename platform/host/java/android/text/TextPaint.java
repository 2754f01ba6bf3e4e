// SPDX-License-Identifier: Apache-2.0
package android.text;

import android.graphics.Paint;

/** A paint for text that is laid out. */
public class TextPaint extends Paint {
    public TextPaint() {}

    public TextPaint(int flags) {
        super(flags);
    }

    public TextPaint(Paint p) {
        super(p);
    }
}
