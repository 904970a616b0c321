package com.kelvo.tarn.cli.frame;

import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.inventory.Identity;
import com.kelvo.tarn.providers.hba.HbaCache;
import java.util.ArrayList;
import java.util.List;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.Spec;

/** How the device names of target mappings are made: what the agent's objects answer when the library asks them. */
public final class HbaOptions {
    static final String LEADVILLE = "--leadville";
    private static final List<String> NAMES = List.of("agent", "disks");

    @Spec(Spec.Target.MIXEE)
    private CommandSpec spec;

    @Option(names = "--keep-os-device-name",
            description = "hba, paths, map, report: device names as the HBA library gives them.")
    private boolean keepOsDeviceName;

    @Option(names = LEADVILLE,
            description = "hba, paths, map, report: names in /dev/rdsk/ lose their directory and their s2 slice.")
    private boolean leadville;

    @Option(names = "--force-leadville", description = "hba, paths, map, report: all names, not only those in "
            + "/dev/rdsk/, lose their directory and their s2 slice.")
    private boolean forceLeadville;

    private boolean agentNames;

    /** What the shell completes. */
    static final class Names extends ArrayList<String> {
        private static final long serialVersionUID = 1;

        Names() {
            super(NAMES);
        }
    }

    @Option(names = "--names", paramLabel = "NAMES", completionCandidates = Names.class,
            description = "hba, paths, map: call a device as disks does, which is \"disks\" (the default), or as the "
                + "agent does: \"agent\". An option for device names means agent.")
    private void setNames(String names) {
        if (!NAMES.contains(names)) {
            throw new ParameterException(spec.commandLine(), "--names: '" + names + "' is neither disks nor agent");
        }
        agentNames = names.equals("agent");
    }

    /** {@return whether anything was chosen} */
    public boolean any() {
        return keepOsDeviceName || leadville || forceLeadville || agentNames;
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
        agentNames |= other.agentNames;
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
     * {@return the storage network, with the disks that it leads to}
     *
     * @param library what is asked
     * @param adapters what a fill with these options answered
     * @param identities what its disks are, as far as that matters
     */
    public Fabric fabric(Library library, HbaCache.Hba[] adapters, List<Identity> identities) {
        return library.fabric(adapters, keepOsDeviceName, any(), identities);
    }
}
