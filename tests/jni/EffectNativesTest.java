// SPDX-License-Identifier: Apache-2.0
import static org.junit.jupiter.api.Assertions.*;

import com.orvane.android.sdk.zve.ZvLibrary;
import java.util.Arrays;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import org.junit.jupiter.api.Test;

/** The natives of ZvTextEffects, beneath the interface that the kit makes of them. */
final class EffectNativesTest {
    private static final int[] COLORS = {0xFFFF0000, 0xFF00FF00};
    private static final float[] ONES = {1, 1};
    private static final float[] ENDS = {0, 1};
    private static final int GONE = Integer.MAX_VALUE;

    /** The arguments of each adder after the handle. */
    private static final Map<String, Object[]> ADDERS = new LinkedHashMap<>();

    static {
        ADDERS.put("AddOuterGlow", new Object[] {9f, 0, 1f, COLORS, ONES, ENDS});
        ADDERS.put("AddInnerGlow", new Object[] {9f, 0, 1f, COLORS, ONES, ENDS});
        ADDERS.put("AddRadialGradient", new Object[] {1f, 1f, COLORS, ONES, ENDS});
        ADDERS.put("AddPattern", new Object[] {new int[] {0xFF0000FF, 0x80FFFFFF}, 2, 1, 3f, 1f});
        ADDERS.put("AddBevel", new Object[] {1, 8f, 1f, 1, 0, 0, 1f, 135f, 30f, 0xFF000000, .5f, 0xFFFFFFFF, .5f});
        ADDERS.put("AddEmboss", new Object[] {1, 8f, 1f, 1, 0, 0, 1f, 135f, 30f, 0xFF000000, .5f, 0xFFFFFFFF, .5f});
    }

    static <T> T effects(String name, Object... arguments) {
        return Natives.invoke(effectsClass(), null, "ZvTextEffects_" + name, arguments);
    }

    private static Class<?> effectsClass() {
        try {
            return Class.forName("com.orvane.android.sdk.zve.ZvTextEffects");
        } catch (ClassNotFoundException e) {
            throw new AssertionError(e);
        }
    }

    private static Object[] with(Object first, Object... others) {
        Object[] all = new Object[others.length + 1];
        all[0] = first;
        System.arraycopy(others, 0, all, 1, others.length);
        return all;
    }

    @Test
    void everyAdderDrawsAndItsEffectGoesAgain() {
        int[] types = {3, 4, 8, 11, 5, 6};
        int[] plain = Natives.render("Text", Natives.SANS);
        int number = 0;
        for (Map.Entry<String, Object[]> adder : ADDERS.entrySet()) {
            Natives text = Natives.line("Text", Natives.SANS);
            int handle = text.handle();
            byte[] plainKey = effects("GetLayerKey", handle);
            int id = effects(adder.getKey(), with(handle, adder.getValue()));
            assertTrue(id >= 0, adder.getKey());
            assertFalse(Arrays.equals(plain, text.render()), adder.getKey());
            assertFalse(Arrays.equals(plainKey, effects("GetLayerKey", handle)), adder.getKey());
            assertFalse(EffectNativesTest.<Boolean>effects("RemoveEffect", handle, id + 100));
            assertTrue(EffectNativesTest.<Boolean>effects("RemoveEffect", handle, id), adder.getKey());
            assertArrayEquals(plain, text.render(), adder.getKey());

            effects(adder.getKey(), with(handle, adder.getValue()));
            assertTrue(EffectNativesTest.<Boolean>effects("ClearEffect", handle, types[number]), adder.getKey());
            assertFalse(EffectNativesTest.<Boolean>effects("ClearEffect", handle, types[number++]), adder.getKey());
            assertArrayEquals(plainKey, effects("GetLayerKey", handle));
        }
    }

