// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import java.util.ArrayList;
import java.util.HashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** Colours as text: #rgb, #rrggbb, #aarrggbb, and what CSS has besides: names, rgb() and hsl(). */
final class ColorText {
    static final String WANTED = "a colour; write #rgb, #rrggbb, #aarrggbb, or a name, rgb() or hsl() as in CSS";

    private static final Pattern HEX = Pattern.compile("#([0-9a-f]{3}|[0-9a-f]{6}|[0-9a-f]{8})");
    private static final Pattern FUNCTION = Pattern.compile("(rgb|hsl)a?\\((.*)\\)", Pattern.DOTALL);
    private static final Pattern NUMBER = Pattern.compile("(-?(?:[0-9]+\\.?[0-9]*|\\.[0-9]+)(?:e[-+]?[0-9]+)?)([a-z%]*)");
    private static final Map<String, Integer> NAMES = new HashMap<>();

    static {
        // Names and hexadecimal digits in turn.
        String[] words = (
                "aliceblue f0f8ff antiquewhite faebd7 aqua 00ffff aquamarine 7fffd4 azure f0ffff beige f5f5dc "
                + "bisque ffe4c4 black 000000 blanchedalmond ffebcd blue 0000ff blueviolet 8a2be2 brown a52a2a "
                + "burlywood deb887 cadetblue 5f9ea0 chartreuse 7fff00 chocolate d2691e coral ff7f50 cornflowerblue 6495ed "
                + "cornsilk fff8dc crimson dc143c cyan 00ffff darkblue 00008b darkcyan 008b8b darkgoldenrod b8860b "
                + "darkgray a9a9a9 darkgreen 006400 darkgrey a9a9a9 darkkhaki bdb76b darkmagenta 8b008b "
                + "darkolivegreen 556b2f darkorange ff8c00 darkorchid 9932cc darkred 8b0000 darksalmon e9967a "
                + "darkseagreen 8fbc8f darkslateblue 483d8b darkslategray 2f4f4f darkslategrey 2f4f4f darkturquoise 00ced1 "
                + "darkviolet 9400d3 deeppink ff1493 deepskyblue 00bfff dimgray 696969 dimgrey 696969 dodgerblue 1e90ff "
                + "firebrick b22222 floralwhite fffaf0 forestgreen 228b22 fuchsia ff00ff gainsboro dcdcdc "
                + "ghostwhite f8f8ff gold ffd700 goldenrod daa520 gray 808080 green 008000 greenyellow adff2f grey 808080 "
                + "honeydew f0fff0 hotpink ff69b4 indianred cd5c5c indigo 4b0082 ivory fffff0 khaki f0e68c lavender e6e6fa "
                + "lavenderblush fff0f5 lawngreen 7cfc00 lemonchiffon fffacd lightblue add8e6 lightcoral f08080 "
                + "lightcyan e0ffff lightgoldenrodyellow fafad2 lightgray d3d3d3 lightgreen 90ee90 lightgrey d3d3d3 "
                + "lightpink ffb6c1 lightsalmon ffa07a lightseagreen 20b2aa lightskyblue 87cefa lightslategray 778899 "
                + "lightslategrey 778899 lightsteelblue b0c4de lightyellow ffffe0 lime 00ff00 limegreen 32cd32 "
                + "linen faf0e6 magenta ff00ff maroon 800000 mediumaquamarine 66cdaa mediumblue 0000cd mediumorchid ba55d3 "
                + "mediumpurple 9370db mediumseagreen 3cb371 mediumslateblue 7b68ee mediumspringgreen 00fa9a "
                + "mediumturquoise 48d1cc mediumvioletred c71585 midnightblue 191970 mintcream f5fffa mistyrose ffe4e1 "
                + "moccasin ffe4b5 navajowhite ffdead navy 000080 oldlace fdf5e6 olive 808000 olivedrab 6b8e23 "
                + "orange ffa500 orangered ff4500 orchid da70d6 palegoldenrod eee8aa palegreen 98fb98 paleturquoise afeeee "
                + "palevioletred db7093 papayawhip ffefd5 peachpuff ffdab9 peru cd853f pink ffc0cb plum dda0dd "
                + "powderblue b0e0e6 purple 800080 rebeccapurple 663399 red ff0000 rosybrown bc8f8f royalblue 4169e1 "
                + "saddlebrown 8b4513 salmon fa8072 sandybrown f4a460 seagreen 2e8b57 seashell fff5ee sienna a0522d "
                + "silver c0c0c0 skyblue 87ceeb slateblue 6a5acd slategray 708090 slategrey 708090 snow fffafa "
                + "springgreen 00ff7f steelblue 4682b4 tan d2b48c teal 008080 thistle d8bfd8 tomato ff6347 "
                + "turquoise 40e0d0 violet ee82ee wheat f5deb3 white ffffff whitesmoke f5f5f5 yellow ffff00 "
                + "yellowgreen 9acd32").split(" ");
        for (int i = 0; i < words.length; i += 2) {
            NAMES.put(words[i], 0xFF000000 | Integer.parseInt(words[i + 1], 16));
        }
        NAMES.put("transparent", 0);
    }

