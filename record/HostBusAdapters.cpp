#include <algorithm>
#include <array>
#include <cstring>

#include "common/hba/LibraryGuards.h"
#include "common/hba/Messages.h"
#include "common/hba/TargetMappingTable.h"
#include "record/Recorder.h"

// The whole HBA library, walked as the library walks it.

namespace record {
namespace {

using description::HbaAdapter;
using description::HbaAnswers;
using description::HbaDiscoveredPort;
using description::HbaPort;

/// From one answer per call, in their order, to what a description says: nothing of answers that are all well, one
/// number for those that are all the same.
void settle(HbaAnswers &answers) {
    std::vector<HBA_STATUS> &statuses = answers.statuses;
    if (!statuses.empty() && statuses.front() != HBA_STATUS_OK &&
        std::ranges::count(statuses, statuses.front()) == std::ssize(statuses)) {
        statuses.resize(1);
        answers.always = true;
        return;
    }
    while (!statuses.empty() && statuses.back() == HBA_STATUS_OK) {
        statuses.pop_back();
    }
}

bool isIllegalIndex(const HbaAnswers &answers) {
    return answers.always && answers.statuses.front() == HBA_STATUS_ERROR_ILLEGAL_INDEX;
}

/// What the library counts but does not have answers as what is not listed.
template <class Element, class Answers>
void dropBeyond(std::vector<Element> &elements, Answers answersOf) {
    while (!elements.empty() && isIllegalIndex(answersOf(elements.back()))) {
        elements.pop_back();
    }
}

/// The element of that index, with those before it.
template <class Element>
Element &elementAt(std::vector<Element> &elements, HBA_UINT32 index) {
    if (index >= elements.size()) {
        elements.resize(index + std::size_t{1});
    }
    return elements[index];
}

bool isBlank(const HBA_FCPSCSIENTRY &entry) {
    static constexpr HBA_FCPSCSIENTRY blank{};
    return std::memcmp(&entry, &blank, sizeof entry) == 0;
}

class Walk {
public:
    Walk(tarn::WithHbaLibrary &loadedLibrary, description::Hba &recorded, Report &toReport)
        : library(loadedLibrary), hba(recorded), report(toReport) {
    }

    void walkAdapters() {
        const HBA_UINT32 count = HBA_GetNumberOfAdapters();
        if (count > tarn::maximumAdapters) {
            hba.NumberOfAdapters = count;
            report.notRead("hba", "adapters", "there cannot be " + std::to_string(count));
            return;
        }
        hba.adapters.resize(count);
        for (index = 0; index < count; ++index) {
            report.progress("hba", index, count);
            walkAdapter();
        }
        std::ranges::for_each(hba.adapters, settleAdapter);
        dropBeyond(hba.adapters, [](const HbaAdapter &each) { return each.status.GetAdapterName; });
        if (hba.adapters.size() != count) {
            hba.NumberOfAdapters = count;
        }
    }

    std::size_t ports = 0;
    std::size_t remotePorts = 0;
    std::size_t mappings = 0;

private:
    void walkAdapter() {
        std::array<char, tarn::adapterNameSize> name;
        const tarn::WithAdapterHandle opened(library, index, name.data());
        HbaAdapter &listed = hba.adapters[index];
        listed.name = name.data();
        if (refuses([] { return "GetAdapterName"; }, opened.status, listed.status.GetAdapterName)) {
            return;
        }
        // Adapters are opened by their names: of several with one name it is the first that answers.
        adapter = &*std::ranges::find(hba.adapters, listed.name, &HbaAdapter::name);
        adapter->openFailures += opened.failures;
        handle = opened.handle;
        if (handle == 0) {
            report.notRead("hba", place("OpenAdapter"), "no handle");
            return;
        }
        tarn::refreshInformation(handle, name.data());
        HBA_ADAPTERATTRIBUTES attributes{};
        if (refuses([] { return "GetAdapterAttributes"; }, HBA_GetAdapterAttributes(handle, &attributes),
                    adapter->status.GetAdapterAttributes)) {
            return;
        }
        adapter->attributes = attributes;
        fetchTargetMapping();
        const HBA_UINT32 count = believed("ports", attributes.NumberOfPorts, tarn::maximumPorts);
        for (HBA_UINT32 p = 0; p < count; ++p) {
            walkPort(p);
        }
    }

