#include <algorithm>
#include <array>
#include <cstring>

#include "native/array/BigEndian.h"
#include "native/array/SolarisScsiInterrogatorC.h"
#include "native/array/SolarisScsiInterrogatorCTrace.h"

using namespace tarn;

DriveStatistics driveStatistics[driveChannels][driveIdentifiers];
TraySlot driveChIdtoTraySlot[translationChannels][driveIdentifiers];

constexpr ParaCode paraCode[paraCodes] = {
    {0x0030, "CumulativeTime", ParaKind::number},
    {0x8100, "SourceDeviceIdentifier", ParaKind::sourceDeviceIdentifier},
    {0x8101, "BusyQueueFullCount", ParaKind::number},
    {0x8102, "SourceErrorsCount", ParaKind::number},
    {0x8130, "NonSimpleQTagCount", ParaKind::number},
    {0x8131, "SrcDriverReselectRequestCount", ParaKind::number},
    {0x8132, "SrcDriverInterruptCount", ParaKind::number},
    {0x8160, "ErrorCountByInitiator", ParaKind::errorCountByInitiator},
    {0x8200, "LogicalUnitDriverVersion", ParaKind::logicalUnitDriverVersion},
    {0x8201, "TotalRequestsServiced", ParaKind::number},
    {0x8202, "TotalBlocksRequested", ParaKind::number},
    {0x8203, "TotalReadRequests", ParaKind::number},
    {0x8204, "TotalReadBlocksRequested", ParaKind::number},
    {0x8205, "TotalWriteRequests", ParaKind::number},
    {0x8206, "TotalWriteBlocksRequested", ParaKind::number},
    {0x8210, "QuickCheckCacheHits", ParaKind::number},
    {0x8211, "QuickCheckCacheHitsBlocks", ParaKind::number},
    {0x8220, "TotalLargeReads", ParaKind::number},
    {0x8221, "TotalLargeReadBlocksRequested", ParaKind::number},
    {0x8222, "TotalLargeWrites", ParaKind::number},
    {0x8223, "TotalLargeWriteBlocksRequested", ParaKind::number},
    {0x8230, "TotalStripesRead", ParaKind::number},
    {0x8231, "TotalClustersRead", ParaKind::number},
    {0x8232, "TotalStripesWritten", ParaKind::number},
    {0x8233, "TotalClustersWritten", ParaKind::number},
    {0x8238, "TotalGroupedWriteOperations", ParaKind::number},
    {0x8250, "TotalReadsWriteUsingAlg1", ParaKind::number},
    {0x8251, "TotalReadsWriteUsingAlg2", ParaKind::number},
    {0x8252, "TotalReadsWriteUsingAlg3", ParaKind::number},
    {0x8253, "TotalReadsWriteUsingAlg4", ParaKind::number},
    {0x8254, "TotalReadsWriteUsingAlg5", ParaKind::number},
    {0x8255, "TotalReadsWriteUsingAlg6", ParaKind::number},
    {0x8260, "TotalDataRepairOperationsAttempted", ParaKind::number},
    {0x8261, "TotalDataRepairReconstructsSuccesses", ParaKind::number},
    {0x8262, "TotalFailedRepairRequests", ParaKind::number},
    {0x8280, "TotalRPARequests", ParaKind::number},
    {0x8281, "AverageRPARequestWidth", ParaKind::number},
    {0x8282, "AverageRPARequestDepth", ParaKind::number},
    {0x8300, "TotalCacheReadRequests", ParaKind::number},
    {0x8301, "TotalCacheReadCurrentDataRequests", ParaKind::number},
    {0x8302, "TotalCacheReadRequestsOldData", ParaKind::number},
    {0x8303, "TotalCacheReadRequestsCurrentParity", ParaKind::number},
    {0x8304, "TotalCacheReadRequestsOldParity", ParaKind::number},
    {0x8305, "TotalDiskReadsFromCache", ParaKind::number},
    {0x8310, "TotalCacheReadChecks", ParaKind::number},
    {0x8311, "TotalCacheReadCheckHits", ParaKind::number},
    {0x8312, "TotalCacheFullSegmentOverwrites", ParaKind::number},
    {0x8313, "TotalCachePartialSegmentOverwrites", ParaKind::number},
    {0x8314, "TotalCacheWriteRequests", ParaKind::number},
    {0x8404, "TotalScsiStructures", ParaKind::number},
    {0x8405, "TotalScsiStructuresInUse", ParaKind::number},
    {0x8420, "TotalISRs", ParaKind::number},
    {0x8421, "TotalInterruptsServicedOnTheFly", ParaKind::number},
};
static_assert(std::ranges::is_sorted(paraCode, {}, &ParaCode::code));

