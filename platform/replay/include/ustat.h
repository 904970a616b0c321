#pragma once

#include <sys/types.h>

struct ustat {
    long f_tfree; // a daddr_t, which is 64 bits wide on Solaris
    ino_t f_tinode;
    char f_fname[6];
    char f_fpack[6];
};
