#pragma once

#define _SYS_NMLN 257
#define SYS_NMLN _SYS_NMLN

struct utsname {
    char sysname[_SYS_NMLN];
    char nodename[_SYS_NMLN];
    char release[_SYS_NMLN];
    char version[_SYS_NMLN];
    char machine[_SYS_NMLN];
};