namespace {

// Header of either page: two bytes not examined, then how many bytes follow it, big-endian.
constexpr std::size_t pageLengthAt = 2;
constexpr std::size_t pageHeaderSize = 4;

// Translation page: 8 more bytes not examined, then entries of 4 bytes, up to the end of the page.
constexpr std::size_t translationEntries = 12;
constexpr std::size_t translationEntrySize = 4;
constexpr std::size_t entryChannelAt = 0; // low five bits; an entry with any of the others set places no drive
constexpr std::size_t entryIdentifierAt = 1;
constexpr std::size_t entryTrayAt = 2;
constexpr std::size_t entrySlotAt = 3;
constexpr unsigned entryChannelMask = 0x1F;

// Statistics page: parameters, one after the other, up to the end of the page.
constexpr std::size_t parameterCodeAt = 0; // big-endian; after it a control byte, not examined
constexpr std::size_t parameterLengthAt = 3;
constexpr std::size_t parameterValueAt = 4;

// Code of a drive's parameter: 0xC0 + channel, then the drive's identifier.
constexpr unsigned driveCodeMask = 0xF0;
constexpr unsigned driveCode = 0xC0;
constexpr unsigned driveChannelMask = 0x0F;

constexpr std::size_t counterSize = 4;
constexpr std::size_t driveValueSize = counterSize * driveCounters;

/// Offset behind the page, which may lie a little outside the buffer.
std::size_t pageEnd(const unsigned char *page) {
    return big16(page + pageLengthAt) + pageHeaderSize;
}

bool isDrive(const unsigned char *parameter) {
    return (parameter[parameterCodeAt] & driveCodeMask) == driveCode;
}

/// Bytes that are read of the parameter's value, whatever its length byte says.
std::size_t bytesRead(const unsigned char *parameter, int index) {
    if (index < 0) {
        return isDrive(parameter) ? driveValueSize : 0;
    }
    switch (paraCode[index].kind) {
    case ParaKind::sourceDeviceIdentifier:
    case ParaKind::logicalUnitDriverVersion:
        return controllerTextSize;
    case ParaKind::errorCountByInitiator:
        return initiators * initiatorEntrySize;
    case ParaKind::number:
        break;
    }
    return counterSize;
}

void decodeDrive(const unsigned char *parameter) {
    const unsigned channel = parameter[parameterCodeAt] & driveChannelMask;
    DriveStatistics &drive = driveStatistics[channel][parameter[parameterCodeAt + 1]];
    drive.present = 1;
    for (unsigned counter = 0; counter < driveCounters; ++counter) {
        drive.counters[counter] = big32(parameter + parameterValueAt + counter * counterSize);
    }
}

/// Decodes the parameters that begin inside the page. One that would reach outside the buffer, by its own length or by
/// the bytes to be read of it, ends the decoding: nothing sound can follow it.
void decodeParameters(const unsigned char *page, ControllerTexts &texts) {
    const std::size_t end = pageEnd(page);
    std::size_t offset = pageHeaderSize;
    while (offset < end && offset + parameterValueAt <= dataBufferSize) {
        const unsigned char *const parameter = page + offset;
        const int index = isDrive(parameter) ? -1 : enumerateParaCode(parameter);
        const std::size_t length = parameter[parameterLengthAt];
        offset += parameterValueAt;
        if (offset + std::max(length, bytesRead(parameter, index)) > dataBufferSize) {
            return;
        }
        if (index >= 0) {
            keepControllerStatistic(parameter + parameterValueAt, index, texts);
        } else if (isDrive(parameter)) {
            decodeDrive(parameter);
        }
        offset += length;
    }
}

/// Writes `value`, which fits, right-aligned over `width` characters. Returns the place behind them.
char *putNumber(char *at, std::size_t width, std::uint32_t value) {
    char *const end = at + width;
    char *digit = end;
    do {
        *--digit = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0);
    std::fill(at, digit, ' ');
    return end;
}

/// The drives reported so far, written straight into the controller's two strings.
class DriveList {
public:
    DriveList(char *commonOut, char *uncommonOut)
        : common(commonOut), place(commonOut + countWidth), record(uncommonOut) {
    }

