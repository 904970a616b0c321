#include "native/array/SolarisScsiInterrogatorCTrace.h"

#include <algorithm>
#include <cstring>

#include "common/system/ArrayLuns.h"
#include "native/array/BigEndian.h"

std::uint32_t paraValue[100];

namespace tarn {
namespace {

constexpr std::size_t inquiryRevisionAt = 32;
constexpr std::size_t revisionSize = 4;

void traceCharacters(const unsigned char *characters, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        standalonePrintf("%c", characters[i]);
    }
}

const char *nameOf(ParaKind kind) {
    return std::ranges::find(paraCode, kind, &ParaCode::kind)->name;
}

} // namespace

void keepControllerStatistic(const unsigned char *value, int index, ControllerTexts &texts) {
    switch (paraCode[index].kind) {
    case ParaKind::number:
        paraValue[index] = big32(value);
        break;
    case ParaKind::sourceDeviceIdentifier:
        std::memcpy(texts.sourceDeviceIdentifier, value, controllerTextSize);
        break;
    case ParaKind::logicalUnitDriverVersion:
        std::memcpy(texts.logicalUnitDriverVersion, value, controllerTextSize);
        break;
    case ParaKind::errorCountByInitiator:
        for (std::size_t i = 0; i < initiators; ++i) {
            texts.errorCountByInitiator[i] = static_cast<std::uint16_t>(big16(value + i * initiatorEntrySize + 2));
        }
        break;
    }
}

void traceFailedRequest(int error) {
    standalonePrintf("ioctl: %s\n", std::strerror(error));
}

void traceEntry(const char *name) {
    standalonePrintf("%s: ", name);
}

void traceInquiry(const unsigned char *inquiry) {
    standalonePrintf("INQ:\"");
    traceCharacters(inquiry + inquiryVendorAt, vendorSize);
    standalonePrintf("\" \"");
    traceCharacters(inquiry + inquiryProductAt, productSize);
    standalonePrintf("\" \"");
    traceCharacters(inquiry + inquiryRevisionAt, revisionSize);
    standalonePrintf("\" ");
}

void traceMissing(const char *why) {
    standalonePuts(why);
}

void traceOwner(const unsigned char *pageC0, std::optional<std::size_t> controller) {
    standalonePrintf("C0:\"");
    traceCharacters(pageC0 + pageC0ControllerAt, controllerIdSize);
    standalonePrintf("\"");
    standalonePuts(!controller ? "" : *controller == 0 ? "1" : "2");
}

void traceEndOfDiscovery() {
    standalonePuts("GOT UTM LUN from each Controller - ending scan.");
}

void traceChosenLun(std::size_t controller, const char *identity, const char *path, bool isAccess) {
    // The digit within the name belongs to the line's fixed text.
    standalonePrintf("Chosen Lun from Contro1ler%u\"%.16s\": %s (%sUTM)\n", static_cast<unsigned>(controller + 1),
                     identity, path, isAccess ? "" : "NON-");
}

void traceStatisticsOf(const char *path) {
    standalonePrintf("GETTING STATS FROM %s\n", path);
}

void traceEndOfTranslation() {
    standalonePuts("");
}

void traceDrivesHeading() {
    standalonePuts("\nDRIVE STATISTICS...");
    standalonePuts("ChDriTraSlo ReadReque WriteRequ BlocksR IOsReques Recov Unrec Timeo Retri BusRe");
}

void traceDrive(unsigned channel, unsigned identifier, TraySlot place, const DriveStatistics &drive) {
    const std::uint32_t *const counters = drive.counters;
    standalonePrintf(
        "%2u%3u%3u%3u %9u %9u %7u %9u %5u %5u %5u %5u %5u\n", channel, identifier, place.tray, place.slot,
        counters[TotalDriveReadRequests], counters[TotalDriveWriteRequests], counters[TotalDriveBlocksRequested],
        counters[TotalDriveIOsRequested], counters[TotalDriveRecoveredErrors], counters[TotalDriveUnrecoveredErrors],
        counters[TotalDriveRequestTimeouts], counters[TotalDriveRetriedRequests], counters[TotalDriveRBusResets]);
}

void traceControllerStatistics(const ControllerTexts &texts) {
    standalonePuts("\nCONTROLLER STATISTICS...");
    bool secondOfPair = false;
    for (int index = 0; index < paraCodes; ++index) {
        if (paraCode[index].kind != ParaKind::number) {
            continue;
        }
        standalonePrintf("%-28.28s:%10u", paraCode[index].name, paraValue[index]);
        standalonePrintf("%s", secondOfPair ? "\n" : " ");
        secondOfPair = !secondOfPair;
    }
    standalonePrintf("%-28.28s:%-10.10s ", nameOf(ParaKind::sourceDeviceIdentifier), texts.sourceDeviceIdentifier);
    standalonePrintf("%-28.28s:%-10.10s\n", nameOf(ParaKind::logicalUnitDriverVersion), texts.logicalUnitDriverVersion);
    standalonePrintf("%s...\n", nameOf(ParaKind::errorCountByInitiator));
    for (unsigned i = 0; i < initiators; ++i) {
        standalonePrintf("  %2u:%10u", i, texts.errorCountByInitiator[i]);
        standalonePrintf("%s", i % 5 == 4 ? "\n" : " ");
    }
    standalonePuts("");
}

void traceStrings(const char *const (&common)[2], const char *const (&uncommon)[2], unsigned numberOfDrivesOut1,
                  unsigned numberOfDrivesOut2) {
    standalonePrintf("commonReturnString[0]:%s\n", common[0]);
    standalonePrintf("commonReturnString[1]:%s\n", common[1]);
    standalonePrintf("uncommonReturnString[0]:%s\n", uncommon[0]);
    standalonePrintf("uncommonReturnString[1]:%s\n", uncommon[1]);
    standalonePrintf("numberOfDrivesOut1:%u\n", numberOfDrivesOut1);
    standalonePrintf("numberOfDrivesOut2:%u\n", numberOfDrivesOut2);
}

void traceResult(const char *result) {
    standalonePrintf("returnString:%s\n", result);
}

} // namespace tarn
