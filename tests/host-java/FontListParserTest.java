// SPDX-License-Identifier: Apache-2.0
import static org.junit.jupiter.api.Assertions.*;

import android.graphics.FontListParser;
import android.text.FontConfig;
import java.io.ByteArrayInputStream;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import org.junit.jupiter.api.Test;

final class FontListParserTest {
    private static FontConfig parse(String xml) throws IOException {
        return FontListParser.parse(new ByteArrayInputStream(xml.getBytes(StandardCharsets.UTF_8)));
    }

    @Test
    void readsFamiliesAsThePlatformWritesThem() throws IOException {
        FontConfig config = parse("<?xml version='1.0' encoding='utf-8'?>\n"
                + "<familyset version='23'><!-- first is the default -->\n"
                + "  <family name='sans-serif'>\n"
                + "    <font weight='100' style='normal'>Roboto-Thin.ttf</font>\n"
                + "    <font weight='700' style='italic'>\n      Roboto &amp; Bold <!-- here --> Italic.ttf\n    </font>\n"
                + "  </family>\n"
                + "  <alias name='arial' to='sans-serif' weight='100' /><unknown><family name='hidden'/></unknown>\n"
                + "  <family lang='und-Arab' variant='elegant'><font>Naskh.ttf</font></family>\n"
                + "  <family lang='und-Arab' variant='compact'><font>Ui.ttf</font></family>\n"
                + "  <family lang=' zh-Hant  zh-Bopo '><font weight='400' style='normal' index='3'>CJK.ttc"
                + "<axis tag='wght' stylevalue='400'/></font><font fallbackFor='serif' index='2'>Serif.ttc</font></family>\n"
                + "  <family/>\n"
                + "</familyset>\n");
        FontConfig.Family[] families = config.getFamilies();
        assertEquals(5, families.length);

        assertEquals("sans-serif", families[0].getName());
        assertEquals(0, families[0].getLanguages().length);
        assertFont(families[0].getFonts()[0], "Roboto-Thin.ttf", 0, 100, false, null);
        assertFont(families[0].getFonts()[1], "Roboto & Bold  Italic.ttf", 0, 700, true, null);

        assertNull(families[1].getName());
        assertEquals(FontConfig.Family.VARIANT_ELEGANT, families[1].getVariant());
        assertEquals(FontConfig.Family.VARIANT_COMPACT, families[2].getVariant());
        assertFont(families[1].getFonts()[0], "Naskh.ttf", 0, 400, false, null);

        assertEquals(FontConfig.Family.VARIANT_DEFAULT, families[3].getVariant());
        assertArrayEquals(new String[] {"zh-Hant", "zh-Bopo"}, families[3].getLanguages());
        assertFont(families[3].getFonts()[0], "CJK.ttc", 3, 400, false, null);
        assertFont(families[3].getFonts()[1], "Serif.ttc", 2, 400, false, "serif");
        assertEquals(0, families[4].getFonts().length);
    }

    private static void assertFont(
            FontConfig.Font font, String name, int index, int weight, boolean italic, String fallbackFor) {
        assertEquals(name, font.getFontName());
        assertEquals(index, font.getTtcIndex());
        assertEquals(weight, font.getWeight());
        assertEquals(italic, font.isItalic());
        assertEquals(fallbackFor, font.getFallbackFor());
    }

    @Test
    void whatIsNoConfigurationIsRefusedWithItsLine() {
        String[][] cases = {
            {"", ""},
            {"no xml", ""},
            {"<fonts/>", "line 1: <familyset>"},
            {"<familyset>\n<family>", ""},
            {"<familyset/>\n<familyset/>", ""},
            {"<familyset><family>\n<font weight='bold'>a.ttf</font></family></familyset>", "line 2: weight=\"bold\""},
            {"<familyset><family><font index=''>a.ttf</font></family></familyset>", "index=\"\""},
            {"<familyset><family><font>&unknown;</font></family></familyset>", ""},
            // No entity of a document type is ever read.
            {"<!DOCTYPE familyset [<!ENTITY e 'in'>]><familyset><family><font>&e;</font></family></familyset>", ""},
            {"<!DOCTYPE familyset [<!ENTITY e SYSTEM 'file:///etc/passwd'>]>"
                + "<familyset><family><font>&e;</font></family></familyset>", ""},
        };
        for (String[] one : cases) {
            IOException thrown = assertThrows(IOException.class, () -> parse(one[0]), one[0]);
            assertTrue(thrown.getMessage().contains(one[1]), thrown.getMessage());
        }
    }
}
