package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.inventory.DiskActivity;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.Function;

/** The errors of a disk that its driver counts, by kind. */
public final class DiskErrors {
    private static final Map<String, Function<DiskActivity.Errors, Long>> COUNTERS = new LinkedHashMap<>();

    static {
        COUNTERS.put("soft", errors -> errors.soft);
        COUNTERS.put("hard", errors -> errors.hard);
        COUNTERS.put("transport", errors -> errors.transport);
        COUNTERS.put("media", errors -> errors.media);
        COUNTERS.put("notReady", errors -> errors.notReady);
        COUNTERS.put("noDevice", errors -> errors.noDevice);
        COUNTERS.put("recoverable", errors -> errors.recoverable);
        COUNTERS.put("illegalRequest", errors -> errors.illegalRequest);
        COUNTERS.put("predictiveFailure", errors -> errors.predictiveFailure);
    }

    private DiskErrors() {
    }

    /** {@return the kinds, in the order in which they are told} */
    public static List<String> kinds() {
        return List.copyOf(COUNTERS.keySet());
    }

    /**
     * {@return how many there are of each kind}
     *
     * @param errors what the driver counts
     */
    public static Map<String, Long> of(DiskActivity.Errors errors) {
        Map<String, Long> counts = new LinkedHashMap<>();
        COUNTERS.forEach((kind, counter) -> counts.put(kind, counter.apply(errors)));
        return counts;
    }
}
