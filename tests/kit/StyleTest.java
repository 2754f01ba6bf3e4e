// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import android.graphics.Paint;
import android.text.Layout;
import java.awt.image.BufferedImage;
import java.io.IOException;
import java.io.StringReader;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.HashSet;
import java.util.List;
import java.util.Locale;
import java.util.Set;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import javax.imageio.ImageIO;
import org.json.JSONArray;
import org.json.JSONObject;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** Styles through the kit and through zvtext: the same pictures, the same refusals. */
final class StyleTest {
    private static final Path FONTS = Path.of(System.getProperty("zvex.fonts"));
    private static final String FONT = FONTS.resolve("DejaVuSans-Bold.ttf").toString();
    private static final String ZVTEXT = System.getProperty("zvex.zvtext");
    private static final String WORDS = "Way to go\nAgain";
    private static final String EMOJI = "Go \uD83D\uDC4D\uD83C\uDFFD!\n\u2764\uFE0F \uD83D\uDC68\u200D\uD83D\uDC69\u200D\uD83D\uDC67";

    // Every key, each with a value that is not the one at the start.
    private static final List<String> STYLES = List.of(
            "{}",
            "{'size': 61.5, 'color': '#80ff8000', 'letter-spacing': 0.1, 'features': '-kern, smcp', 'opacity': 0.7}",
            "{'background': '#abc', 'opacity': 0.5, 'effects': [{'type': 'stroke'}, {'type': 'outer-glow'}, {'type': 'bevel'}]}",
            "{'color-glyphs': false, 'effects': [{'type': 'stroke', 'position': 'inside'}]}",
            "{'layers': [{'effects': [{'type': 'stroke'}]}, {'color-glyphs': true, 'color': '#80f00000', 'offset': [9, 9]}]}",
            "{'color-glyphs': false, 'layers': [{}, {'color-glyphs': false, 'spread': 4, 'color': '#fff'}]}",
            "{'effects': [{'type': 'inner-glow'}, {'type': 'outer-glow'}, {'type': 'outer-shadow'}, {'type': 'inner-shadow'}]}",
            "{'effects': [{'type': 'outer-shadow', 'angle': -723.5, 'distance': 5.9, 'size': 4, 'color': '#8000ff00',"
                    + "'opacity': 0.9}, {'type': 'inner-shadow', 'angle': 1000000127.5, 'distance': 3, 'size': 2, 'color': '#f00'}]}",
            "{'effects': [{'type': 'outer-glow', 'size': 9, 'stops': [{'color': '#f00', 'position': 0}, {'color':"
                    + "'#80ff00', 'position': 53, 'opacity': 0.5}]}, {'type': 'inner-glow', 'color': '#12345678'}]}",
            "{'effects': [{'type': 'linear-gradient', 'angle': 30, 'scale': 1.7, 'opacity': 0.8, 'stops': [{'color': '#000',"
                    + "'position': 29}, {'color': '#fff', 'position': 57.9}, {'color': '#00f', 'position': 58}]}]}",
            "{'effects': [{'type': 'radial-gradient', 'scale': 0.5, 'stops': [{'color': '#f00', 'position': 7}]}]}",
            "{'effects': [{'type': 'bevel', 'style': 'outer', 'technique': 'hard', 'direction': 'down', 'size': 5, 'depth': 2,"
                    + "'angle': 80, 'altitude': 50, 'soften': 3.9, 'highlight': {'color': '#ff0'}, 'shadow': {'color': '#408000ff',"
                    + "'opacity': 0.9}, 'opacity': 0.8}]}",
            "{'effects': [{'type': 'emboss', 'style': 'double'}, {'type': 'stroke', 'position': 'center', 'width': 3}]}",
            "{'effects': [{'type': 'pattern', 'file': 'tile.png', 'scale': 2.5, 'opacity': 0.9}]}",
            "{'canvas': 'linear-gradient:angle=30deg,opacity=80%,stops=#f00@7:#8000f000@53@0.5:#00f@58.5%', 'color-glyphs': false}",
            "{'canvas': 'linear-gradient:stops=rgb(1, 2, 3):tan@@50%:blue@40:HSL(9 50% 50%)'}",
            "{'canvas': 'pattern:tile.png,scale=2.5', 'effects': [{'type': 'inner-glow'}]}",
            "{'canvas': '#80123456', 'background': '#abc', 'effects': [{'type': 'stroke'}], 'opacity': 0.8}",
            "{'canvas': {'type': 'radial-gradient', 'stops': [{'color': '#fff', 'position': 0}, {'color': '#000', 'position':"
                    + "100}]}, 'designed-for': 50, 'effects': [{'type': 'outer-shadow', 'distance': 0.4, 'size': 20}]}",
            "{'extends': 'gold', 'color': null, 'effects': [{'type': 'stroke', 'width': 9, 'designed-for': 0}, {'type':"
                    + "'bevel', 'depth': null, 'highlight': {'opacity': 1}}, {'outer-shadow': null}, {'type': 'inner-glow'}]}",
            "{'extends': 'glitch', 'designed-for': 60, 'canvas': {'type': 'linear-gradient', 'stops': [{'color': '#fff',"
                    + "'position': 5}]}, 'layers': [{}, null, {'blend': null, 'effects': [{'type': 'outer-glow', 'size': 3,"
                    + "'designed-for': 20}]}, {'color': '#123', 'spread': 3}]}",
            "{'color': 'Rgb(12 34.5% 56 / 70%)', 'background': 'hsl(200.7, 33%, 44%)', 'canvas': 'RebeccaPurple', 'effects':"
                    + "[{'type': 'outer-glow', 'stops': [{'color': 'hsla(-0.3turn, 90%, 60%, .4)'}, {'color': 'tan'}, {'color': 'red',"
                    + "'position': 71.3}, {'color': 'blue'}]}]}",
            "{'word-spacing': 0.75, 'line-height': 1.63, 'upper-case': true, 'color': 'hsl(200 90% 40% / 0.8)', 'effects':"
                    + "[{'type': 'linear-gradient', 'stops': [{'color': 'tomato'}, {'color': 'rgb(0 0 90%)'}, {'color': 'gold'}]}]}",
            "{'size': 33.3, 'word-spacing': 5, 'line-height': 5, 'features': '-kern, \\\"liga\\\" off, ss01=1,'}",
            "{'word-spacing': -1, 'line-height': 0.4, 'background': 'tan', 'effects': [{'type': 'stroke'}]}",
            "{'extends': 'sticker', 'layers': null, 'effects': [{'type': 'stroke', 'color': null}]}",
            "{'extends': 'styles/base.json', 'opacity': null, 'effects': [{'type': 'emboss', 'highlight': {'opacity': null}},"
                    + "{'type': 'pattern', 'scale': 3}], 'canvas': {'type': 'linear-gradient', 'angle': 0}}",
            "{'canvas': {'type': 'pattern', 'file': 'tile.png'}, 'designed-for': 192, 'layers': [{'spread': -3, 'offset':"
                    + "[-7, 4], 'color': '#fff', 'effects': [{'type': 'bevel', 'size': 90}]}, {'clip': true, 'offset': [9, 9], 'color':"
                    + "'#f00', 'blend': 'color-dodge', 'opacity': 0.6}, {'spread': 14, 'knockout': true, 'color': '#123'}]}");

