package com.kelvo.tarn;

/** Takes the instances of an enumeration, one at a time. */
@FunctionalInterface
public interface InstanceReceiver {
    void test(TrInstance instance);
}
