// SPDX-License-Identifier: Apache-2.0
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import android.graphics.Paint;
import android.graphics.Typeface;
import android.text.FontConfig;
import android.widget.TextView;
import com.orvane.android.sdk.zve.ZvLibrary;
import java.util.List;
import java.util.Map;
import org.junit.jupiter.api.Test;

/** Java classes that lack a method, a native or a field that the library asks for, or that are not there. */
final class MissingMethodsTest {
    /** What a setter looks up, in order, and the line about what is missing. */
    private record Asked(String setter, String line, String methods) {
        List<String> names() {
            return List.of(methods.split(" "));
        }
    }

    private static final String FONTS = "E/Init_ZvFontManager_JNI: ";
    private static final List<Asked> ASKED = List.of(
            new Asked("SetPaint", "E/ZvText_JNI: Java function %s not found", "getTextScaleX getTextSkewX getLetterSpacing "
                    + "isElegantTextHeight getFlags getFontFeatureSettings getTextLocales getTextAlign getColor getTextSize "
                    + "isFakeBoldText"),
            new Asked("SetView", "E/ZvText_JNI: ZvText_SetView - Function %s not found", "getTextSize getCurrentTextColor "
                    + "getTypeface getTextDirection getLayoutDirection getWidth getHeight getPaddingLeft getPaddingRight "
                    + "getPaddingTop getPaddingBottom getGravity getMaxLines"),
            new Asked("SetLayout", "E/ZvText_JNI: ZvText_SetLayout - Function %s not found", "getWidth getHeight "
                    + "getTopPadding getBottomPadding getLineCount getParagraphDirection getParagraphLeft getParagraphRight "
                    + "getLineBaseline getLineTop getLineBottom getLineAscent getLineDescent getLineStart getLineEnd getLineVisibleEnd "
                    + "getLineLeft getLineRight getLineMax getLineWidth getText"),
            new Asked("SetFontConfig", FONTS + "Java Function %s not found", "getFamilies"),
            new Asked("SetFontConfig", FONTS + "Java function %s not found", "getName getFonts getLanguages getVariant"),
            new Asked("SetFontConfig", FONTS + "Java function %s not found",
                    "getFontName getTtcIndex getWeight isItalic getFallbackFor"));

    /** Runs in a world of the child. */
    static final class Setters {
        static void run() {
            ZvLibrary.load();
            Natives text = new Natives();
            TextView view = Natives.view(100, 50, 0x33);
            view.setTypeface(Typeface.DEFAULT_BOLD);
            FontConfig.Family family = FontsTest.family(null, "Roboto-Regular.ttf");
            Child.step("SetPaint", () -> text.call("SetPaint", new Paint()));
            Child.step("SetView", () -> text.call("SetView", view));
            Child.step("SetLayout", () -> text.call("SetLayout", Lines.single("a")));
            Child.step("SetFontConfig", () -> Natives.fonts("SetFontConfig",
                    new FontConfig(new FontConfig.Family[] {null, family})));
        }
    }

    /** A native of each class; of the text's, one that is registered before SetLine and one after. */
    static final class Registered {
        static void run() {
            Child.step("load", () -> {
                ZvLibrary.load();
                return "loaded";
            });
            Child.step("error", Natives::lastError);
            Child.step("fonts", () -> Natives.fonts("SetFontConfig", new FontConfig(new FontConfig.Family[0])));
            Child.step("SetLayout", () -> new Natives().call("SetLayout", (Object) null));
            Child.step("SetView", () -> new Natives().call("SetView", Natives.view(1, 1, 0x33)));
        }
    }

    /** Stands where the kit's error class stood. */
    public static final class AngryError {
        static boolean isBuildTypeEngMode() {
            throw new IllegalStateException("no idea");
        }

        static native int Error_GetError();
    }

    /** Stands where Paint.Align stood: it has no name. */
    static final class NamelessAlign {
        static final NamelessAlign LEFT = new NamelessAlign();
    }

    private static final String ERROR_CLASS = "com.orvane.android.sdk.zve.util.ZvError";

