// SPDX-License-Identifier: Apache-2.0
package android.content.res;

import java.io.FileNotFoundException;
import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.InvalidPathException;
import java.nio.file.Path;

/** An application's files: here those of one folder. A name that leads out of it is not found. */
public final class AssetManager {
    // Absolute, links resolved. The native asset manager reads this field.
    private final String root;

    /**
     * Desktop only.
     *
     * @throws IOException where there is no such folder
     */
    public AssetManager(Path folder) throws IOException {
        root = folder.toRealPath().toString();
        if (!Files.isDirectory(folder)) {
            throw new IOException(folder + " is not a folder");
        }
    }

    /**
     * Opens an asset by its name relative to the folder.
     *
     * @throws FileNotFoundException where there is none, or the name leads out of the folder
     */
    public InputStream open(String fileName) throws IOException {
        try {
            Path file = Path.of(root, fileName).toRealPath();
            if (file.startsWith(root) && Files.isRegularFile(file) && !Path.of(fileName).isAbsolute()) {
                return Files.newInputStream(file);
            }
        } catch (IOException | InvalidPathException e) {
            // reported below
        }
        throw new FileNotFoundException(fileName);
    }
}
