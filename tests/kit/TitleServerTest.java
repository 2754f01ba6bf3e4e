// SPDX-License-Identifier: Apache-2.0
import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.IOException;
import java.net.URI;
import java.net.URLEncoder;
import java.net.http.HttpClient;
import java.net.http.HttpRequest;
import java.net.http.HttpResponse;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.concurrent.ConcurrentHashMap;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import java.util.concurrent.atomic.AtomicInteger;
import org.junit.jupiter.api.Test;

/** The example's server under load: nothing is lost or mixed up, and memory stays. Writes its figures to standard output. */
final class TitleServerTest {
    private static final String FONT = Path.of(System.getProperty("zvex.fonts"), "DejaVuSans-Bold.ttf").toString();
    private static final int CLIENTS = 8;
    private static final String[] PRESETS = {"gold", "neon", "triple", "glass"};

    private final HttpClient client = HttpClient.newHttpClient();
    private final ConcurrentHashMap<Integer, byte[]> first = new ConcurrentHashMap<>();

    private HttpResponse<byte[]> get(int port, String query) throws IOException, InterruptedException {
        HttpRequest request = HttpRequest.newBuilder(URI.create("http://localhost:" + port + query)).build();
        return client.send(request, HttpResponse.BodyHandlers.ofByteArray());
    }

    @Test
    void whatIsNoTitleIsRefused() throws Exception {
        try (TitleServer server = new TitleServer(FONT, 0, 1)) {
            String long201 = "x".repeat(TitleServer.MAX_CHARACTERS + 1);
            String[] refused = {"", "text=", "text=" + long201, "text=a&size=7", "text=a&size=257", "text=a&size=x",
                "text=a&preset=none", "text=a&color=red", "text=a&foo", "text=a&size"};
            for (String query : refused) {
                HttpResponse<byte[]> response = get(server.port(), "/title?" + query);
                assertEquals(400, response.statusCode(), query);
                assertTrue(response.body().length > 5, query);
            }
            assertEquals(404, get(server.port(), "/").statusCode());
            HttpRequest post = HttpRequest.newBuilder(URI.create("http://localhost:" + server.port() + "/title?text=a"))
                    .POST(HttpRequest.BodyPublishers.noBody()).build();
            assertEquals(405, client.send(post, HttpResponse.BodyHandlers.discarding()).statusCode());
            assertEquals(200, get(server.port(), "/title?text=" + URLEncoder.encode("日本 & more\n2", StandardCharsets.UTF_8))
                    .statusCode());
        }
    }

    @Test
    void underLoadNothingIsLostAndMemoryStays() throws Exception {
        String wanted = System.getenv("ZVEX_TEST_REQUESTS");
        int requests = wanted != null ? Integer.parseInt(wanted) : 400;
        AtomicInteger next = new AtomicInteger();
        long[] memory = new long[2]; // after the first quarter, and at the end
        long[] nanos = new long[requests];
        ExecutorService clients = Executors.newFixedThreadPool(CLIENTS);
        long begin = System.nanoTime();
        try (TitleServer server = new TitleServer(FONT, 0, Runtime.getRuntime().availableProcessors())) {
            List<Future<?>> running = new ArrayList<>();
            for (int i = 0; i < CLIENTS; i++) {
                running.add(clients.submit(() -> {
                    for (int request = next.getAndIncrement(); request < requests; request = next.getAndIncrement()) {
                        nanos[request] = ask(server.port(), request);
                        if (request == requests / 4) {
                            memory[0] = residentBytes();
                        }
                    }
                    return null;
                }));
            }
            for (Future<?> client : running) {
                client.get();
            }
            memory[1] = residentBytes();
        } finally {
            clients.shutdownNow();
        }
        double seconds = (System.nanoTime() - begin) / 1e9;
        Arrays.sort(nanos);
        System.out.printf("%d requests, %d clients: %.1f s, %.0f a second; median %.1f ms, 99%% below %.1f ms; %d MB, then %d MB%n",
                requests, CLIENTS, seconds, requests / seconds, nanos[requests / 2] / 1e6, nanos[requests * 99 / 100] / 1e6,
                memory[0] >> 20, memory[1] >> 20);
        assertTrue(memory[1] - memory[0] < 48 << 20, "memory grows");
    }

    /** One of 64 titles, each the same every time; the time it took. */
    private long ask(int port, int request) throws IOException, InterruptedException {
        int number = request * 37 % 64;
        long begin = System.nanoTime();
        HttpResponse<byte[]> response = get(port, "/title?text=Title+" + number + "&size=" + (20 + number) + "&preset="
                + PRESETS[number % PRESETS.length]);
        long took = System.nanoTime() - begin;
        assertEquals(200, response.statusCode());
        byte[] before = first.putIfAbsent(number, response.body());
        if (before != null) {
            assertArrayEquals(before, response.body(), "title " + number);
        }
        return took;
    }

    private static long residentBytes() throws IOException {
        System.gc();
        return Long.parseLong(Files.readString(Path.of("/proc/self/statm")).split(" ")[1]) * 4096;
    }
}
