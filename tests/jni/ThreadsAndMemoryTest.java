// SPDX-License-Identifier: Apache-2.0
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.List;
import java.util.concurrent.Callable;
import java.util.concurrent.ExecutionException;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import java.util.stream.IntStream;
import org.junit.jupiter.api.Test;

final class ThreadsAndMemoryTest {
    /** Texts of their own render side by side; only setting fonts and texts has to be kept apart. */
    @Test
    void eightThreadsRender() throws InterruptedException, ExecutionException {
        List<Natives> texts = IntStream.range(0, 8).mapToObj(i -> {
            Natives text = Natives.line("Thread " + i, Natives.SANS);
            text.<Integer>call("AddStrokeTextEffect", (float) i, 0xFF0000FF, 1f, 0, i % 3);
            return text;
        }).toList();
        long end = System.nanoTime() + 2_000_000_000L;
        ExecutorService threads = Executors.newFixedThreadPool(texts.size());
        List<Callable<Boolean>> jobs = texts.stream().<Callable<Boolean>>map(text -> () -> {
            int[] first = text.render();
            boolean same = true;
            while (same && System.nanoTime() < end) {
                same = Arrays.equals(first, text.render());
            }
            return same && Arrays.stream(first).anyMatch(pixel -> pixel != 0);
        }).toList();
        for (Future<Boolean> same : threads.invokeAll(jobs)) {
            assertTrue(same.get());
        }
        threads.shutdown();
    }

    /** JAVA_TOOL_OPTIONS=-Dzvex.cycles=1000000 asks for a million. */
    @Test
    void textsComeAndGo() {
        String cycles = System.getProperty("zvex.cycles", "20000");
        List<String> result = Child.run(ThreadsAndMemoryTest.class, "-Xms64m", "-Xmx64m", "-XX:+AlwaysPreTouch",
                "-XX:+UseSerialGC", "-Dzvex.cycles=" + cycles);
        int grown = Integer.parseInt(result.get(result.size() - 1));
        assertTrue(grown < 4000, "grown by " + grown + " kB in " + cycles + " cycles");
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
            if (i % 20 == 0) {
                text.render();
            }
            text.call("finalize");
        }
        System.err.println(residentKilobytes() - before);
    }

    private static int residentKilobytes() throws IOException {
        List<String> lines = Files.readAllLines(Path.of("/proc/self/status"));
        return Integer.parseInt(lines.stream().filter(line -> line.startsWith("VmRSS")).findAny().orElseThrow()
                .replaceAll("[^0-9]", ""));
    }
}
