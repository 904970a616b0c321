import com.kelvo.log.KelvoLogger;
import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.providers.hba.HbaCache;
import com.kelvo.tarn.providers.hba.HbaClassNames;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.solaris.SolarisComputerSystemProvider.SolarisComputerSystem;
import com.kelvo.tarn.providers.solaris.SolarisDiskDriveProvider;
import com.kelvo.tarn.providers.solaris.SolarisLogicalDiskProvider.SolarisLogicalDisk;
import com.kelvo.tarn.providers.solaris.SolarisNativeMethod;
import com.kelvo.tarn.replay.ReplayHost;
import org.apache.log4j.AppenderSkeleton;
import org.apache.log4j.spi.LoggingEvent;

/** What an agent asks the library: the host, its file systems, its disks, and what its Fibre Channel ports see. */
public final class Embed {
    /** Where the library's log lines go: an agent would hand them to its own log. */
    private static final class Log extends AppenderSkeleton {
        @Override
        protected void append(LoggingEvent event) {
            System.err.println(event.getLevel() + " " + event.getRenderedMessage());
        }

        @Override
        public void close() {
        }

        @Override
        public boolean requiresLayout() {
            return false;
        }
    }

    public static void main(String[] arguments) {
        KelvoLogger.deliverTo(new Log());
        if (arguments.length > 0) {
            ReplayHost.load(arguments[0]); // off Solaris only: another host than TARN_HOST or the built-in one
        }
        SolarisNativeMethod host = new SolarisNativeMethod();
        SolarisComputerSystem system = host.getComputerSystem();
        System.out.println(system.hostName() + ", " + system.platform());

        try {
            for (SolarisLogicalDisk listed : host.enumerateLogicalDiskNames()) {
                SolarisLogicalDisk disk = host.getLogicalDiskByName(listed.mountPoint()); // with its sizes
                System.out.println(disk.mountPoint() + ": " + disk.availableBytes() + " bytes available");
            }
        } catch (RuntimeException refused) { // with the library's own message
            System.out.println("no file systems: " + refused.getMessage());
        }

        // Instances come one at a time. They are values of the agent's own, which outlast the call.
        new SolarisDiskDriveProvider().enumerateDisks(
            disk -> System.out.println(disk.get(SolarisDiskDriveProvider.name) + ": "
                + disk.get(SolarisDiskDriveProvider.diskType)));

        HbaClassNames names = HbaClassNames.get(TrNamespace.KELVO);
        for (HbaCache.Hba adapter : new HbaCache(false, false).fillHbaCache(names)) {
            if (adapter == null) {
                continue; // one that could not be read
            }
            for (HbaCache.HbaPort port : adapter.ports()) {
                TrInstance instance = port == null ? null : port.instance();
                System.out.println(
                    "port " + (instance == null ? "unreadable" : instance.get(HbaPortProvider.permanentAddress)));
            }
        }
    }
}
