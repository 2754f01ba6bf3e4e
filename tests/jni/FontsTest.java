// SPDX-License-Identifier: Apache-2.0
import static org.junit.jupiter.api.Assertions.*;

import android.content.res.AssetManager;
import android.graphics.Paint;
import android.text.FontConfig;
import com.orvane.android.sdk.zve.ZvLibrary;
import java.io.File;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.List;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** Fonts by path, bytes, asset and system configuration. */
final class FontsTest {
    private static final String CJK = "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc";
    private static final String ROBOTO = "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-";
    private static final String EMOJI = "/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf";

    @TempDir
    Path folder;

    static FontConfig.Family family(String name, String font, String... languages) {
        return new FontConfig.Family(name, new FontConfig.Font[] {font(font, false, null)}, languages, 0);
    }

    private static FontConfig.Font font(String name, boolean italic, String fallbackFor) {
        return new FontConfig.Font(name, 0, 400, italic, fallbackFor);
    }

    private static boolean setConfig(FontConfig.Family... families) {
        ZvLibrary.load();
        return Natives.fonts("SetFontConfig", new FontConfig(families));
    }

    @Test
    void bytesAndAssetsDrawAsTheFileDoes() throws IOException {
        int[] expected = Natives.render("Glyphs", Natives.SANS);
        byte[] bytes = Files.readAllBytes(Path.of(Natives.SANS));
        AssetManager assets = new AssetManager(Path.of(Natives.DEJAVU));

        Natives text = Natives.line("Glyphs", null);
        assertEquals(true, text.call("SetFont2", "sans as bytes", bytes));
        assertArrayEquals(expected, text.render());
        assertEquals(true, text.call("SetFont3", assets, "DejaVuSans.ttf"));
        assertArrayEquals(expected, text.render());

        // Held by now: neither the bytes nor the asset are looked at, nor is there a need of a file.
        assertEquals(true, text.call("SetFont2", "sans as bytes", new byte[3]));
        assertEquals(true, text.call("SetFont", "sans as bytes"));
        assertEquals(true, text.call("SetFont3", new AssetManager(folder), "DejaVuSans.ttf"));
        assertArrayEquals(expected, text.render());
        assertEquals(true, Natives.fonts("InsertFontData", "inserted", bytes));
        assertArrayEquals(expected, Natives.render("Glyphs", "inserted"));
    }

    @Test
    void assetsStayWithinTheirFolder() throws IOException {
        Path assets = Files.createDirectories(folder.resolve("assets/fonts"));
        Path root = assets.getParent();
        Path sans = Path.of(Natives.SANS);
        Files.copy(sans, root.resolve("in.ttf"));
        Files.copy(sans, assets.resolve("deep.ttf"));
        Files.copy(sans, folder.resolve("out.ttf"));
        Files.copy(sans, Files.createDirectories(folder.resolve("assets.not")).resolve("out.ttf"));
        Files.createSymbolicLink(root.resolve("link-in.ttf"), Path.of("in.ttf"));
        Files.createSymbolicLink(root.resolve("link-out.ttf"), Path.of("../out.ttf"));
        Files.createSymbolicLink(root.resolve("folder-out"), folder);
        Files.createSymbolicLink(root.resolve("folder-beside"), folder.resolve("assets.not"));
        Files.createFile(root.resolve("empty.ttf"));

        AssetManager manager = new AssetManager(root);
        Natives text = new Natives();
        int before = new File("/proc/self/fd").list().length;
        for (String name : new String[] {"in.ttf", "fonts/deep.ttf", "link-in.ttf"}) {
            assertEquals(true, text.call("SetFont3", manager, name), name);
        }
        for (String name : new String[] {"", ".", "fonts", "../out.ttf", "fonts/../../out.ttf", "fonts/../in.ttf",
                root.resolve("in.ttf").toString(), "link-out.ttf", "folder-out/out.ttf", "folder-beside/out.ttf", "in.ttf/",
                "empty.ttf", "IN.TTF"}) {
            assertEquals(false, text.call("SetFont3", manager, name), name);
        }
        assertEquals(before, new File("/proc/self/fd").list().length, "open files");
    }

