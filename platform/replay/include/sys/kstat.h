#pragma once

#include <stdint.h>

#include <sys/types.h>

#define KSTAT_STRLEN 31

#define KSTAT_TYPE_RAW 0
#define KSTAT_TYPE_NAMED 1
#define KSTAT_TYPE_INTR 2
#define KSTAT_TYPE_IO 3
#define KSTAT_TYPE_TIMER 4

typedef int kid_t;

typedef struct kstat {
    hrtime_t ks_crtime;
    struct kstat *ks_next;
    kid_t ks_kid;
    char ks_module[KSTAT_STRLEN];
    uchar_t ks_resv;
    int ks_instance;
    char ks_name[KSTAT_STRLEN];
    uchar_t ks_type;
    char ks_class[KSTAT_STRLEN];
    uchar_t ks_flags;
    void *ks_data;
    uint_t ks_ndata;
    size_t ks_data_size;
    hrtime_t ks_snaptime;
    int (*ks_update)(struct kstat *, int);
    void *ks_private;
    int (*ks_snapshot)(struct kstat *, void *, int);
    void *ks_lock;
} kstat_t;

#define KSTAT_DATA_CHAR 0
#define KSTAT_DATA_INT32 1
#define KSTAT_DATA_UINT32 2
#define KSTAT_DATA_INT64 3
#define KSTAT_DATA_UINT64 4

typedef struct kstat_named {
    char name[KSTAT_STRLEN];
    uchar_t data_type;
    union {
        char c[16];
        int32_t i32;
        uint32_t ui32;
        int64_t i64;
        uint64_t ui64;
        long l;
        ulong_t ul;
        struct {
            union {
                char *ptr;
                char __pad[8];
            } addr;
            uint32_t len;
        } str;
    } value;
} kstat_named_t;

typedef struct kstat_io {
    u_longlong_t nread;
    u_longlong_t nwritten;
    uint_t reads;
    uint_t writes;
    hrtime_t wtime;
    hrtime_t wlentime;
    hrtime_t wlastupdate;
    hrtime_t rtime;
    hrtime_t rlentime;
    hrtime_t rlastupdate;
    uint_t wcnt;
    uint_t rcnt;
} kstat_io_t;
