package com.kelvo.tarn.providers.hba;

import com.kelvo.tarn.TrClass;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.TrProperty;
import java.util.ArrayList;
import java.util.List;

/** Port counters; one that the adapter does not keep has all 64 bits set. */
public final class FCPortStatisticsProvider {
    private static final List<TrProperty> PROPERTIES = new ArrayList<>();
    /** The port's world-wide name, 16 hexadecimal digits: a String. */
    public static final TrProperty elementName = TrProperty.append(PROPERTIES, "elementName");
    /** The same, as the key. */
    public static final TrProperty instanceID = TrProperty.append(PROPERTIES, "instanceID");
    /** Frames sent, an UnsignedInt64 as are all below; all bits set in one that the adapter does not keep. */
    public static final TrProperty packetsTransmitted = TrProperty.append(PROPERTIES, "packetsTransmitted");
    /** Frames received. */
    public static final TrProperty packetsReceived = TrProperty.append(PROPERTIES, "packetsReceived");
    /** Loop initialisations. */
    public static final TrProperty lipCount = TrProperty.append(PROPERTIES, "lipCount");
    /** "Not operational" sequences. */
    public static final TrProperty nosCount = TrProperty.append(PROPERTIES, "nosCount");
    /** Frames received with an error. */
    public static final TrProperty errorFrames = TrProperty.append(PROPERTIES, "errorFrames");
    /** Frames dropped for want of room. */
    public static final TrProperty dumpedFrames = TrProperty.append(PROPERTIES, "dumpedFrames");
    /** Times the link failed. */
    public static final TrProperty linkFailures = TrProperty.append(PROPERTIES, "linkFailures");
    /** Times synchronisation was lost. */
    public static final TrProperty lossOfSyncCounter = TrProperty.append(PROPERTIES, "lossOfSyncCounter");
    /** Times the signal was lost. */
    public static final TrProperty lossOfSignalCounter = TrProperty.append(PROPERTIES, "lossOfSignalCounter");
    /** Errors in primitive sequences. */
    public static final TrProperty primitiveSeqProtocolErrCount =
        TrProperty.append(PROPERTIES, "primitiveSeqProtocolErrCount");
    /** Invalid transmission words received. */
    public static final TrProperty invalidTransmissionWords = TrProperty.append(PROPERTIES, "invalidTransmissionWords");
    /** Frames received with a wrong checksum. */
    public static final TrProperty crcErrors = TrProperty.append(PROPERTIES, "crcErrors");

    private FCPortStatisticsProvider() {
    }

    static TrClass classIn(TrNamespace namespace) {
        return new TrClass("Kelvo_FCPortStatistics", namespace, PROPERTIES);
    }
}
