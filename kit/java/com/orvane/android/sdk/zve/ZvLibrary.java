// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import java.io.File;

/**
 * Loads {@code libZvEffect.so} on first use: from the path in the system property {@code zvex.library}, else on a desktop
 * from the class path, else by its name, as {@link System#loadLibrary} finds it.
 *
 * <p>It is not loaded in the static initialisers of the classes with natives, because loading initialises those classes: two
 * threads that start with different classes would deadlock.
 */
public final class ZvLibrary {
    private static volatile boolean loaded;

    private ZvLibrary() {}

    /**
     * Loads the library if it is not loaded yet. Every class of the kit calls this; an application may call it to see a
     * failure early.
     *
     * @throws UnsatisfiedLinkError if it cannot be found or loaded; the next call tries again
     */
    public static void load() {
        if (loaded) {
            return;
        }
        synchronized (ZvLibrary.class) {
            if (loaded) {
                return;
            }
            String path = System.getProperty("zvex.library");
            path = path != null ? path : LibraryFile.find();
            if (path != null) {
                System.load(new File(path).getAbsolutePath());
            } else {
                System.loadLibrary("ZvEffect");
            }
            loaded = true;
        }
    }
}
