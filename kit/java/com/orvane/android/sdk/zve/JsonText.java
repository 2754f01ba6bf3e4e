// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import java.util.HashSet;
import java.util.Set;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/**
 * Checks the form of JSON before {@code org.json} reads it, which also accepts much that is not JSON: equal keys, single
 * quotes, words without quotes. Comments, as in C, and trailing commas are allowed, and left out of the result.
 */
final class JsonText {
    private static final int MAX_DEPTH = 16;
    private static final int MAX_EVENTS = 20_000; // keys, values, begins and ends
    private static final Pattern LITERAL = Pattern.compile("true|false|null|-?(0|[1-9][0-9]*)(\\.[0-9]+)?([eE][-+]?[0-9]+)?");

    private final String text;
    private final StringBuilder clean = new StringBuilder();
    private int at;
    private int events;
    private int depth;

    private JsonText(String text) {
        this.text = text;
    }

    /** @throws IllegalArgumentException with the place and the reason */
    static String checked(String json) {
        JsonText text = new JsonText(json);
        if (json.startsWith("\uFEFF")) {
            text.at++;
        }
        text.readValue("");
        text.skip();
        if (text.at < json.length()) {
            throw text.broken("something follows the value");
        }
        return text.clean.toString();
    }

    private IllegalArgumentException broken(String why) {
        int line = 1;
        int begin = 0;
        for (int i = 0; i < at; i++) {
            if (text.charAt(i) == '\n') {
                line++;
                begin = i + 1;
            }
        }
        String where = text.indexOf('\n') < 0 ? "" : "line " + line + ", ";
        return new IllegalArgumentException(
                "it is not JSON: parse error at " + where + "column " + (at - begin + 1) + ": " + why);
    }

    private void count() {
        if (++events > MAX_EVENTS) {
            throw new IllegalArgumentException("it has too many keys and values");
        }
    }

    /** Goes over spaces and comments. */
    private void skip() {
        for (; at < text.length(); at++) {
            if (text.startsWith("/*", at)) {
                at = text.indexOf("*/", at + 2) + 1;
                if (at == 0) {
                    at = text.length();
                    throw broken("a comment has no end");
                }
            } else if (text.startsWith("//", at)) {
                while (at + 1 < text.length() && text.charAt(at + 1) != '\n' && text.charAt(at + 1) != '\r') {
                    at++;
                }
            } else if (" \t\n\r".indexOf(text.charAt(at)) < 0) {
                return;
            }
        }
    }

    private boolean take(char wanted) {
        skip();
        if (at == text.length() || text.charAt(at) != wanted) {
            return false;
        }
        at++;
        return true;
    }

    private void readValue(String place) {
        count();
        if (take('{')) {
            readMembers(place);
        } else if (take('[')) {
            readElements(place);
        } else if (take('"')) {
            readString();
        } else {
            Matcher literal = LITERAL.matcher(text).region(at, text.length());
            if (!literal.lookingAt()) {
                throw broken(at == text.length() ? "a value is missing" : "a value cannot begin with '" + text.charAt(at) + "'");
            }
            clean.append(literal.group());
            at = literal.end();
        }
    }

    private void enter(char bracket) {
        if (++depth > MAX_DEPTH) {
            throw new IllegalArgumentException("it is nested too deeply");
        }
        clean.append(bracket);
    }

    private void leave(char bracket) {
        count();
        depth--;
        clean.append(bracket);
    }

    private void readMembers(String place) {
        enter('{');
        Set<String> keys = new HashSet<>();
        while (!take('}')) {
            if (!keys.isEmpty()) {
                clean.append(',');
            }
            if (!take('"')) {
                throw broken("a key in double quotes, or '}', is missing");
            }
            count();
            String key = readString();
            String where = ValueReader.member(place, key);
            if (!keys.add(key)) {
                throw new IllegalArgumentException(where + ": is given twice");
            }
            if (!take(':')) {
                throw broken("':' is missing");
            }
            clean.append(':');
            readValue(where);
            endElement('}');
        }
        leave('}');
    }

    private void readElements(String place) {
        enter('[');
        for (int i = 0; !take(']'); i++) {
            if (i > 0) {
                clean.append(',');
            }
            readValue(place + "[" + i + "]");
            endElement(']');
        }
        leave(']');
    }

    // An element ends with a comma or before the end of all.
    private void endElement(char end) {
        if (!take(',')) {
            if (at == text.length() || text.charAt(at) != end) {
                throw broken("',' or '" + end + "' is missing");
            }
        }
    }

    // Behind the first quote. Returns the content.
    private String readString() {
        int begin = at;
        StringBuilder content = new StringBuilder();
        for (; at < text.length() && text.charAt(at) != '"'; at++) {
            char c = text.charAt(at);
            if (c < ' ') {
                throw broken("a control character in a string; write it as an escape");
            }
            content.append(c == '\\' ? readEscape() : c);
        }
        if (at == text.length()) {
            throw broken("a string has no end");
        }
        at++;
        clean.append(text, begin - 1, at);
        for (int i = 0; i < content.length(); i++) {
            char c = content.charAt(i);
            boolean paired = Character.isHighSurrogate(c) && i + 1 < content.length()
                    && Character.isLowSurrogate(content.charAt(i + 1));
            if (Character.isSurrogate(c) && !paired) {
                throw broken("half a character in a string");
            }
            i += paired ? 1 : 0;
        }
        return content.toString();
    }

    // Stops at the escape's last character.
    private char readEscape() {
        at++;
        int number = at < text.length() ? "\"\\/bfnrt".indexOf(text.charAt(at)) : -1;
        if (number >= 0) {
            return "\"\\/\b\f\n\r\t".charAt(number);
        }
        if (!Pattern.compile("u[0-9a-fA-F]{4}").matcher(text).region(at, text.length()).lookingAt()) {
            throw broken("an unknown escape in a string");
        }
        at += 4;
        return (char) Integer.parseInt(text.substring(at - 3, at + 1), 16);
    }
}
