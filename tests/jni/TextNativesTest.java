// SPDX-License-Identifier: Apache-2.0
import static org.junit.jupiter.api.Assertions.*;

import android.graphics.Paint;
import android.graphics.Typeface;
import android.os.LocaleList;
import android.widget.TextView;
import java.util.Arrays;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;
import java.util.function.Consumer;
import java.util.function.Function;
import java.util.function.Supplier;
import java.util.stream.IntStream;
import java.util.stream.Stream;
import org.junit.jupiter.api.Test;

/** The natives with arguments as they should be, and with such as throw. */
final class TextNativesTest {
    @Test
    void thePictureIsTheViewAndTheMargins() {
        Natives text = Natives.line("Text", Natives.SANS);
        assertArrayEquals(new int[] {0, 0}, text.call("GetDrawingBitmapSize"));
        for (int angle : new int[] {30, 210}) {
            text.<Integer>call("AddOuterShadowTextEffect", (float) angle, 40f, 0f, 0xFF0000FF, 1f);
            List<Integer> margins = Stream.of("Left", "Top", "Right", "Bottom")
                    .map(side -> text.<Integer>call("GetEffect" + side + "Offset")).toList();
            assertEquals(angle == 30 ? List.of(35, 0, 0, 20) : List.of(0, 20, 35, 0), margins);
            assertEquals(235 * 80, text.render().length);
            assertArrayEquals(new int[] {235, 80}, text.call("GetDrawingBitmapSize"));
            text.call("ClearAllTextEffect");
        }
        assertArrayEquals(Natives.render("Text", Natives.SANS), text.render());
    }

    @Test
    void withoutSizeOrFontThePictureIsEmpty() {
        assertArrayEquals(new int[0], new Natives().render());
        Natives text = new Natives();
        text.<Boolean>call("SetView", Natives.view(3, 2, 0x33));
        text.<Boolean>call("SetLayout", Lines.single("a"));
        assertArrayEquals(new int[6], text.render());
    }

    /** Each setting of a paint reaches the picture. */
    @Test
    void thePaintIsRead() {
        Map<String, Consumer<Paint>> settings = Map.of(
                "text scale", p -> p.setTextScaleX(1.5f), "text skew", p -> p.setTextSkewX(-0.3f),
                "letter spacing", p -> p.setLetterSpacing(0.2f), "text size", p -> p.setTextSize(30),
                "fake bold", p -> p.setFakeBoldText(true), "flags", p -> p.setFlags(0),
                "features", p -> p.setFontFeatureSettings("'liga' 0"),
                "locales", p -> p.setTextLocales(LocaleList.forLanguageTags("zh-Hans,en")));
        String cjk = "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc";
        for (Map.Entry<String, Consumer<Paint>> setting : new TreeMap<>(settings).entrySet()) {
            boolean locales = setting.getKey().equals("locales");
            Natives text = locales ? Natives.line("\u76F4\u9AA8", cjk) : Natives.line("ffi", Natives.SANS);
            int[] before = text.render();
            Paint paint = Natives.paint(40);
            assertEquals(true, text.call("SetPaint", paint));
            assertArrayEquals(before, text.render());
            setting.getValue().accept(paint);
            assertEquals(true, text.call("SetPaint", paint));
            assertFalse(Arrays.equals(before, text.render()), setting.getKey());
        }
        Paint bare = Natives.paint(40);
        bare.setTextAlign(null);
        assertEquals(true, new Natives().call("SetPaint", bare));
    }

    /** Size, gravity, paddings and colour, and of the typeface whether it is italic. */
    @Test
    void theViewIsRead() {
        Natives text = Natives.line("View", Natives.SANS);
        TextView view = Natives.view(90, 70, 0x55);
        view.setPadding(3, 4, 5, 6);
        view.setTextColor(0xFF00FF00);
        assertEquals(true, text.call("SetView", view));
        text.<Boolean>call("SetLayout", Lines.single("View"));
        int[] picture = text.render();
        assertEquals(90 * 70, picture.length);
        int[] inked = IntStream.range(0, picture.length).filter(i -> picture[i] >>> 24 != 0).toArray();
        assertTrue(inked.length > 0 && Arrays.stream(inked).allMatch(i -> (picture[i] & 0xFFFFFF) == 0x00FF00));
        // Bottom gravity: the baseline of the line, 10 above its end, is 16 above the view's.
        assertEquals(70 - 6 - 10, Arrays.stream(inked).max().orElseThrow() / 90 + 1, 1);
        for (int style : new int[] {Typeface.BOLD, Typeface.ITALIC, Typeface.NORMAL}) {
            view.setTypeface(Typeface.defaultFromStyle(style));
            text.<Boolean>call("SetView", view);
            view.setTypeface(null);  // which says nothing about the style
            text.<Boolean>call("SetView", view);
            assertEquals(style != Typeface.ITALIC, Arrays.equals(picture, text.render()));
        }
    }

