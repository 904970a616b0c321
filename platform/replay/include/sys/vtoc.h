#pragma once

#include <sys/types.h>
#include <time.h>

#define V_NUMPAR 8 // of a SPARC, whatever the build machine is

#define LEN_DKL_ASCII 128
#define LEN_DKL_VVOL 8

struct partition {
    ushort_t p_tag;
    ushort_t p_flag;
    long p_start; // a daddr_t, which is 64 bits wide on Solaris
    long p_size;
};

struct vtoc {
    unsigned long v_bootinfo[3];
    unsigned long v_sanity;
    unsigned long v_version;
    char v_volume[LEN_DKL_VVOL];
    ushort_t v_sectorsz;
    ushort_t v_nparts;
    unsigned long v_reserved[10];
    struct partition v_part[V_NUMPAR];
    time_t timestamp[V_NUMPAR];
    char v_asciilabel[LEN_DKL_ASCII];
};