    /** A file name beyond the basic plane reaches the file system as UTF-8; in a text such a character is one. */
    @Test
    void stringsAreUtf8() throws IOException, InterruptedException {
        // The shell writes the name: the JVM may be unable to, where the locale says so.
        int status = new ProcessBuilder("sh", "-c", "cp \"$1\" \"$2/$(printf '\\303\\251\\360\\235\\204\\236').ttf\"", "sh",
                Natives.SANS, folder.toString()).start().waitFor();
        assertEquals(0, status);
        assertEquals(true, new Natives().call("SetFont", folder + "/\u00E9\uD834\uDD1E.ttf"));

        int[] alone = Natives.render("W", Natives.SANS);
        for (String before : List.of("\uD834\uDD1E", "\uD83D\uDE00", "x\uD800", "x\uDC00", "\uDC00\uD800", "\u4E16\u754C")) {
            Natives text = Natives.line("W", Natives.SANS);
            Lines lines = new Lines(before + "W", List.of(new Lines.Line(40, 50, -40, 10, 0, 100, 2, 3)));
            text.<Boolean>call("SetLayout", lines);
            assertArrayEquals(alone, text.render(), "the third unit after two others");
        }
        assertArrayEquals(Natives.render("ab", Natives.SANS), Natives.render("ab\0cd", Natives.SANS));
        assertArrayEquals(Natives.render("\uD83D\uDE00", EMOJI), Natives.render("\uD83D\uDE00\0", EMOJI));
        assertFalse(Arrays.equals(Natives.render("\uD83D\uDE00", EMOJI), Natives.render("\uD83D\uDE01", EMOJI)));
    }

    /** "ja" is loaded by a text with kana, not before; Latin loads nothing, emoji are there from the start. */
    static final class ByLocale {
        static void run() {
            int[] drawn = Natives.render("\u65E5", CJK);
            int[] emoji = Natives.render("\uD83D\uDE00", EMOJI);
            assertEquals(true, setConfig(null, family("sans-serif", "Roboto-Regular.ttf", "en"),
                    family("serif", "NotoSansCJK-Regular.ttc"),
                    family(null, "NotoSansCJK-Regular.ttc", null, "", "ja", "und-Zsye"),
                    family(null, "NotoColorEmoji.ttf", "und-Zsye")));
            Natives text = Natives.line("", null);
            assertArrayEquals(emoji, show(text, "\uD83D\uDE00"));
            assertArrayEquals(Natives.render("Latin", ROBOTO + "Regular.ttf"), show(text, "Latin"));
            int[] box = show(text, "\u65E5");  // Han alone asks for Chinese, which no family is made for
            assertFalse(Arrays.equals(drawn, box));
            show(text, "Latin");
            assertArrayEquals(box, show(text, "\u65E5"));
            show(text, "\u304B");
            assertArrayEquals(drawn, show(text, "\u65E5"));
        }
    }

    private static int[] show(Natives text, String content) {
        text.<Boolean>call("SetLayout", Lines.single(content));
        return text.render();
    }

    /** What is left out: italic fonts, fonts for a named family, missing files, and what has nothing else. */
    static final class Selection {
        static void run() {
            FontConfig.Family leftOut = new FontConfig.Family(null, new FontConfig.Font[] {
                    null, font("Roboto-Italic.ttf", true, null), font("DejaVuSans-Bold.ttf", false, "serif"),
                    font("Missing.ttf", false, null), font(null, false, null),
                    font("./".repeat(600) + "DejaVuSans-Bold.ttf", false, null)}, new String[0], 0);
            FontConfig.Family compact = new FontConfig.Family(null,
                    new FontConfig.Font[] {font("DejaVuSans.ttf", false, "")}, null, FontConfig.Family.VARIANT_COMPACT);
            FontConfig.Family elegant = new FontConfig.Family(null,
                    new FontConfig.Font[] {new FontConfig.Font("Roboto-Regular.ttf", 0, 900, false, null),
                        font("Missing.ttf", false, null), font("Roboto-Bold.ttf", false, null)}, null,
                    FontConfig.Family.VARIANT_ELEGANT);
            FontConfig.Family chinese = new FontConfig.Family(null,
                    new FontConfig.Font[] {new FontConfig.Font("NotoSansCJK-Regular.ttc", 2, 400, false, null)}, null, 1);
            // The very first family wins whatever its variant is, so that is one without letters.
            assertEquals(true, setConfig(new FontConfig.Family(null, null, null, 0), family(null, "NotoColorEmoji.ttf"),
                    leftOut, compact, elegant, chinese));
            Natives text = Natives.line("Family", null);
            assertArrayEquals(Natives.render("Family", Natives.SANS), text.render());
            Paint paint = Natives.paint(40);
            paint.setElegantTextHeight(true);
            text.<Boolean>call("SetPaint", paint);
            assertArrayEquals(Natives.render("Family", ROBOTO + "Bold.ttf"), text.render());
            assertFalse(Arrays.equals(Natives.render("\u76F4", CJK), Natives.render("\u76F4", null)), "the collection's third font");
            assertEquals(true, setConfig(family(null, "NotoColorEmoji.ttf")), "the first one stays");
            assertArrayEquals(Natives.render("Family", Natives.SANS), Natives.render("Family", null));
        }
    }

    @Test
    void familiesAreLoadedByLocale() {
        new World().run(ByLocale.class);
    }

    @Test
    void familiesAndFontsAreSelected() {
        new World().run(Selection.class);
    }

}