    void fetchTargetMapping() {
        std::vector<HBA_STATUS> &statuses = adapter->status.GetFcpTargetMapping.statuses;
        HBA_UINT32 claimed = 0;
        const bool isFetched = mapping.fetch([&](HBA_FCPTARGETMAPPING *storage) {
            const HBA_UINT32 room = storage->NumberOfEntries;
            const HBA_STATUS status = HBA_GetFcpTargetMapping(handle, storage);
            const bool isClaim = status == HBA_STATUS_OK || status == HBA_STATUS_ERROR_MORE_DATA;
            claimed = isClaim ? storage->NumberOfEntries : claimed;
            // Too little room answers so by itself.
            const bool followsFromClaim = status == HBA_STATUS_ERROR_MORE_DATA && claimed > room;
            statuses.push_back(followsFromClaim ? HBA_STATUS{HBA_STATUS_OK} : status);
            return status;
        });
        if (!isFetched) {
            report.notRead("hba", place("GetFcpTargetMapping"), tarn::StatusString(mapping.status()));
            if (claimed != 0 && adapter->targetMapping.size() == 0) {
                adapter->NumberOfEntries = claimed;
            }
            return;
        }
        std::span<HBA_FCPSCSIENTRY> entries = mapping.entries();
        while (!entries.empty() && isBlank(entries.back())) {
            entries = entries.first(entries.size() - 1);
        }
        if (claimed != entries.size()) {
            adapter->NumberOfEntries = claimed;
        }
        mappings += entries.size();
        if (std::shared_ptr<const void> heap = mapping.takeHeap()) {
            adapter->targetMapping = {std::move(heap), entries};
        } else {
            adapter->targetMapping = description::TargetMapping({entries.begin(), entries.end()});
        }
        mapping.release();
    }

    void walkPort(HBA_UINT32 p) {
        HbaPort &port = elementAt(adapter->ports, p);
        const std::string number = " port " + std::to_string(p);
        HBA_PORTATTRIBUTES attributes{};
        if (refuses([&] { return "GetAdapterPortAttributes" + number; },
                    HBA_GetAdapterPortAttributes(handle, p, &attributes), port.status.GetAdapterPortAttributes)) {
            return;
        }
        port.attributes = attributes;
        ++ports;
        HBA_PORTSTATISTICS statistics{};
        if (!refuses([&] { return "GetPortStatistics" + number; }, HBA_GetPortStatistics(handle, p, &statistics),
                     port.status.GetPortStatistics)) {
            port.statistics = statistics;
        }
        const HBA_UINT32 discovered =
            believed("discovered ports of" + number, attributes.NumberofDiscoveredPorts, tarn::maximumDiscoveredPorts);
        port.discovered.reserve(discovered);
        for (HBA_UINT32 d = 0; d < discovered; ++d) {
            HbaDiscoveredPort &remote = elementAt(port.discovered, d);
            HBA_PORTATTRIBUTES remoteAttributes{};
            const auto call = [&] {
                return "GetDiscoveredPortAttributes" + number + " remote port " + std::to_string(d);
            };
            if (!refuses(call, HBA_GetDiscoveredPortAttributes(handle, p, d, &remoteAttributes),
                         remote.status.GetDiscoveredPortAttributes)) {
                remote.attributes = remoteAttributes;
                ++remotePorts;
            }
        }
    }

    /// Keeps the answer. Whether it is a refusal, which is reported under the name of `call`.
    template <class Call>
    bool refuses(Call call, HBA_STATUS status, HbaAnswers &answers) {
        answers.statuses.push_back(status);
        if (status != HBA_STATUS_OK && status != HBA_STATUS_ERROR_ILLEGAL_INDEX) {
            report.notRead("hba", place(call()), tarn::StatusString(status));
        }
        return status != HBA_STATUS_OK;
    }

    /// The count, or none, which is reported, when it is out of all reason.
    HBA_UINT32 believed(const std::string &what, HBA_UINT32 count, HBA_UINT32 maximum) {
        if (count <= maximum) {
            return count;
        }
        report.notRead("hba", place(what), "there cannot be " + std::to_string(count));
        return 0;
    }

    std::string place(const std::string &what) const {
        return "adapter " + std::to_string(index) + " " + what;
    }

    static void settleAdapter(HbaAdapter &each) {
        settle(each.status.GetAdapterName);
        settle(each.status.GetAdapterAttributes);
        settle(each.status.GetFcpTargetMapping);
        for (HbaPort &port : each.ports) {
            settle(port.status.GetAdapterPortAttributes);
            settle(port.status.GetPortStatistics);
            for (HbaDiscoveredPort &remote : port.discovered) {
                settle(remote.status.GetDiscoveredPortAttributes);
            }
            dropBeyond(port.discovered,
                       [](const HbaDiscoveredPort &remote) { return remote.status.GetDiscoveredPortAttributes; });
        }
        dropBeyond(each.ports, [](const HbaPort &port) { return port.status.GetAdapterPortAttributes; });
    }

    tarn::WithHbaLibrary &library;
    description::Hba &hba;
    Report &report;

    // The adapter that the walk has come to.
    HBA_UINT32 index = 0;
    HBA_HANDLE handle = 0;
    HbaAdapter *adapter = nullptr; // where its answers go
    tarn::TargetMappingTable mapping;
};

} // namespace

void recordHostBusAdapters(description::Host &host, Report &report) {
    tarn::WithHbaLibrary library;
    if (library.status != HBA_STATUS_OK) {
        report.notRead("hba", "all of it", tarn::StatusString(library.status));
        return;
    }
    Walk walk(library, host.hba.emplace(), report);
    walk.walkAdapters();
    report.section("hba", counted(host.hba->adapters.size(), "adapter") + ", " + counted(walk.ports, "port") + ", " +
                              counted(walk.remotePorts, "remote port") + ", " + counted(walk.mappings, "mapping"));
}

} // namespace record
