package com.kelvo.tarn.cli.san;

import com.google.gson.stream.JsonReader;
import com.google.gson.stream.JsonToken;
import java.io.ByteArrayInputStream;
import java.io.IOException;
import java.io.InputStreamReader;
import java.nio.charset.StandardCharsets;
import java.time.Instant;
import java.time.format.DateTimeParseException;
import java.util.regex.Pattern;

/** Which host a description is of, and when it was recorded: read from the text's beginning, where recorders put it. */
final class Origin {
    /** As descriptions tell it; what is no such time is for the library to refuse. */
    private static final Pattern TIME = Pattern.compile("\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ");

    /** Null where the description does not tell it in the usual form. */
    String host;
    /** Null where the description does not tell it in the usual form. */
    Instant recordedAt;

    /** Of a text that need not be a description. */
    Origin(byte[] text) {
        try (JsonReader reader = new JsonReader(
                 new InputStreamReader(new ByteArrayInputStream(text), StandardCharsets.UTF_8))) {
            reader.beginObject();
            while (reader.hasNext() && (host == null || recordedAt == null)) {
                read(reader.nextName(), reader);
            }
        } catch (IOException | IllegalStateException | DateTimeParseException other) {
            host = null; // whoever asks the host tells what is wrong
        }
    }

    private void read(String member, JsonReader reader) throws IOException {
        if (member.equals("recordedAt")) {
            String time = reader.nextString();
            if (!TIME.matcher(time).matches()) {
                throw new IllegalStateException(time);
            }
            recordedAt = Instant.parse(time);
        } else if (member.equals("sysinfo") && reader.peek() == JsonToken.BEGIN_OBJECT) {
            reader.beginObject();
            while (reader.hasNext()) {
                if (reader.nextName().equals("SI_HOSTNAME") && reader.peek() == JsonToken.STRING) {
                    host = reader.nextString();
                } else {
                    reader.skipValue();
                }
            }
            reader.endObject();
        } else {
            reader.skipValue();
        }
    }
}
