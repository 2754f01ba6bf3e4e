// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve.util;

import android.os.Build;

/**
 * The library's error code. Each thread has its own, 0 until an error is reported; a successful operation does not reset it.
 */
public final class ZvError {
    private ZvError() {}

    /**
     * The code that was reported last on the calling thread. The library must be loaded.
     *
     * @return the code
     */
    public static int lastCode() {
        return Error_GetError();
    }

    // Called once, while the library loads, which logs everything in an engineering build.
    private static boolean isBuildTypeEngMode() {
        return "eng".equals(Build.TYPE);
    }

    private static native int Error_GetError();
}