    /** Stops, pixels and both colours of a relief arrive as they were given. */
    @Test
    void argumentsKeepTheirOrder() {
        Natives text = Natives.line("I", Natives.SANS);
        effects("AddPattern", text.handle(), new int[] {0xFFFE8001}, 1, 1, 1f, 1f);
        assertTrue(Arrays.stream(text.render()).anyMatch(p -> (p | 0x070707) == 0xFFFF7F07), "the pattern");
        text = Natives.line("I", Natives.SANS);
        effects("AddRadialGradient", text.handle(), 1f, 1f, new int[] {0xFFABCDEF}, new float[] {1}, new float[] {0});
        assertTrue(has(text, 0xFFABCDEF));
        text = Natives.line("I", Natives.SANS);
        effects("AddBevel", text.handle(), 1, 8f, 1f, 1, 0, 0, 1f, 0f, 0f, 0xFF00FF00, 1f, 0xFFFF0000, 0f);
        assertTrue(Arrays.stream(text.render()).anyMatch(p -> (p >> 8 & 0xFF) > 0x60), "the shadow");
        assertTrue(Arrays.stream(text.render()).noneMatch(p -> (p >> 16 & 0xFF) > 0x10), "the highlight");
    }

    private static boolean has(Natives text, int color) {
        return Arrays.stream(text.render()).anyMatch(pixel -> pixel == color);
    }

    @Test
    void textsWithoutAView() {
        Natives text = Natives.line("Text", Natives.SANS);
        int[] origin = effects("GetOrigin", text.handle());
        assertEquals(0, origin[0]);
        assertTrue(origin[1] > 0);
        assertTrue(EffectNativesTest.<Boolean>effects("SetView", text.handle(), 50, 40, 1));
        assertTrue(EffectNativesTest.<Boolean>effects("SetTextColor", text.handle(), 0xFF654321));
        assertEquals(50 * 40, text.render().length);
        assertTrue(has(text, 0xFF654321));
        byte[] key = effects("GetLayerKey", text.handle());
        assertTrue(EffectNativesTest.<Boolean>effects("SetTextOpacity", text.handle(), 0.5f));
        assertFalse(Arrays.equals(key, effects("GetLayerKey", text.handle())));
        assertNull(effects("GetOrigin", freshHandle()));
    }

    private static int freshHandle() {
        Natives text = new Natives();
        text.<Integer>call("GetEffectLeftOffset");
        return text.handle();
    }

    /** Two layers: the front one plain, the one behind it wider and moved; a text that is a layer of its own keeps its own. */
    @Test
    void layersAreJoinedFromTheBack() {
        Natives text = Natives.line("I", Natives.SANS);
        text.<Integer>call("AddStrokeTextEffect", 2f, 0xFF00FF00, 1f, 0, 1);
        int[] own = text.render();
        int back = freshHandle();
        int[] layers = {back, 0xFF0000FF, 5, 3, 0, 0, 0, text.handle(), 0xFFFF0000, 0, 0, 0, 0, 0};
        assertArrayEquals(new int[] {2, 5, 8, 5}, effects("GetLayerMargins", layers, ONES));
        int[] picture = effects("RenderLayers", text.handle(), layers, ONES, 0, 0, false, 1f);
        assertArrayEquals(new int[] {210, 70}, text.call("GetDrawingBitmapSize"));
        for (int color : new int[] {0xFF0000FF, 0xFFFF0000, 0xFF00FF00, 0}) {
            assertTrue(Arrays.stream(picture).anyMatch(pixel -> pixel == color), Integer.toHexString(color));
        }
        int[] canvas = effects("RenderLayers", text.handle(), layers, ONES, 0, 0xFF777777, false, 1f);
        assertEquals(0xFF777777, canvas[0]);
        effects("AddRadialGradient", freshHandle(), 1f, 1f, COLORS, ONES, ENDS);
        assertArrayEquals(own, text.render(), "its own effects and colour are back");
    }

