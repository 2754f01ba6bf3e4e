// SPDX-License-Identifier: Apache-2.0
import static org.junit.jupiter.api.Assertions.*;

import android.graphics.FontListParser;
import android.graphics.Paint;
import android.graphics.Typeface;
import android.text.FontConfig;
import android.text.Layout;
import android.text.Layout.Alignment;
import android.text.StaticLayout;
import android.text.TextPaint;
import com.orvane.android.sdk.zve.Stroke;
import com.orvane.android.sdk.zve.ZvText;
import com.orvane.android.sdk.zve.font.FontManager;
import java.awt.image.BufferedImage;
import java.io.ByteArrayInputStream;
import java.io.File;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.function.Function;
import javax.imageio.ImageIO;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

final class StaticLayoutTest {
    private static final Path FONTS = Path.of(System.getProperty("zvex.fonts"));
    private static final String FONT = FONTS.resolve("DejaVuSans.ttf").toString();
    private static final String FALLBACK = "NotoSansCJK-Regular.ttc";

    @BeforeAll
    static void putAFamilyBehindTheFont() throws Exception {
        String xml = "<familyset><family><font>" + FALLBACK + "</font></family></familyset>";
        FontConfig fonts = FontListParser.parse(new ByteArrayInputStream(xml.getBytes(StandardCharsets.UTF_8)));
        Typeface.setSystemFonts(fonts);
        FontManager.configure(fonts);
    }

    private static TextPaint paint(float size) {
        TextPaint paint = new TextPaint(TextPaint.ANTI_ALIAS_FLAG);
        paint.setTextSize(size);
        paint.setTypeface(Typeface.createFromFile(FONT));
        return paint;
    }

    private static StaticLayout.Builder builder(String text, int width) {
        return StaticLayout.Builder.obtain(text, 0, text.length(), paint(20), width).setIncludePad(false);
    }

    private static List<String> lines(Layout layout) {
        List<String> lines = new ArrayList<>();
        String text = layout.getText().toString();
        for (int i = 0; i < layout.getLineCount(); i++) {
            assertEquals(layout.getLineEnd(i), layout.getLineStart(i + 1), "lines leave nothing out");
            assertEquals(layout.getLineTop(i + 1), layout.getLineBottom(i));
            assertEquals(layout.getLineTop(i), layout.getLineBaseline(i) + layout.getLineAscent(i));
            assertEquals(layout.getLineBottom(i), layout.getLineBaseline(i) + layout.getLineDescent(i));
            lines.add(text.substring(layout.getLineStart(i), layout.getLineVisibleEnd(i)));
        }
        return lines;
    }

    @Test
    void linesEndWhereTheTextSaysSo() {
        assertEquals(List.of(""), lines(builder("", 100).build()));
        assertEquals(List.of("a", "", "b", ""), lines(builder("a\n\nb\n", 100).build()));
        assertEquals(List.of("a", "b", "c"), lines(builder("a\r\nb\u2028c", 100).build()));
        Layout blanks = builder("aa   bb", 30).build();
        assertEquals(List.of("aa", "bb"), lines(blanks));
        assertEquals(5, blanks.getLineEnd(0));
        assertEquals(paint(20).measureText("aa   "), blanks.getLineWidth(0));
        // A word wider than the column, and a column of no width at all: whole clusters.
        assertEquals(List.of("i", "i\u0301", "\uD83D\uDE00"), lines(builder("ii\u0301\uD83D\uDE00", 0).build()));
        assertEquals(List.of("日本", "語の", "文字"), lines(builder("日本語の文字", 45).build()));
    }

    @Test
    void aPartOfATextKeepsItsOffsets() {
        StaticLayout layout = StaticLayout.Builder.obtain("WWWW iiii iiii W", 5, 14, paint(20), 30).build();
        assertEquals(List.of("iiii", "iiii"), lines(layout));
        assertEquals(5, layout.getLineStart(0));
        assertEquals(14, layout.getLineEnd(1));
        assertThrows(IndexOutOfBoundsException.class, () -> StaticLayout.Builder.obtain("a", 0, 2, paint(20), 60));
        assertThrows(IllegalArgumentException.class, () -> builder("a", -1).build());
    }

