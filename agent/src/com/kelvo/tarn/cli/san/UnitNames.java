package com.kelvo.tarn.cli.san;

import java.util.Collection;
import java.util.HashMap;
import java.util.Map;

/** What units are, by the numbers that the store gives them. */
final class UnitNames {
    private UnitNames() {
    }

    /** Their identities. */
    static Map<Long, String> identities(Store store, Collection<Long> units) {
        Map<Long, String> identities = new HashMap<>();
        store.queryAbout("SELECT id, identity FROM unit WHERE id IN (:these)",
                         row -> identities.put(row.getLong(1), row.getString(2)), units);
        return identities;
    }
}
