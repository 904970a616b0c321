#pragma once

#include "description/Host.h"

// What an asker calls of the HBA library, by the numbers under which it tells the answers.

namespace record {

/// What an asker calls, and what it tells beside.
enum class Call : unsigned {
    load,
    count,
    name, // `index` is the adapter's, up to the target mapping
    open, // tells how many attempts failed
    refresh,
    attributes,
    mapping,
    mappingEntries, // some of them
    mappingEnd,     // the status that the table is left with
    port,           // `index` is the port's
    statistics,
    discovered, // `index` is the remote port's
    close,
    free,
};

/// Of a call for the target mapping: the room it was given, and how many entries it counted.
struct MappingCounts {
    HBA_UINT32 room;
    HBA_UINT32 entries;
};

} // namespace record
