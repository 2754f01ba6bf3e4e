// SPDX-License-Identifier: Apache-2.0
package android.host;

import java.io.IOException;
import java.io.InputStream;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.util.Locale;

/** Desktop only: native libraries on the class path, as {@code zvex/linux-x86_64/libZvEffect.so} is in the jar of them. */
public final class NativeJar {
    private NativeJar() {}

    /** A copy of the library, as a file that goes when the JVM ends; null where it is not on the class path. */
    public static String find(String name) {
        String file = System.mapLibraryName(name);
        String platform = System.getProperty("os.name") + "-" + System.getProperty("os.arch").replace("amd64", "x86_64");
        try (InputStream in = NativeJar.class.getResourceAsStream("/zvex/" + platform.toLowerCase(Locale.ROOT) + "/" + file)) {
            if (in == null) {
                return null;
            }
            Path copy = Files.createTempFile("zvex", file);
            copy.toFile().deleteOnExit();
            Files.copy(in, copy, StandardCopyOption.REPLACE_EXISTING);
            return copy.toString();
        } catch (IOException e) {
            throw new UncheckedIOException(e);
        }
    }
}
