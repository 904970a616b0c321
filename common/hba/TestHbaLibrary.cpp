#include <array>
#include <cstdarg>
#include <cstdio>

#include "common/hba/Conversions.h"
#include "common/hba/HbaCacheImpl.h"
#include "common/hba/library/AdapterWalk.h"
#include "common/hba/library/Messages.h"
#include "common/hba/library/TargetMappingTable.h"

namespace tarn {

struct ListMembers : NamedClass<"java/util/List"> {
    using NamedClass::NamedClass;
    InstanceMethod meth_add{*this, "add", "(Ljava/lang/Object;)Z", Binding::atOnce};
};

/// One walk over all that the HBA library reports, as lines of a Java list. Whatever it refuses is a line like any other.
class HbaCacheImpl::SelfTest : AdapterWalk<SelfTest> {
    friend AdapterWalk;

public:
    SelfTest(HbaCacheImpl &cacheImpl, jobject lines) : library(cacheImpl.library), env(cacheImpl.env), list(lines) {
    }

    void walkAdapters() {
        const HBA_UINT32 count = HBA_GetNumberOfAdapters();
        if (count > maximumAdapters) {
            addLine("%s", tooMany("adapters", count, "the HBA library", maximumAdapters).c_str());
            return;
        }
        for (index = 0; index < count; ++index) {
            walkAdapter();
        }
    }

private:
    void walkAdapter() {
        const WithAdapterHandle adapter(library, index, name.data());
        handle = adapter.handle;
        const bool isRefreshed = handle != 0 && refreshInformation(handle, name.data());
        terminateString(name.data(), adapterNameSize); // what a Java string cannot hold is not shown
        if (handle == 0) {
            addLine("%s", unableToOpen(index, name.data(), adapter.status).c_str());
            return;
        }
        HBA_ADAPTERATTRIBUTES attributes{};
        if (refuses("GetAdapterAttributes", HBA_GetAdapterAttributes(handle, &attributes))) {
            return;
        }
        addLine("HBA %u name(%s) NWWN=%s", index, name.data(), toString(attributes.NodeWWN));
        addLine("  manufacturer(%s) serial(%s) model(%s) descr(%s)", terminateString(attributes.Manufacturer, 64),
                terminateString(attributes.SerialNumber, 64), terminateString(attributes.Model, 256),
                terminateString(attributes.ModelDescription, 256));
        if (!isRefreshed) {
            addLine("  (HBA_RefreshInformation not called.)");
        }
        const HBA_UINT32 ports = believed([] { return std::string("ports"); }, attributes.NumberOfPorts, maximumPorts);
        for (HBA_UINT32 p = 0; p < ports; ++p) {
            walkPort(p);
        }
        describeTargetMapping();
    }

    void walkPort(HBA_UINT32 p) {
        HBA_PORTATTRIBUTES port{};
        if (refuses("GetAdapterPortAttributes", HBA_GetAdapterPortAttributes(handle, p, &port))) {
            return;
        }
        addLine("  Port index %d NWWN=%s", static_cast<int>(p), toString(port.NodeWWN));
        addLine("    PWWN=%s FcId=0x%lx", toString(port.PortWWN), static_cast<unsigned long>(port.PortFcId));

        HBA_UINT32 discovered =
            believed([p] { return discoveredPortsOf(p); }, port.NumberofDiscoveredPorts, maximumDiscoveredPorts);
        const auto complain = [&] {
            addLine("%s", tooManyTogether(p, discovered, adapterText(index, name.data())).c_str());
        };
        discovered = discoveredPorts.add(discovered, complain) ? discovered : 0;
        for (HBA_UINT32 d = 0; d < discovered; ++d) {
            HBA_PORTATTRIBUTES remote{};
            if (!refuses("GetDiscoveredPortAttributes", HBA_GetDiscoveredPortAttributes(handle, p, d, &remote))) {
                addLine("    Discovered port %d NWWN=%s", static_cast<int>(d), toString(remote.NodeWWN));
                addLine("      PWWN=%s FcId=0x%lx", toString(remote.PortWWN),
                        static_cast<unsigned long>(remote.PortFcId));
            }
        }
    }

    /// The library's own numbers, as they stand.
    void describeTargetMapping() {
        if (!mapping.fetch(
                [this](HBA_FCPTARGETMAPPING *storage) { return HBA_GetFcpTargetMapping(handle, storage); })) {
            addLine("%s", BadStatus("GetFcpTargetMapping", mapping.status(), index, name.data()));
        }
        for (auto &[scsi, fcp] : mapping.entries()) {
            const auto lun = static_cast<unsigned long long>(fcp.FcpLun);
            addLine("  SCSI c%dt%dd%d OsDeviceName(%s) NWWN=%s", static_cast<int>(scsi.ScsiBusNumber),
                    static_cast<int>(scsi.ScsiTargetNumber), static_cast<int>(scsi.ScsiOSLun),
                    terminateString(scsi.OSDeviceName, 256), toString(fcp.NodeWWN));
            addLine("    PWWN=%s FcId=0x%lx Lun=0x%08lx%08lx", toString(fcp.PortWWN),
                    static_cast<unsigned long>(fcp.FcId), static_cast<unsigned long>(lun >> 32),
                    static_cast<unsigned long>(lun & 0xffffffff));
        }
        mapping.release();
    }

    void tellRefused(const char *callName, HBA_STATUS status) {
        addLine("%s", BadStatus(callName, status, index, name.data()));
    }

    template <class What>
    void tellTooMany(What what, HBA_UINT32 count, HBA_UINT32 maximum) {
        addLine("%s", tooMany(what(), count, adapterText(index, name.data()), maximum).c_str());
    }

    __attribute__((format(printf, 2, 3))) void addLine(const char *format, ...) {
        std::array<char, 1024> line; // the longest has 677 characters, so that none is cut
        std::va_list arguments;
        va_start(arguments, format);
        // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the line above has initialised it
        static_cast<void>(std::vsnprintf(line.data(), line.size(), format, arguments));
        va_end(arguments);
        const jni::LocalString text(env, line.data());
        jni::callBoolean(env, list, listClass.meth_add(), text.get());
    }

    WithHbaLibrary &library;
    JNIEnv *const env;
    const jobject list;
    ListMembers listClass{env};

    // The adapter that the walk has come to.
    std::array<char, adapterNameSize> name{};
    TargetMappingTable mapping;
    DiscoveredPortSum discoveredPorts;
};

constexpr std::size_t HbaCacheImpl::selfTestStack = sizeof(HbaCacheImpl) + sizeof(SelfTest);

void HbaCacheImpl::TestHbaLibrary(jobject list) {
    if (list != nullptr) {
        SelfTest(*this, list).walkAdapters();
    }
}

} // namespace tarn
