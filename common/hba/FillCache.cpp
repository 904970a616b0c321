#include <algorithm>
#include <array>
#include <new>
#include <string>

#include "common/hba/Conversions.h"
#include "common/hba/HbaCacheImpl.h"
#include "common/hba/LocalRoom.h"
#include "common/hba/RemotePortIndex.h"
#include "common/hba/library/AdapterWalk.h"
#include "common/hba/library/Messages.h"
#include "common/hba/library/TargetMappingTable.h"

namespace tarn {

/// One walk over every adapter, port, remote port and target mapping. What the HBA library refuses becomes a line in the
/// log and a hole in the result. A record goes into the result before its own arrays are filled.
class HbaCacheImpl::Fill : AdapterWalk<Fill> {
    friend AdapterWalk;

public:
    Fill(HbaCacheImpl &cacheImpl, jint grantedReferences)
        : cache(cacheImpl), env(cacheImpl.env), room(cacheImpl.env, grantedReferences, referencesBefore) {
    }

    jobjectArray walkAdapters(HBA_UINT32 count) {
        const jobjectArray result = jni::newObjectArray(env, static_cast<jsize>(count), cache.hbaRecord.cls);
        for (index = 0; index < count; ++index) {
            walkAdapter(result);
        }
        return result;
    }

private:
    void walkAdapter(jobjectArray result) {
        const WithAdapterHandle adapter(cache.library, index, adapterName.data());
        shownName = adapterName;
        terminateString(shownName.data(), adapterNameSize);
        handle = adapter.handle;
        if (handle == 0) {
            warn([&] { return unableToOpen(index, shownName.data(), adapter.status); });
            return;
        }
        refreshInformation(handle, adapterName.data());
        if (refuses("GetAdapterAttributes", HBA_GetAdapterAttributes(handle, &adapterAttributes))) {
            return;
        }
        room.take(3);
        const jobject hba = cache.MakeHba(place(), adapterAttributes);
        const auto portCount = static_cast<jsize>(
            believed([] { return std::string("ports"); }, adapterAttributes.NumberOfPorts, maximumPorts));
        const jobjectArray ports = jni::newObjectArray(env, portCount, cache.hbaPortRecord.cls);
        jni::setElement(env, result, place(), cache.hbaRecord.make(hba, ports));

        fetchTargetMapping();
        room.reserve(std::int64_t{referencesPerPort} * portCount);
        for (jsize p = 0; p < portCount; ++p) {
            walkPort(ports, p);
        }
        mapping.release();
    }

    /// The mapping serves all ports of the adapter. When it cannot be had, they are walked without one, and the log has
    /// the status that the library gave, which is OK when it was memory that lacked.
    void fetchTargetMapping() {
        bool isFetched =
            mapping.fetch([this](HBA_FCPTARGETMAPPING *storage) { return HBA_GetFcpTargetMapping(handle, storage); });
        try {
            remotePorts.build(mapping.entries());
        } catch (const std::bad_alloc &) {
            isFetched = false;
        }
        if (!isFetched) {
            warn([&] { return BadStatus("GetFcpTargetMapping", mapping.status(), index, shownName.data()); });
        }
    }

    void walkPort(jobjectArray ports, jsize p) {
        const auto port = static_cast<HBA_UINT32>(p);
        if (refuses("GetAdapterPortAttributes", HBA_GetAdapterPortAttributes(handle, port, &portAttributes))) {
            return;
        }
        room.take(referencesPerPort);
        const jobject portInstance = cache.MakeHbaPort(place(), p, portAttributes);
        jobject statistics = nullptr;
        if (!refuses("GetPortStatistics", HBA_GetPortStatistics(handle, port, &portStatistics))) {
            statistics = cache.MakeHbaPortStats(portAttributes, portStatistics);
        }
        const jsize discoveredCount = believedDiscoveredPorts(port);
        const jobjectArray discovered = jni::newObjectArray(env, discoveredCount, cache.hbaDiscoveredPortRecord.cls);
        jni::setElement(env, ports, p, cache.hbaPortRecord.make(portInstance, statistics, discovered));

        room.reserve(std::int64_t{referencesPerDiscoveredPort} * discoveredCount);
        for (jsize d = 0; d < discoveredCount; ++d) {
            walkDiscoveredPort(discovered, p, d, portInstance);
        }
    }

