#include "common/hba/HbaProperties.h"

namespace tarn {

/// A counter that the adapter does not keep has all bits set, and is passed on so.
jobject HbaCacheImpl::MakeHbaPortStats(HBA_PortAttributes &attributes, HBA_PortStatistics &statistics) {
    const WithTracing tracing("MakeHbaPortStats");
    using Record = HBA_PortStatistics;
    struct PortCounters {
        Record &record;
        HBA_PortAttributes &port;
    } counters{statistics, attributes};
    constexpr auto portWWN = [](HbaCacheImpl &hba, PortCounters &of) { return hba.wwnText(of.port.PortWWN); };
    static constexpr auto table = std::to_array<Property<PortCounters>>({
        {"elementName", portWWN},
        {"instanceID", portWWN},
        {"packetsTransmitted", Kind::counter<&Record::TxFrames>},
        {"packetsReceived", Kind::counter<&Record::RxFrames>},
        {"lipCount", Kind::counter<&Record::LIPCount>},
        {"nosCount", Kind::counter<&Record::NOSCount>},
        {"errorFrames", Kind::counter<&Record::ErrorFrames>},
        {"dumpedFrames", Kind::counter<&Record::DumpedFrames>},
        {"linkFailures", Kind::counter<&Record::LinkFailureCount>},
        {"lossOfSyncCounter", Kind::counter<&Record::LossOfSyncCount>},
        {"lossOfSignalCounter", Kind::counter<&Record::LossOfSignalCount>},
        {"primitiveSeqProtocolErrCount", Kind::counter<&Record::PrimitiveSeqProtocolErrCount>},
        {"invalidTransmissionWords", Kind::counter<&Record::InvalidTxWordCount>},
        {"crcErrors", Kind::counter<&Record::InvalidCRCCount>},
    });
    return makeInstance(44, &HbaClassNames::getFCPortStatisticsClass, [&](jobject, const Values &values) {
        values.set(fcPortStatisticsProvider.field_properties, table, counters);
    });
}

} // namespace tarn
