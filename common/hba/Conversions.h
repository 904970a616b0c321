#pragma once

#include "platform/solaris.h"

// What the HBA library's fixed-size fields say, in the form that goes to Java.

namespace tarn {

/// A world-wide name as 16 lower-case hexadecimal digits, byte 0 first. One buffer per thread: the text is valid until
/// the thread's next call.
const char *toString(const HBA_wwn &wwn);

bool equal(const HBA_wwn &a, const HBA_wwn &b);

/// Cleans a character field of `size` bytes in place and ends it: what remains are its bytes 32 to 127 before the first
/// NUL, in their order and at most `size` - 1 of them. Returns `text`.
char *terminateString(char *text, int size);

} // namespace tarn
