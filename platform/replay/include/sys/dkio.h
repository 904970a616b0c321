#pragma once

#include <sys/types.h>

#define DKIOC (0x04 << 8)
#define DKIOCGGEOM (DKIOC | 1)
#define DKIOCINFO (DKIOC | 3)
#define DKIOCGVTOC (DKIOC | 11)

#define DK_DEVLEN 16

struct dk_cinfo {
    char dki_cname[DK_DEVLEN];
    ushort_t dki_ctype;
    ushort_t dki_flags;
    ushort_t dki_cnum;
    uint_t dki_addr;
    uint_t dki_space;
    uint_t dki_prio;
    uint_t dki_vec;
    char dki_dname[DK_DEVLEN];
    uint_t dki_unit;
    uint_t dki_slave;
    ushort_t dki_partition;
    ushort_t dki_maxtransfer;
};

struct dk_geom {
    unsigned short dkg_ncyl;
    unsigned short dkg_acyl;
    unsigned short dkg_bcyl;
    unsigned short dkg_nhead;
    unsigned short dkg_obs1;
    unsigned short dkg_nsect;
    unsigned short dkg_intrlv;
    unsigned short dkg_obs2;
    unsigned short dkg_obs3;
    unsigned short dkg_apc;
    unsigned short dkg_rpm;
    unsigned short dkg_pcyl;
    unsigned short dkg_write_reinstruct;
    unsigned short dkg_read_reinstruct;
    unsigned short dkg_extra[7];
};