    @Test
    void argumentsThatDoNotFitAreRefused() {
        Natives text = Natives.line("Text", Natives.SANS);
        int handle = text.handle();
        int[] before = text.render();
        float[] one = {1};
        for (Map.Entry<String, Object[]> adder : ADDERS.entrySet()) {
            refused(19, -1, adder.getKey(), with(GONE, adder.getValue()));
            for (int i = 0; i < adder.getValue().length; i++) {
                if (adder.getValue()[i].getClass().isArray()) {
                    refused(7, -1, adder.getKey(), replaced(adder.getValue(), i, null, handle));
                    Object other = adder.getValue()[i] instanceof int[] ? new int[3] : one;
                    refused(7, -1, adder.getKey(), replaced(adder.getValue(), i, other, handle));
                }
            }
        }
        refused(7, -1, "AddPattern", handle, new int[0], 0, 0, 1f, 1f);
        refused(7, -1, "AddPattern", handle, new int[2], -1, -2, 1f, 1f);
        refused(7, false, "SetView", handle, -1, 1, 1);
        refused(19, false, "SetTextColor", GONE, 0);
        refused(19, false, "RemoveEffect", GONE, 0);
        refused(19, false, "ClearEffect", -1, 3);
        refused(19, null, "GetLayerKey", GONE);
        refused(19, null, "Render", GONE, true, false);
        refused(19, false, "SetWords", GONE, "a");
        refused(7, false, "SetWords", handle, null);
        int[] layer = {handle, 0, 0, 0, 0, 0, 0};
        refused(19, null, "RenderLayers", GONE, layer, one, 0, 0, false, 1f);
        refused(19, null, "RenderLayers", handle, layer, one, GONE, 0, false, 1f);
        List<int[]> bad = Arrays.asList(null, new int[0], new int[6], new int[] {GONE, 0, 0, 0, 0, 0, 0},
                new int[] {handle, 0, 0, 0, 0, 17, 0}, new int[] {handle, 0, 0, 0, 0, -1, 0});
        for (int[] layers : bad) {
            refused(7, null, "RenderLayers", handle, layers, one, 0, 0, false, 1f);
            refused(7, null, "GetLayerMargins", layers, one);
        }
        refused(7, null, "GetLayerMargins", new int[0], new float[0]);
        int[] twice = Arrays.copyOf(layer, 14);
        twice[7] = handle;
        refused(7, null, "RenderLayers", handle, twice, ONES, 0, 0, false, 1f);
        assertArrayEquals(before, text.render());
    }

    private static Object[] replaced(Object[] arguments, int place, Object other, int handle) {
        Object[] changed = arguments.clone();
        changed[place] = other;
        return with(handle, changed);
    }

    private static void refused(int code, Object result, String name, Object... arguments) {
        String call = name + Arrays.deepToString(arguments);
        Natives.invoke(effectsClass(), null, "ZvTextEffects_SetTextColor", -1, 0);
        if (code == 19) {
            effects("GetLayerMargins", null, null);
        }
        assertFalse(Natives.lastError() == code, "another code before");
        assertEquals(result, effects(name, arguments), call);
        assertEquals(code, Natives.lastError(), call);
    }

    /** Runs in a world of the child. */
    static final class Loaded {
        static void run() {
            Child.step("load", () -> {
                ZvLibrary.load();
                return new Natives().call("SetLine", 1);
            });
        }
    }

    /** The child's part. */
    public static void main(String[] arguments) {
        System.setProperty("zvex.world", "without: ");
        new World().without("com.orvane.android.sdk.zve.ZvTextEffects").run(Loaded.class);
        System.setProperty("zvex.world", "lacking: ");
        new World().rename("ZvTextEffects_AddBevel").run(Loaded.class);
    }

    @Test
    void theClassMayBeAbsentButNotIncomplete() {
        Map<String, List<String>> steps = Child.steps(Child.run(EffectNativesTest.class, "-Dzvex.build.type=eng"));
        List<String> absent = steps.get("without: load");
        assertTrue(absent.stream().noneMatch(line -> line.matches("[IWEF]/.*")), absent::toString);
        assertTrue(absent.contains("= true"), absent::toString);
        List<String> lacking = steps.get("lacking: load");
        assertTrue(lacking.contains("E/ZvText_Common_JNI: ZvTextEffects OnLoad Fail!"), lacking::toString);
        assertTrue(lacking.contains("= true"), lacking::toString);
    }
}
