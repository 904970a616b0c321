package com.kelvo.tarn.cli.map;

import java.util.Locale;
import java.util.function.Function;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** The colours of the picture and of its page, by light and by dark. */
enum Palette {
    PAPER("#ffffff", "#14181c"), FRAME("#f4f6f8", "#1b2127"), BOX("#fdfefe", "#222a31"), INK("#1d2833", "#e6ebf0"),
    FAINT("#56636f", "#a3afba"), LINE("#7b8b9a", "#74828f"), IDLE("#8b949c", "#7d878f"), IDLE_BOX("#eff0f1", "#1d2125"),
    IDLE_INK("#656e76", "#838d95"), WARNING("#8f5600", "#f0b354"), WARNING_BOX("#fff3dc", "#3a2c12"),
    TROUBLE("#b3201b", "#ff8e85"), TROUBLE_BOX("#fdebea", "#401d1b"), ACCENT("#0b5cad", "#7db7f2"),
    FABRIC_A("#2a66b0", "#6aaef5"), FABRIC_B("#8a3fa0", "#cf94e8"), ADDED("#1b7a3a", "#5fcf86"),
    ADDED_BOX("#e9f6ec", "#16321f");

    private final String light;
    private final String dark;

    Palette(String light, String dark) {
        this.light = light;
        this.dark = dark;
    }

    /** The colour by light, which a picture has of its own. */
    @Override
    public String toString() {
        return light;
    }

    /** A style sheet that names the colours for the page, and has a picture of the light ones follow the reader. */
    static String css() {
        return ":root { color-scheme: light dark; " + variables(colour -> colour.light) + " }\n"
            + "@media screen and (prefers-color-scheme: dark) { :root { " + variables(colour -> colour.dark) + " } }\n"
            + Stream.of(values()).map(colour -> String.format(
                Locale.ROOT, "svg [fill=\"%s\"] { fill: %s } svg [stroke=\"%1$s\"] { stroke: %2$s }\n", colour.light,
                "var(" + colour.variable() + ")")).collect(Collectors.joining());
    }

    private static String variables(Function<Palette, String> choice) {
        return Stream.of(values()).map(colour -> colour.variable() + ": " + choice.apply(colour) + ";")
            .collect(Collectors.joining(" "));
    }

    private String variable() {
        return "--" + name().toLowerCase(Locale.ROOT).replace('_', '-');
    }
}
