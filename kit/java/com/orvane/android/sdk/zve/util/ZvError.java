// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve.util;

import android.os.Build;

/**
 * The library's error code. It is kept per thread, is 0 until something is reported, and stays until something else is:
 * an operation that succeeds does not reset it.
 */
public final class ZvError {
    private ZvError() {}

    /** The code that was reported last on the calling thread. The library must be loaded. */
    public static int lastCode() {
        return Error_GetError();
    }

    // Asked once, while the library loads. An engineering build lets it log everything.
    private static boolean isBuildTypeEngMode() {
        return "eng".equals(Build.TYPE);
    }

    private static native int Error_GetError();
}
