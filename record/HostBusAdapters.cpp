#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <span>
#include <utility>

#include "common/hba/library/AdapterWalk.h"
#include "common/hba/library/LibraryGuards.h"
#include "common/hba/library/Messages.h"
#include "record/HostBusAdapterCalls.h"
#include "record/Recorder.h"
#include "record/StopSignals.h"

// What an asker tells of the HBA library, put together.

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

/// Whether nothing was written there.
bool isBlank(const HBA_FCPSCSIENTRY &entry) {
    return std::ranges::all_of(std::as_bytes(std::span(&entry, 1)), [](std::byte one) { return one == std::byte{}; });
}

constexpr const char *callNames[] = {"LoadLibrary",         "GetNumberOfAdapters",
                                     "GetAdapterName",      "OpenAdapter",
                                     "RefreshInformation",  "GetAdapterAttributes",
                                     "GetFcpTargetMapping", "GetFcpTargetMapping",
                                     "GetFcpTargetMapping", "GetAdapterPortAttributes",
                                     "GetPortStatistics",   "GetDiscoveredPortAttributes",
                                     "CloseAdapter",        "FreeLibrary"};
static_assert(std::size(callNames) == static_cast<std::size_t>(Call::free) + 1);

/// Of calls that hang, and of those that come after them on their adapter.
constexpr HBA_STATUS timedOut = HBA_STATUS_ERROR_UNAVAILABLE;

/// Puts together what is told. First one item is the walk over all adapters; where that ends in a call that hangs, each
/// adapter behind it is an item, asked for by itself.
class Adapters : public Inquiry, public AskedSection, tarn::AdapterWalk<Adapters> {
    friend AdapterWalk;

public:
    Adapters(std::optional<description::Hba> &recorded, Report &toReport) : hba(recorded), report(toReport) {
    }

    void begin(Askers &askers) override {
        askers.add("hba", 1, *this);
    }

    void goOn(Askers &askers) override {
        if (isEnded && hba && index + 1 < hba->adapters.size()) {
            firstSingle = index + std::size_t{1};
            askers.add("hba", hba->adapters.size() - firstSingle, *this);
        }
    }

    void finish() override {
        if (hba) {
            settleAll();
            report.section("hba", counted(hba->adapters.size(), "adapter") + ", " + counted(ports, "port") + ", " +
                                      counted(remotePorts, "remote port") + ", " + counted(mappings, "mapping"));
        }
    }

    Request request(std::size_t item) override {
        return {Askers::adapters, firstSingle == 0 ? std::string() : std::to_string(firstSingle + item)};
    }

    std::string nameOf(std::size_t item, unsigned number, unsigned at) const override {
        const auto call = static_cast<Call>(number);
        std::string name = callNames[number];
        if (call == Call::port || call == Call::statistics) {
            name += " port " + std::to_string(at);
        } else if (call == Call::discovered) {
            name += " port " + std::to_string(portIndex) + " remote port " + std::to_string(at);
        }
        if (call <= Call::count || call == Call::free || !hba) {
            return name;
        }
        const HBA_UINT32 current = firstSingle == 0 ? index : static_cast<HBA_UINT32>(firstSingle + item);
        return place(call < Call::port ? HBA_UINT32{at} : current, name);
    }

    void take(std::size_t item, const Answer &answer) override {
        const auto status = static_cast<HBA_STATUS>(answer.error);
        switch (const auto call = static_cast<Call>(answer.call)) {
        case Call::load:
            takeLoad(item, status);
            break;
        case Call::count:
            takeCount(valueOf<HBA_UINT32>(answer.data));
            break;
        case Call::name:
            takeName(answer, status);
            break;
        case Call::open:
            adapter->openFailures += static_cast<unsigned>(answer.error);
            if (!valueOf<bool>(answer.data)) {
                report.notRead("hba", place(index, callNames[answer.call]), "no handle");
            }
            break;
        case Call::attributes:
            if (!refuses(answer, status, adapter->status.GetAdapterAttributes)) {
                adapter->attributes = valueOf<HBA_ADAPTERATTRIBUTES>(answer.data);
                believed("ports", adapter->attributes->NumberOfPorts, tarn::maximumPorts);
            }
            break;
        case Call::mapping:
            takeMapping(valueOf<MappingCounts>(answer.data), status);
            break;
        case Call::mappingEntries:
            takeEntries(answer.data);
            break;
        case Call::mappingEnd:
            finishMapping(valueOf<bool>(answer.data), status);
            break;
        case Call::port:
        case Call::statistics:
        case Call::discovered:
            takePort(call, answer, status);
            break;
        case Call::refresh:
        case Call::close:
        case Call::free:
            break;
        }
    }

