package com.kelvo.tarn.providers.hba;

import com.kelvo.tarn.TrClass;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.TrProperty;
import java.util.ArrayList;
import java.util.List;

/** Port counters; one that the adapter does not keep has all 64 bits set. */
public final class FCPortStatisticsProvider {
    private static final List<TrProperty> properties = new ArrayList<>();
    public static final TrProperty elementName = TrProperty.append(properties, "elementName");
    public static final TrProperty instanceID = TrProperty.append(properties, "instanceID");
    public static final TrProperty packetsTransmitted = TrProperty.append(properties, "packetsTransmitted");
    public static final TrProperty packetsReceived = TrProperty.append(properties, "packetsReceived");
    public static final TrProperty lipCount = TrProperty.append(properties, "lipCount");
    public static final TrProperty nosCount = TrProperty.append(properties, "nosCount");
    public static final TrProperty errorFrames = TrProperty.append(properties, "errorFrames");
    public static final TrProperty dumpedFrames = TrProperty.append(properties, "dumpedFrames");
    public static final TrProperty linkFailures = TrProperty.append(properties, "linkFailures");
    public static final TrProperty lossOfSyncCounter = TrProperty.append(properties, "lossOfSyncCounter");
    public static final TrProperty lossOfSignalCounter = TrProperty.append(properties, "lossOfSignalCounter");
    public static final TrProperty primitiveSeqProtocolErrCount =
        TrProperty.append(properties, "primitiveSeqProtocolErrCount");
    public static final TrProperty invalidTransmissionWords = TrProperty.append(properties, "invalidTransmissionWords");
    public static final TrProperty crcErrors = TrProperty.append(properties, "crcErrors");

    private FCPortStatisticsProvider() {
    }

    static TrClass classIn(TrNamespace namespace) {
        return new TrClass("Kelvo_FCPortStatistics", namespace, properties);
    }
}