    private ColorText() {}

    /** Null if it is none. */
    static Integer read(String given) {
        if (given.chars().anyMatch(c -> c > 0x7F)) {
            return null; // some letters become ASCII in lower case, such as the Kelvin sign
        }
        String text = given.toLowerCase(Locale.ROOT);
        if (HEX.matcher(text).matches()) {
            return ofHex(text.substring(1));
        }
        Matcher function = FUNCTION.matcher(text);
        return function.matches() ? ofFunction(function.group(1).equals("rgb"), function.group(2)) : NAMES.get(text);
    }

    private static int ofHex(String digits) {
        int value = (int) Long.parseLong(digits, 16);
        switch (digits.length()) {
            case 3:
                return 0xFF000000 | (value >> 8) * 0x110000 | (value >> 4 & 0xF) * 0x1100 | (value & 0xF) * 0x11;
            case 6:
                return 0xFF000000 | value;
            default:
                return value;
        }
    }

    private static Integer ofFunction(boolean rgb, String inside) {
        List<String> words = arguments(inside);
        if (words == null) {
            return null;
        }
        Double alpha = words.size() == 4 ? number(words.get(3), 1, "%", 0.01) : (Double) 1.0;
        Double[] parts = new Double[3];
        for (int i = 0; i < 3; i++) {
            if (rgb) {
                double most = words.get(i).endsWith("%") ? 100 : 255;
                Double part = number(words.get(i), most, "%", 1);
                parts[i] = part != null ? (Double) (part / most) : null;
            } else if (i == 0) {
                parts[i] = number(words.get(i), 1e9, "deg", 1, "grad", 0.9, "rad", 180 / Math.PI, "turn", 360);
            } else {
                parts[i] = number(words.get(i), 100, "%", 1);
            }
            if (parts[i] == null) {
                return null;
            }
        }
        if (alpha == null) {
            return null;
        }
        int color = rgb ? channel(parts[0]) << 16 | channel(parts[1]) << 8 | channel(parts[2])
                : ofHsl(parts[0], parts[1] / 100, parts[2] / 100);
        return channel(alpha) << 24 | color;
    }

    /** Three or four words: with commas, or with blanks and a slash before the opacity. Null for anything else. */
    private static List<String> arguments(String text) {
        boolean commas = text.indexOf(',') >= 0;
        int slash = text.indexOf('/');
        if (slash >= 0 && (commas || text.indexOf('/', slash + 1) >= 0)) {
            return null;
        }
        List<String> words = new ArrayList<>();
        for (String word : text.split(commas ? "," : "[ \t\n/]", -1)) {
            String bare = word.replaceAll("[ \t\n]", "");
            if (commas || !bare.isEmpty()) {
                words.add(bare);
            }
        }
        boolean opacity = commas ? words.size() == 4 : slash >= 0;
        return words.size() == (opacity ? 4 : 3) ? words : null;
    }

    /** Within 0 and {@code high}, of a hue also below; what stands behind the number, and what that is multiplied by. */
    private static Double number(String text, double high, Object... units) {
        Matcher matcher = NUMBER.matcher(text);
        if (!matcher.matches()) {
            return null;
        }
        double value = Double.parseDouble(matcher.group(1));
        boolean known = matcher.group(2).isEmpty();
        for (int i = 0; i < units.length; i += 2) {
            if (units[i].equals(matcher.group(2))) {
                value *= ((Number) units[i + 1]).doubleValue();
                known = true;
            }
        }
        double low = units.length > 2 ? -high : 0;
        return known && value >= low && value <= high ? (Double) value : null;
    }

    private static int channel(double share) {
        return (int) Math.floor(share * 255 + 0.5);
    }

    /** After the formula of CSS Color 4 ("HSL Colors"): hue in degrees, the others 0 to 1. */
    private static int ofHsl(double degrees, double saturation, double lightness) {
        double hue = degrees % 360;
        hue = hue < 0 ? hue + 360 : hue;
        int color = 0;
        for (int n : new int[] {0, 8, 4}) {
            double k = (n + hue / 30) % 12;
            double amplitude = saturation * Math.min(lightness, 1 - lightness);
            color = color << 8 | channel(lightness - amplitude * Math.max(-1, Math.min(Math.min(k - 3, 9 - k), 1)));
        }
        return color;
    }
}
