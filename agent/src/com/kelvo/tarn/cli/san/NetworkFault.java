package com.kelvo.tarn.cli.san;

import java.util.Locale;

/** What may be wrong with a storage network, in the order of the findings, and what is said of it. */
public enum NetworkFault {
    /** All online paths of a host to a unit share a fabric, and there is another. */
    UNIT_ONE_FABRIC("all online paths lead through fabric %s, and there is another"),
    /** The same of a switch. */
    UNIT_ONE_SWITCH("all online paths lead through switch %s, and there is another"),
    /** The same of a port of the array. */
    UNIT_ONE_ARRAY_PORT("all online paths lead to array port %s, and there is another"),
    /** A host does not see an array port that its peers see. */
    ZONING_GAP("two hosts or more that share a unit with each of these see it in fabric %s"),
    /** Hosts have ports of one name. */
    DUPLICATE_WWN("%s hosts have a port of this name"),
    /** Hosts have one name. */
    DUPLICATE_HOST("what was recorded at %s has no port in common"),
    /** All peers of a host see a unit. */
    HOST_LACKS_UNIT("all the others that share units with it see this one: %s"),
    /** Hosts share a unit and no other. */
    UNIT_SHARED_APART("%s hosts see it, among them some that share no other unit"),
    /** A model has several versions of firmware. */
    FIRMWARE_DRIFT("%s"),
    /** A model has several versions of the driver. */
    DRIVER_DRIFT("%s"),
    /** Far more initiators see an array port than others of its array. */
    ARRAY_PORT_CROWDED("%s"),
    /** A recording is too old. */
    HOST_OLD("it was recorded at %s"),
    /** A unit is not there any more. */
    UNIT_VANISHED("it was there at %s"),
    /** Units have fewer online paths. */
    HOST_LOST_PATHS("%s");

    private final String words;

    NetworkFault(String words) {
        this.words = words;
    }

    /** {@return the word for programs} */
    public String code() {
        return name().toLowerCase(Locale.ROOT).replace('_', '-');
    }

    String message(String details) {
        return String.format(Locale.ROOT, words, details);
    }
}
