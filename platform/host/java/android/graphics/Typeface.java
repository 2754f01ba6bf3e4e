// SPDX-License-Identifier: Apache-2.0
package android.graphics;

import android.content.res.AssetManager;
import android.host.TextEngine;
import android.text.FontConfig;
import java.io.File;
import java.util.Objects;

/** A font file and its style; immutable. */
public class Typeface {
    public static final int NORMAL = 0;
    public static final int BOLD = 1;
    public static final int ITALIC = 2;
    public static final int BOLD_ITALIC = 3;

    /** The system's own face, which has no file. */
    public static final Typeface DEFAULT = new Typeface(null, NORMAL);
    public static final Typeface DEFAULT_BOLD = new Typeface(null, BOLD);

    private final String path;
    private final int style;

    private Typeface(String path, int style) {
        this.path = path;
        this.style = style;
    }

    /**
     * The first font of the file, in the style that the font states.
     *
     * @throws RuntimeException if the file cannot be read or is no font
     */
    public static Typeface createFromFile(String path) {
        return createFromFile(new File(Objects.requireNonNull(path, "path")));
    }

    /** As {@link #createFromFile(String)}. */
    public static Typeface createFromFile(File file) {
        int style = TextEngine.styleOf(file.getPath());
        if (style < 0) {
            throw new RuntimeException("Font not found " + file);
        }
        return new Typeface(file.getPath(), style);
    }

    /** @throws RuntimeException if there is no such asset, or if it is no font */
    public static Typeface createFromAsset(AssetManager mgr, String path) {
        File file = mgr.fileOf(path);
        if (file == null) {
            throw new RuntimeException("Font asset not found " + path);
        }
        return createFromFile(file);
    }

    /**
     * Desktop only: sets the fallback families of every typeface, which are also the system's own face. Text is measured with
     * them from then on; give the renderer the same configuration. Only the first call has an effect.
     *
     * @throws IllegalArgumentException if the configuration cannot be read
     */
    public static void setSystemFonts(FontConfig config) {
        if (!TextEngine.setFonts(Objects.requireNonNull(config, "config"))) {
            throw new IllegalArgumentException("the font configuration cannot be read");
        }
    }

    /** The family's face in the style; null means the system's own. */
    public static Typeface create(Typeface family, int style) {
        Typeface from = family != null ? family : DEFAULT;
        return from.style == style ? from : new Typeface(from.path, style & BOLD_ITALIC);
    }

    public static Typeface defaultFromStyle(int style) {
        return create(DEFAULT, style);
    }

    public int getStyle() {
        return style;
    }

    public final boolean isBold() {
        return (style & BOLD) != 0;
    }

    public final boolean isItalic() {
        return (style & ITALIC) != 0;
    }

    /** Desktop only: the file the face was made from; null for the system's own. */
    public String getPath() {
        return path;
    }

    @Override
    public boolean equals(Object other) {
        return other instanceof Typeface && style == ((Typeface) other).style
                && Objects.equals(path, ((Typeface) other).path);
    }

    @Override
    public int hashCode() {
        return Objects.hash(path, style);
    }
}
