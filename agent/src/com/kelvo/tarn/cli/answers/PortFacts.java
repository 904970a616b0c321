package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import java.util.Map;
import javax.wbem.cim.UnsignedInt;

/** What a port says of itself, in words; empty where it says nothing. */
public final class PortFacts {
    private static final Map<UnsignedInt, String> types = Map.of(
        HbaPortProvider.PORT_TYPE_N, "N port", HbaPortProvider.PORT_TYPE_NL, "NL port",
        HbaPortProvider.PORT_TYPE_E, "E port", HbaPortProvider.PORT_TYPE_F, "F port",
        HbaPortProvider.PORT_TYPE_FL, "FL port");

    /** What stands for a world-wide name where there is none, or where the adapter does not tell. */
    private static final String noName = "0".repeat(16);

    /** The HBA API's speeds, by the bits per second that the library makes of them. */
    private static final Map<Long, String> speeds =
        Map.of(1143535043L, "1 Gb/s", 2287070085L, "2 Gb/s", 11435350430L, "10 Gb/s");

    private PortFacts() {
    }

    /**
     * {@return the type, such as "N port"}
     *
     * @param port local or remote
     */
    public static String type(TrInstance port) {
        return type(Instances.number(port, HbaPortProvider.portType));
    }

    /**
     * {@return the type's name; empty when it has none}
     *
     * @param type as a port's instance has it
     */
    public static String type(UnsignedInt type) {
        return types.getOrDefault(type, "");
    }

    /**
     * {@return the speed, such as "2 Gb/s"}
     *
     * @param port local or remote
     */
    public static String speed(TrInstance port) {
        return speed(Instances.number(port, HbaPortProvider.speed));
    }

    /**
     * {@return the speed, such as "2 Gb/s"}
     *
     * @param bitsPerSecond as the library tells it
     */
    public static String speed(UnsignedInt bitsPerSecond) {
        return speeds.getOrDefault(bitsPerSecond.longValue(), "speed unknown");
    }

    /**
     * {@return the Fibre Channel address, such as "0x010200"}
     *
     * @param port local or remote
     */
    public static String fcId(TrInstance port) {
        long id = Instances.number(port, HbaPortProvider.portFcId).longValue();
        return id == 0 ? "" : fcId(id);
    }

    /**
     * {@return the Fibre Channel address, such as "0x010200"}
     *
     * @param id its 24 bits
     */
    public static String fcId(long id) {
        return String.format("0x%06x", id);
    }

    /**
     * {@return a name, world-wide or other}
     *
     * @param instance a port or an adapter
     * @param property the name's
     */
    public static String name(TrInstance instance, TrProperty property) {
        return name(Instances.text(instance, property));
    }

    /**
     * {@return the name; empty when it is what stands for none}
     *
     * @param name a world-wide one or another, or null
     */
    public static String name(String name) {
        return name == null || name.equals(noName) ? "" : name;
    }
}
