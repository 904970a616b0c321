package com.kelvo.tarn.inventory;

/** What a disk is. Texts have no blanks at their ends; what is unknown is null. */
public final class Identity {
    /** The disk's name, such as "c1t0d0"; where an identity is written out, it stands under that. */
    public final transient String disk;
    /** Who made it, as the driver or its standard INQUIRY tells. */
    public final String vendor;
    /** Its product identification. */
    public final String product;
    /** Its product's revision. */
    public final String revision;
    /** Its unit serial number. */
    public final String serial;
    /**
     * The logical unit's best identifier: "naa." and lower-case hexadecimal digits, "eui." and such, or "t10." and
     * text.
     */
    public final String designator;
    /** Its size in bytes, as the driver tells. */
    public final Long sizeBytes;
    /**
     * Where what is known comes from: "driver" when only its statistics told of it, "device" when some of it is the
     * answer to a command, "name" when the designator comes of the name; null when nothing is known.
     */
    public final String from;

    Identity(String disk, String vendor, String product, String revision, String serial, String designator,
            long sizeBytes, String from) {
        this.disk = disk;
        this.vendor = vendor;
        this.product = product;
        this.revision = revision;
        this.serial = serial;
        this.designator = designator;
        this.sizeBytes = sizeBytes < 0 ? null : sizeBytes;
        this.from = from;
    }
}