    private static final List<String> REFUSED = List.of(
            "{'colour': '#fff'}", "{'size, color': 1}", "{'color-glyphs': 1}", "{'color': 'reed'}", "{'color': '#12345'}", "{'color': 1}", "{'size': 0}", "{'size': 10001}",
            "{'size': '96'}", "{'opacity': 1.5}", "{'opacity': true}", "{'letter-spacing': -2}", "{'word-spacing': 11}", "{'line-height': 0}", "{'upper-case': 1}", "{'features': 'kern=x'}", "{'features': 7}", "{'description': 7}", "{'color': 'blac\u212A'}", "{'designed-for': -1}",
            "{'effects': {}}", "{'effects': [1]}", "{'effects': [{'type': 'glow'}]}", "{'effects': [{'type': 7}]}",
            "{'effects': [{'type': 'stroke'}, {'type': 'stroke'}]}", "{'effects': [{'type': 'stroke', 'width': 101}]}",
            "{'effects': [{'type': 'stroke', 'position': 'middle'}]}",
            "{'effects': [{'type': 'bevel', 'altitude': 90}]}", "{'effects': [{'type': 'bevel', 'soften': 17}]}",
            "{'effects': [{'type': 'bevel', 'highlight': '#fff'}]}", "{'effects': [{'type': 'bevel', 'shadow': {}}]}",
            "{'effects': [{'type': 'linear-gradient'}]}", "{'effects': [{'type': 'linear-gradient', 'stops': []}]}",
            "{'effects': [{'type': 'pattern', 'file': ''}]}", "{'effects': [{'type': 'pattern', 'scale': 2}]}",
            "{'effects': [{'type': 'outer-glow', 'stops': [{'color': 'rgb(1,2)'}]}]}",
            "{'effects': [{'type': 'outer-glow', 'stops': [{'color': '#fff', 'position': 101}]}]}",
            "{'effects': [{'type': 'outer-glow', 'stops': [{'color': '#fff', 'position': 9}, {'color': '#fff', 'position': 8}]}]}",
            "{'layers': []}", "{'layers': [{}], 'effects': []}", "{'layers': [{'clip': true}]}", "{'layers': [{'clip': 1}]}",
            "{'layers': [{'spread': 1.5}]}", "{'layers': [{'offset': [1]}]}", "{'layers': [{'offset': [1, 1001]}]}",
            "{'layers': [{'blend': 'add'}]}", "{'layers': [{'size': 9}]}", "{'canvas': {'type': 'stroke'}}", "{'canvas': 7}",
            "{'canvas': 'whit'}", "{'canvas': 'stroke:width=4'}", "{'canvas': 'pattern:scale=2'}", "{'canvas': 'pattern:'}",
            "{'canvas': 'linear-gradient:angle'}", "{'canvas': 'linear-gradient:size=4'}", "{'canvas': 'radial-gradient:scale=1'}",
            "{'canvas': 'radial-gradient:scale=1,scale=1'}", "{'canvas': 'radial-gradient:opacity=101%'}",
            "{'canvas': 'radial-gradient:stops=#f0'}", "{'canvas': 'radial-gradient:stops=#f00@9:#f00@8'}",
            "{'canvas': 'radial-gradient:stops=#f00@9@2'}", "{'canvas': 'linear-gradient:angle=1e'}",
            "{'extends': ''}", "{'extends': 'nothing'}", "{'extends': 7}", "{'extends': 'gold', 'layers': [{}]}", "{'extends': 'glitch', 'effects': []}",
            "{'extends': 'gold', 'effects': [{'type': 'stroke', 'width': 101}]}", "{'effects': [{'type': 'stroke', 'designed-for': -1}]}",
            "{'effects': [{'stroke': null}, {'type': 'stroke'}]}", "{'layers': [{}, null, {'clip': true}]}",
            "{'effects': [{'type': 'stroke'}, {'type': 'outer-glow', 'size': 1, 'size': 2}]}", "{'a': {'b': 1, 'b': 2}}", "[]", "7",
            "{'description': " + "[".repeat(20) + "]".repeat(20) + "}");

