#include "common/hba/Conversions.h"

#include <cstring>

#include "common/system/Hexadecimal.h"

namespace tarn {

const char *toString(const HBA_wwn &wwn) {
    thread_local char text[2 * sizeof wwn.wwn + 1];
    char *next = text;
    for (const HBA_UINT8 byte : wwn.wwn) {
        const auto [high, low] = hexDigits(byte);
        *next++ = high;
        *next++ = low;
    }
    *next = '\0';
    return text;
}

bool equal(const HBA_wwn &a, const HBA_wwn &b) {
    return std::memcmp(a.wwn, b.wwn, sizeof a.wwn) == 0;
}

char *terminateString(char *text, int size) {
    int kept = 0;
    for (int i = 0; i < size && text[i] != '\0'; ++i) {
        const bool isPrintable = static_cast<signed char>(text[i]) >= ' '; // bytes from 0x80 up count as negative
        if (isPrintable) {
            text[kept++] = text[i];
        }
    }
    if (size > 0) {
        text[kept < size ? kept : size - 1] = '\0';
    }
    return text;
}

} // namespace tarn
