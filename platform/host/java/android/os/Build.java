// SPDX-License-Identifier: Apache-2.0
package android.os;

/** What the system was built for. */
public class Build {
    /** "user" unless the system property {@code zvex.build.type} says otherwise; with "eng" the library logs everything. */
    public static final String TYPE = System.getProperty("zvex.build.type", "user");
}
