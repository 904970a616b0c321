package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.IgnoredFindings;
import com.kelvo.tarn.cli.frame.Export;
import com.kelvo.tarn.cli.frame.FindingOptions;
import com.kelvo.tarn.cli.map.NetworkPicture;
import com.kelvo.tarn.cli.san.NetworkCheck;
import com.kelvo.tarn.cli.san.NetworkTopology;
import com.kelvo.tarn.cli.san.Store;
import com.kelvo.tarn.cli.san.StoreException;
import java.io.IOException;
import java.time.Duration;
import java.time.Instant;
import java.util.Locale;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;

/** {@code san map}: a {@link NetworkPicture} of the network that a store knows. */
@Command(name = "map", description = "The storage network of many hosts as a page, which tells by clicks who reaches a "
             + "thing, and what is lost when it fails.",
         footer = "Hosts that look alike share a box, which opens. Lines are the thicker the more paths they stand "
             + "for; blue and violet are the fabrics. Red and orange is what san check finds wrong.")
public final class SanMapCommand extends Export {
    @Mixin
    private StoreOption store;

    @Option(names = "--format", paramLabel = "FORMAT", description = "html, or svg for the picture alone. Without it, "
            + "what --output ends in; without that, html.")
    private String format;

    @Mixin
    private FindingOptions findings;

    @Override
    protected void chooseHost() {
        store.refuseHost(tarn());
    }

    @Override
    protected String text() throws IOException {
        boolean isPage = isPage();
        String database = store.database();
        Duration maxAge = findings.maxAge();
        IgnoredFindings silenced = new IgnoredFindings(NetworkCheck.codes());
        findings.addTo(silenced);
        NetworkPicture picture;
        try (Store open = Store.open(database)) {
            picture = new NetworkPicture(NetworkTopology.of(open),
                                         NetworkCheck.of(open, Instant.now(), maxAge, silenced));
        } catch (StoreException unusable) {
            throw new IOException(unusable.getMessage(), unusable);
        }
        return isPage ? picture.html("drawn by " + spec().root().version()[0]) : picture.svg();
    }

    private boolean isPage() {
        String ending = format != null ? format.toLowerCase(Locale.ROOT) : output() == null ? "html"
            : output().substring(output().lastIndexOf('.') + 1).toLowerCase(Locale.ROOT);
        switch (ending) {
            case "html":
            case "htm":
                return true;
            case "svg":
                return false;
            default:
                throw refusal(format != null ? "--format: '" + format + "' is neither html nor svg"
                    : "--output: '" + output() + "' ends in neither .html nor .svg; --format says which it is");
        }
    }
}
