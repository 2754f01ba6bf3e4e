// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import static org.junit.jupiter.api.Assertions.*;

import android.content.res.AssetManager;
import android.graphics.FontListParser;
import android.graphics.Paint;
import android.graphics.Typeface;
import android.text.FontConfig;
import android.text.Layout;
import android.view.Gravity;
import android.widget.TextView;
import com.orvane.android.sdk.zve.font.FontManager;
import com.orvane.android.sdk.zve.util.FontLock;
import com.orvane.android.sdk.zve.util.ZvError;
import java.io.ByteArrayInputStream;
import java.io.IOException;
import java.lang.reflect.Array;
import java.lang.reflect.Constructor;
import java.lang.reflect.Field;
import java.lang.reflect.InvocationTargetException;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.concurrent.Callable;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.TimeoutException;
import java.util.concurrent.atomic.AtomicInteger;
import java.util.concurrent.locks.Lock;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.Test;

final class KitTest {
    private static final Path FONTS = Path.of(System.getProperty("zvex.fonts"));
    private static final String FONT = FONTS.resolve("DejaVuSans-Bold.ttf").toString();
    private static final String FONT_XML = "<familyset>"
            + "<family name='sans-serif'><font weight='400'>Roboto-Regular.ttf</font></family>"
            + "<family lang='ja'><font weight='400' index='0'>NotoSansCJK-Regular.ttc</font></family>"
            + "<family lang='und-Zsye'><font weight='400'>NotoColorEmoji.ttf</font></family></familyset>";

    @BeforeAll
    static void configureFonts() throws IOException {
        FontConfig fonts = FontListParser.parse(new ByteArrayInputStream(FONT_XML.getBytes(StandardCharsets.UTF_8)));
        Typeface.setSystemFonts(fonts);
        FontManager.configure(fonts);
        FontManager.configure(fonts);
        assertTrue(FontManager.isConfigured());
    }

    private static TextView viewOf(String string) {
        TextView view = new TextView();
        view.setText(string);
        view.setTypeface(Typeface.createFromFile(FONT));
        view.setTextSize(20);
        view.setWidth(200);
        view.setHeight(90);
        view.setPadding(4, 3, 2, 1);
        view.setGravity(Gravity.RIGHT | Gravity.BOTTOM);
        return view;
    }

    private static ZvText textOf(TextView view) {
        return new ZvText().font(FONT).paint(view.getPaint()).view(view).layout(view.getLayout());
    }

    private static int[] picture(ZvText made) {
        try (ZvText text = made) {
            return text.render();
        }
    }

    @Test
    void aPictureIsTheViewWithTheMarginsOfItsEffects() {
        TextView view = viewOf("A few words that wrap");
        try (ZvText text = textOf(view)) {
            assertEquals(0, text.width());
            int[] plain = text.render();
            int[] argb = text.outerShadow(30, 40, 0, 0x80202020, 1).render();
            assertEquals(List.of(35, 0, 0, 20),
                    List.of(text.marginLeft(), text.marginTop(), text.marginRight(), text.marginBottom()));
            assertEquals(view.getWidth() + text.marginLeft() + text.marginRight(), text.width());
            assertEquals(view.getHeight() + text.marginTop() + text.marginBottom(), text.height());
            assertEquals(text.width() * text.height(), argb.length);
            assertTrue(Arrays.stream(argb).anyMatch(p -> p == 0x80202020), "the colour's alpha is the shadow's");
            assertArrayEquals(plain, text.clearEffects().render());
        }
    }

    @Test
    void theOrderOfSettersDoesNotMatter() {
        TextView view = viewOf("One word a\nline\nand more");
        view.setMaxLines(2);
        int[] usual = picture(textOf(view));
        assertArrayEquals(usual, picture(
                new ZvText().layout(view.getLayout()).view(viewOf("")).view(view).paint(view.getPaint()).font(FONT)));
        assertFalse(Arrays.equals(usual, picture(textOf(view).lines(3))));
        assertArrayEquals(usual, picture(textOf(view).lines(3).lines(0)));
    }

    @Test
    void theBackgroundComesAndGoes() {
        try (ZvText text = textOf(viewOf("Background\nboxes")).background(0xFF123456)) {
            assertTrue(Arrays.stream(text.render()).anyMatch(p -> p == 0xFF123456));
            assertTrue(Arrays.stream(text.noBackground().render()).noneMatch(p -> p == 0xFF123456));
        }
    }

