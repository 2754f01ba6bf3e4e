// SPDX-License-Identifier: Apache-2.0
import com.orvane.android.sdk.zve.ZvStyle;
import com.orvane.android.sdk.zve.ZvText;
import com.sun.net.httpserver.HttpExchange;
import com.sun.net.httpserver.HttpServer;
import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.net.InetAddress;
import java.net.InetSocketAddress;
import java.net.URLDecoder;
import java.nio.charset.StandardCharsets;
import java.util.Arrays;
import java.util.HashMap;
import java.util.Map;
import java.util.Set;
import java.util.concurrent.ConcurrentHashMap;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;

/**
 * Renders titles over HTTP, for this machine alone: {@code TitleServer FONT [PORT [THREADS]]}, then {@code
 * GET /title?text=Words&size=120&preset=gold} gives a PNG. As many titles are drawn at once as there are threads; other
 * requests wait. What is not a title that it draws gets status 400 and a line that says why.
 */
final class TitleServer implements AutoCloseable {
    static final int MAX_CHARACTERS = 200;
    static final int MIN_SIZE = 8;
    static final int MAX_SIZE = 256;
    private static final int COLUMN = 1600; // pixels
    private static final int MAX_LINES = 8; // shown: so no picture is larger than about 1800 x 2700 pixels

    private static final Set<String> KEYS = Set.of("text", "size", "preset");

    private static final Map<String, ZvStyle> STYLES = new ConcurrentHashMap<>();

    private final String font;
    private final ExecutorService pool;
    private final HttpServer server;

    TitleServer(String font, int port, int threads) throws IOException {
        this.font = font;
        try (ZvText text = new ZvText()) {
            text.font(font); // throws now, not for each request
        }
        pool = Executors.newFixedThreadPool(threads);
        server = HttpServer.create(new InetSocketAddress(InetAddress.getLoopbackAddress(), port), 0);
        server.setExecutor(pool);
        server.createContext("/", this::answer);
        server.start();
    }

    int port() {
        return server.getAddress().getPort();
    }

    @Override
    public void close() {
        server.stop(1);
        pool.shutdown();
    }

    private void answer(HttpExchange exchange) throws IOException {
        try (exchange) {
            if (!exchange.getRequestURI().getPath().equals("/title")) {
                send(exchange, 404, "text/plain", "GET /title?text=Words\n".getBytes(StandardCharsets.UTF_8));
            } else if (!exchange.getRequestMethod().equals("GET")) {
                send(exchange, 405, "text/plain", "GET only\n".getBytes(StandardCharsets.UTF_8));
            } else {
                answerTitle(exchange);
            }
        }
    }

    private void answerTitle(HttpExchange exchange) throws IOException {
        byte[] png;
        try {
            png = draw(queryOf(exchange.getRequestURI().getRawQuery()));
        } catch (IllegalArgumentException e) {
            send(exchange, 400, "text/plain", (e.getMessage() + "\n").getBytes(StandardCharsets.UTF_8));
            return;
        } catch (RuntimeException | OutOfMemoryError e) {
            System.err.println("TitleServer: " + exchange.getRequestURI() + ": " + e);
            send(exchange, 500, "text/plain", "the title could not be drawn\n".getBytes(StandardCharsets.UTF_8));
            return;
        }
        send(exchange, 200, "image/png", png);
    }

    private static void send(HttpExchange exchange, int status, String type, byte[] body) throws IOException {
        exchange.getResponseHeaders().set("Content-Type", type);
        exchange.sendResponseHeaders(status, body.length);
        exchange.getResponseBody().write(body);
    }

    /** Throws IllegalArgumentException for unknown keys. */
    private static Map<String, String> queryOf(String query) {
        Map<String, String> values = new HashMap<>();
        for (String part : query == null ? new String[0] : query.split("&")) {
            String[] pair = part.split("=", 2);
            if (!part.isEmpty() && !KEYS.contains(pair[0])) {
                throw new IllegalArgumentException(pair[0] + ": is not one of text, size, preset");
            }
            values.put(pair[0], pair.length < 2 ? "" : URLDecoder.decode(pair[1], StandardCharsets.UTF_8));
        }
        return values;
    }

    /** Throws IllegalArgumentException for what it does not draw. */
    private byte[] draw(Map<String, String> query) {
        String words = query.getOrDefault("text", "");
        if (words.isEmpty() || words.length() > MAX_CHARACTERS) {
            throw new IllegalArgumentException("text: 1 to " + MAX_CHARACTERS + " characters");
        }
        int size;
        try {
            size = Integer.parseInt(query.getOrDefault("size", "96"));
        } catch (NumberFormatException e) {
            size = 0;
        }
        if (size < MIN_SIZE || size > MAX_SIZE) {
            throw new IllegalArgumentException("size: a whole number from " + MIN_SIZE + " to " + MAX_SIZE);
        }
        ZvStyle style = STYLES.computeIfAbsent(query.getOrDefault("preset", "gold"), ZvStyle::preset);
        try (ZvText text = new ZvText()) {
            ByteArrayOutputStream png = new ByteArrayOutputStream();
            text.font(font).text(words).wrap(COLUMN).lines(MAX_LINES).align(android.graphics.Paint.Align.CENTER).style(style).size(size);
            text.picture().writePng(png);
            return png.toByteArray();
        } catch (IOException e) {
            throw new IllegalStateException(e); // writing to memory cannot fail
        }
    }

    public static void main(String[] args) {
        boolean numbers = Arrays.stream(args).skip(1).allMatch(number -> number.matches("[1-9]\\d{0,4}"));
        if (args.length < 1 || args.length > 3 || !numbers) {
            System.err.println("usage: TitleServer FONT [PORT [THREADS]]");
            System.exit(2);
        }
        int port = args.length > 1 ? Integer.parseInt(args[1]) : 8080;
        int threads = args.length > 2 ? Integer.parseInt(args[2]) : Runtime.getRuntime().availableProcessors();
        // Seconds until a client that sends or reads nothing is dropped: each holds one of the threads.
        System.setProperty("sun.net.httpserver.maxReqTime", "10");
        System.setProperty("sun.net.httpserver.maxRspTime", "60");
        try {
            TitleServer server = new TitleServer(args[0], port, threads);
            System.out.println("http://localhost:" + server.port() + "/title?text=Words&size=120&preset=gold");
        } catch (IOException | RuntimeException e) {
            System.err.println("TitleServer: " + e.getMessage());
            System.exit(1);
        }
    }
}
