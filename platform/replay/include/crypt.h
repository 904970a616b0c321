#pragma once

// `crypt` is reached through platform/solaris.h; there is nothing else in the published header that anyone uses.
