import com.kelvo.tarn.TrClass;
import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.providers.hba.FCPortStatisticsProvider;
import com.kelvo.tarn.providers.hba.HbaCache.Hba;
import com.kelvo.tarn.providers.hba.HbaCache.HbaDiscoveredPort;
import com.kelvo.tarn.providers.hba.HbaCache.HbaPort;
import com.kelvo.tarn.providers.hba.HbaClassNames;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.hba.HostBusAdapterProvider;
import com.kelvo.tarn.providers.hba.TargetMappingProvider;
import java.util.stream.IntStream;
import javax.wbem.cim.UnsignedInt16;
import javax.wbem.cim.UnsignedInt32;
import javax.wbem.cim.UnsignedInt64;

/** Builds the benchmark's cache without native code: what the same objects cost when Java makes them. */
final class PlainHbaCache {
    private static final char[] NODE = "200000e08b010203".toCharArray();
    private static final char[] PORT = "210000e08b010203".toCharArray();
    private static final char[] FABRIC = "1000006069c01020".toCharArray();
    private static final char[] SYMBOLIC_NAME = "Port of a remote array, controller 1".toCharArray();
    private static final char[] PORT_DEVICE = "/dev/cfg/c2".toCharArray();
    private static final char[] TEXT = "text".toCharArray();

    private static char[][] remoteNames = {};

    private final HbaClassNames names;

    private PlainHbaCache(HbaClassNames names) {
        this.names = names;
    }

    static Hba[] build(HbaClassNames names, int adapters, int ports, int remotePorts, int luns) {
        if (remoteNames.length < remotePorts) {
            remoteNames = IntStream.range(0, remotePorts)
                .mapToObj(r -> String.format("50060e80%08x", r).toCharArray()).toArray(char[][]::new);
        }
        PlainHbaCache builder = new PlainHbaCache(names);
        Hba[] cache = new Hba[adapters];
        for (int a = 0; a < adapters; a++) {
            cache[a] = new Hba(builder.adapter(a), new HbaPort[ports]);
            for (int p = 0; p < ports; p++) {
                TrInstance port = builder.port(a, p);
                HbaDiscoveredPort[] discovered = new HbaDiscoveredPort[remotePorts];
                cache[a].ports()[p] = new HbaPort(port, builder.statistics(), discovered);
                for (int r = 0; r < remotePorts; r++) {
                    char[] wwn = remoteNames[r];
                    TrInstance remote = builder.remotePort(wwn);
                    TrInstance[] targets = new TrInstance[luns];
                    discovered[r] = new HbaDiscoveredPort(remote, targets);
                    for (int l = 0; l < luns; l++) {
                        targets[l] = builder.mapping(port, remote, wwn, r, l);
                    }
                }
            }
        }
        return cache;
    }

    private TrInstance adapter(int a) {
        TrClass cimClass = names.getHostBusAdapterClass();
        Object[] values = cimClass.getDefaultValues();
        HostBusAdapterProvider.deviceID.set(values, new String(NODE) + ":" + a);
        HostBusAdapterProvider.creationClassName.set(values, cimClass.getName());
        HostBusAdapterProvider.systemName.set(values, names.getSystemName());
        HostBusAdapterProvider.systemCreationClassName.set(values, names.getComputerSystemClass().getName());
        for (TrProperty property : new TrProperty[] {
            HostBusAdapterProvider.manufacturer, HostBusAdapterProvider.serialNumber, HostBusAdapterProvider.model,
            HostBusAdapterProvider.modelDescription, HostBusAdapterProvider.nodeSymbolicName,
            HostBusAdapterProvider.hardwareVersion, HostBusAdapterProvider.driverVersion,
            HostBusAdapterProvider.optionRomVersion, HostBusAdapterProvider.firmwareVersion,
            HostBusAdapterProvider.driverName}) {
            property.set(values, new String(TEXT));
        }
        HostBusAdapterProvider.name.set(values, new String(NODE));
        HostBusAdapterProvider.vendorSpecificID.set(values, new UnsignedInt32(1));
        String caption = "Adapter " + a;
        HostBusAdapterProvider.caption.set(values, caption);
        HostBusAdapterProvider.description.set(values, caption);
        HostBusAdapterProvider.elementName.set(values, caption);
        return new TrInstance(cimClass, values);
    }

