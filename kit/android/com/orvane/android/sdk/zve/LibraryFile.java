// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

/** The library lies where the platform finds it. */
final class LibraryFile {
    private LibraryFile() {}

    /** Its path, or null for its name. */
    static String find() {
        return null;
    }
}