    @Test
    void linesLieWhereTheAlignmentPutsThem() {
        String leftToRight = "abc אבג";
        String rightToLeft = "אבג abc";
        float room = 200 - paint(20).measureText(leftToRight);
        Object[][] cases = {
            {leftToRight, Alignment.ALIGN_NORMAL, 0f}, {rightToLeft, Alignment.ALIGN_NORMAL, room},
            {leftToRight, Alignment.ALIGN_OPPOSITE, room}, {rightToLeft, Alignment.ALIGN_OPPOSITE, 0f},
            {leftToRight, Alignment.ALIGN_LEFT, 0f}, {rightToLeft, Alignment.ALIGN_LEFT, 0f},
            {leftToRight, Alignment.ALIGN_RIGHT, room}, {rightToLeft, Alignment.ALIGN_RIGHT, room},
            {leftToRight, Alignment.ALIGN_CENTER, (float) Math.floor(room / 2)},
        };
        for (Object[] one : cases) {
            Layout layout = builder((String) one[0], 200).setAlignment((Alignment) one[1]).build();
            assertEquals((float) one[2], layout.getLineLeft(0), one[0] + " " + one[1]);
        }
        // The direction is the paragraph's, also on a line that begins the other way round.
        Layout wrapped = builder("אבג abc\nabc", 45).build();
        assertEquals(List.of("אבג", "abc", "abc"), lines(wrapped));
        assertEquals(Layout.DIR_RIGHT_TO_LEFT, wrapped.getParagraphDirection(1));
        assertEquals(Layout.DIR_LEFT_TO_RIGHT, wrapped.getParagraphDirection(2));
    }

    @Test
    void aFontsLineGapBelongsToItsLines() {
        TextPaint paint = paint(20);
        paint.setTypeface(Typeface.createFromFile("/usr/share/fonts/truetype/noto/NotoLoopedLao-Regular.ttf"));
        Layout layout = StaticLayout.Builder.obtain("ກ", 0, 1, paint, 100).setIncludePad(false).build();
        assertEquals(25, layout.getLineBaseline(0)); // 1250 thousandths of 20 pixels
        assertEquals(11, layout.getLineDescent(0)); // 350 and a gap of 200
    }

    @Test
    void heightsComeFromTheFontTheInkAndTheSettings() {
        Layout plain = builder("x\nx\nx", 100).build();
        int height = plain.getLineBottom(0);
        assertEquals(3 * height, plain.getHeight());
        Layout capital = builder("\u1EBE", 100).build(); // two marks on it
        assertTrue(capital.getLineBaseline(0) > plain.getLineBaseline(0));
        Layout deep = builder("\u06B8", 100).build(); // three dots below it
        assertTrue(deep.getLineDescent(0) > plain.getLineDescent(0));

        Layout padded = builder("x\nx\nx", 100).setIncludePad(true).build();
        assertTrue(padded.getTopPadding() < 0 || padded.getBottomPadding() > 0);
        assertEquals(height - padded.getTopPadding(), padded.getLineBottom(0));
        assertEquals(plain.getHeight() - padded.getTopPadding() + padded.getBottomPadding(), padded.getHeight());

        Layout spaced = builder("x\nx\nx", 100).setLineSpacing(3, 1.5f).build();
        assertEquals((int) Math.rint(height * 1.5 + 3), spaced.getLineTop(1));
        assertEquals(2 * spaced.getLineTop(1) + height, spaced.getHeight(), "none below the last line");

        Layout cut = builder("a\nb\nc", 100).setMaxLines(2).build();
        assertEquals(List.of("a", "b"), lines(cut));
        assertEquals(4, cut.getLineStart(2));
    }

