package com.kelvo.tarn.providers.hba;

import com.kelvo.tarn.TrClass;
import com.kelvo.tarn.TrNamespace;

/** Remote ports, described with the descriptors of {@link HbaPortProvider}. */
public final class HbaDiscoveredPortProvider {
    private HbaDiscoveredPortProvider() {
    }

    static TrClass classIn(TrNamespace namespace) {
        return new TrClass("Kelvo_HbaDiscoveredPort", namespace, HbaPortProvider.PROPERTIES);
    }
}
