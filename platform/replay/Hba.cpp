#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>

#include "platform/replay/Host.h"
#include "platform/replay/PlatformCall.h"
#include "platform/replay/PortReading.h"

// The host bus adapter library: one load state for the whole process, and handles that end with it.

namespace replay {
namespace {

using description::HbaAdapter;
using description::HbaAnswers;
using description::HbaDiscoveredPort;
using description::HbaPort;

/// The library while it is loaded.
struct Library {
    std::shared_ptr<const Host> host;
    std::unordered_map<HBA_HANDLE, const HbaAdapter *> open;
    std::unordered_map<const HbaAdapter *, unsigned> openAttempts;
    std::unordered_map<const HbaAnswers *, std::size_t> answersGiven;

    const HbaAdapter *adapter(HBA_UINT32 index) const {
        const auto &adapters = host->hba->adapters;
        return index < adapters.size() ? &adapters[index] : nullptr;
    }

    /// What the next call answers of those that the description gives a status for.
    HBA_STATUS nextAnswer(const HbaAnswers &answers) {
        if (answers.always) {
            return answers.statuses.front();
        }
        if (answers.statuses.empty()) {
            return HBA_STATUS_OK;
        }
        std::size_t &given = answersGiven[&answers];
        return given < answers.statuses.size() ? answers.statuses[given++] : HBA_STATUS_OK;
    }
};

std::mutex libraryMutex;
std::optional<Library> library;
constexpr std::size_t nameBufferSize = 256; // of the buffer for an adapter's name
HBA_HANDLE lastHandle = 0;                  // over every load, so that a stale handle stays one

/// The adapter's name as the journal shows it.
std::string nameOf(HBA_HANDLE handle) {
    if (library) {
        if (const auto found = library->open.find(handle); found != library->open.end()) {
            return found->second->name;
        }
    }
    return "?";
}

const HbaAdapter *adapterNamed(std::string_view name) {
    const auto &adapters = library->host->hba->adapters;
    const auto adapter = std::ranges::find(adapters, name, &HbaAdapter::name);
    return adapter == adapters.end() ? nullptr : &*adapter;
}

/// Answers a call: leaves the line that `text` makes, and lets `answer` do what is the call's own. Refused, or while the
/// library is not loaded, it answers `failure`.
template <class Text, class Answer>
HBA_UINT32 answerLoaded(HBA_UINT32 failure, const Text &text, const Answer &answer) {
    const InPlatform inside;
    const std::lock_guard lock(libraryMutex);
    return noteCall(text) || !library ? failure : answer();
}

/// Lets the time pass that the call takes on the adapter that `find` finds in the loaded library, if any: other calls go
/// on meanwhile.
template <class Find>
void passOn(const char *call, const Find &find) {
    unsigned seconds = 0;
    {
        const std::lock_guard lock(libraryMutex);
        const HbaAdapter *const adapter = library ? find() : nullptr;
        if (adapter != nullptr && !adapter->seconds.empty()) {
            const auto found = adapter->seconds.find(std::string_view(call).substr(std::string_view("HBA_").size()));
            seconds = found == adapter->seconds.end() ? 0 : found->second;
        }
    }
    pass(seconds);
}

/// Both for a call on a handle.
template <class Answer>
HBA_STATUS answerHandle(const char *call, HBA_HANDLE handle, const std::string &arguments, const Answer &answer) {
    passOn(call, [&] {
        const auto found = library->open.find(handle);
        return found == library->open.end() ? nullptr : found->second;
    });
    return answerLoaded(
        HBA_STATUS_ERROR, [&] { return std::string(call) + " " + nameOf(handle) + arguments; },
        [&] {
            const auto found = library->open.find(handle);
            return found == library->open.end() ? HBA_STATUS{HBA_STATUS_ERROR_INVALID_HANDLE} : answer(*found->second);
        });
}

template <class... Fields>
void soilBehindTexts(Fields &...fields) {
    const auto soil = [](std::span<char> field) {
        const auto end = std::ranges::find(field, '\0');
        std::fill(end + (end == field.end() ? 0 : 1), field.end(), static_cast<char>(dirt));
    };
    (soil(fields), ...);
}
void soilBehindTexts(HBA_ADAPTERATTRIBUTES &attributes) {
    soilBehindTexts(attributes.Manufacturer, attributes.SerialNumber, attributes.Model, attributes.ModelDescription,
                    attributes.NodeSymbolicName, attributes.HardwareVersion, attributes.DriverVersion,
                    attributes.OptionROMVersion, attributes.FirmwareVersion, attributes.DriverName);
}
void soilBehindTexts(HBA_PORTATTRIBUTES &attributes) {
    soilBehindTexts(attributes.PortSymbolicName, attributes.OSDeviceName);
}
void soilBehindTexts(HBA_PORTSTATISTICS &) {
}

/// Gives out `source`, unless the description has another status for the call.
template <class Structure>
HBA_STATUS copyOut(const Structure &source, const HbaAnswers &answers, Structure *into) {
    const HBA_STATUS status = library->nextAnswer(answers);
    if (leavesDirt()) {
        std::memset(static_cast<void *>(into), dirt, sizeof *into);
    }
    if (status == HBA_STATUS_OK) {
        *into = source;
        if (leavesDirt()) {
            soilBehindTexts(*into);
        }
    }
    return status;
}

/// Attributes as they are told: what nothing is said of has as many as are listed.
template <class Attributes>
Attributes attributesOf(const description::Sparse<Attributes> &described, HBA_UINT32 Attributes::*count,
                        std::size_t listed) {
    Attributes told = *described;
    if (!described.isHeld()) {
        told.*count = static_cast<HBA_UINT32>(listed);
    }
    return told;
}

/// The entries follow one another beyond the array of one that the structure declares.
HBA_STATUS copyMapping(const HbaAdapter &adapter, HBA_FCPTARGETMAPPING *mapping) {
    const HBA_STATUS status = library->nextAnswer(adapter.status.GetFcpTargetMapping);
    const HBA_UINT32 room = mapping->NumberOfEntries;
    auto *entries = reinterpret_cast<char *>(mapping) + offsetof(HBA_FCPTARGETMAPPING, entry);
    if (leavesDirt() && status != HBA_STATUS_OK) {
        std::memset(entries, dirt, room * sizeof(HBA_FCPSCSIENTRY));
    }
    if (status != HBA_STATUS_OK && status != HBA_STATUS_ERROR_MORE_DATA) {
        return status;
    }
    const std::size_t present = adapter.targetMapping.size();
    const HBA_UINT32 claimed = adapter.NumberOfEntries.value_or(static_cast<HBA_UINT32>(present));
    // What is claimed beyond those there are is counted and not written.
    for (std::size_t i = 0; i < std::min<std::size_t>({claimed, room, present}); ++i) {
        HBA_FCPSCSIENTRY entry = adapter.targetMapping[i];
        if (leavesDirt()) {
            soilBehindTexts(entry.ScsiId.OSDeviceName);
        }
        std::memcpy(entries + i * sizeof entry, &entry, sizeof entry);
    }
    mapping->NumberOfEntries = claimed;
    return claimed > room ? HBA_STATUS_ERROR_MORE_DATA : status;
}

std::string number(HBA_UINT32 value) {
    return " " + std::to_string(value);
}

} // namespace
} // namespace replay

