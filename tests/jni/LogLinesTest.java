// SPDX-License-Identifier: Apache-2.0
import static org.junit.jupiter.api.Assertions.assertEquals;

import android.content.res.AssetManager;
import android.text.FontConfig;
import com.orvane.android.sdk.zve.ZvLibrary;
import java.io.IOException;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.function.Supplier;
import org.junit.jupiter.api.Test;

/** What each native answers to null and broken arguments, and the lines it writes, word for word. */
final class LogLinesTest {
    private record Step(String name, Supplier<Object> action, List<String> lines) {}

    private final List<Step> steps = new ArrayList<>();
    private Natives text;  // in the child only

    // Lines are written here as priority and tag in short: T the text's natives, F those of the fonts.
    private void step(String what, Supplier<Object> action, String... lines) {
        List<String> whole = new ArrayList<>();
        for (String line : lines) {
            whole.add(line.replaceFirst("^(.)T ", "$1/ZvText_JNI: ").replaceFirst("^(.)F ", "$1/Init_ZvFontManager_JNI: "));
        }
        steps.add(new Step(steps.size() + " " + what, action, whole));
    }

    private void text(String name, Object[] arguments, String... lines) {
        step(name, () -> text.call(name, arguments), lines);
    }

    private void fonts(String name, Object[] arguments, String... lines) {
        step(name, () -> Natives.fonts(name, arguments), lines);
    }

    private static Object[] with(Object... arguments) {
        return arguments;
    }

