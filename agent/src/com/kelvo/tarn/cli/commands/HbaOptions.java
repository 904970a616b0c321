package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.providers.hba.HbaCache;
import com.kelvo.tarn.providers.hba.HbaClassNames;
import picocli.CommandLine.Option;

/** How the device names of target mappings are made: what the agent's objects answer when the library asks them. */
final class HbaOptions {
    @Option(names = "--keep-os-device-name",
            description = "hba, paths, map, report: device names as the HBA library gives them.")
    private boolean keepOsDeviceName;

    @Option(names = "--leadville",
            description = "hba, paths, map, report: names in /dev/rdsk/ lose their directory and their s2 slice.")
    private boolean leadville;

    @Option(names = "--force-leadville", description = "hba, paths, map, report: all names, not only those in "
            + "/dev/rdsk/, lose their directory and their s2 slice.")
    private boolean forceLeadville;

    boolean any() {
        return keepOsDeviceName || leadville || forceLeadville;
    }

    /** What either chooses. */
    HbaOptions or(HbaOptions other) {
        HbaOptions both = new HbaOptions();
        both.keepOsDeviceName = keepOsDeviceName || other.keepOsDeviceName;
        both.leadville = leadville || other.leadville;
        both.forceLeadville = forceLeadville || other.forceLeadville;
        return both;
    }

    /** Asks the library for the adapters with all that they see. */
    HbaCache.Hba[] fill() {
        return new HbaCache(leadville, forceLeadville)
            .fillHbaCache(new HbaClassNames(TrNamespace.KELVO, keepOsDeviceName));
    }

    /** Says under device names that nobody chose how they came about. */
    void explainDeviceNames(Fabric fabric, Page out) {
        if (!any() && fabric.remotePorts().anyMatch(remote -> !remote.mappings.isEmpty())) {
            out.printFolded("Device names are made of bus, target and LUN; --leadville shows those of /dev/rdsk");
        }
    }
}
