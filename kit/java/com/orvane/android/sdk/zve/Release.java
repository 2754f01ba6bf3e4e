// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import java.lang.reflect.Method;

/**
 * An action that runs once: when called, or some time after its owner became unreachable. A {@code java.lang.ref.Cleaner}
 * does the latter where the platform has one, else a finalizer.
 */
class Release implements Runnable {
    private static final Object CLEANER;
    private static final Method REGISTER;

    static {
        Object cleaner = null;
        Method register = null;
        try {
            Class<?> type = Class.forName("java.lang.ref.Cleaner");
            register = type.getMethod("register", Object.class, Runnable.class);
            cleaner = type.getMethod("create").invoke(null);
        } catch (ReflectiveOperationException e) {
            // An older platform.
        }
        CLEANER = cleaner;
        REGISTER = register;
    }

    private Runnable action;

    private Release(Runnable action) {
        this.action = action;
    }

    /** The owner has to keep the result; the action must not reach the owner. */
    static Release of(Object owner, Runnable action) {
        if (CLEANER != null) {
            Release release = new Release(action);
            try {
                REGISTER.invoke(CLEANER, owner, release);
                return release;
            } catch (ReflectiveOperationException e) {
                // The finalizer will do.
            }
        }
        return finalized(action);
    }

    /** The form for platforms without a cleaner: only the owner reaches it, so they become unreachable together. */
    static Release finalized(Runnable action) {
        return new Finalized(action);
    }

    @Override
    public void run() {
        Runnable first;
        synchronized (this) {
            first = action;
            action = null;
        }
        if (first != null) {
            first.run();
        }
    }

    private static final class Finalized extends Release {
        private Finalized(Runnable action) {
            super(action);
        }

        @Override
        protected void finalize() {
            run();
        }
    }
}
