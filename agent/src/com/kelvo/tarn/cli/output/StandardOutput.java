package com.kelvo.tarn.cli.output;

import java.io.FileDescriptor;
import java.io.FileOutputStream;
import java.io.FilterOutputStream;
import java.io.IOException;
import java.io.PrintWriter;
import java.nio.charset.StandardCharsets;

/** Where answers go, in UTF-8. */
public final class StandardOutput extends PrintWriter {
    /** Keeps the first failure, which a PrintWriter forgets. */
    private static final class Channel extends FilterOutputStream {
        private IOException failure;

        private Channel() {
            super(new FileOutputStream(FileDescriptor.out));
        }

        @Override
        public void write(byte[] bytes, int offset, int length) throws IOException {
            try {
                out.write(bytes, offset, length);
            } catch (IOException failed) {
                failure = failure == null ? failed : failure;
                throw failed;
            }
        }
    }

    private final Channel channel;

    /** Nothing is written before it is flushed. */
    public StandardOutput() {
        this(new Channel());
    }

    private StandardOutput(Channel channel) {
        super(channel, false, StandardCharsets.UTF_8);
        this.channel = channel;
    }

    /**
     * Writes what is left.
     *
     * @return false when something could not be written; a reader who has read enough is no failure
     */
    public boolean finish() {
        return !checkError() || channel.failure != null && "Broken pipe".equals(channel.failure.getMessage());
    }
}
