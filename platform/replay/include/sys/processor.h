#pragma once

typedef int processorid_t;

#define P_OFFLINE 1
#define P_ONLINE 2
#define P_FAULTED 4
#define P_POWEROFF 5
#define P_NOINTR 6
#define P_SPARE 7

#define PI_TYPELEN 16
#define PI_FPUTYPE 32

typedef struct {
    int pi_state;
    char pi_processor_type[PI_TYPELEN];
    char pi_fputypes[PI_FPUTYPE];
    int pi_clock; // MHz
} processor_info_t;
