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
    /** A method that is missing, the setter that asks for it, its result and the line about it. */
    private record Missing(String name, String setter, boolean result, String line) {}

    private static final String TEXT = "ZvText_JNI: ";
    private static final String FONTS = "E/Init_ZvFontManager_JNI: ";
    private static final List<Missing> MISSING = List.of(
            new Missing("getTextScaleX", "SetPaint", false, "E/" + TEXT + "Java function getTextScaleX not found"),
            new Missing("isFakeBoldText", "SetPaint", false, "E/" + TEXT + "Java function isFakeBoldText not found"),
            new Missing("getMaxLines", "SetView", false, "E/" + TEXT + "ZvText_SetView - Function getMaxLines not found"),
            new Missing("getText", "SetLayout", false, "E/" + TEXT + "ZvText_SetLayout - Function getText not found"),
            new Missing("getFamilies", "SetFontConfig", false, FONTS + "Java Function getFamilies not found"),
            new Missing("getVariant", "SetFontConfig", false, FONTS + "Java function getVariant not found"),
            new Missing("getFallbackFor", "SetFontConfig", false, FONTS + "Java function getFallbackFor not found"),
            // Those of secondary objects are written down, and the setter goes on.
            new Missing("toLanguageTags", "SetPaint", true, "D/" + TEXT + "LocaleList cannot find 'toLanguageTags' method id"),
            new Missing("isItalic", "SetView", true, "D/" + TEXT + "getTypeFace cannot find 'isItalic' method id"));

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

    /** The child's part: one world after another. */
    public static void main(String[] arguments) {
        for (Missing missing : MISSING) {
            world(missing.name, new World().rename(missing.name), Setters.class);
        }
        world("no build type", new World().rename("isBuildTypeEngMode"), Registered.class);
        world("no error class", new World().without("com.orvane.android.sdk.zve.util.ZvError"), Registered.class);
        world("no fonts class", new World().without("com.orvane.android.sdk.zve.font.FontManager"), Registered.class);
        world("no SetLine", new World().rename("ZvText_SetLine"), Registered.class);
        world("no mHandle", new World().rename("mHandle"), Registered.class);
    }

    private static void world(String name, World world, Class<?> scenario) {
        System.setProperty("zvex.world", name + ": ");
        world.run(scenario);
    }

    @Test
    void whatIsMissingIsNamed() {
        Map<String, List<String>> steps = Child.steps(Child.run(MissingMethodsTest.class, "-Dzvex.build.type=eng"));
        for (Missing missing : MISSING) {
            List<String> written = steps.get(missing.name + ": " + missing.setter);
            written.removeIf(line -> !line.equals(missing.line) && !line.startsWith("= "));
            assertEquals(List.of(missing.line, "= " + missing.result), written);
        }
        load(steps, "no build type", "E/ZvError_JNI: Java function isBuildTypeEngMode not found",
                "0", "true", "false", "true");
        String common = "E/ZvText_Common_JNI: ";
        load(steps, "no error class", common + "ZvError Onload Fail!", "NoClassDefFound", "true", "false", "true");
        load(steps, "no fonts class", common + "ZvFontManager OnLoad Fail!", "0", "NoClassDefFound", "false", "true");
        // Those before the one that is missing stay registered.
        load(steps, "no SetLine", common + "ZvText OnLoad Fail!", "0", "true", "false", "UnsatisfiedLinkError");
        load(steps, "no mHandle", "E/ZvText_JNI: Java field mHandle not found", "0", "true", "false", "false");
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
