#pragma once

#define SI_SYSNAME 1
#define SI_HOSTNAME 2
#define SI_RELEASE 3
#define SI_VERSION 4
#define SI_PLATFORM 513
