// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve.util;

import android.text.Layout;
import android.text.StaticLayout;
import java.util.Collections;
import java.util.Set;
import java.util.concurrent.ConcurrentHashMap;
import java.util.concurrent.locks.Lock;
import java.util.concurrent.locks.ReadWriteLock;
import java.util.concurrent.locks.ReentrantReadWriteLock;

/**
 * Internal to the kit, not for applications. The library's store of fonts has no lock: a call that may change it runs alone,
 * and calls that only read it (mainly renders) run in parallel.
 *
 * <p>Order: a text's own lock first, then this one. A thread that holds this lock takes no text's lock.
 */
public final class FontLock {
    private static final ReadWriteLock LOCK = new ReentrantReadWriteLock();

    // Fonts are never removed from the store, so adding one again only reads.
    private static final Set<String> KNOWN = Collections.newSetFromMap(new ConcurrentHashMap<>());
    private static volatile boolean configured;

    private FontLock() {}

    /**
     * For calls that only read the store. Like every method here, it returns a lock that is held; the caller unlocks it.
     *
     * @return the lock, held
     */
    public static Lock read() {
        return held(LOCK.readLock());
    }

    /**
     * For calls that may change the store.
     *
     * @return the lock, held
     */
    public static Lock change() {
        return held(LOCK.writeLock());
    }

    private static Lock held(Lock lock) {
        lock.lock();
        return lock;
    }

    /**
     * For handing a font of that name to the store.
     *
     * @param name the font's
     * @return the lock, held
     */
    public static Lock addFont(String name) {
        return KNOWN.contains(name) ? read() : change();
    }

    /**
     * Notes that the store has the font of that name.
     *
     * @param name the font's
     */
    public static void learned(String name) {
        KNOWN.add(name);
    }

    /** Notes that the store now has system families. Called under {@link #change}. */
    public static void setConfigured() {
        configured = true;
    }

    /**
     * Whether the store has system families.
     *
     * @return whether it has
     */
    public static boolean isConfigured() {
        return configured;
    }

    /**
     * For setting a layout's text, which loads the system families of its scripts, except Latin and common signs.
     *
     * @param layout the one that is set
     * @return the lock, held
     */
    public static Lock setText(Layout layout) {
        return setText(layout instanceof StaticLayout ? layout.getText() : null);
    }

    /**
     * For setting a text, as with a layout.
     *
     * @param text the one that is set; null if it is not known
     * @return the lock, held
     */
    public static Lock setText(CharSequence text) {
        Lock reading = read();
        if (!configured || isPlain(text)) {
            return reading;
        }
        reading.unlock();
        return change();
    }

    // Only of a text that cannot change: the library reads it again later.
    private static boolean isPlain(CharSequence text) {
        if (!(text instanceof String)) {
            return false;
        }
        for (int i = 0; i < text.length(); i++) {
            char c = text.charAt(i);
            boolean latin = c < 0x250;
            boolean punctuation = c >= 0x2000 && c < 0x2070;
            if (!latin && !punctuation) {
                return false;
            }
        }
        return true;
    }
}
