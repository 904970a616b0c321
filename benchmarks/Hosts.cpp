#include "benchmarks/Hosts.h"

namespace bench {
namespace {

constexpr int disksPerController = 100;
constexpr int minorsPerDisk = 8;

std::string diskName(int index) {
    return "c" + std::to_string(index / disksPerController) + "t" + std::to_string(index % disksPerController) + "d0";
}

} // namespace

std::string listOf(int count, const std::function<std::string(int)> &element) {
    std::string list = "[";
    for (int i = 0; i < count; ++i) {
        list += (i == 0 ? "" : ",\n") + element(i);
    }
    return list + "]";
}

std::string processor(int index) {
    return R"({"id": )" + std::to_string(index) +
           R"(, "pi_state": "P_ONLINE", "pi_processor_type": "sparcv9", "pi_clock": 1281})";
}

std::string processorTicks(int index) {
    const std::string number = std::to_string(index);
    return R"({"ks_module": "cpu_stat", "ks_instance": )" + number + R"(, "ks_name": "cpu_stat)" + number +
           R"(", "ks_class": "misc", "ks_type": "KSTAT_TYPE_RAW",
              "data": {"idle": 100000, "user": )" +
           number + R"(, "kernel": 2, "wait": 3}})";
}

std::string mount(int index) {
    const std::string number = std::to_string(index);
    return index % 2 == 0
               ? R"("/dev/dsk/)" + diskName(index) + R"(s7\t/export/)" + number +
                     R"(\tufs\trw,intr,largefiles,logging,xattr\t1130837021")"
               : R"("shore:/export/)" + number + R"(\t/export/)" + number + R"(\tnfs\trw,xattr\t1130837021")";
}

std::string disk(int index, const std::string &moreMembers) {
    return R"({"name": ")" + diskName(index) + R"(", "path": "/pci@1f,700000/scsi@)" +
           std::to_string(index / disksPerController) + "/sd@" + std::to_string(index % disksPerController) +
           R"(,0", "major": 32, "minor": )" + std::to_string(index * minorsPerDisk) +
           R"(, "geometry": {"dkg_ncyl": 14087, "dkg_acyl": 2, "dkg_nhead": 24, "dkg_nsect": 424, "dkg_pcyl": 14089},
              "vtoc": {"v_asciilabel": "SUN72G cyl 14087 alt 2 hd 24 sec 424",
                       "v_part": [{"p_tag": 2, "p_size": 20972736}, {"p_tag": 3, "p_start": 20972736, "p_size": 8395},
                                  {"p_tag": 5, "p_size": 143349312}]})" +
           moreMembers + "}";
}

std::string diskCounters(int index) {
    const std::string number = std::to_string(index);
    return R"({"ks_module": "sd", "ks_instance": )" + number + R"(, "ks_name": "sd)" + number +
           R"(", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO",
              "data": {"nread": 5120000, "nwritten": )" +
           number + R"(, "rtime": 7000000, "wlastupdate": 9000000}})";
}

std::string hostOf(const HostSize &size, const std::string &moreMembers) {
    return R"({"sysconf": {"_SC_NPROCESSORS_CONF": )" + std::to_string(size.processors) +
           R"(, "_SC_CPUID_MAX": 511}, "processors": )" + listOf(size.processors, processor) + R"(, "kstat": )" +
           listOf(size.processors + size.disks,
                  [&](int i) { return i < size.processors ? processorTicks(i) : diskCounters(i - size.processors); }) +
           R"(, "disks": )" + listOf(size.disks, [](int i) { return disk(i); }) + R"(, "mnttab": )" +
           listOf(size.mounts, mount) + moreMembers + "}";
}

} // namespace bench
