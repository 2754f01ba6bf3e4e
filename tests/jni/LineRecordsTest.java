// SPDX-License-Identifier: Apache-2.0
import static org.junit.jupiter.api.Assertions.assertEquals;

import android.widget.TextView;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.IntStream;
import org.junit.jupiter.api.Test;

/** Which lines SetLayout makes of a layout, and where: seen by the background, which fills each line's rectangle. */
final class LineRecordsTest {
    private static final int BACKGROUND = 0xFF00FF00;

    /** Lines 12 pixels apart that no two numbers of are the same; line i covers i + 1 characters. */
    private static Lines layout(CharSequence text, int count) {
        return new Lines(text, IntStream.range(0, count).mapToObj(i -> new Lines.Line(
                12 * i + 9, 12 * i + 12, i - 9, 2, i + 1.9f, 88 + i + 0.9f, 7 * i, 7 * i + i + 1)).toList());
    }

    private static Natives text(int gravity, int lines, int maxLines, Lines layout) {
        TextView view = Natives.view(100, 100, 0);
        view.setGravity(gravity);
        view.setPadding(3, 4, 5, 6);
        view.setMaxLines(maxLines);
        view.setTextColor(BACKGROUND);
        Natives text = new Natives();
        text.<Boolean>call("SetBackgroundColor", BACKGROUND, true);
        text.<Boolean>call("SetView", view);
        text.<Boolean>call("SetLine", lines);
        assertEquals(true, text.call("SetLayout", layout));
        return text;
    }

    /** The rectangles of the picture, which lie one below the other: left, top, right, bottom. */
    private static List<String> rectangles(int[] picture, int width) {
        List<String> found = new ArrayList<>();
        int top = -1;
        String extent = null;
        for (int y = 0; y <= picture.length / width; y++) {
            String row = y < picture.length / width ? extent(picture, width, y) : null;
            if (extent != null && !extent.equals(row)) {
                found.add(extent + " " + top + ".." + y);
            }
            top = row != null && !row.equals(extent) ? y : top;
            extent = row;
        }
        return found;
    }

    private static String extent(int[] picture, int width, int y) {
        int[] filled = IntStream.range(0, width).filter(x -> picture[y * width + x] != 0).toArray();
        return filled.length == 0 ? null : filled[0] + ".." + (filled[filled.length - 1] + 1);
    }

    private static void assertPlaced(int gravity, int lines, int maxLines, int count, String... expected) {
        int[] picture = text(gravity, lines, maxLines, layout(null, count)).render();
        assertEquals(List.of(expected), rectangles(picture, 100),
                "gravity " + gravity + ", lines " + lines + ", maxLines " + maxLines + ", of " + count);
    }

    /** Paddings are 3, 4, 5, 6; what reaches into the right one is cut off. A line's left is 3 + 1 + i, its width 88 + i, its top 9 - i above the baseline. */
    @Test
    void gravityAndLimitsChooseAndPlaceTheLines() {
        int top = 0x33, centre = 0x13, bottom = 0x53, max = Integer.MAX_VALUE;
        assertPlaced(top, 0, max, 0);
        assertPlaced(top, 2, 4, 5, "4..92 4..15", "5..94 17..27");
        assertPlaced(top, 9, 1, 2, "4..92 4..15", "5..94 17..27");
        // Two lines of 24 in the 90 between the paddings leave 33 above them.
        assertPlaced(centre, 0, 2, 5, "4..92 37..48", "5..94 50..60");
        // The last line ends 6 above the view's end; which line is the first makes no difference to that.
        assertPlaced(bottom, 0, 2, 5, "7..95 73..81", "8..95 86..93");
    }

    @Test
    void linesThatDoNotShowAreNotAskedFor() {
        Lines none = layout(null, 5);
        text(0x53, 0, 0, none);
        assertEquals(List.of(), none.asked);
        Lines last = layout(null, 9);
        Natives text = text(0x53, 0, 2, last);
        assertEquals(List.of(7, 8), last.asked.stream().distinct().toList());
        text.<Boolean>call("SetLayout", layout(null, 0));
        assertEquals(List.of(), rectangles(text.render(), 100), "those held are cleared");
    
    }
}
