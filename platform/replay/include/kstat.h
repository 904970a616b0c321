#pragma once

#include <sys/kstat.h>

typedef struct kstat_ctl {
    kid_t kc_chain_id;
    kstat_t *kc_chain;
    int kc_kd;
} kstat_ctl_t;

extern "C" {
kstat_ctl_t *kstat_open(void);
int kstat_close(kstat_ctl_t *control);
kid_t kstat_read(kstat_ctl_t *control, kstat_t *record, void *buffer);
kid_t kstat_chain_update(kstat_ctl_t *control);
kstat_t *kstat_lookup(kstat_ctl_t *control, const char *module, int instance, const char *name);
}