using namespace replay;

HBA_STATUS HBA_LoadLibrary() {
    const InPlatform inside;
    std::shared_ptr<const Host> host = currentHost();
    const std::lock_guard lock(libraryMutex);
    if (noteCall([] { return std::string("HBA_LoadLibrary"); }) || library || !host->hba) {
        return HBA_STATUS_ERROR;
    }
    library.emplace().host = std::move(host);
    return HBA_STATUS_OK;
}

/// Refused, it frees all the same, and says that it did not.
HBA_STATUS HBA_FreeLibrary() {
    const InPlatform inside;
    const std::lock_guard lock(libraryMutex);
    const bool refused = noteCall([] { return std::string("HBA_FreeLibrary"); });
    const bool wasLoaded = library.has_value();
    library.reset();
    return refused || !wasLoaded ? HBA_STATUS_ERROR : HBA_STATUS_OK;
}

HBA_UINT32 HBA_GetNumberOfAdapters() {
    return answerLoaded(
        0, [] { return std::string("HBA_GetNumberOfAdapters"); },
        [] {
            const description::Hba &hba = *library->host->hba;
            return hba.NumberOfAdapters.value_or(static_cast<HBA_UINT32>(hba.adapters.size()));
        });
}

HBA_STATUS HBA_GetAdapterName(HBA_UINT32 index, char *name) {
    passOn("HBA_GetAdapterName", [&] { return library->adapter(index); });
    return answerLoaded(
        HBA_STATUS_ERROR, [&] { return "HBA_GetAdapterName" + number(index); },
        [&] {
            const HbaAdapter *adapter = library->adapter(index);
            if (adapter == nullptr) {
                return HBA_STATUS{HBA_STATUS_ERROR_ILLEGAL_INDEX};
            }
            const HBA_STATUS status = library->nextAnswer(adapter->status.GetAdapterName);
            if (leavesDirt()) {
                std::memset(name, dirt, nameBufferSize);
            }
            if (status == HBA_STATUS_OK) {
                std::memcpy(name, adapter->name.c_str(), adapter->name.size() + 1);
            }
            return status;
        });
}

