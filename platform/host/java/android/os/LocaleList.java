// SPDX-License-Identifier: Apache-2.0
package android.os;

import java.util.Arrays;
import java.util.Locale;
import java.util.stream.Collectors;

/** Languages in the order of preference; immutable. */
public final class LocaleList {
    private static final LocaleList EMPTY = new LocaleList();

    private final Locale[] locales;

    /**
     * @throws NullPointerException if a locale is null
     * @throws IllegalArgumentException if one occurs twice
     */
    public LocaleList(Locale... list) {
        locales = list.clone();
        for (int i = 0; i < locales.length; i++) {
            if (locales[i] == null) {
                throw new NullPointerException("list[" + i + "] is null");
            }
            for (int j = 0; j < i; j++) {
                if (locales[j].equals(locales[i])) {
                    throw new IllegalArgumentException("list[" + i + "] is a repetition");
                }
            }
        }
    }

    /** Reads tags separated by commas, as {@link #toLanguageTags} writes them; null and "" give the empty list. */
    public static LocaleList forLanguageTags(String list) {
        if (list == null || list.isEmpty()) {
            return EMPTY;
        }
        String[] tags = list.split(",");
        Locale[] locales = new Locale[tags.length];
        for (int i = 0; i < tags.length; i++) {
            locales[i] = Locale.forLanguageTag(tags[i].trim());
        }
        return new LocaleList(locales);
    }

    public static LocaleList getEmptyLocaleList() {
        return EMPTY;
    }

    /** The list of the JVM's default locale. */
    public static LocaleList getDefault() {
        return new LocaleList(Locale.getDefault());
    }

    public static LocaleList getAdjustedDefault() {
        return getDefault();
    }

    /** The locale at the index, or null beyond the end. */
    public Locale get(int index) {
        return index >= 0 && index < locales.length ? locales[index] : null;
    }

    public int size() {
        return locales.length;
    }

    public boolean isEmpty() {
        return locales.length == 0;
    }

    /** The index of the locale, or -1. */
    public int indexOf(Locale locale) {
        return Arrays.asList(locales).indexOf(locale);
    }

    /** BCP 47 tags, separated by commas. */
    public String toLanguageTags() {
        return Arrays.stream(locales).map(Locale::toLanguageTag).collect(Collectors.joining(","));
    }

    @Override
    public boolean equals(Object other) {
        return other instanceof LocaleList && Arrays.equals(locales, ((LocaleList) other).locales);
    }

    @Override
    public int hashCode() {
        return Arrays.hashCode(locales);
    }

    @Override
    public String toString() {
        return Arrays.toString(locales);
    }
}
