#pragma once

#include <cstddef>
#include <cstdint>

#include "common/system/ScsiCommands.h"
#include "platform/solaris.h"

// The array interrogator: finds one LUN per controller of a two-controller array, reads over SCSI pass-through the
// statistics that the controllers keep of their drives, and returns them as one string of fixed-width numbers.
// docs/array-report.md describes that string. Nothing here knows of Java.
//
// The modules, in the order they build on each other: ...CTrace (for debugging), ...CCommands (SCSI commands), ...CPages
// (page decoding), ...CReport (the string), ...C (discovery and scan).

namespace tarn {

/// Drives that one controller's report has room for; those beyond, in the order of the walk, are not reported.
constexpr unsigned maximumDrives = 448;

constexpr std::size_t countWidth = 5;     // "%5u"
constexpr std::size_t placeWidth = 3 + 3; // tray "%3u", slot "%3u"
constexpr std::size_t recordWidth = 80;   // eight counters, each "%10u"
constexpr std::size_t commonStringSize = countWidth + placeWidth * maximumDrives + countWidth + 1;
constexpr std::size_t uncommonStringSize = recordWidth * maximumDrives + 1;
constexpr std::size_t returnStringSize = commonStringSize - 1 + 2 * (uncommonStringSize - 1) + 1;
static_assert(commonStringSize == 2699 && uncommonStringSize == 35841 && returnStringSize == 74379);

/// The reports that hold no statistics.
constexpr const char noDataReport[] = "    0";    // nothing could be read, or no drive has a place
constexpr const char logSelectReport[] = "   -2"; // a controller was sent LOG SELECT page 0x30

constexpr unsigned driveChannels = 16;        // that statistics pages report on
constexpr unsigned translationChannels = 256; // rows of the translation table; pages name 0 to 31
constexpr unsigned driveIdentifiers = 256;    // on one channel

/// The counters of one drive, in page order and in the order of the report, which leaves the last one out.
enum DriveCounter : unsigned {
    TotalDriveReadRequests,
    TotalDriveWriteRequests,
    TotalDriveBlocksRequested,
    TotalDriveIOsRequested,
    TotalDriveRecoveredErrors,
    TotalDriveUnrecoveredErrors,
    TotalDriveRequestTimeouts,
    TotalDriveRetriedRequests,
    TotalDriveRBusResets,
};
constexpr unsigned driveCounters = TotalDriveRBusResets + 1;
constexpr unsigned reportedDriveCounters = TotalDriveRetriedRequests + 1;

struct DriveStatistics {
    std::uint32_t present; ///< 1 once a parameter of that drive was decoded in this scan, else 0
    std::uint32_t counters[driveCounters];
};

/// Where a drive sits; `unknownPlace` in either field means nowhere.
struct TraySlot {
    std::uint8_t tray;
    std::uint8_t slot;
};
constexpr std::uint8_t unknownPlace = 0xFF;

/// How the value of a controller statistic is read. The bytes are read wherever the parameter's own length ends.
enum class ParaKind : std::uint8_t {
    number,                   ///< 4 bytes, big-endian
    sourceDeviceIdentifier,   ///< text of `controllerTextSize`
    errorCountByInitiator,    ///< a big-endian count for each of the `initiators`, of which the low 16 bits are kept
    logicalUnitDriverVersion, ///< text of `controllerTextSize`
};
constexpr std::size_t controllerTextSize = 10;
constexpr std::size_t initiators = 32;
constexpr std::size_t initiatorEntrySize = 4;

/// One controller statistic: its parameter code in the page, its name, the form of its value.
struct ParaCode {
    std::uint16_t code;
    char name[40];
    ParaKind kind;
};
constexpr int paraCodes = 53;

/// Bytes of stack that scsiInterrogatorC keeps its buffers in.
extern const std::size_t scanStack;

} // namespace tarn