    bool isFull() const {
        return count == maximumDrives;
    }

    void add(TraySlot traySlot, const DriveStatistics &drive) {
        place = putNumber(place, placeWidth / 2, traySlot.tray);
        place = putNumber(place, placeWidth / 2, traySlot.slot);
        for (unsigned counter = 0; counter < reportedDriveCounters; ++counter) {
            record = putNumber(record, recordWidth / reportedDriveCounters, drive.counters[counter]);
        }
        anyBlocks = anyBlocks || drive.counters[TotalDriveBlocksRequested] != 0;
        anyIOs = anyIOs || drive.counters[TotalDriveIOsRequested] != 0;
        ++count;
    }

    /// Puts count, record width and string ends where they belong. Returns the count.
    unsigned finish() {
        putNumber(common, countWidth, count);
        if (count > 0) {
            place = putNumber(place, countWidth, recordWidth);
            *record = '\0';
        }
        *place = '\0';
        return count;
    }

    /// The drives did I/Os, but of no blocks.
    bool needsLogSelect() const {
        return anyIOs && !anyBlocks;
    }

private:
    char *common;
    char *place;
    char *record;
    unsigned count = 0;
    bool anyBlocks = false;
    bool anyIOs = false;
};

void listDrives(DriveList &list) {
    traceDrivesHeading();
    for (unsigned channel = 0; channel < driveChannels; ++channel) {
        for (unsigned identifier = 0; identifier < driveIdentifiers; ++identifier) {
            const DriveStatistics &drive = driveStatistics[channel][identifier];
            const TraySlot place = driveChIdtoTraySlot[channel][identifier];
            if (drive.present != 1 || place.tray == unknownPlace || place.slot == unknownPlace) {
                continue;
            }
            if (list.isFull()) {
                return;
            }
            list.add(place, drive);
            traceDrive(channel, identifier, place, drive);
        }
    }
}

} // namespace

void processReceiveDiagnosticA0buffer(const unsigned char *page) {
    std::memset(driveChIdtoTraySlot, unknownPlace, sizeof driveChIdtoTraySlot);
    const std::size_t end = pageEnd(page);
    for (std::size_t offset = translationEntries; offset < end && offset + translationEntrySize <= dataBufferSize;
         offset += translationEntrySize) {
        const unsigned char *const entry = page + offset;
        const unsigned channel = entry[entryChannelAt];
        if ((channel & ~entryChannelMask) == 0) {
            driveChIdtoTraySlot[channel][entry[entryIdentifierAt]] = {entry[entryTrayAt], entry[entrySlotAt]};
        }
    }
    traceEndOfTranslation();
}

int enumerateParaCode(const unsigned char *parameter) {
    const std::uint32_t code = big16(parameter + parameterCodeAt);
    const auto *const found = std::ranges::lower_bound(paraCode, code, {}, &ParaCode::code);
    return found != std::end(paraCode) && found->code == code ? static_cast<int>(found - paraCode) : -1;
}

void processLogSense3Bbuffer(const unsigned char *page, unsigned *drivesOut, char *commonOut, char *uncommonOut,
                             int *logSelectOut) {
    ControllerTexts texts;
    decodeParameters(page, texts);

    DriveList list(commonOut, uncommonOut);
    listDrives(list);
    *drivesOut = list.finish();
    if (list.needsLogSelect()) {
        *logSelectOut = 1;
    }
    traceControllerStatistics(texts);
}