    /** The child's part: one world after another. */
    public static void main(String[] arguments) {
        for (Asked asked : ASKED) {
            List<String> names = asked.names();
            for (int i = 0; i < names.size(); i++) {
                world(asked.setter + names.get(i), new World().rename(names.subList(i, names.size())), Setters.class);
            }
        }
        for (String name : List.of("toLanguageTags", "isBold", "isItalic")) {
            world(name, new World().rename(List.of(name)), Setters.class);
        }
        world("Align", new World().replace("android.graphics.Paint$Align", NamelessAlign.class.getName()), Setters.class);
        world("no build type", new World().rename(List.of("isBuildTypeEngMode")), Registered.class);
        world("angry", new World().replace(ERROR_CLASS, AngryError.class.getName()), Registered.class);
        world("no error class", new World().without(ERROR_CLASS), Registered.class);
        world("no fonts class", new World().without("com.orvane.android.sdk.zve.font.FontManager"), Registered.class);
        world("no SetLine", new World().rename(List.of("ZvText_SetLine")), Registered.class);
        world("no mHandle", new World().rename(List.of("mHandle")), Registered.class);
    }

    private static void world(String name, World world, Class<?> scenario) {
        System.setProperty("zvex.world", name + ": ");
        world.run(scenario);
    }

    /** Each world lacks the methods from one of them on, so the first of these is the one named. */
    @Test
    void theFirstMissingMethodIsNamed() {
        Map<String, List<String>> steps = Child.steps(Child.run(MissingMethodsTest.class, "-Dzvex.build.type=eng"));
        for (Asked asked : ASKED) {
            for (String name : asked.names()) {
                List<String> written = steps.get(asked.setter + name + ": " + asked.setter);
                written.removeIf(line -> line.startsWith("D/") || line.contains("cannot convert"));
                assertEquals(List.of(String.format(asked.line, name), "= false"), written);
            }
        }
        // Those of secondary objects are written down, and the setter goes on.
        secondary(steps, "toLanguageTags: SetPaint", "D/ZvText_JNI: LocaleList cannot find 'toLanguageTags' method id");
        secondary(steps, "isBold: SetView", "D/ZvText_JNI: getTypeFace cannot find 'isBold' method id");
        secondary(steps, "isItalic: SetView", "D/ZvText_JNI: getTypeFace cannot find 'isItalic' method id");
        secondary(steps, "Align: SetPaint", "E/ZvText_JNI: Paint.Align cannot find 'name' method id");

        load(steps, "no build type", "E/ZvError_JNI: Java function isBuildTypeEngMode not found",
                "0", "true", "false", "true");
        load(steps, "angry", "E/ZvError_JNI: Java function isBuildTypeEngMode failed", "0", "true", "false", "true");
        String common = "E/ZvText_Common_JNI: ";
        load(steps, "no error class", common + "ZvError Onload Fail!", "NoClassDefFound", "true", "false", "true");
        load(steps, "no fonts class", common + "ZvFontManager OnLoad Fail!", "0", "NoClassDefFound", "false", "true");
        // Those before the one that is missing stay registered.
        load(steps, "no SetLine", common + "ZvText OnLoad Fail!", "0", "true", "false", "UnsatisfiedLinkError");
        load(steps, "no mHandle", "E/ZvText_JNI: Java field mHandle not found", "0", "true", "false", "false");
    }

    private static void secondary(Map<String, List<String>> steps, String name, String line) {
        steps.get(name).removeIf(written -> written.contains("GetBoundTextObject"));
        assertEquals(List.of(line, "= true"), steps.get(name));
    }

    /** The library loads all the same, with that line, and the natives give those results. */
    private static void load(Map<String, List<String>> steps, String world, String line, String... results) {
        List<String> loaded = steps.get(world + ": load");
        loaded.removeIf(written -> written.startsWith("D/"));
        assertEquals(List.of(line, "= loaded"), loaded);
        String[] order = {"error", "fonts", "SetLayout", "SetView"};
        for (int i = 0; i < order.length; i++) {
            List<String> step = steps.get(world + ": " + order[i]);
            String result = step.get(step.size() - 1);
            assertTrue(result.contains(results[i]), world + ", " + order[i] + " " + result);
        }
    }
}