    // What the style "styles/base.json" says.
    private static final String BASE = "{'extends': 'below.json', 'opacity': 0.5, 'effects': [{'type': 'emboss', 'size': 3, 'highlight':"
            + "{'color': '#f00', 'opacity': 0.9}}, {'type': 'pattern', 'file': 'tile.png'}]}";
    private static final String BELOW = "{'designed-for': 60, 'canvas': 'linear-gradient:stops=#fff@0:#aaa@99', 'effects':"
            + "[{'type': 'outer-shadow'}, {'type': 'emboss', 'depth': 2}]}";

    // What org.json takes, and zvtext refuses in words of its own.
    private static final List<String> BROKEN = List.of("", "{", "{\"size\": 9} x", "{'size': 9}", "{size: 9}", "{\"size\"= 9}", "{\"size\": 9; }",
            "{\"size\": 0x20}", "{\"size\": 010}", "{\"size\": .5}", "{\"size\": 9.}", "{\"size\": NaN}", "{\"size\": 1e999}", "{# nothing\n}",
            "{\"features\": \"a\nb\"}", "{\"features\": \"\\q\"}", "{\"features\": \"\\ud800\"}", "{\"features\": \"", "{, }", "{} /* open",
            "{\"effects\": [,]}", "{\"effects\": " + "[".repeat(100_000), "{\"a\": [" + "1,".repeat(20_000) + "1]}");

