// SPDX-License-Identifier: Apache-2.0
import android.graphics.FontListParser;
import android.graphics.Typeface;
import android.text.FontConfig;
import android.view.Gravity;
import android.widget.TextView;
import com.orvane.android.sdk.zve.Stroke;
import com.orvane.android.sdk.zve.ZvText;
import com.orvane.android.sdk.zve.font.FontManager;
import java.awt.image.BufferedImage;
import java.io.IOException;
import java.io.InputStream;
import java.io.OutputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import javax.imageio.ImageIO;

/** Renders a paragraph into the lower right of a picture, as a server would: {@code Paragraph FONT FONTS_XML OUTPUT_PNG}. */
final class Paragraph {
    private static final String TEXT =
            "The same bytes on a phone and on a server: lines are wrapped, 日本語の文字 come from a family that stands behind the "
                    + "font, and the paragraph rests at the bottom, on the right.";

    public static void main(String[] args) {
        if (args.length != 3) {
            System.err.println("usage: Paragraph FONT FONTS_XML OUTPUT_PNG");
            System.exit(2);
        }
        try {
            setSystemFonts(Path.of(args[1]));
            draw(args[0], args[2]);
        } catch (IOException | RuntimeException e) {
            System.err.println("Paragraph: " + e);
            System.exit(1);
        }
    }

    private static void draw(String font, String output) throws IOException {
        TextView view = new TextView();
        view.setText(TEXT);
        view.setTypeface(Typeface.createFromFile(font));
        view.setTextSize(44);
        view.setTextColor(0xFFFF8800);
        view.setWidth(760);
        view.setHeight(480);
        view.setPadding(24, 24, 24, 24);
        view.setGravity(Gravity.RIGHT | Gravity.BOTTOM);

        try (ZvText text = new ZvText()) {
            text.font(font).paint(view.getPaint()).view(view).layout(view.getLayout()).stroke(5, 0xFF202020, Stroke.OUTSIDE);
            int[] argb = text.render();

            BufferedImage image = new BufferedImage(text.width(), text.height(), BufferedImage.TYPE_INT_ARGB);
            image.setRGB(0, 0, text.width(), text.height(), argb, 0, text.width());
            try (OutputStream out = Files.newOutputStream(Path.of(output))) {
                ImageIO.write(image, "png", out);
            }
            System.out.println(output + ": " + text.width() + " x " + text.height() + " pixels");
        }
    }

    // Lines are measured by one library and drawn by another: both need to know the families.
    private static void setSystemFonts(Path fontsXml) throws IOException {
        try (InputStream in = Files.newInputStream(fontsXml)) {
            FontConfig fonts = FontListParser.parse(in);
            Typeface.setSystemFonts(fonts);
            FontManager.configure(fonts);
        }
    }
}
