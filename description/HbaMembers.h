#pragma once

#include "description/Members.h"

// Host bus adapters.

namespace description {

/// A number, or a list of them.
template <>
struct Form<HbaAnswers> {
    static void read(const Json &value, const Place &place, HbaAnswers &into) {
        into.always = !value.is_array();
        if (into.always) {
            Form<HBA_STATUS>::read(value, place, into.statuses.emplace_back());
        } else {
            Form<std::vector<HBA_STATUS>>::read(value, place, into.statuses);
        }
    }
    static bool isSame(const HbaAnswers &value, const HbaAnswers &) {
        return value.statuses.empty();
    }
    static void write(JsonWriter &writer, const HbaAnswers &value, const HbaAnswers &) {
        if (value.always) {
            writer.number(value.statuses.front());
        } else {
            Form<std::vector<HBA_STATUS>>::write(writer, value.statuses, {});
        }
    }
};

template <>
inline constexpr auto members<HBA_PORTATTRIBUTES> = table<HBA_PORTATTRIBUTES>(
    MEMBER(HBA_PORTATTRIBUTES, NodeWWN), MEMBER(HBA_PORTATTRIBUTES, PortWWN), MEMBER(HBA_PORTATTRIBUTES, PortFcId),
    MEMBER(HBA_PORTATTRIBUTES, PortType), MEMBER(HBA_PORTATTRIBUTES, PortState),
    MEMBER(HBA_PORTATTRIBUTES, PortSupportedClassofService), MEMBER(HBA_PORTATTRIBUTES, PortSupportedFc4Types),
    MEMBER(HBA_PORTATTRIBUTES, PortActiveFc4Types), MEMBER(HBA_PORTATTRIBUTES, PortSymbolicName),
    MEMBER(HBA_PORTATTRIBUTES, OSDeviceName), MEMBER(HBA_PORTATTRIBUTES, PortSupportedSpeed),
    MEMBER(HBA_PORTATTRIBUTES, PortSpeed), MEMBER(HBA_PORTATTRIBUTES, PortMaxFrameSize),
    MEMBER(HBA_PORTATTRIBUTES, FabricName), MEMBER(HBA_PORTATTRIBUTES, NumberofDiscoveredPorts));

template <>
inline constexpr auto members<HBA_PORTSTATISTICS> = table<HBA_PORTSTATISTICS>(
    MEMBER(HBA_PORTSTATISTICS, SecondsSinceLastReset), MEMBER(HBA_PORTSTATISTICS, TxFrames),
    MEMBER(HBA_PORTSTATISTICS, TxWords), MEMBER(HBA_PORTSTATISTICS, RxFrames), MEMBER(HBA_PORTSTATISTICS, RxWords),
    MEMBER(HBA_PORTSTATISTICS, LIPCount), MEMBER(HBA_PORTSTATISTICS, NOSCount), MEMBER(HBA_PORTSTATISTICS, ErrorFrames),
    MEMBER(HBA_PORTSTATISTICS, DumpedFrames), MEMBER(HBA_PORTSTATISTICS, LinkFailureCount),
    MEMBER(HBA_PORTSTATISTICS, LossOfSyncCount), MEMBER(HBA_PORTSTATISTICS, LossOfSignalCount),
    MEMBER(HBA_PORTSTATISTICS, PrimitiveSeqProtocolErrCount), MEMBER(HBA_PORTSTATISTICS, InvalidTxWordCount),
    MEMBER(HBA_PORTSTATISTICS, InvalidCRCCount));

template <>
inline constexpr auto members<HBA_ADAPTERATTRIBUTES> = table<HBA_ADAPTERATTRIBUTES>(
    MEMBER(HBA_ADAPTERATTRIBUTES, Manufacturer), MEMBER(HBA_ADAPTERATTRIBUTES, SerialNumber),
    MEMBER(HBA_ADAPTERATTRIBUTES, Model), MEMBER(HBA_ADAPTERATTRIBUTES, ModelDescription),
    MEMBER(HBA_ADAPTERATTRIBUTES, NodeWWN), MEMBER(HBA_ADAPTERATTRIBUTES, NodeSymbolicName),
    MEMBER(HBA_ADAPTERATTRIBUTES, HardwareVersion), MEMBER(HBA_ADAPTERATTRIBUTES, DriverVersion),
    MEMBER(HBA_ADAPTERATTRIBUTES, OptionROMVersion), MEMBER(HBA_ADAPTERATTRIBUTES, FirmwareVersion),
    MEMBER(HBA_ADAPTERATTRIBUTES, VendorSpecificID), MEMBER(HBA_ADAPTERATTRIBUTES, NumberOfPorts),
    MEMBER(HBA_ADAPTERATTRIBUTES, DriverName));

template <>
inline constexpr auto
    members<HBA_SCSIID> = table<HBA_SCSIID>(MEMBER(HBA_SCSIID, OSDeviceName), MEMBER(HBA_SCSIID, ScsiBusNumber),
                                            MEMBER(HBA_SCSIID, ScsiTargetNumber), MEMBER(HBA_SCSIID, ScsiOSLun));

template <>
inline constexpr auto members<HBA_FCPID> = table<HBA_FCPID>(MEMBER(HBA_FCPID, FcId), MEMBER(HBA_FCPID, NodeWWN),
                                                            MEMBER(HBA_FCPID, PortWWN), MEMBER(HBA_FCPID, FcpLun));

template <>
inline constexpr auto members<HBA_FCPSCSIENTRY> = table<HBA_FCPSCSIENTRY>(MEMBER(HBA_FCPSCSIENTRY, ScsiId),
                                                                          MEMBER(HBA_FCPSCSIENTRY, FcpId));

template <>
inline constexpr auto members<HbaDiscoveredPort::Status> =
    table<HbaDiscoveredPort::Status>(MEMBER(HbaDiscoveredPort::Status, GetDiscoveredPortAttributes));

template <>
inline constexpr auto members<HbaDiscoveredPort> = table<HbaDiscoveredPort>(MEMBER(HbaDiscoveredPort, attributes),
                                                                            MEMBER(HbaDiscoveredPort, status));

template <>
inline constexpr auto members<HbaPort::Status> = table<HbaPort::Status>(MEMBER(HbaPort::Status,
                                                                               GetAdapterPortAttributes),
                                                                        MEMBER(HbaPort::Status, GetPortStatistics));

/// What every reading finds, or a list of what successive ones do.
inline constexpr Member<HbaPort> statisticsRow = {
    "statistics",
    [](const Json &value, const Place &place, HbaPort &port) {
        if (!value.is_array()) {
            Form<decltype(port.statistics)>::read(value, place, port.statistics);
            return;
        }
        Form<decltype(port.laterStatistics)>::read(value, place, port.laterStatistics);
        if (port.laterStatistics.empty()) {
            place.refuse("one reading or more expected");
        }
        port.statistics = std::move(port.laterStatistics.front());
        port.laterStatistics.erase(port.laterStatistics.begin());
    },
    [](const HbaPort &port, const HbaPort &usual) {
        return port.laterStatistics.empty() &&
               Form<decltype(port.statistics)>::isSame(port.statistics, usual.statistics);
    },
    [](JsonWriter &writer, const HbaPort &port, const HbaPort &usual) {
        if (port.laterStatistics.empty()) {
            Form<Sparse<HBA_PORTSTATISTICS>>::write(writer, port.statistics, usual.statistics);
            return;
        }
        const Sparse<HBA_PORTSTATISTICS> blank;
        writer.beginList();
        Form<Sparse<HBA_PORTSTATISTICS>>::write(writer, port.statistics, blank);
        for (const Sparse<HBA_PORTSTATISTICS> &later : port.laterStatistics) {
            Form<Sparse<HBA_PORTSTATISTICS>>::write(writer, later, blank);
        }
        writer.endList();
    }};

template <>
inline constexpr auto members<HbaPort> = table<HbaPort>(MEMBER(HbaPort, attributes), statisticsRow,
                                                        MEMBER(HbaPort, discovered), MEMBER(HbaPort, status));

template <>
inline constexpr auto
    members<HbaAdapter::Status> = table<HbaAdapter::Status>(MEMBER(HbaAdapter::Status, GetAdapterName),
                                                            MEMBER(HbaAdapter::Status, GetAdapterAttributes),
                                                            MEMBER(HbaAdapter::Status, GetFcpTargetMapping));

template <>
struct Form<TargetMapping> {
    static void read(const Json &value, const Place &place, TargetMapping &into) {
        std::vector<Sparse<HBA_FCPSCSIENTRY>> entries;
        Form<std::vector<Sparse<HBA_FCPSCSIENTRY>>>::read(value, place, entries);
        into = TargetMapping(std::move(entries));
    }
    static bool isSame(const TargetMapping &value, const TargetMapping &usual) {
        return value.size() == 0 && usual.size() == 0;
    }
    static void write(JsonWriter &writer, const TargetMapping &value, const TargetMapping &) {
        writer.beginList(Layout::lines);
        for (std::size_t i = 0; i < value.size(); ++i) {
            Form<HBA_FCPSCSIENTRY>::write(writer, value[i], blank<HBA_FCPSCSIENTRY>());
        }
        writer.endList();
    }
};

inline constexpr std::string_view adapterCalls[] = {"GetAdapterName",      "OpenAdapter",
                                                    "RefreshInformation",  "GetAdapterAttributes",
                                                    "GetFcpTargetMapping", "GetAdapterPortAttributes",
                                                    "GetPortStatistics",   "GetDiscoveredPortAttributes"};

inline void requireAdapterCall(std::string_view call, const Place &place) {
    if (std::ranges::find(adapterCalls, call) == std::end(adapterCalls)) {
        place.refuse("unknown call");
    }
}

using AdapterSecondsForm = ByTextForm<unsigned, Form<unsigned>, Layout::inline_, requireAdapterCall>;

template <>
inline constexpr auto members<HbaAdapter> =
    table<HbaAdapter>(MEMBER(HbaAdapter, name), MEMBER(HbaAdapter, openFailures), MEMBER(HbaAdapter, attributes),
                      MEMBER(HbaAdapter, ports), MEMBER(HbaAdapter, targetMapping), MEMBER(HbaAdapter, NumberOfEntries),
                      MEMBER(HbaAdapter, status), FORMED_MEMBER(HbaAdapter, seconds, AdapterSecondsForm));

inline constexpr std::size_t mostAdapters = 4096; // that the library believes in
using AdaptersForm = BoundedForm<mostAdapters, HbaAdapter>;

template <>
inline constexpr auto members<Hba> = table<Hba>(MEMBER(Hba, NumberOfAdapters),
                                                FORMED_MEMBER(Hba, adapters, AdaptersForm));

template <>
struct Usual<HbaPort> {
    static HbaPort of(const HbaPort &port) {
        HbaPort usual{};
        usual.attributes.edit().NumberofDiscoveredPorts = static_cast<HBA_UINT32>(port.discovered.size());
        return usual;
    }
};

template <>
inline void complete(const Json &value, const Place &, HbaPort &port) {
    if (port.attributes.isHeld() && !isGiven(value, {"attributes", "NumberofDiscoveredPorts"})) {
        port.attributes.edit().NumberofDiscoveredPorts = Usual<HbaPort>::of(port).attributes->NumberofDiscoveredPorts;
    }
}

template <>
struct Usual<HbaAdapter> {
    static HbaAdapter of(const HbaAdapter &adapter) {
        HbaAdapter usual{};
        usual.attributes.edit().NumberOfPorts = static_cast<HBA_UINT32>(adapter.ports.size());
        return usual;
    }
};

template <>
inline void complete(const Json &value, const Place &place, HbaAdapter &adapter) {
    constexpr std::size_t nameRoom = 256; // of HBA_GetAdapterName, with the zero at the end
    requireRoom(adapter.name.size(), nameRoom - 1, "bytes", place.member("name"));
    if (adapter.attributes.isHeld() && !isGiven(value, {"attributes", "NumberOfPorts"})) {
        adapter.attributes.edit().NumberOfPorts = Usual<HbaAdapter>::of(adapter).attributes->NumberOfPorts;
    }
}

} // namespace description
