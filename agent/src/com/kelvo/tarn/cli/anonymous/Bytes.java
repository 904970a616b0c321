package com.kelvo.tarn.cli.anonymous;

import java.nio.ByteBuffer;
import java.nio.CharBuffer;
import java.nio.charset.CharacterCodingException;
import java.nio.charset.StandardCharsets;

/** Text of bytes that need not be UTF-8: then those that are no ASCII stand from U+DC80 on, which no text has. */
final class Bytes {
    private static final int LONE_BYTES = 0xDC00;

    private Bytes() {
    }

    static String text(byte[] bytes) {
        try {
            return StandardCharsets.UTF_8.newDecoder().decode(ByteBuffer.wrap(bytes)).toString();
        } catch (CharacterCodingException none) {
            StringBuilder text = new StringBuilder(bytes.length);
            for (byte each : bytes) {
                text.append((char) (each < 0 ? LONE_BYTES + Byte.toUnsignedInt(each) : each));
            }
            return text.toString();
        }
    }

    static byte[] of(String text) {
        try {
            ByteBuffer encoded = StandardCharsets.UTF_8.newEncoder().encode(CharBuffer.wrap(text));
            byte[] bytes = new byte[encoded.remaining()];
            encoded.get(bytes);
            return bytes;
        } catch (CharacterCodingException lone) {
            byte[] bytes = new byte[text.length()];
            for (int i = 0; i < bytes.length; i++) {
                bytes[i] = (byte) text.charAt(i);
            }
            return bytes;
        }
    }
}