    void giveUp(std::size_t item, unsigned number, unsigned at) override {
        const auto call = static_cast<Call>(number);
        report.notRead("hba", nameOf(item, number, at), errnoText(ETIMEDOUT));
        isEnded = true;
        if (call < Call::name || call >= Call::close) {
            return;
        }
        if (call == Call::name) {
            index = at;
            hba->adapters[index].status.GetAdapterName.statuses.push_back(timedOut);
            return;
        }
        report.notRead("hba", place(index, "all after it"), "not asked");
        if (call == Call::open) {
            adapter->openFailures += tarn::WithAdapterHandle::openAttempts;
        } else if (call <= Call::attributes) {
            adapter->status.GetAdapterAttributes.statuses.push_back(timedOut);
        } else {
            failFrom(call, at);
        }
    }

    void fail(std::size_t item, const std::string &reason) override {
        isEnded = true;
        isCut = isStopped();
        if (adapter == nullptr) {
            index = static_cast<HBA_UINT32>(firstSingle + item);
        }
        if (std::exchange(adapter, nullptr) == nullptr || isCut) {
            unknown.push_back(index);
        }
        if (!isCut) {
            report.notRead("hba", hba ? place(index, "all that is missing") : "all of it", reason);
        }
    }

    void finish(std::size_t) override {
        adapter = nullptr;
    }

private:
    void takeLoad(std::size_t item, HBA_STATUS status) {
        if (firstSingle != 0) {
            index = static_cast<HBA_UINT32>(firstSingle + item);
        } else if (status == HBA_STATUS_OK) {
            hba.emplace();
        }
        if (status != HBA_STATUS_OK) {
            report.notRead("hba", firstSingle == 0 ? "all of it" : place(index, "all of it"),
                           tarn::StatusString(status));
            if (firstSingle != 0) {
                hba->adapters[index].status.GetAdapterName.statuses.push_back(status);
            }
        }
    }

    void takeCount(HBA_UINT32 count) {
        if (firstSingle != 0) {
            return;
        }
        claimed = count;
        if (count > tarn::maximumAdapters) {
            report.notRead("hba", "adapters", "there cannot be " + std::to_string(count));
        } else {
            hba->adapters.resize(count);
        }
    }

    void takeName(const Answer &answer, HBA_STATUS status) {
        index = answer.index;
        HbaAdapter &listed = hba->adapters[index];
        adapter = &listed;
        if (refuses(answer, status, listed.status.GetAdapterName)) {
            return;
        }
        const auto *const name = reinterpret_cast<const char *>(answer.data.data());
        listed.name.assign(name, strnlen(name, answer.data.size()));
        // Adapters are opened by their names: of several with one name it is the first that answers.
        adapter = &*std::ranges::find(hba->adapters, listed.name, &HbaAdapter::name);
        claimedEntries = 0;
        entries.clear();
    }

    void takeMapping(const MappingCounts &counts, HBA_STATUS status) {
        const bool isClaim = status == HBA_STATUS_OK || status == HBA_STATUS_ERROR_MORE_DATA;
        claimedEntries = isClaim ? counts.entries : claimedEntries;
        // Too little room answers so by itself.
        const bool followsFromClaim = status == HBA_STATUS_ERROR_MORE_DATA && claimedEntries > counts.room;
        adapter->status.GetFcpTargetMapping.statuses.push_back(followsFromClaim ? HBA_STATUS{HBA_STATUS_OK} : status);
        if (followsFromClaim && claimedEntries <= tarn::maximumMappingEntries) {
            entries.reserve(claimedEntries);
        }
    }

    /// There may be tens of thousands, of 304 bytes each: they are copied once.
    void takeEntries(std::span<const std::byte> data) {
        const auto *const first = reinterpret_cast<const HBA_FCPSCSIENTRY *>(data.data());
        entries.insert(entries.end(), first, first + data.size() / sizeof(HBA_FCPSCSIENTRY));
    }

    void finishMapping(bool isFetched, HBA_STATUS status) {
        if (!isFetched) {
            report.notRead("hba", place(index, "GetFcpTargetMapping"), tarn::StatusString(status));
            if (claimedEntries != 0 && adapter->targetMapping.size() == 0) {
                adapter->NumberOfEntries = claimedEntries;
            }
            return;
        }
        while (!entries.empty() && isBlank(entries.back())) {
            entries.pop_back();
        }
        if (claimedEntries != entries.size()) {
            adapter->NumberOfEntries = claimedEntries;
        }
        mappings += entries.size();
        const auto kept = std::make_shared<const std::vector<HBA_FCPSCSIENTRY>>(std::exchange(entries, {}));
        adapter->targetMapping = {std::shared_ptr<const void>(kept), *kept};
    }

