package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import java.util.stream.Stream;
import javax.wbem.cim.UnsignedInt;

/** What a port says of its health. */
public final class PortStates {
    private PortStates() {
    }

    /**
     * {@return whether that is the state of a port online}
     *
     * @param state its CIM number, or null
     */
    public static boolean isOnline(UnsignedInt state) {
        return HbaPortProvider.PORT_STATE_ONLINE.equals(state);
    }

    /** Whether its state is online; not for null. */
    static boolean isOnline(TrInstance port) {
        return isOnline(Instances.<UnsignedInt>value(port, HbaPortProvider.portState));
    }

    /**
     * {@return whether the operational status is OK and nothing else}
     *
     * @param port local or remote
     */
    public static boolean isOk(TrInstance port) {
        return statuses(port).findAny().isPresent()
            && statuses(port).allMatch(HbaPortProvider.OPERATIONAL_STATUS_OK::equals);
    }

    /** Whether the operational status is an error: link down, or the port says so. */
    static boolean isError(TrInstance port) {
        return statuses(port).anyMatch(HbaPortProvider.OPERATIONAL_STATUS_ERROR::equals);
    }

    private static Stream<Object> statuses(TrInstance port) {
        return Stream.ofNullable((Object[]) port.get(HbaPortProvider.operationalStatus)).flatMap(Stream::of);
    }
}