    private LogLinesTest() throws IOException {
        AssetManager assets = new AssetManager(Path.of("/usr/share/fonts/truetype"));
        Object[] nothing = {null};
        byte[] bytes = {1};

        step("load", () -> {
            ZvLibrary.load();
            text = new Natives();
            return "loaded";
        }, "D/ZvText_Common_JNI: ZvText_JNI_OnLoad", "D/ZvError_JNI: Init .. Done", "DF Init_ZvFontManager_JNI",
                "DT JNI_OnLoad .. Done", "D/ZvText_Common_JNI: ZvText_JNI_OnLoad .... done", "= loaded");
        step("error", Natives::lastError, "D/ZvError_JNI: Error_GetError", "= 0");
        text("finalize", with(), "= null");
        text("ClearAllTextEffect", with(), "= null");
        step("handle", () -> text.handle(), "= -1");
        text("SetLine", with(2), "DT GetBoundTextObject - hande = 0", "= true");
        step("handle", () -> text.handle(), "= 1");

        text("SetFont", nothing, "ET ZvText_SetFont() - Fail to get fontFile string", "= false");
        text("SetFont2", with(null, bytes), "ET ZvText_SetFont2() - fontName is NULL", "= false");
        text("SetFont2", with("name", null), "ET ZvText_SetFont2() - buffer is NULL", "= false");
        text("SetFont3", with(null, "name"), "ET ZvText_SetFont3() - assetManager is NULL", "= false");
        text("SetFont3", with(assets, null), "ET ZvText_SetFont3() - fontName is NULL", "= false");
        for (String name : new String[] {"missing.ttf", "dejavu"}) {
            text("SetFont3", with(assets, name), "ET ZvText_SetFont3() - _ASSET_NOT_FOUND_", "= false");
        }
        for (int length : new int[] {0, 1, 5000}) {
            String line = "E/ZvFontManager: AddMinikinFont() - Fail to " + (length == 0 ? "get font" : "create typeface");
            text("SetFont2", with("junk", new byte[length]), line, "= false");
            fonts("InsertFontData", with("junk", new byte[length]), "DF ZvFontManager_InsertFontData", line, "= false");
        }
        text("SetPaint", nothing, "= false");
        text("SetView", nothing, "= false");
        text("SetView", with(Natives.view(-1, 10, 0x33)), "E/ZvView: SetSize() - size invalid", "= true");
        text("SetLayout", nothing, "DT ZvText_SetLayout - RH(1) null", "= false");
        text("SetLayout", with(Lines.single("a")), "DT ZvText_SetLayout - RH(1) (PTR)", "= true");
        for (int[] lengths : new int[][] {{3, 3, 2}, {3, 2, 3}, {2, 3, 3}, {-1, 1, 1}, {1, -1, 1}, {1, 1, -1}}) {
            text("AddLinearGradientTextEffect", with(0f, 1f, lengths[0] < 0 ? null : new int[lengths[0]], floats(lengths[1]),
                    floats(lengths[2]), 1f), "= -1");
        }
        text("SetView", with(Natives.view(65536, 32768, 0x33)), "= true");
        text("RenderTextEffect", with(), "ET ZvText_RenderTextEffect - 65536 x 32768 pixels fit no array", "= null");

        fonts("InsertFontData", with(null, bytes), "DF ZvFontManager_InsertFontData",
                "EF ZvFontManager_InsertFontData() - fontName is NULL", "= false");
        fonts("InsertFontData", with("name", null), "DF ZvFontManager_InsertFontData",
                "EF ZvFontManager_InsertFontData() - buffer is NULL", "= false");
        fonts("SetFontConfig", nothing, "DF ZvFontManager_SetFontConfig()",
                "EF ZvFontManager_SetFontConfig - jFontConfig is NULL", "= false");
        fonts("SetFontConfig", with(new FontConfig(null)), "DF ZvFontManager_SetFontConfig()",
                "DF ZvFontManager_SetFontConfig >>> ConvertToFontFamilies",
                "EF ZvFontManager_SetFontConfig - cannot convert to native families", "= false");
        fonts("SetFontConfig", with(new FontConfig(new FontConfig.Family[] {
                FontsTest.family("sans-serif", "Roboto-Regular.ttf"), FontsTest.family(null, "NotoSansCJK-Regular.ttc", "ja")})),
                "DF ZvFontManager_SetFontConfig()",
                "DF ZvFontManager_SetFontConfig >>> ConvertToFontFamilies", "DF Family lang() localeListId(0) loaded(TRUE)",
                "DF Family lang(ja) localeListId(1) loaded(FALSE)",
                "DF ZvFontManager_SetFontConfig <<<< ConvertToFontFamilies", "= true");
        fonts("SetFontConfig", nothing, "DF ZvFontManager_SetFontConfig()", "DF ZvFontManager_SetFontConfig - already set",
                "= true");

        text("finalize", with(), "DT finalize : RH 1", "= null");
        text("finalize", with(), "= null");
        for (Map.Entry<String, Object[]> call : List.<Map.Entry<String, Object[]>>of(
                Map.entry("AddInnerShadowTextEffect -1", with(1f, 1f, 1f, 1, 1f)),
                Map.entry("AddLinearGradientTextEffect -1", with(1f, 1f, new int[1], floats(1), floats(1), 1f)),
                Map.entry("AddOuterGlowTextEffect -1", with(1f, 1, 1f)),
                Map.entry("AddOuterShadowTextEffect -1", with(1f, 1f, 1f, 1, 1f)),
                Map.entry("AddStrokeTextEffect -1", with(1f, 1, 1f, 1, 1)), Map.entry("ClearAllTextEffect null", with()),
                Map.entry("RenderTextEffect null", with()), Map.entry("SetFont false", with(Natives.SANS)),
                Map.entry("SetFont2 false", with("name", bytes)), Map.entry("SetFont3 false", with(assets, "name")),
                Map.entry("SetPaint false", with(Natives.paint(1))), Map.entry("SetLayout false", with(Lines.single("a"))),
                Map.entry("SetLine false", with(1)), Map.entry("SetView false", with(Natives.view(1, 1, 1))),
                Map.entry("GetDrawingBitmapSize null", with()), Map.entry("SetBackgroundColor false", with(1, true)),
                Map.entry("GetEffectLeftOffset 0", with()), Map.entry("GetEffectTopOffset 0", with()),
                Map.entry("GetEffectRightOffset 0", with()), Map.entry("GetEffectBottomOffset 0", with()))) {
            String[] nameAndFailure = call.getKey().split(" ");
            text(nameAndFailure[0], call.getValue(), "ET @ Native Error 19", "= " + nameAndFailure[1]);
        }
        step("error", Natives::lastError, "D/ZvError_JNI: Error_GetError", "= 19");
    }

    private static float[] floats(int length) {
        return length < 0 ? null : new float[length];
    }

    /** The child's part. */
    public static void main(String[] arguments) throws IOException {
        new LogLinesTest().steps.forEach(step -> Child.step(step.name.split(" ")[0], step.action));
    }

    private static List<String> log(String buildType) {
        return Child.run(LogLinesTest.class, "-Dzvex.build.type=" + buildType,
                "-Dzvex.library=" + System.getProperty("zvex.logged"));
    }

    @Test
    void everyLineAndFailureValue() {
        List<String> log = log("eng");
        Map<String, List<String>> written = Child.steps(log);
        for (Step step : steps) {
            assertEquals(step.lines, written.get(step.name.split(" ")[0]), step.name);
        }
        assertEquals(20, log.stream().filter(line -> line.contains("Native Error 19")).distinct().count(),
                "each native reports with a line number of its own");
    }

    /** The kit says what build this is while the library loads; the line before that cannot know. */
    @Test
    void debugLinesAreForEngineeringBuilds() {
        assertEquals(List.of("D/ZvText_Common_JNI: ZvText_JNI_OnLoad"),
                log("user").stream().filter(line -> line.startsWith("D/")).toList());
    }
}
