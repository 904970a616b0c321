package com.kelvo.tarn;

/** Takes the instances of an enumeration, one at a time. */
@FunctionalInterface
public interface InstanceReceiver {
    /**
     * Takes the next one, on the thread that enumerates.
     *
     * @param instance a value of the agent's own, never null
     */
    void test(TrInstance instance);
}
