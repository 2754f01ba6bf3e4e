// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import android.graphics.Paint;
import java.awt.image.BufferedImage;
import java.io.ByteArrayInputStream;
import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.LinkedHashMap;
import java.util.Map;
import java.util.function.Consumer;
import javax.imageio.ImageIO;
import org.json.JSONObject;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** Texts without a view, the builder's effects and their ranges, pictures. */
final class TextTest {
    private static final String FONT = Path.of(System.getProperty("zvex.fonts"), "DejaVuSans-Bold.ttf").toString();
    private static final float NAN = Float.NaN;
    private static final Stops STOPS = Stops.of(0xFFFF0000, 0xFF0000FF);
    private static final ZvPicture TILE = new ZvPicture(new int[] {0xFF00FF00}, 1, 1);

    private static ZvText text(String words) {
        return new ZvText().font(FONT).size(40).text(words);
    }

    @Test
    void itMeasuresBreaksAndSizesItself(@TempDir Path folder) throws Exception {
        String words = "Several words that wrap";
        for (Paint.Align align : Paint.Align.values()) {
            try (ZvText text = text(words).wrap(300).align(align).stroke(4, 0xFF112233, Stroke.OUTSIDE)) {
                ZvPicture picture = text.picture();
                new ProcessBuilder(System.getProperty("zvex.zvtext"), "render", "--font", FONT, "--size", "40", "--width", "300",
                        "--align", align.name().toLowerCase(), "--stroke", "4:#112233", "--output", folder + "/o.png", "--metrics",
                        folder + "/m.json", words).redirectOutput(ProcessBuilder.Redirect.DISCARD).start().waitFor();
                BufferedImage expected = ImageIO.read(folder.resolve("o.png").toFile());
                assertArrayEquals(ZvPicture.of(expected).argb(), picture.argb(), align.name());
                JSONObject metrics = new JSONObject(Files.readString(folder.resolve("m.json")));
                JSONObject margins = metrics.getJSONObject("margins");
                assertEquals(metrics.getInt("baseline"), picture.originY());
                assertEquals(margins.getInt("left"), picture.marginLeft());
                assertEquals(margins.getInt("bottom"), picture.marginBottom());
                JSONObject box = metrics.getJSONArray("lines").getJSONObject(0).getJSONObject("box");
                assertEquals(box.getInt("left"), picture.originX(), 1);
            }
        }
        try (ZvText text = text("a\nb\nc")) {
            int three = text.picture().height();
            assertEquals(three, 3 * text.lines(1).picture().height());
            assertEquals(three, text.lines(0).picture().height());
            assertTrue(text.size(80).picture().height() > 1.9 * three);
            assertEquals(1, text.text("").picture().width());
            for (String large : new String[] {"W".repeat(1000), "W\n".repeat(1000)}) {
                String said = assertThrows(IllegalStateException.class, () -> text.text(large).render()).getMessage();
                assertTrue(said.contains("32767 pixels a side"), said);
            }
        }
    }

    @Test
    void emojiAndRareIdeographsAreThoseOfZvtext(@TempDir Path folder) throws Exception {
        Path fonts = Path.of(FONT).getParent();
        for (String[] words : new String[][] {{"NotoColorEmoji.ttf", "\uD83D\uDC4D"}, {"NotoSansCJK-Regular.ttc", "\uD840\uDC0B\u6F22\uD840\uDC89 \uD840\uDC0B"}}) {
            for (boolean colors : new boolean[] {true, false}) {
                for (int size : new int[] {30, 300}) {
                    String font = fonts.resolve(words[0]).toString();
                    // Not as an argument: a JVM in the C locale cannot spell it there.
                    Path file = Files.writeString(folder.resolve("words.txt"), words[1]);
                    new ProcessBuilder(System.getProperty("zvex.zvtext"), "render", "--no-fallback", "--font", font, "--size", "" + size,
                            "--style", "{\"color-glyphs\": " + colors + "}", "--width", "700", "--background", "#fff", "--output",
                            folder + "/o.png", "--text-file", file.toString()).redirectOutput(ProcessBuilder.Redirect.DISCARD).start().waitFor();
                    BufferedImage expected = ImageIO.read(folder.resolve("o.png").toFile());
                    try (ZvText text = new ZvText().font(font).size(size).text(words[1]).wrap(700).colorGlyphs(colors)) {
                        int[] argb = text.background(0xFFFFFFFF).render();
                        assertArrayEquals(ZvPicture.of(expected).argb(), argb, words[0] + size + colors);
                        assertArrayEquals(argb, text.render(), "again");
                        boolean yellow = Arrays.stream(argb).anyMatch(pixel -> (pixel >> 16 & 255) > (pixel & 255) + 99);
                        assertEquals(colors && words[0].contains("Emoji"), yellow);
                    }
                }
            }
        }
    }

    @Test
    void coloursAndOpacity() {
        try (ZvText text = text("I").color(0xFF204060).background(0xFF808080)) {
            int[] full = text.render();
            assertTrue(has(full, 0xFF204060) && has(full, 0xFF808080));
            int[] half = text.opacity(0.5f).render();
            assertTrue(has(half, 0x80808080), "the background's");
            assertFalse(has(half, 0xFF204060));
            assertTrue(has(text.opacity(0.7f).render(), 0xB3808080), "0.7, as zvtext reads it: 178.5 is rounded up");
        }
    }

    private static boolean has(int[] picture, int color) {
        return Arrays.stream(picture).anyMatch(pixel -> pixel == color);
    }

