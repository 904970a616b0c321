#pragma once

#include_next <unistd.h>

#define _SC_CPUID_MAX 517 // the largest processor id the system allows; far above the build machine's own names