    // The command-line renderer breaks, measures and places lines by itself; the pictures are the same bytes.
    @Test
    void picturesAreThoseOfTheCommandLine(@TempDir Path folder) throws Exception {
        String text = "Wrapped words, 日本語の文字 between them and averyveryverylongword\n\n"
                + "أهلا  وسهلا ڸ\u2028end 10\u00A0km 𝔸 more.";
        record Scene(int width, Paint.Align align, int mostLines, float spacing, List<String> options,
                Function<ZvText, ZvText> effects) {}
        int[] colors = {0xFFFF0000, 0xFF00FF00, 0xFF0000FF};
        // No two arguments of an effect are alike, so that none can stand in another's place.
        List<Scene> scenes = List.of(
                new Scene(260, Paint.Align.LEFT, 0, 0, List.of("--stroke", "4:#202020:outside", "--outer-glow",
                        "size=11,color=#1100aa,opacity=60%"),
                        t -> t.stroke(4, 0xFF202020, Stroke.OUTSIDE).outerGlow(11, 0xFF1100AA, .6f)),
                new Scene(260, Paint.Align.RIGHT, 0, 0, List.of("--stroke", "5:#ff8800:inside", "--outer-shadow",
                        "angle=30,distance=9,size=6,color=#aa0011,opacity=70%"),
                        t -> t.stroke(5, 0xFFFF8800, Stroke.INSIDE).outerShadow(30, 9, 6, 0xFFAA0011, .7f)),
                new Scene(177, Paint.Align.CENTER, 3, 0, List.of("--inner-shadow",
                        "angle=60,distance=7,size=4,color=#00aa11,opacity=80%", "--background", "#40ff0000"),
                        t -> t.innerShadow(60, 7, 4, 0xFF00AA11, .8f).background(0x40FF0000)),
                new Scene(333, Paint.Align.RIGHT, 2, .1f, List.of("--linear-gradient",
                        "angle=40,scale=1.2,opacity=90%,stops=#ff0000@0:#00ff00@30:#0000ff@100"),
                        t -> t.linearGradient(40, 1.2f, colors, new float[] {0, .3f, 1}, .9f)),
                new Scene(80, Paint.Align.LEFT, 0, 0, List.of("--stroke", "6:#0000ff:center", "--linear-gradient",
                        "angle=70,stops=#ff0000@0:#0000ff@100"),
                        t -> t.stroke(6, 0xFF0000FF, Stroke.CENTER).linearGradient(70, 0xFFFF0000, 0xFF0000FF)));
        File png = folder.resolve("tool.png").toFile();
        // Not as an argument: a JVM in the C locale cannot spell it there.
        Path words = Files.writeString(folder.resolve("words.txt"), text);
        for (Scene scene : scenes) {
            List<String> command = new ArrayList<>(List.of(System.getProperty("zvex.zvtext"), "render", "--text-file",
                    words.toString(), "--font", FONT, "--fallback", FONTS.resolve(FALLBACK).toString(), "--size", "25", "--color", "#ff8800",
                    "--width", "" + scene.width, "--align", scene.align.name().toLowerCase(Locale.ROOT), "--letter-spacing",
                    "" + scene.spacing, "--features", "-kern",
                    "--output", png.getPath()));
            command.addAll(scene.options);
            if (scene.mostLines > 0) {
                command.addAll(List.of("--max-lines", "" + scene.mostLines));
            }
            assertEquals(0, new ProcessBuilder(command).inheritIO().start().waitFor());
            BufferedImage expected = ImageIO.read(png);

            Paint paint = new Paint(Paint.ANTI_ALIAS_FLAG);
            paint.setTypeface(Typeface.createFromFile(FONT));
            paint.setColor(0xFFFF8800);
            paint.setTextSize(25);
            paint.setLetterSpacing(scene.spacing);
            paint.setFontFeatureSettings("-kern");
            try (ZvText drawn = new ZvText().font(FONT).paint(paint).text(text).wrap(scene.width).align(scene.align)
                    .lines(scene.mostLines).color(0xFFFF8800)) {
                int[] argb = scene.effects.apply(drawn).render();
                assertEquals(expected.getWidth(), drawn.width());
                assertEquals(expected.getHeight(), drawn.height());
                int[] wanted = expected.getRGB(0, 0, drawn.width(), drawn.height(), null, 0, drawn.width());
                assertArrayEquals(wanted, argb, String.join(" ", command));
            }
        }
    }
}
