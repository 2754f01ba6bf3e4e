// SPDX-License-Identifier: Apache-2.0
package android.text;

/** The system's font families in the order of search; immutable. */
public final class FontConfig {
    private final Family[] families;

    /** @param families kept, not copied */
    public FontConfig(Family[] families) {
        this.families = families;
    }

    public Family[] getFamilies() {
        return families;
    }

    /** One font of a family. */
    public static final class Font {
        private final String fontName;
        private final int ttcIndex;
        private final int weight;
        private final boolean italic;
        private final String fallbackFor;

        /**
         * @param fontName the file's name within the system's font folder
         * @param ttcIndex which font of a collection file
         * @param weight 100 to 900
         * @param fallbackFor the named family that this font stands in for; null for a font of the family's own
         */
        public Font(String fontName, int ttcIndex, int weight, boolean isItalic, String fallbackFor) {
            this.fontName = fontName;
            this.ttcIndex = ttcIndex;
            this.weight = weight;
            this.italic = isItalic;
            this.fallbackFor = fallbackFor;
        }

        public String getFontName() {
            return fontName;
        }

        public int getTtcIndex() {
            return ttcIndex;
        }

        public int getWeight() {
            return weight;
        }

        public boolean isItalic() {
            return italic;
        }

        public String getFallbackFor() {
            return fallbackFor;
        }
    }

    /** Fonts of one design. */
    public static final class Family {
        public static final int VARIANT_DEFAULT = 0;
        public static final int VARIANT_COMPACT = 1;
        public static final int VARIANT_ELEGANT = 2;

        private final String name;
        private final Font[] fonts;
        private final String[] languages;
        private final int variant;

        /**
         * @param name null for a family that is only a fallback
         * @param languages BCP 47 tags that it is made for; may be empty
         * @param variant one of the {@code VARIANT_} constants
         */
        public Family(String name, Font[] fonts, String[] languages, int variant) {
            this.name = name;
            this.fonts = fonts;
            this.languages = languages;
            this.variant = variant;
        }

        public String getName() {
            return name;
        }

        public Font[] getFonts() {
            return fonts;
        }

        public String[] getLanguages() {
            return languages;
        }

        public int getVariant() {
            return variant;
        }
    }
}
