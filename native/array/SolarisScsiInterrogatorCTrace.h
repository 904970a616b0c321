#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>

#include "native/array/SolarisScsiInterrogatorC.h"

// What the interrogator tells of its work to whoever debugs it, and what it keeps for that alone. It is compiled and
// checked either way; as long as it is off, all of it is discarded.

namespace tarn {

/// On, the trace goes to standard error.
inline constexpr bool traceIsOn = false;

/// Why something that was asked for is not there.
namespace missing {
inline constexpr const char *lun = "No open.";
inline constexpr const char *standardInquiry = "No SCSI Standard Inquiry.";
inline constexpr const char *arrayLun = "not a recognized LSI-derived LUN - skipping. ";
inline constexpr const char *pageC0 = "scsiInquiryVPDC0 failed - skipping. ";
inline constexpr const char *chosenLun = "No open during inbanding.";
inline constexpr const char *pageA0 = "scsiReceiveDiagnosticA0 failed - skipping.";
inline constexpr const char *page3B = "scsiLogSense3B failed - skipping.";
inline constexpr const char *logSelect = "scsiLogSelect30 failed - ignoring";
} // namespace missing

/// The latest controller statistics that are not numbers.
struct ControllerTexts {
    char sourceDeviceIdentifier[controllerTextSize + 1] = {};
    char logicalUnitDriverVersion[controllerTextSize + 1] = {};
    std::uint16_t errorCountByInitiator[initiators] = {};
};

/// Keeps the value of the controller statistic `paraCode[index]`: a number in `paraValue`.
void keepControllerStatistic(const unsigned char *value, int index, ControllerTexts &texts);

void traceFailedRequest(int error);
void traceEntry(const char *name);
void traceInquiry(const unsigned char *inquiry);
void traceMissing(const char *why);
void traceOwner(const unsigned char *pageC0, std::optional<std::size_t> controller);
void traceEndOfDiscovery();
void traceChosenLun(std::size_t controller, const char *identity, const char *path, bool isAccess);
void traceStatisticsOf(const char *path);
void traceEndOfTranslation();
void traceDrivesHeading();
void traceDrive(unsigned channel, unsigned identifier, TraySlot place, const DriveStatistics &drive);
void traceControllerStatistics(const ControllerTexts &texts);
void traceStrings(const char *const (&common)[2], const char *const (&uncommon)[2], unsigned numberOfDrivesOut1,
                  unsigned numberOfDrivesOut2);
void traceResult(const char *result);

} // namespace tarn

extern "C" {

/// The latest numbers of the controller statistics, by index of `paraCode`; only the first `paraCodes` are used.
extern std::uint32_t paraValue[100];

[[gnu::format(printf, 1, 2)]] inline void standalonePrintf(const char *format, ...) {
    if constexpr (tarn::traceIsOn) {
        std::va_list arguments;
        va_start(arguments, format);
        static_cast<void>(std::vfprintf(stderr, format, arguments));
        va_end(arguments);
    }
}

inline void standalonePuts(const char *text) {
    if constexpr (tarn::traceIsOn) {
        static_cast<void>(std::fprintf(stderr, "%s\n", text));
    }
}
}