    @Test
    void everyEffectDrawsAndGoesAgain() {
        Map<String, Consumer<ZvText>> effects = new LinkedHashMap<>();
        effects.put("stroke", t -> t.stroke(4, 0xFF00FF00, Stroke.CENTER));
        effects.put("outer-shadow", t -> t.outerShadow(135, 5, 5, 0xFF000000, 1));
        effects.put("inner-shadow", t -> t.innerShadow(135, 5, 5, 0xFFFF0000, 1));
        effects.put("outer-glow", t -> t.outerGlow(9, STOPS, 1));
        effects.put("inner-glow", t -> t.innerGlow(9, 0xFFFFFFFF, 1).innerGlow(9, STOPS, 1));
        effects.put("linear-gradient", t -> t.linearGradient(90, 1, STOPS, 1));
        effects.put("radial-gradient", t -> t.radialGradient(1, STOPS, 1));
        effects.put("pattern", t -> t.pattern(TILE, 1, 1));
        effects.put("bevel", t -> t.bevel(Relief.Edge.OUTER, new Relief().hard().down()));
        effects.put("emboss", t -> t.emboss(true, new Relief().depth(2).soften(1)));
        try (ZvText text = text("Text")) {
            int[] plain = text.render();
            byte[] key = text.layerKey();
            for (Map.Entry<String, Consumer<ZvText>> effect : effects.entrySet()) {
                effect.getValue().accept(text);
                assertFalse(Arrays.equals(plain, text.render()), effect.getKey());
                assertFalse(Arrays.equals(key, text.layerKey()), effect.getKey());
                assertArrayEquals(plain, text.clearEffect(effect.getKey()).render(), effect.getKey());
            }
            assertArrayEquals(key, text.layerKey());
            assertThrows(IllegalArgumentException.class, () -> text.clearEffect("glow"));
        }
    }

    @Test
    void argumentsOutsideTheirRangesAreNamed() {
        Map<String, Consumer<ZvText>> wrong = new LinkedHashMap<>();
        wrong.put("stroke width: -5 is not a number from 0 to 100 (px)", t -> t.stroke(-5, 0, Stroke.INSIDE));
        wrong.put("stroke width: 1000 is not", t -> t.stroke(1000, 0, Stroke.INSIDE));
        wrong.put("stroke opacity: NaN is not a number from 0 to 1", t -> t.stroke(1, 0, Stroke.INSIDE, NAN));
        wrong.put("outer-shadow angle: Infinity is not a number (deg)", t -> t.outerShadow(1 / 0f, 0, 0, 0, 1));
        wrong.put("inner-shadow distance: NaN", t -> t.innerShadow(0, NAN, 0, 0, 1));
        wrong.put("outer-glow size: 100.5", t -> t.outerGlow(100.5f, 0, 1));
        wrong.put("inner-glow opacity: 2", t -> t.innerGlow(1, STOPS, 2));
        wrong.put("linear-gradient scale: 2.5", t -> t.linearGradient(0, 2.5f, STOPS, 1));
        wrong.put("linear-gradient stops: 0 stops", t -> t.linearGradient(0));
        wrong.put("linear-gradient stops: 257 stops", t -> t.linearGradient(0, new int[257]));
        wrong.put("linear-gradient stops[1].position: positions must not fall", t -> t.linearGradient(0, 1, new int[2],
                new float[] {1, 0}, 1));
        wrong.put("linear-gradient positions[0]: -1", t -> t.linearGradient(0, 1, new int[1], new float[] {-1}, 1));
        wrong.put("radial-gradient scale: NaN", t -> t.radialGradient(NAN, STOPS, 1));
        wrong.put("pattern scale: 11 is not a number from 0 to 10", t -> t.pattern(TILE, 11, 1));
        wrong.put("bevel size: 101", t -> t.bevel(Relief.Edge.INNER, new Relief().size(101)));
        wrong.put("bevel altitude: 90", t -> t.bevel(Relief.Edge.INNER, new Relief().light(0, 90)));
        wrong.put("emboss depth: -1", t -> t.emboss(false, new Relief().depth(-1)));
        wrong.put("emboss highlight opacity: 3", t -> t.emboss(false, new Relief().highlight(0, 3)));
        wrong.put("size: 0 is not a number above 0 and up to 10000 (px)", t -> t.size(0));
        wrong.put("wrap width: -1", t -> t.wrap(-1));
        wrong.put("opacity: -0.5", t -> t.opacity(-0.5f));
        wrong.put("stop position: 101 is not a number from 0 to 100 (%)", t -> new Stops().add(0, 101));
        wrong.put("3 pixels are not a picture of 2 x 2", t -> new ZvPicture(new int[3], 2, 2));
        try (ZvText text = text("Text")) {
            int[] before = text.render();
            wrong.forEach((message, call) -> {
                String said = assertThrows(IllegalArgumentException.class, () -> call.accept(text), message).getMessage();
                assertTrue(said.startsWith(message), said);
            });
            assertArrayEquals(before, text.render());
        }
    }

    @Test
    void aFontNeedsNoFile() throws IOException {
        try (ZvText text = text("a"); ZvText bytes = new ZvText().font("bytes alone", Files.readAllBytes(Path.of(FONT)))) {
            assertArrayEquals(text.render(), bytes.size(40).text("a").render());
        }
    }

    @Test
    void picturesKeepTheirPixels() throws IOException {
        try (ZvText text = text("Text").outerGlow(20, 0xFF336699, 0.7f)) {
            ZvPicture picture = text.picture();
            assertTrue(has(picture.argb(), 0));
            ByteArrayOutputStream png = new ByteArrayOutputStream();
            picture.writePng(png);
            BufferedImage read = ImageIO.read(new ByteArrayInputStream(png.toByteArray()));
            assertArrayEquals(picture.argb(), ZvPicture.of(read).argb());
            assertArrayEquals(picture.argb(), ZvPicture.of(picture.toBufferedImage()).argb());
        }
    }
}
