// SPDX-License-Identifier: Apache-2.0
import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assumptions.assumeTrue;

import android.graphics.Paint;
import android.widget.TextView;
import java.awt.image.BufferedImage;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.Stream;
import javax.imageio.ImageIO;
import org.junit.jupiter.api.DynamicTest;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.TestFactory;
import org.junit.jupiter.api.io.TempDir;

/** The same scene through the natives and through zvtext: the same pixels. */
final class SameAsToolTest {
    private static final String FONT = Natives.DEJAVU + "DejaVuSans-Bold.ttf";
    // The lines are as high as the font says, 1901 and 483 of 2048 of the size.
    private static final int ASCENT = (int) Math.ceil(40 * 1901 / 2048.0);
    private static final int DESCENT = (int) Math.ceil(40 * 483 / 2048.0);

    @TempDir
    Path folder;

    private BufferedImage tool(List<String> lines, List<String> options) throws IOException, InterruptedException {
        String tool = System.getProperty("zvex.zvtext");
        assumeTrue(tool != null, "built without the tool");
        Path png = folder.resolve("tool.png");
        Path text = Files.writeString(folder.resolve("text"), String.join("\n", lines));
        List<String> command = new ArrayList<>(List.of(tool, "render", "--text-file", text.toString(), "--font", FONT,
                "--size", "40", "--color", "#e0102030", "--height", "150", "-o", png.toString()));
        command.addAll(options);
        Process process = new ProcessBuilder(command).redirectErrorStream(true).start();
        String output = new String(process.getInputStream().readAllBytes());
        assertEquals(0, process.waitFor(), output);
        return ImageIO.read(png.toFile());
    }

    private static Lines layout(List<String> content) {
        List<Lines.Line> lines = new ArrayList<>();
        int start = 0;
        for (String line : content) {
            int top = lines.size() * (ASCENT + DESCENT);
            lines.add(new Lines.Line(top + ASCENT, top + ASCENT + DESCENT, -ASCENT, DESCENT, 0, 1, start,
                    start + line.length()));
            start += line.length() + 1;
        }
        return new Lines(String.join("\n", content), lines);
    }

    private static void assertDrawnAs(BufferedImage expected, Natives text) {
        int width = expected.getWidth();
        assertArrayEquals(expected.getRGB(0, 0, width, expected.getHeight(), null, 0, width), text.render());
    }

    @Test
    void severalLinesWithEverything() throws IOException, InterruptedException {
        List<String> content = List.of("first", "Zeile \u00FCber", "the last: \uD83D\uDE00\u0416");
        BufferedImage expected = tool(content, List.of("--background", "#40ff0000", "--gravity", "bottom", "--max-lines", "2",
                "--padding", "3,4,5,6", "--letter-spacing", "0.1", "--features", "-kern", "--stroke", "6:#ff8800:outside"));

        Natives text = new Natives();
        text.<Boolean>call("SetFont", FONT);
        Paint paint = Natives.paint(40);
        paint.setLetterSpacing(0.1f);
        paint.setFontFeatureSettings("-kern");
        text.<Boolean>call("SetPaint", paint);
        text.<Boolean>call("SetBackgroundColor", 0x40FF0000, true);
        text.<Integer>call("AddStrokeTextEffect", 6f, 0xFFFF8800, 1f, 0, 1);
        TextView view = Natives.view(expected.getWidth() - 12, 150, 0x53);
        view.setPadding(3, 4, 5, 6);
        view.setMaxLines(2);
        view.setTextColor(0xE0102030);
        text.<Boolean>call("SetView", view);
        text.<Boolean>call("SetLayout", layout(content));
        assertDrawnAs(expected, text);
    }

    /** No two arguments of an effect are alike, so that none can stand in another's place. */
    @TestFactory
    Stream<DynamicTest> everyEffect() {
        return Stream.of(
                effect("--stroke", "4:#ff8800:inside", "Stroke", 4f, 0xFFFF8800, 1f, 7, 2),
                effect("--outer-shadow", "angle=30,distance=9,size=5,color=#aa0011,opacity=70%",
                        "OuterShadow", 30f, 9f, 5f, 0xFFAA0011, .7f),
                effect("--inner-shadow", "angle=60,distance=7,size=4,color=#00aa11,opacity=80%",
                        "InnerShadow", 60f, 7f, 4f, 0xFF00AA11, .8f),
                effect("--outer-glow", "size=11,color=#1100aa,opacity=60%", "OuterGlow", 11f, 0xFF1100AA, .6f),
                effect("--linear-gradient", "angle=40,scale=1.2,opacity=90%,stops=#ff0000@0:#00ff00@30@50%:#0000ff@100",
                        "LinearGradient", 40f, 1.2f, new int[] {0xFFFF0000, 0xFF00FF00, 0xFF0000FF},
                        new float[] {1, .5f, 1}, new float[] {0, .3f, 1}, .9f));
    }

    private DynamicTest effect(String option, String value, String name, Object... arguments) {
        return DynamicTest.dynamicTest(name, () -> {
            BufferedImage expected = tool(List.of("Effect"), List.of(option, value, "--gravity", "top"));
            Natives text = new Natives();
            assertEquals(0, text.<Integer>call("Add" + name + "TextEffect", arguments));
            text.<Boolean>call("SetFont", FONT);
            text.<Boolean>call("SetPaint", Natives.paint(40));
            int margins = text.<Integer>call("GetEffectLeftOffset") + text.<Integer>call("GetEffectRightOffset");
            TextView view = Natives.view(expected.getWidth() - margins, 150, 0x33);
            view.setTextColor(0xE0102030);
            text.<Boolean>call("SetView", view);
            text.<Boolean>call("SetLayout", layout(List.of("Effect")));
            assertDrawnAs(expected, text);
        });
    }
}
