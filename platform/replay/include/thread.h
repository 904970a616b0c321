#pragma once

// Behind <signal.h>, which declares stack_t.
