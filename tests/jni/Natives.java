// SPDX-License-Identifier: Apache-2.0
import android.graphics.Paint;
import android.widget.TextView;
import com.orvane.android.sdk.zve.ZvText;
import com.orvane.android.sdk.zve.font.FontManager;
import com.orvane.android.sdk.zve.util.ZvError;
import java.lang.reflect.Field;
import java.lang.reflect.InvocationTargetException;
import java.lang.reflect.Method;
import java.util.Arrays;

/** A text whose natives are called directly, beneath the interface that the kit makes of them. */
final class Natives {
    static final String DEJAVU = "/usr/share/fonts/truetype/dejavu/";
    static final String SANS = DEJAVU + "DejaVuSans.ttf";

    final ZvText text = new ZvText();

    /** Calls the native ZvText_NAME; what it throws comes out as it is. */
    <T> T call(String name, Object... arguments) {
        return invoke(ZvText.class, text, "ZvText_" + name, arguments);
    }

    static int lastError() {
        return invoke(ZvError.class, null, "Error_GetError");
    }

    /** Calls the font manager's native ZvFontManager_NAME. */
    static boolean fonts(String name, Object... arguments) {
        return invoke(FontManager.class, null, "ZvFontManager_" + name, arguments);
    }

    @SuppressWarnings("unchecked")
    static <T> T invoke(Class<?> owner, Object target, String name, Object... arguments) {
        try {
            Method method = Arrays.stream(owner.getDeclaredMethods()).filter(m -> m.getName().equals(name)).findAny()
                    .orElseThrow();
            method.setAccessible(true);
            return (T) method.invoke(target, arguments);
        } catch (InvocationTargetException e) {
            throw Natives.<RuntimeException>unchecked(e.getCause());
        } catch (ReflectiveOperationException e) {
            throw new AssertionError(e);
        }
    }

    @SuppressWarnings("unchecked")
    private static <E extends Throwable> E unchecked(Throwable thrown) throws E {
        throw (E) thrown;
    }

    int handle() {
        try {
            Field field = ZvText.class.getDeclaredField("mHandle");
            field.setAccessible(true);
            return field.getInt(text);
        } catch (ReflectiveOperationException e) {
            throw new AssertionError(e);
        }
    }

    static Paint paint(float size) {
        Paint paint = new Paint();
        paint.setFlags(Paint.ANTI_ALIAS_FLAG);
        paint.setTextSize(size);
        return paint;
    }

    static TextView view(int width, int height, int gravity) {
        TextView view = new TextView();
        view.setWidth(width);
        view.setHeight(height);
        view.setGravity(gravity);
        view.setTextColor(0xFF102030);
        return view;
    }

    /** One line of text at the top left of a view of 200 x 60 pixels. */
    static Natives line(String content, String font) {
        Natives text = new Natives();
        if (font != null) {
            text.<Boolean>call("SetFont", font);
        }
        text.<Boolean>call("SetPaint", paint(40));
        text.<Boolean>call("SetView", view(200, 60, 0x33));
        text.<Boolean>call("SetLayout", Lines.single(content));
        return text;
    }

    int[] render() {
        return call("RenderTextEffect");
    }

    static int[] render(String content, String font) {
        return line(content, font).render();
    }
}
