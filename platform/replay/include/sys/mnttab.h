#pragma once

#define MNTTAB "/etc/mnttab"
#define MNT_LINE_MAX 1024

#define MNT_TOOLONG 1
#define MNT_TOOMANY 2
#define MNT_TOOFEW 3

struct mnttab {
    char *mnt_special;
    char *mnt_mountp;
    char *mnt_fstype;
    char *mnt_mntopts;
    char *mnt_time;
};
