// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve.font;

import android.text.FontConfig;
import com.orvane.android.sdk.zve.ZvException;
import com.orvane.android.sdk.zve.ZvLibrary;
import com.orvane.android.sdk.zve.util.FontLock;
import java.util.Objects;
import java.util.concurrent.locks.Lock;

/** The process's fonts, which all texts share. Any thread. */
public final class FontManager {
    private FontManager() {}

    /**
     * Adds a font from a font file's bytes, which are copied. A text selects it with {@code font(name)}. If the name is
     * known already, it keeps its font.
     *
     * @param name by which the font is known
     * @param data a font file's bytes
     * @throws ZvException if the bytes are no font
     */
    public static void insert(String name, byte[] data) {
        Objects.requireNonNull(name, "name");
        Objects.requireNonNull(data, "data");
        ZvLibrary.load();
        Lock fonts = FontLock.addFont(name);
        try {
            if (!ZvFontManager_InsertFontData(name, data)) {
                throw new ZvException("the font \"" + name + "\" could not be loaded");
            }
            FontLock.learned(name);
        } finally {
            fonts.unlock();
        }
    }

    /**
     * Sets the system's families, which have the characters that a text's font lacks. Families of a language are loaded when a
     * text first needs them. Later calls change nothing.
     *
     * @param config read now
     * @throws ZvException if the configuration cannot be read; the next call tries again
     */
    public static void configure(FontConfig config) {
        Objects.requireNonNull(config, "config");
        ZvLibrary.load();
        Lock fonts = FontLock.change();
        try {
            if (!ZvFontManager_SetFontConfig(config)) {
                throw new ZvException("the font configuration cannot be read");
            }
            FontLock.setConfigured();
        } finally {
            fonts.unlock();
        }
    }

    /**
     * Whether {@link #configure} has succeeded.
     *
     * @return whether it has
     */
    public static boolean isConfigured() {
        return FontLock.isConfigured();
    }

    private static native boolean ZvFontManager_InsertFontData(String name, byte[] data);

    private static native boolean ZvFontManager_SetFontConfig(FontConfig config);
}
