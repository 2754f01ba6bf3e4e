// SPDX-License-Identifier: Apache-2.0
import static org.junit.jupiter.api.Assertions.*;

import android.content.res.AssetManager;
import android.graphics.Paint;
import android.graphics.Typeface;
import android.os.LocaleList;
import android.text.TextPaint;
import java.io.FileNotFoundException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Locale;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

final class StandInsTest {
    private static final Path FONTS = Path.of(System.getProperty("zvex.fonts"));

    @Test
    void paintsBeginAsThePlatformHasThem() {
        Paint paint = new Paint(Paint.ANTI_ALIAS_FLAG);
        assertEquals("12.0 1.0 0.0 0.0 false null LEFT -16777216 " + Locale.getDefault().toLanguageTag() + " false",
                describe(paint));
        assertEquals(0x501, paint.getFlags());
        paint.setTextSize(-1);
        paint.setTextSize(Float.NaN);
        assertEquals(12, paint.getTextSize());
        paint.setFontFeatureSettings("");
        assertNull(paint.getFontFeatureSettings());
        assertThrows(IllegalArgumentException.class, () -> paint.setTextLocales(LocaleList.getEmptyLocaleList()));
        paint.setFakeBoldText(true);
        paint.setLinearText(true);
        paint.setSubpixelText(true);
        paint.setAntiAlias(false);
        assertEquals(0x5E0, paint.getFlags());
    }

    @Test
    void copiesOfAPaintAreEqualAndApart() {
        TextPaint paint = new TextPaint();
        paint.setTextSize(33);
        paint.setTextScaleX(2);
        paint.setTextSkewX(-.25f);
        paint.setLetterSpacing(.1f);
        paint.setElegantTextHeight(true);
        paint.setFontFeatureSettings("smcp");
        paint.setTextAlign(Paint.Align.RIGHT);
        paint.setColor(1);
        paint.setTextLocale(Locale.JAPAN);
        paint.setTypeface(Typeface.DEFAULT_BOLD);
        Paint copy = new Paint(paint);
        paint.reset();
        assertEquals("33.0 2.0 -0.25 0.1 true smcp RIGHT 1 ja-JP true", describe(copy));
        assertEquals("12.0 1.0 0.0 0.0 false null LEFT -16777216 " + Locale.getDefault().toLanguageTag() + " false",
                describe(paint));
    }

    private static String describe(Paint p) {
        return p.getTextSize() + " " + p.getTextScaleX() + " " + p.getTextSkewX() + " " + p.getLetterSpacing() + " "
                + p.isElegantTextHeight() + " " + p.getFontFeatureSettings() + " " + p.getTextAlign() + " " + p.getColor() + " "
                + p.getTextLocales().toLanguageTags() + " " + (p.getTypeface() != null);
    }

    @Test
    void typefacesHaveTheStyleOfTheirFile() {
        String[] files = {"Roboto-Regular.ttf", "Roboto-Bold.ttf", "Roboto-Italic.ttf", "NotoSansCJK-Regular.ttc"};
        int[] styles = {Typeface.NORMAL, Typeface.BOLD, Typeface.ITALIC, Typeface.NORMAL};
        for (int i = 0; i < files.length; i++) {
            Typeface face = Typeface.createFromFile(FONTS.resolve(files[i]).toFile());
            assertEquals(styles[i], face.getStyle(), files[i]);
            Typeface slanted = Typeface.create(face, Typeface.ITALIC);
            assertTrue(slanted.isItalic() && !slanted.isBold() && slanted.getPath().equals(face.getPath()));
        }
        assertThrows(RuntimeException.class, () -> Typeface.createFromFile("/no/such/font.ttf"));
        assertThrows(RuntimeException.class, () -> Typeface.createFromFile("/dev/null"));
    }

    @Test
    void assetsAreTheFilesBelowTheFolder(@TempDir Path folder) throws Exception {
        Path assets = Files.createDirectories(folder.resolve("assets/fonts")).getParent();
        Files.writeString(folder.resolve("outside"), "secret");
        Files.writeString(assets.resolve("fonts/a"), "asset");
        Files.createSymbolicLink(assets.resolve("link"), folder.resolve("outside"));
        AssetManager manager = new AssetManager(assets);
        try (var in = manager.open("fonts/a")) {
            assertEquals("asset", new String(in.readAllBytes()));
        }
        for (String name : new String[] {"../outside", "link", assets + "/fonts/a", "fonts", "", "none", "a\0"}) {
            assertThrows(FileNotFoundException.class, () -> manager.open(name), name);
        }
    }
}