    private void populate(Object[] values, char[] wwn) {
        HbaPortProvider.nodeWWN.set(values, new String(NODE));
        HbaPortProvider.permanentAddress.set(values, new String(wwn));
        HbaPortProvider.portFcId.set(values, new UnsignedInt32(66048));
        HbaPortProvider.portType.set(values, HbaPortProvider.PORT_TYPE_N);
        HbaPortProvider.portState.set(values, HbaPortProvider.PORT_STATE_ONLINE);
        HbaPortProvider.supportedCOS.set(values, new UnsignedInt16[] {HbaPortProvider.SUPPORTED_COS_3});
        HbaPortProvider.name.set(values, new String(SYMBOLIC_NAME));
        HbaPortProvider.osDeviceName.set(values, new String(PORT_DEVICE));
        HbaPortProvider.maxSpeed.set(values, uint64(2287070085L));
        HbaPortProvider.speed.set(values, uint64(2287070085L));
        HbaPortProvider.supportedMaximumTransmissionUnit.set(values, uint64(2048));
        HbaPortProvider.fabricName.set(values, new String(FABRIC));
        HbaPortProvider.deviceID.set(values, new String(wwn));
        HbaPortProvider.systemName.set(values, names.getSystemName());
        HbaPortProvider.systemCreationClassName.set(values, names.getComputerSystemClass().getName());
        HbaPortProvider.operationalStatus.set(values, new UnsignedInt16[] {HbaPortProvider.OPERATIONAL_STATUS_OK});
    }

    private TrInstance port(int a, int p) {
        TrClass cimClass = names.getHbaPortClass();
        Object[] values = cimClass.getDefaultValues();
        populate(values, PORT);
        HbaPortProvider.creationClassName.set(values, cimClass.getName());
        String caption = "Adapter " + a + " Port " + p;
        HbaPortProvider.caption.set(values, caption);
        HbaPortProvider.description.set(values, caption);
        HbaPortProvider.elementName.set(values, caption);
        HbaPortProvider.portNumber.set(values, new UnsignedInt16(p));
        return new TrInstance(cimClass, values);
    }

    private TrInstance remotePort(char[] wwn) {
        TrClass cimClass = names.getHbaDiscoveredPortClass();
        Object[] values = cimClass.getDefaultValues();
        populate(values, wwn);
        HbaPortProvider.creationClassName.set(values, cimClass.getName());
        return new TrInstance(cimClass, values);
    }

    private TrInstance statistics() {
        TrClass cimClass = names.getFCPortStatisticsClass();
        Object[] values = cimClass.getDefaultValues();
        FCPortStatisticsProvider.elementName.set(values, new String(PORT));
        FCPortStatisticsProvider.instanceID.set(values, new String(PORT));
        FCPortStatisticsProvider.packetsTransmitted.set(values, uint64(1));
        for (TrProperty property : new TrProperty[] {
            FCPortStatisticsProvider.packetsReceived, FCPortStatisticsProvider.lipCount,
            FCPortStatisticsProvider.nosCount, FCPortStatisticsProvider.errorFrames,
            FCPortStatisticsProvider.dumpedFrames, FCPortStatisticsProvider.linkFailures,
            FCPortStatisticsProvider.lossOfSyncCounter, FCPortStatisticsProvider.lossOfSignalCounter,
            FCPortStatisticsProvider.primitiveSeqProtocolErrCount, FCPortStatisticsProvider.invalidTransmissionWords,
            FCPortStatisticsProvider.crcErrors}) {
            property.set(values, uint64(0));
        }
        return new TrInstance(cimClass, values);
    }

    private TrInstance mapping(TrInstance port, TrInstance remote, char[] wwn, int r, int l) {
        TrClass cimClass = names.getTargetMappingClass();
        Object[] values = cimClass.getDefaultValues();
        TargetMappingProvider.antecedent.set(values, port);
        TargetMappingProvider.dependent.set(values, remote);
        TargetMappingProvider.scsiBus.set(values, new UnsignedInt32(2));
        TargetMappingProvider.targetId.set(values, new UnsignedInt32(r));
        TargetMappingProvider.scsiLun.set(values, new UnsignedInt32(l));
        TargetMappingProvider.osDeviceName.set(values, "c2t" + r + "d" + l);
        TargetMappingProvider.exportedLUN.set(values, uint64(1));
        TargetMappingProvider.discoveredPortWWN.set(values, new String(wwn));
        return new TrInstance(cimClass, values);
    }

    private static UnsignedInt64 uint64(long value) {
        byte[] bytes = new byte[9];
        for (int k = 0; k < 8; k++) {
            bytes[k + 1] = (byte) (value >>> (7 - k) * 8);
        }
        return new UnsignedInt64(bytes);
    }
}