HBA_HANDLE HBA_OpenAdapter(char *name) {
    passOn("HBA_OpenAdapter", [&] { return adapterNamed(name); });
    return answerLoaded(
        0, [&] { return std::string("HBA_OpenAdapter ") + name; },
        [&] {
            const HbaAdapter *const adapter = adapterNamed(name);
            if (adapter == nullptr || library->openAttempts[adapter]++ < adapter->openFailures) {
                return HBA_HANDLE{0};
            }
            library->open[++lastHandle] = adapter;
            return lastHandle;
        });
}

/// Nothing tells whether it was refused: the adapter is closed.
void HBA_CloseAdapter(HBA_HANDLE handle) {
    const InPlatform inside;
    const std::lock_guard lock(libraryMutex);
    noteCall([&] { return "HBA_CloseAdapter " + nameOf(handle); });
    if (library) {
        library->open.erase(handle);
    }
}

void HBA_RefreshInformation(HBA_HANDLE handle) {
    answerHandle("HBA_RefreshInformation", handle, "", [](const HbaAdapter &) { return HBA_STATUS{HBA_STATUS_OK}; });
}

HBA_STATUS HBA_GetAdapterAttributes(HBA_HANDLE handle, HBA_ADAPTERATTRIBUTES *attributes) {
    return answerHandle("HBA_GetAdapterAttributes", handle, "", [&](const HbaAdapter &adapter) {
        return copyOut(attributesOf(adapter.attributes, &HBA_ADAPTERATTRIBUTES::NumberOfPorts, adapter.ports.size()),
                       adapter.status.GetAdapterAttributes, attributes);
    });
}

HBA_STATUS HBA_GetAdapterPortAttributes(HBA_HANDLE handle, HBA_UINT32 port, HBA_PORTATTRIBUTES *attributes) {
    return answerHandle("HBA_GetAdapterPortAttributes", handle, number(port), [&](const HbaAdapter &adapter) {
        if (port >= adapter.ports.size()) {
            return HBA_STATUS{HBA_STATUS_ERROR_ILLEGAL_INDEX};
        }
        const HbaPort &local = adapter.ports[port];
        return copyOut(
            attributesOf(local.attributes, &HBA_PORTATTRIBUTES::NumberofDiscoveredPorts, local.discovered.size()),
            local.status.GetAdapterPortAttributes, attributes);
    });
}

HBA_STATUS HBA_GetPortStatistics(HBA_HANDLE handle, HBA_UINT32 port, HBA_PORTSTATISTICS *statistics) {
    return answerHandle("HBA_GetPortStatistics", handle, number(port), [&](const HbaAdapter &adapter) {
        if (port >= adapter.ports.size()) {
            return HBA_STATUS{HBA_STATUS_ERROR_ILLEGAL_INDEX};
        }
        const HbaPort &local = adapter.ports[port];
        const std::size_t at = std::min(portReading, local.laterStatistics.size());
        return copyOut(at == 0 ? *local.statistics : *local.laterStatistics[at - 1], local.status.GetPortStatistics,
                       statistics);
    });
}

HBA_STATUS HBA_GetDiscoveredPortAttributes(HBA_HANDLE handle, HBA_UINT32 port, HBA_UINT32 discovered,
                                           HBA_PORTATTRIBUTES *attributes) {
    const InPlatform inside;
    const std::string arguments = number(port) + number(discovered);
    return answerHandle("HBA_GetDiscoveredPortAttributes", handle, arguments, [&](const HbaAdapter &adapter) {
        if (port >= adapter.ports.size() || discovered >= adapter.ports[port].discovered.size()) {
            return HBA_STATUS{HBA_STATUS_ERROR_ILLEGAL_INDEX};
        }
        const HbaDiscoveredPort &remote = adapter.ports[port].discovered[discovered];
        return copyOut(*remote.attributes, remote.status.GetDiscoveredPortAttributes, attributes);
    });
}

HBA_STATUS HBA_GetFcpTargetMapping(HBA_HANDLE handle, HBA_FCPTARGETMAPPING *mapping) {
    return answerHandle("HBA_GetFcpTargetMapping", handle, number(mapping->NumberOfEntries),
                        [&](const HbaAdapter &adapter) { return copyMapping(adapter, mapping); });
}
