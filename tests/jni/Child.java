// SPDX-License-Identifier: Apache-2.0
import static org.junit.jupiter.api.Assertions.assertEquals;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.Supplier;

/** A main class in a JVM of its own, which checks every JNI call, and what it writes to standard error: the log. */
final class Child {
    private static final String STEP = "step ";

    /** The lines that it writes. Standard output must stay empty: the checks complain there, and nobody else may write. */
    static List<String> run(Class<?> main, String... options) {
        try {
            Path out = Files.createTempFile("zvex", ".out");
            Path err = Files.createTempFile("zvex", ".err");
            List<String> command = new ArrayList<>(List.of(
                    Path.of(System.getProperty("java.home"), "bin", "java").toString(), "-Xcheck:jni", "-ea",
                    "-cp", System.getProperty("java.class.path")));
            for (String property : List.of("zvex.library", "zvex.logged")) {
                command.add("-D" + property + "=" + System.getProperty(property));
            }
            command.addAll(List.of(options));
            command.add(main.getName());
            int status = new ProcessBuilder(command).redirectOutput(out.toFile()).redirectError(err.toFile())
                    .start().waitFor();
            List<String> lines = Files.readAllLines(err);
            assertEquals("", Files.readString(out), "standard output");
            assertEquals(0, status, () -> String.join("\n", lines));
            Files.delete(out);
            Files.delete(err);
            return lines;
        } catch (IOException | InterruptedException e) {
            throw new AssertionError(e);
        }
    }

    /** In the child: does one thing, and writes what came of it behind the log lines that it brought about. */
    static void step(String name, Supplier<Object> action) {
        System.err.println(STEP + System.getProperty("zvex.world", "") + name);
        String result;
        try {
            result = String.valueOf(action.get());
        } catch (Throwable thrown) {
            result = thrown.toString();
        }
        System.err.println("= " + result);
    }

    /** The lines of each step, addresses and line numbers left out; those of the layers below the natives as well. */
    static Map<String, List<String>> steps(List<String> lines) {
        Map<String, List<String>> steps = new LinkedHashMap<>();
        List<String> current = new ArrayList<>();
        for (String line : lines) {
            if (line.startsWith(STEP)) {
                current = new ArrayList<>();
                steps.put(line.substring(STEP.length()), current);
            } else if (line.startsWith("= ") || line.contains("_JNI: ") || line.startsWith("E/")) {
                current.add(line.replaceAll("0x[0-9a-f]+", "PTR").replaceAll("(Native Error \\d+) : \\d+", "$1"));
            }
        }
        return steps;
    }
}
