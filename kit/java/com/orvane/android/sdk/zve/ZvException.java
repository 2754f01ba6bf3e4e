// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import com.orvane.android.sdk.zve.util.ZvError;

/** The library refused something. */
public class ZvException extends RuntimeException {
    private static final long serialVersionUID = 1;

    /** The thread's error code then; 0 for none. */
    private final int code;

    /**
     * Takes the code that the calling thread's last native call may have left.
     *
     * @param what the message
     */
    public ZvException(String what) {
        this(what, ZvError.lastCode());
    }

    private ZvException(String what, int code) {
        super(code == 0 ? what : what + " (error " + code + ")");
        this.code = code;
    }

    /**
     * The calling thread's last error code when this was thrown; 0 for none. A failure without a code of its own, such as an
     * unreadable font, keeps the code of an earlier one.
     *
     * @return the code
     */
    public int code() {
        return code;
    }
}
