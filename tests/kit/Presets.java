// SPDX-License-Identifier: Apache-2.0
import com.orvane.android.sdk.zve.ZvPicture;
import com.orvane.android.sdk.zve.ZvStyle;
import com.orvane.android.sdk.zve.ZvText;
import java.io.FileOutputStream;
import java.io.IOException;
import java.io.OutputStream;

/** For memcheck: {@code Presets EMOJI_FONT OUTPUT_PNG} draws every preset, a pattern and a large emoji. */
final class Presets {
    public static void main(String[] args) throws IOException {
        ZvPicture last = null;
        try (ZvText text = new ZvText().font(args[0]).size(30).text("1\uD83D\uDC4D\n\uD840\uDC0B").background(0xFF202020)) {
            for (String name : ZvStyle.presets()) {
                last = text.clearEffects().style(ZvStyle.preset(name)).picture();
                text.layerKey();
            }
            text.clearEffects().pattern(last, 1, 1).colorGlyphs(false).size(300).render();
        }
        try (OutputStream out = new FileOutputStream(args[1])) {
            last.writePng(out);
        }
    }
}
