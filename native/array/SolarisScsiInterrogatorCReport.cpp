#include <cstring>

#include "native/array/SolarisScsiInterrogatorC.h"
#include "native/array/SolarisScsiInterrogatorCTrace.h"

using namespace tarn;

namespace {

// Eight counters of "%10u" that are all 0.
constexpr char zeroRecord[] = "         0         0         0         0         0         0         0         0";
static_assert(sizeof zeroRecord - 1 == recordWidth);

/// Copies the text with its terminator. Returns the place of that terminator.
char *put(char *at, const char *text) {
    const std::size_t length = std::strlen(text);
    std::memcpy(at, text, length + 1);
    return at + length;
}

/// A controller without records gets as many zero records as the other one reported drives.
char *putRecords(char *at, const char *records, unsigned drivesOfOther) {
    if (records[0] != '\0') {
        return put(at, records);
    }
    for (unsigned i = 0; i < drivesOfOther; ++i) {
        at = put(at, zeroRecord);
    }
    return at;
}

} // namespace

int buildReturnString(char *returnString, const char *commonReturnString, const char *uncommonReturnString,
                      unsigned numberOfDrivesOut1, unsigned numberOfDrivesOut2) {
    const char *const common[] = {commonReturnString, commonReturnString + commonStringSize};
    const char *const uncommon[] = {uncommonReturnString, uncommonReturnString + uncommonStringSize};
    traceStrings(common, uncommon, numberOfDrivesOut1, numberOfDrivesOut2);

    const char *const places = common[0][0] != '\0' ? common[0] : common[1][0] != '\0' ? common[1] : noDataReport;
    char *at = put(returnString, places);
    if (std::strcmp(returnString, noDataReport) == 0) {
        return 0;
    }
    at = putRecords(at, uncommon[0], numberOfDrivesOut2);
    putRecords(at, uncommon[1], numberOfDrivesOut1);
    return 0;
}
