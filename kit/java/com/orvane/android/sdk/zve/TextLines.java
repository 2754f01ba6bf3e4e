// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import android.graphics.Paint;
import android.text.Layout;
import com.orvane.android.sdk.zve.util.FontLock;
import java.util.concurrent.locks.Lock;

/**
 * A text's lines and the view that they are placed in: the application's layout and view, or those made from the text's own
 * words. Used under the text's lock.
 */
final class TextLines {
    // For words without a view, without the effects' margins. The native picture of a line keeps its width in 16 bits.
    private static final int MAX_SIDE = 32767;
    private static final int MAX_PIXELS = 100_000_000;

    private final ZvText text;
    final SelfLayout self = new SelfLayout();
    private boolean measured; // the lines fit the words, the paint and the column

    private Layout layout;
    private boolean hasView;
    private int count; // of the lines shown; 0: the view's own limit
    private boolean drawn; // since the lines were placed
    int[] lean = new int[4]; // room in the view for ink beyond the lines: left, top, right, bottom

    int viewColor = 0xFF000000;
    private double paintSize; // for a text with a view

    TextLines(ZvText text) {
        this.text = text;
    }

    /** Measures the words again before the next picture: their font, paint or column changed. */
    void changed() {
        measured = false;
    }

    void setPaint(Paint paint) {
        self.setPaint(paint);
        paintSize = Setting.decimal(paint.getTextSize());
        changed();
    }

    /** The size that effects for a certain size follow. */
    double size() {
        return self.hasWords() || paintSize == 0 ? self.size() : paintSize;
    }

    void setCount(int lines) {
        count = Math.max(lines, 0);
        changed();
        if (!self.hasWords()) {
            place();
        }
    }

    /** The native object has the view already. True if the text had words of its own until now. */
    boolean setView(int color) {
        hasView = true;
        viewColor = color;
        place();
        return leaveWords();
    }

    /** True if the text had words of its own until now. The text keeps its layout if this throws. */
    boolean setLayout(Layout other) {
        Layout before = layout;
        layout = other;
        boolean done = false;
        try {
            place();
            done = true;
        } finally {
            if (!done) {
                layout = before;
            }
        }
        return leaveWords();
    }

    private boolean leaveWords() {
        boolean had = self.hasWords();
        if (had) {
            self.setWords(null);
            lean = new int[4];
            text.leaveWords();
        }
        changed();
        return had;
    }

    void forget() {
        layout = null;
    }

    /**
     * Readies the lines for a picture.
     *
     * @param movesBoxes whether a picture moves the lines' boxes, so that the next one has to place them again
     * @throws IllegalStateException if the view or the layout is missing, or the words are too large
     */
    void ready(boolean movesBoxes) {
        if (self.hasWords()) {
            if (!measured || (movesBoxes && drawn)) {
                measure();
            }
            return;
        }
        if (!hasView || layout == null) {
            throw new IllegalStateException("call " + (hasView ? "layout" : "view") + " before");
        }
        if (movesBoxes && drawn) {
            place();
        }
    }

    void drawn() {
        drawn = true;
    }

    // Sets up a view of the size that the words take.
    private void measure() {
        lean = layOut();
        if (lean == null) {
            lean = new int[4];
            layOutByPlatform();
        }
        hasView = true;
        viewColor = 0xFF000000;
        drawn = false;
        measured = true;
    }

    private int[] layOut() {
        Lock fonts = FontLock.setText(self.words());
        try {
            return text.layOut(self, count);
        } finally {
            fonts.unlock();
        }
    }

    private void layOutByPlatform() {
        Layout lines = self.lines();
        int shown = count > 0 ? Math.min(count, lines.getLineCount()) : lines.getLineCount();
        int width = self.width(lines);
        int height = Math.max(lines.getLineBottom(shown - 1), 1);
        if (Math.max(width, height) > MAX_SIDE || (long) width * height > MAX_PIXELS) {
            throw new IllegalStateException("the text would be " + width + " x " + height + " pixels; at most " + MAX_SIDE
                    + " pixels a side and " + MAX_PIXELS + " in all");
        }
        text.setView(width, height, shown);
        layout = lines;
        hasView = true;
        place();
    }

    // Places the lines by the view as it is at that moment; without a view there is nothing to place them in.
    private void place() {
        if (layout == null || !hasView) {
            return;
        }
        Lock fonts = FontLock.setText(layout);
        try {
            text.setLines(layout);
        } finally {
            fonts.unlock();
        }
        drawn = false;
    }
}
