// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import android.host.NativeJar;

/** The library where it lies on the class path. */
final class LibraryFile {
    private LibraryFile() {}

    /** Its path, or null for its name. */
    static String find() {
        return NativeJar.find("ZvEffect");
    }
}