    private static final class Folder implements ZvStyle.Pictures {
        private final Path folder;

        Folder(Path folder) {
            this.folder = folder;
        }

        @Override
        public ZvPicture find(String file) throws IOException {
            return ZvPicture.of(ImageIO.read(folder.resolve(file).toFile()));
        }

        @Override
        public String findStyle(String file) throws IOException {
            return Files.readString(folder.resolve(file));
        }
    }

    @BeforeAll
    static void configureFonts() throws IOException {
        KitTest.configureFonts();
    }

    private static String json(String text) {
        return text.replace('\'', '"');
    }

    private static List<String> zvtext(Path folder, List<String> lines, String... command) throws Exception {
        Files.write(folder.resolve("lines"), lines);
        List<String> all = new ArrayList<>(List.of(ZVTEXT));
        all.addAll(List.of(command));
        Path said = folder.resolve("said");
        new ProcessBuilder(all).directory(folder.toFile()).redirectErrorStream(true).redirectOutput(said.toFile()).start().waitFor();
        return Files.readAllLines(said);
    }

    private static List<String> refusalOf(Path folder, String style) throws Exception {
        Files.writeString(folder.resolve("style.json"), style);
        return zvtext(folder, List.of(), "render", "--font", FONT, "--style", "style.json", "-o", "o.png", "a");
    }

    @Test
    void presetsAndStylesAreThoseOfZvtext(@TempDir Path folder) throws Exception {
        BufferedImage tile = new BufferedImage(7, 5, BufferedImage.TYPE_INT_ARGB);
        for (int i = 0; i < 35; i++) {
            tile.setRGB(i % 7, i / 7, 0x9E3779B9 * (i + 1));
        }
        ImageIO.write(tile, "png", folder.resolve("tile.png").toFile());
        Files.createDirectory(folder.resolve("styles"));
        Files.copy(folder.resolve("tile.png"), folder.resolve("styles/tile.png"));
        Files.writeString(folder.resolve("styles/base.json"), json(BASE));
        Files.writeString(folder.resolve("styles/below.json"), json(BELOW));
        List<String> texts = new ArrayList<>();
        for (String name : ZvStyle.presets()) {
            texts.add(Files.readString(Path.of(System.getProperty("zvex.styles"), name + ".json")));
        }
        int presets = texts.size();
        STYLES.forEach(style -> texts.add(json(style)));
        List<String> lines = new ArrayList<>();
        for (float size : new float[] {0, 40}) {
            for (int i = 0; i < texts.size(); i++) {
                JSONObject line = new JSONObject().put("text", size > 0 ? EMOJI : WORDS).put("font", FONT)
                        .put("fallback", new JSONArray(List.of(FONTS + "/Roboto-Regular.ttf", FONTS + "/NotoColorEmoji.ttf")))
                        .put("style", new JSONObject(texts.get(i)))
                        .put("output", lines.size() + ".png");
                lines.add((size > 0 ? line.put("size", size) : line).toString());
            }
        }
        List<String> said = zvtext(folder, lines, "batch", "lines");
        for (int i = 0; i < lines.size(); i++) {
            int number = i % texts.size();
            float size = i < texts.size() ? 0 : 40;
            String where = (number < presets ? ZvStyle.presets().get(number) : texts.get(number)) + " at " + size;
            ZvStyle style = number < presets ? ZvStyle.preset(ZvStyle.presets().get(number))
                    : ZvStyle.parse(texts.get(number), new Folder(folder));
            Path made = folder.resolve(i + ".png");
            assertTrue(Files.exists(made), () -> where + ": " + said);
            BufferedImage expected = ImageIO.read(made.toFile());
            try (ZvText text = new ZvText()) {
                text.style(style).text(size > 0 ? EMOJI : WORDS).font(FONT);
                ZvPicture picture = (size > 0 ? text.size(size) : text).picture();
                assertEquals(expected.getWidth(), picture.width(), where);
                assertEquals(expected.getHeight(), picture.height(), where);
                assertArrayEquals(ZvPicture.of(expected).argb(), picture.argb(), where);
            }
        }
    }

