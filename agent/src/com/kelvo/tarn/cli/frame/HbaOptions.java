package com.kelvo.tarn.cli.frame;

import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.providers.hba.HbaCache;
import picocli.CommandLine.Option;

/** How the device names of target mappings are made: what the agent's objects answer when the library asks them. */
public final class HbaOptions {
    static final String LEADVILLE = "--leadville";

    @Option(names = "--keep-os-device-name",
            description = "hba, paths, map, report: device names as the HBA library gives them.")
    private boolean keepOsDeviceName;

    @Option(names = LEADVILLE,
            description = "hba, paths, map, report: names in /dev/rdsk/ lose their directory and their s2 slice.")
    private boolean leadville;

    @Option(names = "--force-leadville", description = "hba, paths, map, report: all names, not only those in "
            + "/dev/rdsk/, lose their directory and their s2 slice.")
    private boolean forceLeadville;

    /** {@return whether anything was chosen} */
    public boolean any() {
        return keepOsDeviceName || leadville || forceLeadville;
    }

    /**
     * Takes over what was chosen elsewhere on the command line as well.
     *
     * @param other the choices there
     * @return these choices
     */
    public HbaOptions and(HbaOptions other) {
        keepOsDeviceName |= other.keepOsDeviceName;
        leadville |= other.leadville;
        forceLeadville |= other.forceLeadville;
        return this;
    }

    /**
     * {@return the adapters with all that they see}
     *
     * @param library what is asked
     */
    public HbaCache.Hba[] fill(Library library) {
        return library.hba(keepOsDeviceName, leadville, forceLeadville);
    }

    /**
     * Says under device names that nobody chose how they came about.
     *
     * @param fabric what has the names
     * @param out where
     */
    public void explainDeviceNames(Fabric fabric, Page out) {
        if (!any() && fabric.remotePorts().anyMatch(remote -> !remote.mappings.isEmpty())) {
            out.printFolded("Device names are made of bus, target and LUN; --leadville shows those of /dev/rdsk");
        }
    }
}