    void walkDiscoveredPort(jobjectArray discovered, jsize p, jsize d, jobject portInstance) {
        if (refuses("GetDiscoveredPortAttributes",
                    HBA_GetDiscoveredPortAttributes(handle, static_cast<HBA_UINT32>(p), static_cast<HBA_UINT32>(d),
                                                    &discoveredAttributes))) {
            return;
        }
        room.take(referencesPerDiscoveredPort);
        const jobject remote = cache.MakeHbaDiscoPort(place(), p, discoveredAttributes);
        const auto matches = remotePorts.find(discoveredAttributes.PortWWN);
        const jobjectArray targets = jni::newObjectArray(env, static_cast<jsize>(matches.size()), cache.trInstance.cls);
        jni::setElement(env, discovered, d, cache.hbaDiscoveredPortRecord.make(remote, targets));

        room.reserve(static_cast<std::int64_t>(matches.size()));
        jsize k = 0;
        for (const RemotePortIndex::Place &match : matches) {
            room.take(1);
            jni::setElement(
                env, targets, k++,
                cache.MakeTargetMapping(portInstance, remote, mapping.entries()[match.position], adapterAttributes));
        }
    }

    /// Of the adapter, in Java's arrays.
    jsize place() const {
        return static_cast<jsize>(index);
    }

    void tellRefused(const char *callName, HBA_STATUS status) {
        warn([&] { return BadStatus(callName, status, index, shownName.data()); });
    }

    template <class What>
    void tellTooMany(What what, HBA_UINT32 count, HBA_UINT32 maximum) {
        warn([&] { return tooMany(what(), count, adapterText(index, shownName.data()), maximum); });
    }

    /// The port's, or none when it says too many, or together with the ports before it.
    jsize believedDiscoveredPorts(HBA_UINT32 port) {
        const HBA_UINT32 count = believed([port] { return discoveredPortsOf(port); },
                                          portAttributes.NumberofDiscoveredPorts, maximumDiscoveredPorts);
        const auto complain = [&] {
            warn([&] { return tooManyTogether(port, count, adapterText(index, shownName.data())); });
        };
        return discoveredPorts.add(count, complain) ? static_cast<jsize>(count) : 0;
    }

    /// A string, not the thread's one line of BadStatus: Java, asked for the log's class, may come back for a walk of its
    /// own, which words lines of its own. Nothing about a line ends the walk, as long as the virtual machine is well.
    template <class Line>
    void warn(Line line) {
        try {
            const std::string message = line();
            cache.warn(message.c_str());
        } catch (const std::bad_alloc &) {
            // There is no memory to tell it.
        }
    }

    static constexpr jint referencesBefore = 19;           // the classes and the result
    static constexpr jint referencesPerPort = 4;           // the port, its statistics, an array, the record
    static constexpr jint referencesPerDiscoveredPort = 3; // the remote port, an array, the record

    HbaCacheImpl &cache;
    JNIEnv *const env;
    LocalRoom room;

    // The adapter that the walk has come to.
    std::array<char, adapterNameSize> adapterName{};
    std::array<char, adapterNameSize> shownName{}; // without what a Java string cannot hold
    HBA_ADAPTERATTRIBUTES adapterAttributes{};
    TargetMappingTable mapping;
    RemotePortIndex remotePorts;
    DiscoveredPortSum discoveredPorts;

    HBA_PORTATTRIBUTES portAttributes{};
    HBA_PORTSTATISTICS portStatistics{};
    HBA_PORTATTRIBUTES discoveredAttributes{};
};

constexpr std::size_t HbaCacheImpl::fillStack = sizeof(HbaCacheImpl) + sizeof(Fill);

jobjectArray HbaCacheImpl::FillCache() {
    constexpr HBA_UINT32 referencesPerAdapter = 10;
    const HBA_UINT32 count = HBA_GetNumberOfAdapters();
    if (count > maximumAdapters) {
        warn(tooMany("adapters", count, "the HBA library", maximumAdapters).c_str());
    }
    const HBA_UINT32 adapters = believed(count, maximumAdapters);
    const auto references = static_cast<jint>(referencesPerAdapter * adapters);
    if (env->EnsureLocalCapacity(references) < 0) {
        return nullptr;
    }
    try {
        return Fill(*this, std::max(entryCapacity, references)).walkAdapters(adapters);
    } catch (const NoLocalRoom &) {
        return nullptr;
    }
}

} // namespace tarn
