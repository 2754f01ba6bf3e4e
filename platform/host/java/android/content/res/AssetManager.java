// SPDX-License-Identifier: Apache-2.0
package android.content.res;

import java.io.File;
import java.io.FileNotFoundException;
import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.InvalidPathException;
import java.nio.file.Path;

/** An application's assets: here the files of one folder. Names that lead out of it are not found. */
public final class AssetManager {
    // Absolute, links resolved. The native asset manager reads this field.
    private final String root;

    /**
     * Desktop only.
     *
     * @throws IOException if there is no such folder
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
     * @throws FileNotFoundException if there is none
     */
    public InputStream open(String fileName) throws IOException {
        File file = fileOf(fileName);
        if (file == null) {
            throw new FileNotFoundException(fileName);
        }
        return Files.newInputStream(file.toPath());
    }

    /** Desktop only: the file of an asset; null if there is none. */
    public File fileOf(String fileName) {
        try {
            Path name = Path.of(fileName);
            Path file = Path.of(root).resolve(name).toRealPath();
            boolean inside = !name.isAbsolute() && file.startsWith(root);
            return inside && Files.isRegularFile(file) ? file.toFile() : null;
        } catch (IOException | InvalidPathException e) {
            return null;
        }
    }
}
