package com.kelvo.tarn.cli.san;

import java.time.Instant;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.EnumMap;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.TreeSet;

/** What is stored of one host: rows of each table, made by whoever has asked it. */
public final class HostFacts {
    /** A logical unit, whichever host tells of it. */
    public static final class Unit {
        /** Whether it is called by node and LUN, since no host tells what it is. */
        public final boolean byAddress;
        /** Who made it; null when that is not known. */
        public final String vendor;
        /** What it is; null when that is not known. */
        public final String product;
        /** Its size; null when that is not known. */
        public final Long sizeBytes;
        /** Whom it is reached at. */
        public final TreeSet<String> nodes = new TreeSet<>();

        /**
         * A unit without nodes so far.
         *
         * @param byAddress whether it is called by node and LUN
         * @param vendor who made it, or null
         * @param product what it is, or null
         * @param sizeBytes its size, or null
         */
        public Unit(boolean byAddress, String vendor, String product, Long sizeBytes) {
            this.byAddress = byAddress;
            this.vendor = vendor;
            this.product = product;
            this.sizeBytes = sizeBytes;
        }
    }

    /** What the host calls itself. */
    public final String host;
    /** Its hardware. */
    public final String platform;
    /** When it was recorded; null when its description does not say. */
    public final Instant recordedAt;
    /** By identity: all that its rows are about. */
    public final Map<String, Unit> units = new HashMap<>();

    /** What rows that begin alike begin with, and the rest of each. */
    private final Map<HostTable, Map<List<Object>, List<Object[]>>> rows = new EnumMap<>(HostTable.class);

    /**
     * A host without rows so far.
     *
     * @param host what it calls itself
     * @param platform its hardware
     * @param recordedAt when it was recorded, or null
     */
    public HostFacts(String host, String platform, Instant recordedAt) {
        this.host = host;
        this.platform = platform;
        this.recordedAt = recordedAt;
        for (HostTable table : HostTable.values()) {
            rows.put(table, new LinkedHashMap<>());
        }
    }

    /**
     * Adds a row to a table whose rows do not begin alike.
     *
     * @param table to which table
     * @param values what stands in its columns but for the snapshot, in their order
     */
    public void add(HostTable table, Object... values) {
        alike(table).add(values);
    }

    /**
     * {@return what follows in each row that begins so; a row is added by adding to it}
     *
     * @param table of which table
     * @param beginning what stands in as many first columns, but for the snapshot, as the table has alike
     */
    public List<Object[]> alike(HostTable table, Object... beginning) {
        if (beginning.length != table.alike) {
            throw new AssertionError(table + " has " + table.alike + " columns alike");
        }
        return rows.get(table).computeIfAbsent(Arrays.asList(beginning), added -> new ArrayList<>());
    }

    Map<List<Object>, List<Object[]>> rows(HostTable table) {
        return rows.get(table);
    }
}