    @Test
    void refusalsCarryTheCodeAndLeaveTheTextUsable() throws Exception {
        TextView view = viewOf("Text");
        int[] good = picture(textOf(view));
        try (ZvText text = textOf(view)) {
            ZvException missing = assertThrows(ZvException.class, () -> text.font("/no/such/font.ttf"));
            assertTrue(missing.getMessage().contains("/no/such/font.ttf"), missing.getMessage());
            assertThrows(ZvException.class, () -> text.font("garbage", new byte[] {1, 2, 3}));
            assertThrows(ZvException.class, () -> FontManager.insert("garbage", new byte[0]));
            assertThrows(ZvException.class, () -> text.font(new AssetManager(FONTS), "none.ttf"));
            assertThrows(IllegalArgumentException.class, () -> text.linearGradient(0, 1, new int[2], new float[3], 1));
            assertArrayEquals(good, text.render());
        }

        // A handle that the library does not know is the refusal with a code of its own.
        ZvText stale = new ZvText();
        handleField().set(stale, Integer.MAX_VALUE);
        ZvException refused = assertThrows(ZvException.class, () -> stale.stroke(1, 0, Stroke.CENTER));
        assertEquals(19, refused.code());
        assertEquals(19, ZvError.lastCode());
    }

    @Test
    void whatAPictureNeedsIsAskedForByName() {
        TextView view = viewOf("Text");
        try (ZvText text = new ZvText()) {
            assertTrue(assertThrows(IllegalStateException.class, text::render).getMessage().contains("view"));
            text.view(view);
            assertTrue(assertThrows(IllegalStateException.class, text::render).getMessage().contains("layout"));
            text.layout(view.getLayout());
            assertEquals(view.getWidth() * view.getHeight(), text.render().length, "system families are a font");
        }
    }

    // Every public method that takes an object, given null; and every one after close.
    @Test
    void nullsAndClosedTextsAreRefusedByEveryMethod() throws Exception {
        try (ZvText open = new ZvText()) {
            ZvText closed = new ZvText().lines(1);
            closed.close();
            closed.close();
            for (Method method : ZvText.class.getDeclaredMethods()) {
                if (!Modifier.isPublic(method.getModifiers()) || method.getName().equals("close")) {
                    continue;
                }
                Object[] good = Arrays.stream(method.getParameterTypes()).map(KitTest::sample).toArray();
                assertEquals(IllegalStateException.class, thrownBy(method, closed, good), method + " after close");
                for (int i = 0; i < good.length; i++) {
                    if (!method.getParameterTypes()[i].isPrimitive()) {
                        Object[] withNull = good.clone();
                        withNull[i] = null;
                        assertEquals(NullPointerException.class, thrownBy(method, open, withNull), method + " " + i);
                    }
                }
            }
        }
    }

    private static Class<?> thrownBy(Method method, ZvText text, Object[] arguments) throws IllegalAccessException {
        try {
            method.invoke(text, arguments);
            return null;
        } catch (InvocationTargetException e) {
            return e.getCause().getClass();
        }
    }

    private static Object sample(Class<?> type) {
        if (type.isPrimitive()) {
            return Array.get(Array.newInstance(type, 1), 0);
        }
        if (type.isArray()) {
            return Array.newInstance(type.getComponentType(), 1);
        }
        TextView view = viewOf("a");
        try {
            List<?> samples = List.of("a", view, view.getPaint(), view.getLayout(), Stroke.INSIDE, new AssetManager(FONTS),
                    Paint.Align.LEFT, ZvStyle.parse("{}"), Stops.of(0), new Relief(), Relief.Edge.INNER,
                    new ZvPicture(new int[1], 1, 1));
            return samples.stream().filter(type::isInstance).findFirst().orElseThrow();
        } catch (IOException e) {
            throw new AssertionError(e);
        }
    }

