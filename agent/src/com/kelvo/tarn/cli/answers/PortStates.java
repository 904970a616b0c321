package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import javax.wbem.cim.UnsignedInt;

/** What a port says of its health. */
public final class PortStates {
    private static final Map<UnsignedInt, String> names = Map.of(
        HbaPortProvider.PORT_STATE_ONLINE, "online", HbaPortProvider.PORT_STATE_OFFLINE, "offline",
        HbaPortProvider.PORT_STATE_BYPASSED, "bypassed", HbaPortProvider.PORT_STATE_DIAGNOSTICS, "diagnostics",
        HbaPortProvider.PORT_STATE_LINK_DOWN, "link down", HbaPortProvider.PORT_STATE_ERROR, "error",
        HbaPortProvider.PORT_STATE_LOOPBACK, "loopback");

    private static final Map<UnsignedInt, String> statusNames = Map.of(
        HbaPortProvider.OPERATIONAL_STATUS_UNKNOWN, "unknown", HbaPortProvider.OPERATIONAL_STATUS_OK, "OK",
        HbaPortProvider.OPERATIONAL_STATUS_ERROR, "error",
        HbaPortProvider.OPERATIONAL_STATUS_IN_SERVICE, "in service");

    private PortStates() {
    }

    /**
     * {@return the state in words}
     *
     * @param state its CIM number; null, which a port without an instance has, is an unknown one
     */
    public static String name(UnsignedInt state) {
        return state == null ? "state unknown" : names.getOrDefault(state, "state unknown");
    }

    /**
     * {@return the port's state in words}
     *
     * @param port local or remote
     */
    public static String name(TrInstance port) {
        return name((UnsignedInt) port.get(HbaPortProvider.portState));
    }

    /**
     * {@return operational statuses in words}
     *
     * @param statuses their CIM numbers
     */
    public static String statusNames(List<?> statuses) {
        return statuses.stream().map(status -> statusNames.getOrDefault(status, String.valueOf(status)))
            .collect(Collectors.joining(", "));
    }

    /**
     * {@return whether that is the state of a port online}
     *
     * @param state its CIM number, or null
     */
    public static boolean isOnline(UnsignedInt state) {
        return HbaPortProvider.PORT_STATE_ONLINE.equals(state);
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

    /**
     * {@return whether the operational status is an error: link down, or the port says so}
     *
     * @param port local or remote
     */
    public static boolean isError(TrInstance port) {
        return statuses(port).anyMatch(HbaPortProvider.OPERATIONAL_STATUS_ERROR::equals);
    }

    private static Stream<Object> statuses(TrInstance port) {
        return Stream.ofNullable((Object[]) port.get(HbaPortProvider.operationalStatus)).flatMap(Stream::of);
    }
}
