package com.kelvo.tarn.providers.solaris;

import com.kelvo.tarn.NativeLibrary;

/** Asks two-controller disk arrays for their drives' statistics. */
public final class SolarisScsiInterrogator {
    static {
        NativeLibrary.load();
    }

    /**
     * Reads the counters of an array's drives. The calling thread needs 450 KB of stack, besides what it has in use;
     * where less is left, nothing is done.
     *
     * @param controller1Id the first controller's identity
     * @param controller2Id the second's
     * @param vendorId the vendor that the array's units answer to an inquiry
     * @param productId the product
     * @return the drives' counters in fixed-width fields; "    0" when there are none, "   -2" when the controllers do
     *     not count blocks and have been told to
     * @throws StackOverflowError when too little stack is left
     */
    public native String scsiInterrogate(String controller1Id, String controller2Id, String vendorId,
                                         String productId);
}