    private static final class Refusal extends RuntimeException {
        private static final long serialVersionUID = 1;
    }

    /** Throws at the call of that number. */
    private static final class Refusing {
        final Refusal refusal = new Refusal();
        private int callsLeft;

        Refusing(int callsLeft) {
            this.callsLeft = callsLeft;
        }

        <T> T pass(T value) {
            if (callsLeft-- == 0) {
                throw refusal;
            }
            return value;
        }
    }

    /** Characters that give themselves as a string in a way of their own. */
    private record Text(String characters, Supplier<String> string) implements CharSequence {
        @Override public int length() { return characters.length(); }
        @Override public char charAt(int index) { return characters.charAt(index); }
        @Override public CharSequence subSequence(int start, int end) { return characters.subSequence(start, end); }
        @Override public String toString() { return string.get(); }
    }

    private static Paint refusingPaint(Refusing r) {
        return new Paint(Natives.paint(20)) {
            @Override public float getTextScaleX() { return r.pass(2f); }
            @Override public float getTextSkewX() { return r.pass(1f); }
            @Override public float getLetterSpacing() { return r.pass(1f); }
            @Override public boolean isElegantTextHeight() { return r.pass(true); }
            @Override public int getFlags() { return r.pass(0); }
            @Override public float getTextSize() { return r.pass(20f); }
            @Override public String getFontFeatureSettings() { return r.pass("kern"); }
            @Override public LocaleList getTextLocales() { return r.pass(LocaleList.getEmptyLocaleList()); }
            @Override public Align getTextAlign() { return r.pass(Align.RIGHT); }
        };
    }

    private static TextView refusingView(Refusing r) {
        return new TextView() {
            @Override public int getPaddingLeft() { return r.pass(9); }
            @Override public int getPaddingTop() { return r.pass(9); }
            @Override public int getPaddingRight() { return r.pass(9); }
            @Override public int getPaddingBottom() { return r.pass(9); }
            @Override public int getGravity() { return r.pass(0x55); }
            @Override public int getMaxLines() { return r.pass(9); }
            @Override public Typeface getTypeface() { return r.pass(Typeface.DEFAULT); }
        };
    }

    private static Lines refusingLayout(Refusing r) {
        return new Lines(new Text("other", () -> r.pass("other")), Lines.single("other").lines) {
            @Override public CharSequence getText() { return r.pass(super.getText()); }
            @Override public int getLineCount() { return r.pass(1); }
            @Override public int getLineBaseline(int line) { return r.pass(9); }
            @Override public int getLineBottom(int line) { return r.pass(9); }
            @Override public int getLineAscent(int line) { return r.pass(9); }
            @Override public int getLineDescent(int line) { return r.pass(9); }
            @Override public int getLineStart(int line) { return r.pass(0); }
            @Override public int getLineVisibleEnd(int line) { return r.pass(1); }
            @Override public float getLineLeft(int line) { return r.pass(9f); }
            @Override public float getLineWidth(int line) { return r.pass(9f); }
        };
    }

    @Test
    void anExceptionIsTheCallersAndChangesNothing() {
        refuseEachCall("SetPaint", 9, TextNativesTest::refusingPaint);
        refuseEachCall("SetView", 7, TextNativesTest::refusingView);
        refuseEachCall("SetLayout", 11, TextNativesTest::refusingLayout);
    }

    private static void refuseEachCall(String setter, int calls, Function<Refusing, Object> argument) {
        Natives text = Natives.line("Text", Natives.SANS);
        int[] before = text.render();
        for (int i = 0; i < calls; i++) {
            Refusing refusing = new Refusing(i);
            Object refuses = argument.apply(refusing);
            assertSame(refusing.refusal, assertThrows(Refusal.class, () -> text.call(setter, refuses), setter + i));
            assertArrayEquals(before, text.render(), setter + i);
        }
        // Without a refusal it takes effect.
        assertEquals(true, text.call(setter, argument.apply(new Refusing(calls))));
        assertFalse(Arrays.equals(before, text.render()), setter);
    }

    /** A method that the setter calls gives the text object up. */
    @Test
    void aTextReleasedMeanwhileIsNotTouched() {
        Natives text = Natives.line("Text", Natives.SANS);
        Lines releasing = new Lines("Text", Lines.single("Text").lines) {
            @Override public int getLineCount() {
                text.call("finalize");
                return super.getLineCount();
            }
        };
        assertEquals(false, text.call("SetLayout", releasing));
        assertEquals(19, Natives.lastError());
    }

    @Test
    void aLayoutWithoutTextKeepsTheText() {
        Natives text = Natives.line("Text", Natives.SANS);
        int[] before = text.render();
        text.<Boolean>call("SetLayout", new Lines(null, Lines.single("Text").lines));
        assertArrayEquals(before, text.render());
        text.<Boolean>call("SetLayout", new Lines(new Text("abc", () -> null), Lines.single("Text").lines));
        assertArrayEquals(before, text.render());
    }
}