    @Test
    void thePresetsAreTheExampleStyles() throws IOException {
        try (Stream<Path> files = Files.list(Path.of(System.getProperty("zvex.styles")))) {
            assertEquals(files.map(file -> file.getFileName().toString().replace(".json", "")).sorted()
                    .collect(Collectors.toList()), ZvStyle.presets());
        }
        assertFalse(ZvStyle.preset("gold").description().isEmpty());
        assertThrows(IllegalArgumentException.class, () -> ZvStyle.preset("../styles/gold"));
    }

    @Test
    void refusalsAreThoseOfZvtext(@TempDir Path folder) throws Exception {
        List<String> differing = new ArrayList<>();
        for (String style : REFUSED) {
            String said = assertThrows(IllegalArgumentException.class, () -> ZvStyle.parse(json(style)), style).getMessage();
            List<String> tool = refusalOf(folder, json(style));
            if (!tool.toString().contains(said)) {
                differing.add(style + "\n  " + said + "\n  " + tool);
            }
        }
        assertEquals("", String.join("\n", differing));
        for (String broken : BROKEN) {
            assertThrows(IllegalArgumentException.class, () -> ZvStyle.parse(broken), broken);
            assertTrue(refusalOf(folder, broken).get(0).startsWith("zvtext: "), broken);
        }
        assertThrows(IllegalArgumentException.class, () -> ZvStyle.parse(json("{'canvas': {'type': 'pattern', 'file': 'a.png'}}")),
                "a pattern without pictures");
        String said = assertThrows(IllegalArgumentException.class, () -> ZvStyle.parse(json("{'canvas': 'pattern:a.png'}"), file -> null),
                "a picture that is not there").getMessage();
        assertTrue(said.startsWith("canvas pattern file: "), said);
        assertEquals("//", ZvStyle.parse(new StringReader("/**/{\"description\" /*//*/ : \"//\"} // nothing")).description());
    }

    @Test
    void thePlatformsLayoutHasTheHeightAndTheCaseOfAStyle() {
        SelfLayout self = new SelfLayout();
        self.setFont(null, FONT);
        self.paint().setTextLocale(Locale.forLanguageTag("tr"));
        self.setWords("i\n\u00DF\ni");
        ZvStyle.parse(json("{'size': 40, 'line-height': 1.5, 'upper-case': true}")).applyTo(self);
        for (Paint.Align align : Paint.Align.values()) {
            self.setAlign(align);
            Layout lines = self.lines();
            assertEquals("\u0130\nSS\n\u0130", lines.getText().toString());
            assertEquals(60, lines.getLineTop(1) - lines.getLineTop(0));
            assertEquals(60, lines.getLineTop(2) - lines.getLineTop(1));
        }
        ZvStyle.parse(json("{'word-spacing': 1}")).applyTo(self);
        assertTrue(assertThrows(IllegalStateException.class, self::lines).getMessage().startsWith("word-spacing"));
    }

    @Test
    void effectsBelongIntoLayersWhereThereAreSome() {
        try (ZvText text = new ZvText().font(FONT).text("a").style(ZvStyle.preset("triple"))) {
            int[] picture = text.render();
            text.stroke(3, 0xFF000000, Stroke.OUTSIDE);
            assertTrue(assertThrows(IllegalStateException.class, text::render).getMessage().startsWith("stroke"));
            assertArrayEquals(picture, text.clearEffect("stroke").render());
            text.clearEffects().stroke(3, 0xFF000000, Stroke.OUTSIDE).render();
            assertEquals(3, text.marginLeft());
            Set<String> keys = new HashSet<>();
            for (String style : List.of("{'extends': 'glitch'}", "{'extends': 'ghost'}", "{'canvas': '#fff'}", "{'canvas': '#000'}",
                    "{'layers': [{'effects': [{'type': 'stroke'}]}]}", "{'layers': [{'effects': [{'type': 'bevel'}]}]}")) {
                byte[] key = text.clearEffects().style(ZvStyle.parse(json(style))).layerKey();
                assertArrayEquals(key, text.layerKey());
                assertTrue(keys.add(Arrays.toString(key)), style);
            }
        }
    }
}