    void takePort(Call call, const Answer &answer, HBA_STATUS status) {
        portIndex = call == Call::discovered ? portIndex : answer.index;
        HbaPort &port = elementAt(adapter->ports, portIndex);
        if (call == Call::statistics) {
            if (!refuses(answer, status, port.status.GetPortStatistics)) {
                port.statistics = valueOf<HBA_PORTSTATISTICS>(answer.data);
            }
            return;
        }
        if (call == Call::port) {
            if (!refuses(answer, status, port.status.GetAdapterPortAttributes)) {
                port.attributes = valueOf<HBA_PORTATTRIBUTES>(answer.data);
                ++ports;
                port.discovered.reserve(believed("discovered ports of port " + std::to_string(portIndex),
                                                 port.attributes->NumberofDiscoveredPorts,
                                                 tarn::maximumDiscoveredPorts));
            }
            return;
        }
        HbaDiscoveredPort &remote = elementAt(port.discovered, answer.index);
        if (!refuses(answer, status, remote.status.GetDiscoveredPortAttributes)) {
            remote.attributes = valueOf<HBA_PORTATTRIBUTES>(answer.data);
            ++remotePorts;
        }
    }

    /// What an adapter was not asked after a call that hangs fails as that does.
    void failFrom(Call call, HBA_UINT32 at) {
        const auto refuse = [](HbaAnswers &answers) { answers.statuses.push_back(timedOut); };
        HBA_UINT32 firstPort = 0;
        if (call <= Call::mappingEnd) {
            refuse(adapter->status.GetFcpTargetMapping);
        } else if (call == Call::port) {
            firstPort = at;
        } else {
            HbaPort &port = elementAt(adapter->ports, portIndex);
            if (call == Call::statistics) {
                refuse(port.status.GetPortStatistics);
            }
            const HBA_UINT32 discovered =
                tarn::believed(port.attributes->NumberofDiscoveredPorts, tarn::maximumDiscoveredPorts);
            for (HBA_UINT32 d = call == Call::discovered ? at : 0; d < discovered; ++d) {
                refuse(elementAt(port.discovered, d).status.GetDiscoveredPortAttributes);
            }
            firstPort = portIndex + 1;
        }
        const HBA_UINT32 count = tarn::believed(adapter->attributes->NumberOfPorts, tarn::maximumPorts);
        for (HBA_UINT32 p = firstPort; p < count; ++p) {
            refuse(elementAt(adapter->ports, p).status.GetAdapterPortAttributes);
        }
    }

    /// Keeps the answer. Whether it is a refusal, which is reported.
    bool refuses(const Answer &answer, HBA_STATUS status, HbaAnswers &answers) {
        answers.statuses.push_back(status);
        return AdapterWalk::refuses(answer, status);
    }

    void tellRefused(const Answer &answer, HBA_STATUS status) {
        if (status != HBA_STATUS_ERROR_ILLEGAL_INDEX) {
            report.notRead("hba", nameOf(index - firstSingle, answer.call, answer.index), tarn::StatusString(status));
        }
    }

    void tellTooMany(const std::string &what, HBA_UINT32 count, HBA_UINT32) {
        report.notRead("hba", place(index, what), "there cannot be " + std::to_string(count));
    }

    static std::string place(HBA_UINT32 ofAdapter, const std::string &what) {
        return "adapter " + std::to_string(ofAdapter) + " " + what;
    }

    void settleAll() {
        // What nobody was asked for any more is left out, and what is not whole.
        const HBA_UINT32 asked = isCut ? index : index + 1;
        if (isEnded && (isCut || firstSingle == 0) && hba->adapters.size() > asked) {
            hba->adapters.resize(asked);
            claimed = asked;
        }
        for (auto each = unknown.rbegin(); each != unknown.rend(); ++each) {
            if (*each < hba->adapters.size()) {
                hba->adapters.erase(hba->adapters.begin() + static_cast<std::ptrdiff_t>(*each));
                --claimed;
            }
        }
        std::ranges::for_each(hba->adapters, settleAdapter);
        dropBeyond(hba->adapters, [](const HbaAdapter &each) { return each.status.GetAdapterName; });
        if (hba->adapters.size() != claimed) {
            hba->NumberOfAdapters = claimed;
        }
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

    std::optional<description::Hba> &hba;
    Report &report;
    HBA_UINT32 claimed = 0;          // adapters
    std::size_t firstSingle = 0;     // adapter that was asked for by itself; 0: none was yet
    bool isEnded = false;            // the walk, before its end
    bool isCut = false;              // because the recorder was asked to stop
    std::vector<HBA_UINT32> unknown; // adapters of which nothing was learned, or not all before the cut

    std::size_t ports = 0;
    std::size_t remotePorts = 0;
    std::size_t mappings = 0;

    // What the walk has come to.
    HbaAdapter *adapter = nullptr; // where its answers go; null before the item's first name
    HBA_UINT32 portIndex = 0;
    HBA_UINT32 claimedEntries = 0;
    std::vector<HBA_FCPSCSIENTRY> entries;
};

} // namespace

std::unique_ptr<AskedSection> hostBusAdapterSection(description::Host &host, Report &report) {
    return std::make_unique<Adapters>(host.hba, report);
}

} // namespace record
