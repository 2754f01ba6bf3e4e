// SPDX-License-Identifier: Apache-2.0
package android.view;

/** A position within a larger box: a horizontal and a vertical part, or-ed together. */
public class Gravity {
    public static final int NO_GRAVITY = 0x00;
    public static final int TOP = 0x30;
    public static final int BOTTOM = 0x50;
    public static final int LEFT = 0x03;
    public static final int RIGHT = 0x05;
    public static final int CENTER_VERTICAL = 0x10;
    public static final int FILL_VERTICAL = 0x70;
    public static final int CENTER_HORIZONTAL = 0x01;
    public static final int FILL_HORIZONTAL = 0x07;
    public static final int CENTER = CENTER_VERTICAL | CENTER_HORIZONTAL;
    public static final int FILL = FILL_VERTICAL | FILL_HORIZONTAL;
    public static final int RELATIVE_LAYOUT_DIRECTION = 0x00800000;
    public static final int START = RELATIVE_LAYOUT_DIRECTION | LEFT;
    public static final int END = RELATIVE_LAYOUT_DIRECTION | RIGHT;
    public static final int HORIZONTAL_GRAVITY_MASK = 0x07;
    public static final int VERTICAL_GRAVITY_MASK = 0x70;
    public static final int RELATIVE_HORIZONTAL_GRAVITY_MASK = START | END;
}
