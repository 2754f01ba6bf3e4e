// SPDX-License-Identifier: Apache-2.0
import static org.junit.jupiter.api.Assertions.*;

import java.io.IOException;
import java.lang.ref.WeakReference;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import org.junit.jupiter.api.Test;

final class MemoryTest {
    /** JAVA_TOOL_OPTIONS=-Dzvex.cycles=1000000 asks for a million. */
    @Test
    void textsComeAndGo() {
        String cycles = System.getProperty("zvex.cycles", "20000");
        List<String> result = Child.run(MemoryTest.class, "-Xms64m", "-Xmx64m", "-XX:+AlwaysPreTouch",
                "-XX:+UseSerialGC", "-Dzvex.cycles=" + cycles);
        int grown = Integer.parseInt(result.get(result.size() - 1));
        // A kilobyte left behind in each cycle would be 15 MB; the rest is the runtime itself.
        assertTrue(grown < 8000, "grown by " + grown + " kB in " + cycles + " cycles");
    }

    /** Nothing in the kit or the library holds on to the loader: not the natives, not the cleaner's thread. */
    @Test
    void aWorldIsFreed() throws InterruptedException {
        WeakReference<World> world = used(new World());
        for (int i = 0; i < 1000 && world.get() != null; i++) {
            System.gc();
            Thread.sleep(20);
        }
        assertNull(world.get());
    }

    private static WeakReference<World> used(World world) {
        world.run(Use.class);
        return new WeakReference<>(world);
    }

    static final class Use {
        static void run() {
            Natives.line("Text", Natives.SANS).text.close();
            assertTrue(Natives.line("Text", Natives.SANS).render().length > 0);
        }
    }

    /** The child's part: writes by how many kilobytes the process grew, once it had all it needs. */
    public static void main(String[] arguments) throws IOException {
        Natives large = Natives.line("Text", Natives.SANS);
        large.<Boolean>call("SetView", Natives.view(10_000, 10_000, 0x33));
        assertThrows(OutOfMemoryError.class, large::render, "the array is more than the runtime has");
        // Much in strings and arrays, so that one not given back is seen.
        Lines layout = new Lines("Text" + " ".repeat(1000), Lines.single("Text").lines);
        int cycles = Integer.getInteger("zvex.cycles");
        int before = 0;
        for (int i = 0; i < cycles; i++) {
            if (i == cycles / 4) {
                before = residentKilobytes();
            }
            Natives text = Natives.line("Text", Natives.SANS);
            text.<Boolean>call("SetLayout", layout);
            layout.asked.clear();
            text.<Integer>call("AddLinearGradientTextEffect", 0f, 1f, new int[256], new float[256], new float[256], 1f);
            useEffects(text.handle());
            if (i % 20 == 0) {
                text.render();
                EffectNativesTest.effects("Render", text.handle(), true, false);
                EffectNativesTest.effects("RenderLayers", text.handle(), new int[] {text.handle(), 0, 1, 0, 0, 0, 4}, new float[1],
                        0, 0, false, 1f);
            }
            text.call("finalize");
        }
        System.err.println(residentKilobytes() - before);
    }

    private static void useEffects(int handle) {
        int[] colors = new int[256];
        float[] ones = new float[256];
        EffectNativesTest.effects("AddOuterGlow", handle, 1f, 0, 1f, colors, ones, ones);
        EffectNativesTest.effects("AddInnerGlow", handle, 1f, 0, 1f, colors, ones, ones);
        EffectNativesTest.effects("AddRadialGradient", handle, 1f, 1f, colors, ones, ones);
        EffectNativesTest.effects("AddPattern", handle, colors, 16, 16, 1f, 1f);
        EffectNativesTest.effects("SetWords", handle, "Text" + " ".repeat(1000));
        EffectNativesTest.effects("GetLayerKey", handle);
        EffectNativesTest.effects("GetOrigin", handle);
        EffectNativesTest.effects("GetLayerMargins", new int[] {handle, 0, 0, 0, 0, 0, 0}, new float[1]);
    }

    private static int residentKilobytes() throws IOException {
        List<String> lines = Files.readAllLines(Path.of("/proc/self/status"));
        return Integer.parseInt(lines.stream().filter(line -> line.startsWith("VmRSS")).findAny().orElseThrow()
                .replaceAll("[^0-9]", ""));
    }
}
