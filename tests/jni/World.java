// SPDX-License-Identifier: Apache-2.0
import java.io.IOException;
import java.io.InputStream;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.HashSet;
import java.util.Set;

/**
 * The kit, the stand-ins and the test's own classes once more, in a class loader of its own and with a copy of the library
 * of its own: a process's state anew, or classes that are not what the library expects.
 */
final class World extends ClassLoader {
    private final Set<String> renamed = new HashSet<>();
    private final Set<String> absent = new HashSet<>();

    /** Methods, fields or natives of that name are called something else, in the kit, the stand-ins and Lines. */
    World rename(String name) {
        renamed.add(name);
        return this;
    }

    World without(String className) {
        absent.add(className);
        return this;
    }

    /** Calls the test class's static method run() as this world has it, with the library's logged build. */
    void run(Class<?> scenario) {
        String before = System.getProperty("zvex.library");
        try {
            Path copy = Files.createTempFile("zvex", ".so");
            try {
                Files.write(copy, Files.readAllBytes(Path.of(System.getProperty("zvex.logged"))));
                System.setProperty("zvex.library", copy.toString());
                Natives.invoke(loadClass(scenario.getName()), null, "run");
            } finally {
                Files.delete(copy);
            }
        } catch (IOException | ClassNotFoundException e) {
            throw new AssertionError(e);
        } finally {
            System.setProperty("zvex.library", before);
        }
    }

    @Override
    protected Class<?> loadClass(String name, boolean resolve) throws ClassNotFoundException {
        boolean mine = name.startsWith("com.orvane.") || name.startsWith("android.") || name.indexOf('.') < 0;
        if (!mine) {
            return super.loadClass(name, resolve);
        }
        synchronized (getClassLoadingLock(name)) {
            Class<?> loaded = findLoadedClass(name);
            return loaded != null ? loaded : define(name);
        }
    }

    private Class<?> define(String name) throws ClassNotFoundException {
        if (absent.contains(name)) {
            throw new ClassNotFoundException(name);
        }
        try (InputStream stream = getResourceAsStream(name.replace('.', '/') + ".class")) {
            if (stream == null) {
                throw new ClassNotFoundException(name);
            }
            byte[] bytes = stream.readAllBytes();
            if (name.indexOf('.') >= 0 || name.equals(Lines.class.getName())) {
                for (String constant : renamed) {
                    bytes = replaceConstant(bytes, constant, "other" + constant);
                }
            }
            return defineClass(name, bytes, 0, bytes.length);
        } catch (IOException e) {
            throw new ClassNotFoundException(name, e);
        }
    }

    /** Puts one UTF-8 constant of a class file in the place of another: tag 1, two bytes of length, the characters. */
    private static byte[] replaceConstant(byte[] bytes, String from, String to) {
        // One character a byte, so that text and bytes are the same.
        String text = new String(bytes, StandardCharsets.ISO_8859_1);
        return text.replace(constant(from), constant(to)).getBytes(StandardCharsets.ISO_8859_1);
    }

    private static String constant(String text) {
        return "\1" + (char) (text.length() >> 8) + (char) (text.length() & 0xFF) + text;
    }
}
