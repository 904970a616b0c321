package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import java.math.BigInteger;

/** A count that only grows: 64 bits read without a sign, all of them set where it is not kept; or 32 that go round. */
public final class Counter {
    private static final long LOW_32 = 0xffffffffL;

    private final long bits;
    private final boolean goesRound;

    /**
     * Takes a counter of 64 bits.
     *
     * @param bits as the library tells it
     */
    public Counter(long bits) {
        this(bits, false);
    }

    private Counter(long bits, boolean goesRound) {
        this.bits = bits;
        this.goesRound = goesRound;
    }

    /**
     * {@return a counter of 32 bits, which is always kept}
     *
     * @param bits as the library tells it, with a sign
     */
    public static Counter of32(long bits) {
        return new Counter(bits & LOW_32, true);
    }

    /**
     * {@return a counter of 64 bits}
     *
     * @param instance what has it
     * @param property which
     */
    public static Counter of(TrInstance instance, TrProperty property) {
        return new Counter(Instances.number(instance, property).longValue());
    }

    /** {@return whether anything is counted} */
    public boolean isKept() {
        return bits != -1;
    }

    /** {@return the number, without a sign} */
    public BigInteger value() {
        return new BigInteger(Long.toUnsignedString(bits));
    }

    /** {@return the number in decimal digits; null when it is not kept} */
    public String text() {
        return isKept() ? Long.toUnsignedString(bits) : null;
    }

    /**
     * Whether it stands lower than at an earlier time, as after the host was started anew; or higher by 2^63 or more,
     * which nothing counts.
     */
    boolean wentBack(Counter before) {
        return !goesRound && isKept() && before.isKept()
            && (Long.compareUnsigned(bits, before.bits) < 0 || bits - before.bits < 0);
    }

    /** What it grew by since an earlier time; null when it went back, or is not kept at either time. */
    Double since(Counter before) {
        if (!isKept() || !before.isKept() || wentBack(before)) {
            return null;
        }
        return new Counter(goesRound ? bits - before.bits & LOW_32 : bits - before.bits).value().doubleValue();
    }
}
