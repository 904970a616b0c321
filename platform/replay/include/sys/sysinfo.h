#pragma once

#include <stdint.h>
#include <sys/types.h>

#define CPU_IDLE 0
#define CPU_USER 1
#define CPU_KERNEL 2
#define CPU_WAIT 3
#define CPU_STATES 4

/// The kernel's record goes on after the ticks; nothing here looks further.
typedef struct cpu_sysinfo {
    uint_t cpu[CPU_STATES];
} cpu_sysinfo_t;

typedef struct cpu_stat {
    uint_t __cpu_stat_lock[2];
    cpu_sysinfo_t cpu_sysinfo;
} cpu_stat_t;

/// Sums of page counts, to which the kernel adds the current value once per second.
typedef struct vminfo {
    uint64_t freemem;
    uint64_t swap_resv;
    uint64_t swap_alloc;
    uint64_t swap_avail;
    uint64_t swap_free;
} vminfo_t;
