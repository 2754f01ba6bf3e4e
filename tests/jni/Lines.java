// SPDX-License-Identifier: Apache-2.0
import android.text.Layout;
import android.text.TextPaint;
import java.util.ArrayList;
import java.util.List;

/** A layout that reports the numbers it is given, and remembers which lines it was asked for. */
class Lines extends Layout {
    record Line(int baseline, int bottom, int ascent, int descent, float left, float width, int start, int visibleEnd) {}

    final List<Line> lines;
    final List<Integer> asked = new ArrayList<>();

    Lines(CharSequence text, List<Line> lines) {
        super(text, new TextPaint(), 200, Alignment.ALIGN_NORMAL, 1, 0);
        this.lines = lines;
    }

    /** All of the text in a line of 50 pixels. */
    static Lines single(CharSequence text) {
        return new Lines(text, List.of(new Line(40, 50, -40, 10, 0, 100, 0, text.length())));
    }

    private Line at(int line) {
        asked.add(line);
        return lines.get(line);
    }

    @Override public int getLineCount() { return lines.size(); }
    @Override public int getLineBaseline(int line) { return at(line).baseline; }
    @Override public int getLineBottom(int line) { return at(line).bottom; }
    @Override public int getLineTop(int line) { return at(line).baseline + at(line).ascent; }
    @Override public int getLineAscent(int line) { return at(line).ascent; }
    @Override public int getLineDescent(int line) { return at(line).descent; }
    @Override public float getLineLeft(int line) { return at(line).left; }
    @Override public float getLineWidth(int line) { return at(line).width; }
    @Override public int getLineStart(int line) { return at(line).start; }
    @Override public int getLineVisibleEnd(int line) { return at(line).visibleEnd; }
    @Override public int getParagraphDirection(int line) { return DIR_LEFT_TO_RIGHT; }
    @Override public int getTopPadding() { return 0; }
    @Override public int getBottomPadding() { return 0; }
}
