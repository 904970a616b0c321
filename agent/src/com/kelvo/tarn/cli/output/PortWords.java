package com.kelvo.tarn.cli.output;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.answers.PortError;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import java.util.EnumMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.function.Function;
import java.util.stream.Collectors;
import javax.wbem.cim.UnsignedInt;

/** What a port says of itself, in words. */
public final class PortWords {
    /** The state of a port that works. */
    public static final String ONLINE = "online";

    private static final Map<UnsignedInt, String> TYPES = Map.of(
        HbaPortProvider.PORT_TYPE_N, "N port", HbaPortProvider.PORT_TYPE_NL, "NL port",
        HbaPortProvider.PORT_TYPE_E, "E port", HbaPortProvider.PORT_TYPE_F, "F port",
        HbaPortProvider.PORT_TYPE_FL, "FL port");

    /** The HBA API's speeds, by the bits per second that the library makes of them. */
    private static final Map<Long, String> SPEEDS =
        Map.of(1143535043L, "1 Gb/s", 2287070085L, "2 Gb/s", 11435350430L, "10 Gb/s");

    private static final Map<PortError, String> ERRORS = new EnumMap<>(Map.of(
        PortError.LINK_FAILURE, "link failures", PortError.CRC, "CRC errors", PortError.LOSS_OF_SYNC, "loss of sync",
        PortError.LOSS_OF_SIGNAL, "loss of signal", PortError.PRIMITIVE_SEQUENCE_PROTOCOL, "sequence protocol errors",
        PortError.INVALID_TRANSMISSION_WORD, "invalid words", PortError.ERROR_FRAME, "error frames",
        PortError.DUMPED_FRAME, "dumped frames"));

    private static final Map<UnsignedInt, String> STATES = Map.of(
        HbaPortProvider.PORT_STATE_ONLINE, ONLINE, HbaPortProvider.PORT_STATE_OFFLINE, "offline",
        HbaPortProvider.PORT_STATE_BYPASSED, "bypassed", HbaPortProvider.PORT_STATE_DIAGNOSTICS, "diagnostics",
        HbaPortProvider.PORT_STATE_LINK_DOWN, "link down", HbaPortProvider.PORT_STATE_ERROR, "error",
        HbaPortProvider.PORT_STATE_LOOPBACK, "loopback");

    private static final Map<UnsignedInt, String> STATUSES = Map.of(
        HbaPortProvider.OPERATIONAL_STATUS_UNKNOWN, "unknown", HbaPortProvider.OPERATIONAL_STATUS_OK, "OK",
        HbaPortProvider.OPERATIONAL_STATUS_ERROR, "error",
        HbaPortProvider.OPERATIONAL_STATUS_IN_SERVICE, "in service");

    private static final Map<String, Function<Object, String>> BY_PROPERTY = Map.of(
        "portState", state -> STATES.getOrDefault(state, "state unknown"),
        "operationalStatus", statuses -> ((List<?>) statuses).stream()
            .map(status -> STATUSES.getOrDefault(status, String.valueOf(status))).collect(Collectors.joining(", ")),
        "portType", type -> TYPES.getOrDefault(type, ""),
        "speed", speed -> speed(((UnsignedInt) speed).longValue()),
        "maxSpeed", speed -> speed(((UnsignedInt) speed).longValue()),
        "portFcId", id -> String.format(Locale.ROOT, "0x%06x", ((UnsignedInt) id).longValue()));

    private PortWords() {
    }

    /**
     * {@return what a port says of itself, such as "online", "2 Gb/s", "N port", or "0x010200"; empty when nothing}
     *
     * @param port local or remote
     * @param property a number: the state, the speed, the type or the Fibre Channel address
     */
    public static String of(TrInstance port, TrProperty property) {
        UnsignedInt number = Instances.number(port, property);
        return property == HbaPortProvider.portFcId && number.longValue() == 0 ? ""
            : value(property.getName(), number);
    }

    /**
     * {@return a value as people read it; as it is when there are no words for it}
     *
     * @param property what it is called
     * @param value any but null
     */
    public static String value(String property, Object value) {
        return BY_PROPERTY.getOrDefault(property, Object::toString).apply(value);
    }

    /**
     * {@return a port's state}
     *
     * @param state its CIM number; null, which a port without an instance has, is an unknown one
     */
    public static String state(UnsignedInt state) {
        return state == null ? "state unknown" : value("portState", state);
    }

    /**
     * {@return a port's speed, such as "2 Gb/s"}
     *
     * @param bitsPerSecond as the library makes them of the HBA API's
     */
    public static String speed(long bitsPerSecond) {
        return SPEEDS.getOrDefault(bitsPerSecond, "speed unknown");
    }

    /**
     * {@return what is counted, such as "link failures"}
     *
     * @param error any
     */
    public static String errors(PortError error) {
        return ERRORS.get(error);
    }
}
