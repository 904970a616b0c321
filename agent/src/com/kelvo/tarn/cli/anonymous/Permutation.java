package com.kelvo.tarn.cli.anonymous;

import java.math.BigInteger;
import java.nio.charset.StandardCharsets;
import java.security.GeneralSecurityException;
import javax.crypto.Mac;
import javax.crypto.spec.SecretKeySpec;

/**
 * Permutations of the numbers from 0 to any limit, one of each domain, which only the key tells from random ones: a
 * Feistel network whose rounds are HMAC-SHA256.
 */
final class Permutation {
    private static final String ALGORITHM = "HmacSHA256";
    private static final int DIGEST_BITS = 256;
    private static final int ROUNDS = 10;

    private final Mac mac;

    /** With a key that is long enough not to be guessed. */
    Permutation(byte[] key) {
        try {
            mac = Mac.getInstance(ALGORITHM);
            mac.init(new SecretKeySpec(key, ALGORITHM));
        } catch (GeneralSecurityException missing) {
            throw new IllegalStateException(missing); // each Java platform has it
        }
    }

    /**
     * {@return another number below the limit} Different numbers become different ones.
     *
     * @param domain what the number is; each domain of each limit has a permutation of its own
     * @param number at least 0
     * @param limit more than the number, and at most 2 to the 512
     */
    BigInteger of(String domain, BigInteger number, BigInteger limit) {
        int bits = limit.subtract(BigInteger.ONE).bitLength();
        BigInteger found = number;
        do { // what is not below the limit is only on the way: the network permutes up to the next power of two
            found = network(domain + "\0" + limit, found, bits);
        } while (found.compareTo(limit) >= 0);
        return found;
    }

    private BigInteger network(String domain, BigInteger number, int bits) {
        int upperBits = bits / 2;
        int lowerBits = bits - upperBits;
        BigInteger upper = number.shiftRight(lowerBits);
        BigInteger lower = lowest(number, lowerBits);
        for (int round = 0; round < ROUNDS; round++) {
            int changed = round % 2 == 0 ? upperBits : lowerBits;
            BigInteger next = lowest(upper.add(new BigInteger(1, digest(domain, round, lower))), changed);
            upper = lower;
            lower = next;
        }
        return upper.shiftLeft(lowerBits).or(lower); // after an even number of rounds each half has its own width
    }

    /** Bytes that nothing leads back from, not even the key: for what nobody needs to recognise. */
    byte[] digest(String domain, int round, BigInteger number) {
        mac.update(domain.getBytes(StandardCharsets.UTF_8));
        mac.update((byte) 0);
        mac.update((byte) round);
        return mac.doFinal(number.toByteArray());
    }

    private static BigInteger lowest(BigInteger number, int bits) {
        if (bits > DIGEST_BITS) {
            throw new IllegalArgumentException("a round cannot fill " + bits + " bits");
        }
        return number.and(BigInteger.ONE.shiftLeft(bits).subtract(BigInteger.ONE));
    }
}
