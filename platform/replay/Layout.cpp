#include <cstddef>

#include "description/Host.h"
#include "platform/solaris.h"

// The replayed structures have the sizes and places that the published headers give them under LP64, so that code which
// counts in bytes counts the same here.

static_assert(sizeof(long) == 8 && sizeof(void *) == 8);

static_assert(offsetof(kstat_t, ks_name) == 56 && offsetof(kstat_t, ks_data) == 120 &&
              offsetof(kstat_t, ks_snaptime) == 144);
static_assert(sizeof(kstat_io_t) == 80 && offsetof(kstat_io_t, wlastupdate) == 40 && offsetof(kstat_io_t, rtime) == 48);
static_assert(sizeof(vminfo_t) == 40 && offsetof(description::PagingCounters, updates) == sizeof(vminfo_t));
static_assert(offsetof(cpu_stat_t, cpu_sysinfo.cpu) == 8);

static_assert(sizeof(processor_info_t) == 56);
static_assert(sizeof(utsname) == std::size_t{5} * 257);

static_assert(sizeof(dk_geom) == 42 && sizeof(dk_cinfo) == 68);
static_assert(sizeof(partition) == 24 && offsetof(vtoc, v_part) == 136 && offsetof(vtoc, v_asciilabel) == 392);
static_assert(sizeof(uscsi_cmd) == 64);

static_assert(sizeof(HBA_SCSIID) == 268);
static_assert(sizeof(HBA_FCPSCSIENTRY) == 304 && offsetof(HBA_FCPSCSIENTRY, FcpId) == 272);
static_assert(offsetof(HBA_FCPSCSIENTRY, FcpId.PortWWN) == 284 && offsetof(HBA_FCPSCSIENTRY, FcpId.FcpLun) == 296);
static_assert(sizeof(HBA_FCPTARGETMAPPING) == 312 && offsetof(HBA_FCPTARGETMAPPING, entry) == 8);
static_assert(sizeof(HBA_PORTSTATISTICS) == std::size_t{15} * 8);

static_assert(DKIOCGGEOM == 0x401 && DKIOCINFO == 0x403 && DKIOCGVTOC == 0x40B && USCSICMD == 0x4C9);
