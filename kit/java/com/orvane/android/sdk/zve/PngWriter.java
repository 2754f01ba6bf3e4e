// SPDX-License-Identifier: Apache-2.0
package com.orvane.android.sdk.zve;

import java.io.ByteArrayOutputStream;
import java.io.DataOutputStream;
import java.io.IOException;
import java.io.OutputStream;
import java.nio.charset.StandardCharsets;
import java.util.zip.CRC32;
import java.util.zip.DeflaterOutputStream;

/** PNG files of 8 bits a channel, red, green, blue, alpha. Android and servers have no writer in common. */
final class PngWriter {
    private static final int SUB = 1; // the filter: each byte minus that of the pixel to the left

    private PngWriter() {}

    static void write(OutputStream out, int[] argb, int width, int height) throws IOException {
        if (width < 1 || height < 1) {
            throw new IOException("a picture of " + width + " x " + height + " pixels cannot be a PNG");
        }
        DataOutputStream data = new DataOutputStream(out);
        data.write(new byte[] {(byte) 0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'});
        ByteArrayOutputStream header = new ByteArrayOutputStream();
        DataOutputStream fields = new DataOutputStream(header);
        fields.writeInt(width);
        fields.writeInt(height);
        fields.write(new byte[] {8, 6, 0, 0, 0});
        writeChunk(data, "IHDR", header);
        ByteArrayOutputStream rows = new ByteArrayOutputStream();
        try (DeflaterOutputStream deflater = new DeflaterOutputStream(rows)) {
            byte[] row = new byte[1 + 4 * width];
            for (int y = 0; y < height; y++) {
                fill(row, argb, y * width, width);
                deflater.write(row);
            }
        }
        writeChunk(data, "IDAT", rows);
        writeChunk(data, "IEND", new ByteArrayOutputStream());
        data.flush();
    }

    private static void fill(byte[] row, int[] argb, int first, int width) {
        row[0] = SUB;
        int left = 0;
        for (int x = 0; x < width; x++) {
            int pixel = argb[first + x];
            for (int i = 0; i < 4; i++) {
                int shift = i < 3 ? 16 - 8 * i : 24;
                row[1 + 4 * x + i] = (byte) ((pixel >>> shift) - (left >>> shift));
            }
            left = pixel;
        }
    }

    private static void writeChunk(DataOutputStream out, String type, ByteArrayOutputStream content) throws IOException {
        byte[] name = type.getBytes(StandardCharsets.US_ASCII);
        byte[] bytes = content.toByteArray();
        CRC32 crc = new CRC32();
        crc.update(name);
        crc.update(bytes);
        out.writeInt(bytes.length);
        out.write(name);
        out.write(bytes);
        out.writeInt((int) crc.getValue());
    }
}
