#pragma once

struct spwd {
    char *sp_namp;
    char *sp_pwdp;
    int sp_lstchg;
    int sp_min;
    int sp_max;
    int sp_warn;
    int sp_inact;
    int sp_expire;
    unsigned int sp_flag;
};