    // Held by this thread as a render holds it: what changes nothing goes on beside it, what may change the fonts waits.
    @Test
    void onlyCallsThatMayChangeTheFontsWaitForRenders() throws Exception {
        TextView latin = viewOf("Plain “text”");
        Layout kanaLayout = viewOf("かな").getLayout();
        FontConfig empty = new FontConfig(new FontConfig.Family[0]);
        byte[] bytes = Files.readAllBytes(Path.of(FONT));
        ExecutorService pool = Executors.newCachedThreadPool();
        List<Future<?>> waiting = new ArrayList<>();
        try (ZvText text = textOf(latin); ZvText other = textOf(latin)) {
            List<Callable<?>> beside = List.of(
                    () -> text.font(FONT), () -> text.layout(latin.getLayout()), text::render, () -> text.view(latin));
            List<Callable<?>> alone = List.of(
                    () -> text.layout(kanaLayout),
                    () -> other.font("waiting-Bold", bytes),
                    Executors.callable(() -> FontManager.insert("waiting too", bytes)),
                    Executors.callable(() -> FontManager.configure(empty)));
            Lock reading = FontLock.read();
            try {
                for (Callable<?> call : beside) {
                    pool.submit(call).get(20, TimeUnit.SECONDS);
                }
                for (Callable<?> call : alone) {
                    Future<?> result = pool.submit(call);
                    waiting.add(result);
                    assertThrows(TimeoutException.class, () -> result.get(200, TimeUnit.MILLISECONDS),
                            "call " + waiting.size());
                }
            } finally {
                reading.unlock();
            }
            for (Future<?> call : waiting) {
                call.get(20, TimeUnit.SECONDS);
            }
            Lock changing = FontLock.change();
            Future<?> render = pool.submit(other::render);
            try {
                assertThrows(TimeoutException.class, () -> render.get(300, TimeUnit.MILLISECONDS));
            } finally {
                changing.unlock();
            }
            render.get(20, TimeUnit.SECONDS);
        } finally {
            pool.shutdown();
        }
    }

    @Test
    void manyThreadsGetThePicturesOfOne() throws Exception {
        List<String> strings = List.of("Latin only", "ひらがな", "mixed カタカナ text", "Ελληνικά и кириллица");
        List<int[]> expected = strings.stream().map(string -> picture(textOf(viewOf(string)))).toList();
        byte[] bytes = Files.readAllBytes(Path.of(FONT));
        AtomicInteger names = new AtomicInteger();
        ExecutorService pool = Executors.newFixedThreadPool(8);
        try (ZvText shared = textOf(viewOf(strings.get(0)))) {
            Callable<Void> work = () -> {
                long end = System.nanoTime() + TimeUnit.MILLISECONDS.toNanos(1500);
                for (int round = 0; System.nanoTime() < end; round++) {
                    int which = round % strings.size();
                    ZvText text = textOf(viewOf(strings.get(which)));
                    if (round % 5 == 0) {
                        text.font("thread-Bold-" + names.incrementAndGet() % 40, bytes);
                    }
                    assertArrayEquals(expected.get(which), picture(text));
                    assertArrayEquals(expected.get(0), shared.render());
                }
                return null;
            };
            for (Future<Void> result : pool.invokeAll(Collections.nCopies(8, work))) {
                result.get();
            }
        } finally {
            pool.shutdown();
        }
    }

    // --- Release

    private static Field handleField() throws ReflectiveOperationException {
        Field field = ZvText.class.getDeclaredField("mHandle");
        field.setAccessible(true);
        return field;
    }

    private static boolean isAlive(int handle) throws ReflectiveOperationException {
        Constructor<ZvText> standIn = ZvText.class.getDeclaredConstructor(int.class);
        standIn.setAccessible(true);
        Method stroke = ZvText.class.getDeclaredMethod(
                "ZvText_AddStrokeTextEffect", float.class, int.class, float.class, int.class, int.class);
        stroke.setAccessible(true);
        return (int) stroke.invoke(standIn.newInstance(handle), 1f, 0, 1f, 0, 0) >= 0;
    }

    private static int handleOf(ZvText text) throws ReflectiveOperationException {
        return handleField().getInt(text.lines(1));
    }

    private static void awaitGarbageCollection(Callable<Boolean> condition) throws Exception {
        long end = System.nanoTime() + TimeUnit.SECONDS.toNanos(20);
        while (!condition.call()) {
            assertTrue(System.nanoTime() < end, "not released");
            System.gc();
            Thread.sleep(20);
        }
    }

    @Test
    void closingReleasesAtOnceAndGarbageCollectionInTime() throws Exception {
        ZvText kept = new ZvText();
        int keptHandle = handleOf(kept);
        ZvText closed = new ZvText();
        int closedHandle = handleOf(closed);
        closed.close();
        assertFalse(isAlive(closedHandle));

        int dropped = handleOf(new ZvText());
        awaitGarbageCollection(() -> !isAlive(dropped));
        assertTrue(isAlive(keptHandle));
        kept.close();
    }

    @Test
    void whereThereIsNoCleanerAFinalizerReleasesOnce() throws Exception {
        AtomicInteger runs = new AtomicInteger();
        Release.finalized(runs::incrementAndGet);
        awaitGarbageCollection(() -> runs.get() == 1);

        Release byHand = Release.finalized(runs::incrementAndGet);
        byHand.run();
        byHand.run();
        assertEquals(2, runs.get());
    }

}
