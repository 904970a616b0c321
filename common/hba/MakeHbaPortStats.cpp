#include "common/hba/HbaCacheImpl.h"
#include "common/jni/LocalFrame.h"

namespace tarn {

jobject HbaCacheImpl::MakeHbaPortStats(HBA_PortAttributes &attributes, HBA_PortStatistics &statistics) {
    const WithTracing tracing("MakeHbaPortStats");
    return makeInLocalFrame(env, 44, [&] {
        const jobject cimClass = hbaClassNames.getFCPortStatisticsClass();
        const Values values = defaultValues(cimClass);

        // A counter that the adapter does not keep has all bits set, and is passed on so.
        FCPortStatisticsProvider::Static &of = fcPortStatisticsProvider;
        values.at(of.field_elementName).set(wwnText(attributes.PortWWN));
        values.at(of.field_instanceID).set(wwnText(attributes.PortWWN));
        values.at(of.field_packetsTransmitted).set(uint64(statistics.TxFrames));
        values.at(of.field_packetsReceived).set(uint64(statistics.RxFrames));
        values.at(of.field_lipCount).set(uint64(statistics.LIPCount));
        values.at(of.field_nosCount).set(uint64(statistics.NOSCount));
        values.at(of.field_errorFrames).set(uint64(statistics.ErrorFrames));
        values.at(of.field_dumpedFrames).set(uint64(statistics.DumpedFrames));
        values.at(of.field_linkFailures).set(uint64(statistics.LinkFailureCount));
        values.at(of.field_lossOfSyncCounter).set(uint64(statistics.LossOfSyncCount));
        values.at(of.field_lossOfSignalCounter).set(uint64(statistics.LossOfSignalCount));
        values.at(of.field_primitiveSeqProtocolErrCount).set(uint64(statistics.PrimitiveSeqProtocolErrCount));
        values.at(of.field_invalidTransmissionWords).set(uint64(statistics.InvalidTxWordCount));
        values.at(of.field_crcErrors).set(uint64(statistics.InvalidCRCCount));

        return makeInstance(hbaClassNames.getFCPortStatisticsClass(), values);
    });
}

} // namespace tarn
