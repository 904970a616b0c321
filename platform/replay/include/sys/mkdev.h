#pragma once

#include <sys/sysmacros.h>
