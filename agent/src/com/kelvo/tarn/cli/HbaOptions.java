package com.kelvo.tarn.cli;

import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.providers.hba.HbaCache;
import com.kelvo.tarn.providers.hba.HbaClassNames;
import picocli.CommandLine.Option;

/** How the device names of target mappings are made: what the agent's objects answer when the library asks them. */
final class HbaOptions {
    @Option(names = "--keep-os-device-name", description = "hba, report: device names as the HBA library gives them.")
    private boolean keepOsDeviceName;

    @Option(names = "--leadville",
            description = "hba, report: names in /dev/rdsk/ lose their directory and their s2 slice.")
    private boolean leadville;

    @Option(names = "--force-leadville", description = "hba, report: all names, not only those in /dev/rdsk/, lose "
            + "their directory and their s2 slice.")
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

    HbaClassNames classNames() {
        return new HbaClassNames(TrNamespace.KELVO, keepOsDeviceName);
    }

    HbaCache cache() {
        return new HbaCache(leadville, forceLeadville);
    }
}
