package com.kelvo.tarn.cli.anonymous;

import com.google.gson.JsonParseException;
import com.google.gson.stream.JsonReader;
import com.google.gson.stream.JsonToken;
import com.google.gson.stream.JsonWriter;
import com.google.gson.stream.MalformedJsonException;
import java.io.BufferedWriter;
import java.io.ByteArrayInputStream;
import java.io.EOFException;
import java.io.IOException;
import java.io.InputStream;
import java.io.InputStreamReader;
import java.io.OutputStream;
import java.io.OutputStreamWriter;
import java.io.Writer;
import java.nio.charset.CharacterCodingException;
import java.nio.charset.StandardCharsets;
import java.util.Locale;
import java.util.function.BiFunction;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.zip.GZIPInputStream;
import java.util.zip.GZIPOutputStream;
import java.util.zip.ZipException;

/** A host description with pseudonyms. It is read twice, value by value, so that little more than its bytes is kept. */
public final class AnonymousDescription {
    private static final int DEEPEST = 32;
    /** Objects down to here, and lists one deeper, have their parts on lines of their own; what is below shares one. */
    private static final int DEEPEST_ON_LINES = 2;
    private static final String INDENT = "  ";
    private static final Pattern WHERE =
        Pattern.compile("(.*?)(?:; .*| at line (\\d+) column (\\d+) path .*)", Pattern.DOTALL);

    private final byte[] bytes;
    private final boolean isCompressed;
    private final Pseudonyms pseudonyms;

    /**
     * Reads a description a first time.
     *
     * @param bytes its file, which gzip may have compressed; it is not to change any more
     * @param key whose pseudonyms are wanted
     * @throws IOException when it is none; the message says why, and not of which file
     */
    public AnonymousDescription(byte[] bytes, Key key) throws IOException {
        this.bytes = bytes;
        isCompressed = bytes.length > 1 && bytes[0] == 0x1f && bytes[1] == (byte) 0x8b;
        pseudonyms = key.pseudonyms();
        try (JsonReader in = reader(); JsonWriter nowhere = new JsonWriter(Writer.nullWriter())) {
            new Copy(in, nowhere, pseudonyms::learn).description();
        } catch (EOFException cut) {
            throw new IOException("not JSON: it ends too early", cut);
        } catch (CharacterCodingException unreadable) {
            throw new IOException("not JSON: it is not UTF-8", unreadable);
        } catch (ZipException damaged) {
            throw new IOException("what gzip made of it is damaged", damaged);
        } catch (MalformedJsonException | JsonParseException malformed) {
            Matcher where = WHERE.matcher(malformed.getMessage());
            throw new IOException(!where.matches() ? "not JSON" : "not JSON: " + where.group(1).toLowerCase(Locale.ROOT)
                + (where.group(2) == null ? "" : " (line " + where.group(2) + ", column " + where.group(3) + ")"),
                                  malformed);
        }
    }

    /** {@return whether gzip had compressed it} */
    public boolean isCompressed() {
        return isCompressed;
    }

    /** {@return a name for a file of it, without an ending: the host's pseudonym, and when it was recorded} */
    public String fileName() {
        return pseudonyms.fileName();
    }

    /**
     * Writes it with pseudonyms.
     *
     * @param out where to, in UTF-8; it stays open
     * @param compressed whether gzip is to compress it
     * @throws IOException when it cannot be written
     */
    public void writeTo(OutputStream out, boolean compressed) throws IOException {
        GZIPOutputStream gzip = compressed ? new GZIPOutputStream(out) : null;
        writeTo(new BufferedWriter(new OutputStreamWriter(compressed ? gzip : out, StandardCharsets.UTF_8)));
        if (compressed) {
            gzip.finish();
        }
    }

    /**
     * Writes it with pseudonyms.
     *
     * @param out where to; it stays open
     * @throws IOException when it cannot be written
     */
    public void writeTo(Writer out) throws IOException {
        try (JsonReader in = reader()) {
            JsonWriter json = new JsonWriter(out);
            json.setSerializeNulls(true);
            new Copy(in, json, pseudonyms::of).description();
            out.write('\n');
            out.flush();
        }
    }

    private JsonReader reader() throws IOException {
        InputStream in = new ByteArrayInputStream(bytes);
        return new JsonReader(new InputStreamReader(isCompressed ? new GZIPInputStream(in) : in,
                                                    StandardCharsets.UTF_8.newDecoder()));
    }

    /** What stands in an object or a list, and its end. */
    private interface Parts {
        void walk() throws IOException;
    }

    /** One walk through it. */
    private static final class Copy {
        private final JsonReader in;
        private final JsonWriter out;
        private final BiFunction<Kind, String, String> replaced;
        private int depth;
        private String indent = INDENT;

        private Copy(JsonReader in, JsonWriter out, BiFunction<Kind, String, String> replaced) {
            this.in = in;
            this.out = out;
            this.replaced = replaced;
        }

        private void description() throws IOException {
            if (in.peek() != JsonToken.BEGIN_OBJECT) {
                throw new IOException("no description of a host: it is no JSON object");
            }
            value(Member.DESCRIPTION);
            in.peek(); // refuses what follows
        }

        private void value(Member member) throws IOException {
            switch (in.peek()) {
            case BEGIN_OBJECT:
                in.beginObject();
                out.beginObject();
                inside(DEEPEST_ON_LINES, () -> members(member));
                in.endObject();
                break;
            case BEGIN_ARRAY:
                in.beginArray();
                out.beginArray();
                inside(DEEPEST_ON_LINES + 1, () -> elements(member));
                in.endArray();
                break;
            case STRING:
                out.value(replaced.apply(member.kind, in.nextString()));
                break;
            case NUMBER:
                String number = in.nextString();
                out.jsonValue(member.kind.takesNumbers() ? number : "0");
                break;
            case BOOLEAN:
                out.value(in.nextBoolean());
                break;
            default:
                in.nextNull();
                out.nullValue();
            }
        }

        /** Walks through an object or a list, each of whose parts has its own line down to a depth. */
        private void inside(int deepestOnLines, Parts parts) throws IOException {
            if (++depth > DEEPEST) {
                throw new IOException("no description of a host: it has more than " + DEEPEST + " levels of brackets");
            }
            String around = indent;
            indent = depth <= deepestOnLines ? INDENT : "";
            out.setIndent(indent);
            parts.walk();
            indent = around;
            out.setIndent(indent);
            depth--;
        }

        private void elements(Member member) throws IOException {
            while (in.hasNext()) {
                value(member);
            }
            out.endArray();
        }

        private void members(Member member) throws IOException {
            while (in.hasNext()) {
                String name = in.nextName();
                Member known = member.member(name);
                if (known != null) {
                    out.name(name);
                    value(known);
                } else if (name.equals("hex") && member.kind != Kind.UNKNOWN && in.peek() == JsonToken.STRING) {
                    out.name(name).value(rawBytes(member.kind, in.nextString()));
                } else {
                    out.name(replaced.apply(member.names(), name));
                    value(member.named());
                }
            }
            out.endObject();
        }

        /** Bytes in place of a text. */
        private String rawBytes(Kind kind, String hexadecimal) {
            byte[] bytes = Pages.bytes(hexadecimal);
            return bytes == null ? replaced.apply(Kind.UNKNOWN, hexadecimal)
                : Pages.text(Bytes.of(replaced.apply(kind, Bytes.text(bytes))), hexadecimal);
        }
    }
}
