#pragma once

#include "common/hba/HbaClasses.h"
#include "common/hba/library/LibraryGuards.h"
#include "platform/solaris.h"

namespace tarn {

/// Serves one native call of HbaCache: the Java classes it touches, with identifiers that are looked up at most once,
/// and the HBA library, loaded for as long as this lives. Nothing of it outlasts the call. Every member may throw
/// JavaExceptionPending; the makers of values also NoInstance, which ends the maker of the instance they are for.
class HbaCacheImpl {
public:
    /// Local references for which the entry point of the fill makes room before it constructs this.
    static constexpr jint entryCapacity = 1000;

    /// Bytes of stack that the walks keep their buffers in; an entry point asks for them before it constructs this.
    static const std::size_t fillStack;
    static const std::size_t selfTestStack;

    /// `hbaCacheObject` is the object that the native method was called on. Without `hbaClassNamesObject` no instance
    /// can be made, and log lines are dropped.
    HbaCacheImpl(JNIEnv *environment, jobject hbaCacheObject, jobject hbaClassNamesObject);

    /// The whole cache, as HbaCache$Hba[]; an element that could not be read is null. Null when there is no room for
    /// its local references.
    [[gnu::noinline]] jobjectArray FillCache(); // keeps its buffers out of the entry's frame

    /// Adds to the java.util.List what the HBA library says of itself, line by line.
    [[gnu::noinline]] void TestHbaLibrary(jobject list); // likewise

    // Each makes one CIM instance (TrInstance) inside a local frame of its own, or answers null when the frame is
    // refused or Java lacks what the instance needs. Character fields of the attributes are cleaned in place.

    jobject MakeHba(int adapterIndex, hba_AdapterAttributes &attributes);
    jobject MakeHbaPort(int adapterIndex, int portIndex, HBA_PortAttributes &attributes);
    /// The indexes are those of the local port.
    jobject MakeHbaDiscoPort(int adapterIndex, int portIndex, HBA_PortAttributes &attributes);
    jobject MakeHbaPortStats(HBA_PortAttributes &attributes, HBA_PortStatistics &statistics);
    /// Joins the instances of a local port and of a remote one.
    jobject MakeTargetMapping(jobject hbaPort, jobject discoveredPort, HBA_FcpScsiEntry &entry,
                              hba_AdapterAttributes &adapterAttributes);

    /// Sets in `values` what a local and a remote port have in common; nothing when its local frame is refused.
    void PopulateHbaPortValues(jobject values, HBA_PortAttributes &attributes);

    // Codes of the HBA API as the CIM values that HbaPortProvider publishes (UnsignedInt16).

    jobject GetPortType(unsigned int portType);
    jobject GetPortState(unsigned int portState);
    jobject GetOperationalStatus(unsigned int portState);
    /// One element per bit that is set, from bit 0 up (UnsignedInt16[]). Null when there is no room for so many.
    jobject GetCOS(unsigned int classesOfService);
    /// In bits per second (UnsignedInt64); 0 for a speed that the API does not name.
    jobject GetPortSpeed(unsigned int speed);

    /// The 64 bits as an unsigned number (UnsignedInt64).
    jobject uint64(long long value);
    /// The field of `size` bytes, cleaned in place (String).
    jobject string(char *text, int size);

    // Hand one line to the agent's log. A line that cannot be delivered is dropped, unless it is the virtual machine that
    // fails: JavaExceptionPending.

    void info(const char *message);
    void warn(const char *message);

private:
    static constexpr jint portValuesCapacity = 44; // local references of a port's common values

    class Fill;
    class SelfTest;

    // See HbaProperties.h.
    template <class Subject>
    struct Property;
    struct Kind;
    class Values;

    /// Makes an instance of the class that `getClass` answers, in a local frame of that capacity. `setValues` gets the
    /// class and its default values.
    template <class SetValues>
    jobject makeInstance(jint capacity, jobject (HbaClassNames::*getClass)() const, SetValues setValues);

    jobject nameOf(jobject cimClass);
    jobject wwnText(const HBA_wwn &wwn);
    jobject uint32(HBA_UINT32 value);
    jobject osDeviceName(HBA_SCSIID &scsi, HBA_UINT32 bus);
    void log(const char *level, const char *message);

    JNIEnv *const env;

    TrClass::Static trClass{env};
    TrProperty::Static trProperty{env};
    TrInstance::Static trInstance{env};
    HostBusAdapterProvider::Static hostBusAdapterProvider{env};
    HbaPortProvider::Static hbaPortProvider{env};
    HbaDiscoveredPortProvider::Static hbaDiscoveredPortProvider{env};
    FCPortStatisticsProvider::Static fcPortStatisticsProvider{env};
    TargetMappingProvider::Static targetMappingProvider{env};
    HbaClassNames::Static hbaClassNamesClass{env};
    HbaRecord::Static hbaRecord{env};
    HbaPortRecord::Static hbaPortRecord{env};
    HbaDiscoveredPortRecord::Static hbaDiscoveredPortRecord{env};
    UnsignedInt64::Static unsignedInt64{env};
    UnsignedInt32::Static unsignedInt32{env};
    UnsignedInt16::Static unsignedInt16{env};
    KelvoLogger::Static kelvoLogger{env};
    Logger::Static logger{env};
    HbaCache::Static hbaCacheClass{env};

    HbaCache hbaCache;
    HbaClassNames hbaClassNames;

    WithHbaLibrary library; // loaded last, freed first
};

} // namespace tarn
