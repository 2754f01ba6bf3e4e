// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve.font;

import android.text.FontConfig;

/** The process's fonts. */
public final class FontManager {
    private FontManager() {}

    private static native boolean ZvFontManager_InsertFontData(String name, byte[] data);

    private static native boolean ZvFontManager_SetFontConfig(FontConfig config);
}