extern "C" {

// ---- Tables. One scan at a time uses them; scsiInterrogatorC sees to that ----------------------------------------

/// By channel and drive identifier, from LOG SENSE page 0x3B. Gathers over both controllers of one scan.
extern tarn::DriveStatistics driveStatistics[tarn::driveChannels][tarn::driveIdentifiers];
static_assert(sizeof driveStatistics == 163840);

/// By channel and drive identifier, from RECEIVE DIAGNOSTIC RESULTS page 0xA0 of the controller at hand.
extern tarn::TraySlot driveChIdtoTraySlot[tarn::translationChannels][tarn::driveIdentifiers];
static_assert(sizeof driveChIdtoTraySlot == 131072);

/// The controller statistics, in ascending order of their codes.
extern const tarn::ParaCode paraCode[tarn::paraCodes];

// ---- Commands ----------------------------------------------------------------------------------------------------

/// Sends the command of `cdbLength` bytes (6 or 10) to an open raw-disk device. Returns 0, or 1 when the request
/// failed; a command that the device ended with an error status has not failed in this sense.
int scsiIoctl(int descriptor, uscsi_cmd *command, unsigned char cdbLength, unsigned char *cdb);

/// Read commands. `command` names direction, timeout and buffer; the answer is in its buffer afterwards, and its
/// `uscsi_cdb` is of no further use. Each returns what scsiIoctl returned.
int scsiStandardInquiry(int descriptor, uscsi_cmd *command);     ///< at most `inquirySize` bytes
int scsiInquiryVPD80(int descriptor, uscsi_cmd *command);        ///< unit serial number, likewise
int scsiInquiryVPDC0(int descriptor, uscsi_cmd *command);        ///< vendor-specific, likewise
int scsiLogSense3B(int descriptor, uscsi_cmd *command);          ///< statistics, at most `dataBufferSize` bytes
int scsiReceiveDiagnosticA0(int descriptor, uscsi_cmd *command); ///< enclosure translation, likewise

/// LOG SELECT of page 0x30 with one parameter. The caller sets `uscsi_flags` to 0 (data to the device) before, and
/// afterwards puts back the flags and its own buffer and length, which this call has replaced.
int scsiLogSelect30(int descriptor, uscsi_cmd *command);

// ---- Pages. Nothing outside `dataBufferSize` bytes from `page` is read, whatever the lengths in it say -----------

/// Fills `driveChIdtoTraySlot` from an enclosure translation page; drives that it does not place have no place.
void processReceiveDiagnosticA0buffer(const unsigned char *page);

/// Index in `paraCode` of the two code bytes at the start of the parameter, or -1.
int enumerateParaCode(const unsigned char *parameter);

/// Decodes a statistics page into `driveStatistics` and `paraValue`, then reports every drive that is present there and
/// has a place in `driveChIdtoTraySlot`: how many (at most `maximumDrives`) in `drivesOut`; count, places and record
/// width in `commonOut` (`commonStringSize` bytes); their records in `uncommonOut` (`uncommonStringSize` bytes, left
/// alone when there are none). Sets `logSelectOut` to 1 when the drives show I/Os but no blocks, which calls for
/// scsiLogSelect30, and leaves it alone otherwise.
void processLogSense3Bbuffer(const unsigned char *page, unsigned *drivesOut, char *commonOut, char *uncommonOut,
                             int *logSelectOut);

// ---- Report and scan ---------------------------------------------------------------------------------------------

/// Joins the two controllers' strings into `returnString` (`returnStringSize` bytes). The strings of controller 1 and 2
/// stand one after the other, `commonStringSize` and `uncommonStringSize` bytes each, empty when a controller gave
/// none; the counts are those of processLogSense3Bbuffer. Returns 0.
int buildReturnString(char *returnString, const char *commonReturnString, const char *uncommonReturnString,
                      unsigned numberOfDrivesOut1, unsigned numberOfDrivesOut2);

/// Scans the array whose controllers report these identities (at most 16 characters each) in INQUIRY page 0xC0, and
/// whose data LUNs report `vendorId` (8) and `productId` (16) in their INQUIRY data; longer texts are cut, shorter ones
/// padded with blanks. The report goes to `returnString` (`returnStringSize` bytes), in which failures show as missing
/// data. One scan runs at a time, a second one waits. Returns 0.
int scsiInterrogatorC(char *returnString, const char *controller1Id, const char *controller2Id, const char *vendorId,
                      const char *productId);
}
