#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <span>

#include "common/hba/library/AdapterWalk.h"
#include "common/hba/library/LibraryGuards.h"
#include "common/hba/library/TargetMappingTable.h"
#include "record/HostBusAdapterCalls.h"
#include "record/Recorder.h"

// The whole HBA library, walked as the library walks it, in an asker.

namespace record {
namespace {

/// Makes the calls, in an asker.
class LibraryAsker {
public:
    explicit LibraryAsker(Teller &toTell) : teller(toTell) {
    }

    /// Of all adapters, or of a single one.
    void ask(std::optional<HBA_UINT32> single) {
        begin(Call::load);
        {
            tarn::WithHbaLibrary library;
            tell(Call::load, library.status);
            if (library.status == HBA_STATUS_OK) {
                askAdapters(library, single);
            }
            begin(Call::free);
        }
    }

private:
    void begin(Call call, HBA_UINT32 index = 0) {
        teller.begin(static_cast<unsigned>(call), index);
    }

    void tell(Call call, HBA_STATUS status, std::span<const std::byte> data = {}, HBA_UINT32 index = 0) {
        teller.tell(static_cast<unsigned>(call), static_cast<int>(status), data, index);
    }

    void askAdapters(tarn::WithHbaLibrary &library, std::optional<HBA_UINT32> single) {
        begin(Call::count);
        const HBA_UINT32 count = HBA_GetNumberOfAdapters();
        tell(Call::count, HBA_STATUS_OK, bytesOf(count));
        if (single) {
            askAdapter(library, *single);
        } else if (count <= tarn::maximumAdapters) {
            for (HBA_UINT32 i = 0; i < count; ++i) {
                askAdapter(library, i);
            }
        }
    }

    void askAdapter(tarn::WithHbaLibrary &library, HBA_UINT32 index) {
        std::array<char, tarn::adapterNameSize> name;
        begin(Call::name, index);
        const tarn::WithAdapterHandle opened(library, index, name.data(), [&] {
            tell(Call::name, HBA_STATUS_OK, std::as_bytes(std::span(name)), index);
            begin(Call::open, index);
        });
        if (opened.status != HBA_STATUS_OK) {
            tell(Call::name, opened.status, {}, index);
            return;
        }
        const bool isOpen = opened.handle != 0;
        tell(Call::open, opened.failures, bytesOf(isOpen), index);
        if (isOpen) {
            handle = opened.handle;
            begin(Call::refresh, index);
            tarn::refreshInformation(handle, name.data());
            askOpen(index);
            begin(Call::close, index);
        }
    }

    void askOpen(HBA_UINT32 index) {
        HBA_ADAPTERATTRIBUTES attributes{};
        begin(Call::attributes, index);
        const HBA_STATUS status = HBA_GetAdapterAttributes(handle, &attributes);
        tell(Call::attributes, status, bytesOf(attributes), index);
        if (status != HBA_STATUS_OK) {
            return;
        }
        fetchTargetMapping(index);
        const HBA_UINT32 ports = tarn::believed(attributes.NumberOfPorts, tarn::maximumPorts);
        for (HBA_UINT32 p = 0; p < ports; ++p) {
            askPort(p);
        }
    }

    void fetchTargetMapping(HBA_UINT32 index) {
        const bool isFetched = mapping.fetch([&](HBA_FCPTARGETMAPPING *storage) {
            const HBA_UINT32 room = storage->NumberOfEntries;
            begin(Call::mapping, index);
            const HBA_STATUS status = HBA_GetFcpTargetMapping(handle, storage);
            tell(Call::mapping, status, bytesOf(MappingCounts{room, storage->NumberOfEntries}), index);
            return status;
        });
        constexpr std::size_t most = Teller::mostData / sizeof(HBA_FCPSCSIENTRY);
        for (std::span<const HBA_FCPSCSIENTRY> rest = mapping.entries(); isFetched && !rest.empty();) {
            const std::span part = rest.first(std::min(most, rest.size()));
            tell(Call::mappingEntries, HBA_STATUS_OK, std::as_bytes(part), index);
            rest = rest.subspan(part.size());
        }
        tell(Call::mappingEnd, mapping.status(), bytesOf(isFetched), index);
        mapping.release();
    }

    void askPort(HBA_UINT32 p) {
        HBA_PORTATTRIBUTES attributes{};
        begin(Call::port, p);
        const HBA_STATUS status = HBA_GetAdapterPortAttributes(handle, p, &attributes);
        tell(Call::port, status, bytesOf(attributes), p);
        if (status != HBA_STATUS_OK) {
            return;
        }
        HBA_PORTSTATISTICS statistics{};
        begin(Call::statistics, p);
        tell(Call::statistics, HBA_GetPortStatistics(handle, p, &statistics), bytesOf(statistics), p);
        const HBA_UINT32 remotePorts = tarn::believed(attributes.NumberofDiscoveredPorts, tarn::maximumDiscoveredPorts);
        for (HBA_UINT32 d = 0; d < remotePorts; ++d) {
            HBA_PORTATTRIBUTES remote{};
            begin(Call::discovered, d);
            tell(Call::discovered, HBA_GetDiscoveredPortAttributes(handle, p, d, &remote), bytesOf(remote), d);
        }
    }

    Teller &teller;
    HBA_HANDLE handle = 0;
    tarn::TargetMappingTable mapping;
};

} // namespace

Ask wayToAskAdapters() {
    return [](std::string_view text, Teller &teller) {
        HBA_UINT32 single = 0;
        const bool isSingle = std::from_chars(text.data(), text.data() + text.size(), single).ec == std::errc();
        LibraryAsker(teller).ask(isSingle ? std::optional(single) : std::nullopt);
    };
}

} // namespace record
