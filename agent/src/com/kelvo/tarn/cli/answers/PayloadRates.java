package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import java.util.HashMap;
import java.util.Map;

/** How many bytes a second the links of a host's ports can carry, in each direction. */
public final class PayloadRates {
    /** By the bits per second that the library makes of the HBA API's speeds. */
    private static final Map<Long, Long> BY_SPEED =
        Map.of(1143535043L, 106_250_000L, 2287070085L, 212_500_000L, 11435350430L, 1_275_000_000L);

    private final Map<String, Long> byPort = new HashMap<>();

    /**
     * Learns the speeds.
     *
     * @param fabric what is seen
     */
    public PayloadRates(Fabric fabric) {
        fabric.ports().stream().filter(port -> port.instance != null).forEach(port -> byPort.put(
            Instances.name(port.instance, HbaPortProvider.permanentAddress), of(port.instance)));
    }

    /**
     * {@return what the link of a port can carry; null when its speed is not known}
     *
     * @param port local or remote
     */
    public static Long of(TrInstance port) {
        return BY_SPEED.get(Instances.number(port, HbaPortProvider.speed).longValue());
    }

    /**
     * {@return what the link can carry; null when its speed is not known}
     *
     * @param wwn the port's world-wide name
     */
    public Long of(String wwn) {
        return byPort.get(wwn);
    }
}
