package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.inventory.Identity;
import java.util.Locale;
import java.util.regex.Pattern;
import java.util.stream.Stream;

/** By what people call the volume behind a disk: its serial number, its designator with or without the kind. */
public final class Identifiers {
    private static final Pattern KIND = Pattern.compile("^(naa|eui|t10)\\.");

    private Identifiers() {
    }

    /** All of them, as {@link #plain} has them; none for null. */
    static Stream<String> of(Identity identity) {
        return identity == null ? Stream.empty()
            : Stream.of(identity.serial, identity.designator,
                        identity.designator == null ? null : KIND.matcher(identity.designator).replaceFirst(""))
                .filter(name -> name != null && !name.isEmpty()).map(Identifiers::plain).distinct();
    }

    /**
     * {@return the same for letters of any case, and for digits with colons between them}
     *
     * @param name a world-wide name, or that of a volume
     */
    public static String plain(String name) {
        return name.toLowerCase(Locale.ROOT).replace(":", "");
    }

    /** Whether the volume is called so. */
    static boolean isNamed(Identity identity, String name) {
        return of(identity).anyMatch(plain(name)::equals);
    }
}
