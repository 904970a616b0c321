#include <cstring>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "common/system/KernelRecords.h"
#include "platform/replay/Host.h"
#include "platform/replay/PlatformCall.h"
#include "platform/replay/PortReading.h"

// The kernel statistics library.

namespace replay {
namespace {

using description::KernelRecord;
using description::KernelSample;

/// A record as one handle shows it: its own data, and how often it was read.
struct ChainRecord : kstat_t {
    const KernelRecord *source;
    std::size_t reads;
    std::unique_ptr<KernelSample> data; // of the last read
};

/// What a kstat_ctl_t is part of. The records stay where they are until it is closed.
struct Chain : kstat_ctl_t {
    std::shared_ptr<const Host> host;
    std::vector<ChainRecord> records;
    std::size_t updates = 0; // since it went over to this host

    explicit Chain(std::shared_ptr<const Host> opened) : kstat_ctl_t{0, nullptr, -1} {
        show(std::move(opened));
    }

    /// Gives up the records there were, and takes those of the host, none of which has been read yet.
    void show(std::shared_ptr<const Host> shown) {
        ++kc_chain_id;
        kc_chain = nullptr;
        host = std::move(shown);
        updates = 0;
        records.clear();
        records.reserve(host->kstat->size());
        for (const KernelRecord &source : *host->kstat) {
            records.push_back({static_cast<const kstat_t &>(source), &source, 0, {}});
        }
        for (std::size_t i = records.size(); i-- > 0;) {
            records[i].ks_next = kc_chain;
            kc_chain = &records[i];
        }
    }
};

void *placeOf(auto &data) {
    return &data;
}

void *placeOf(description::NamedStatistics &statistics) {
    return statistics.data();
}

/// The record when it is one of the chain's.
ChainRecord *recordOf(Chain &chain, kstat_t *record) {
    auto *found = static_cast<ChainRecord *>(record);
    const std::less<const ChainRecord *> before;
    return before(found, chain.records.data()) || !before(found, chain.records.data() + chain.records.size()) ? nullptr
                                                                                                              : found;
}

kid_t readRecord(Chain &chain, kstat_t *header, void *buffer) {
    ChainRecord *record = recordOf(chain, header);
    if (record == nullptr) {
        return failWith(EINVAL);
    }
    const std::vector<KernelSample> &samples = record->source->samples;
    if (samples.empty()) {
        return failWith(ENXIO);
    }
    const KernelSample &sample = samples[std::min(record->reads++, samples.size() - 1)];
    if (const auto *failed = std::get_if<description::KernelReadFailure>(&sample); failed != nullptr) {
        return failWith(failed->error);
    }
    record->data = std::make_unique<KernelSample>(sample);
    record->ks_data = std::visit([](auto &data) -> void * { return placeOf(data); }, *record->data);
    record->ks_snaptime = sample.ks_snaptime.value_or(record->source->ks_snaptime);
    if (std::holds_alternative<description::NamedStatistics>(sample)) { // of which a later reading may have others
        record->ks_ndata = partsOf(sample);
        record->ks_data_size = sizeOf(sample);
    }
    if (buffer != nullptr) {
        std::memcpy(buffer, record->ks_data, record->ks_data_size);
    }
    return chain.kc_chain_id;
}

} // namespace
} // namespace replay

using namespace replay;

kstat_ctl_t *kstat_open() {
    const auto line = [] { return std::string("kstat_open"); };
    return answerCall(line, [] {
        std::shared_ptr<const Host> host = currentHost();
        return host->kstat ? std::make_unique<Chain>(std::move(host)).release() : failWith<kstat_ctl_t *>(ENOENT);
    });
}

int kstat_close(kstat_ctl_t *control) {
    const std::unique_ptr<Chain> chain(static_cast<Chain *>(control));
    return answerCall([] { return std::string("kstat_close"); }, [] { return 0; });
}

kid_t kstat_read(kstat_ctl_t *control, kstat_t *record, void *buffer) {
    return answerCall([&] { return "kstat_read " + tarn::nameOf(*record); },
                      [&] { return readRecord(*static_cast<Chain *>(control), record, buffer); });
}

/// A chain follows the current host: one that was loaded since is a machine whose devices have come and gone.
kid_t kstat_chain_update(kstat_ctl_t *control) {
    return answerCall([] { return std::string("kstat_chain_update"); },
                      [&]() -> kid_t {
                          auto &chain = *static_cast<Chain *>(control);
                          std::shared_ptr<const Host> host = currentHost();
                          const bool isNew = host != chain.host;
                          if (isNew && !host->kstat) {
                              return failWith<kid_t>(ENXIO);
                          }
                          if (isNew) {
                              chain.show(std::move(host));
                          }
                          portReading = chain.updates++;
                          return isNew ? chain.kc_chain_id : 0;
                      });
}

kstat_t *kstat_lookup(kstat_ctl_t *control, const char *module, int instance, const char *name) {
    const auto line = [&] {
        return std::string("kstat_lookup ") + (module == nullptr ? "*" : module) + ":" +
               (instance == -1 ? "*" : std::to_string(instance)) + ":" + (name == nullptr ? "*" : name);
    };
    return answerCall(line, [&] {
        kstat_t *record = control->kc_chain;
        while (record != nullptr && !((module == nullptr || tarn::fieldText(record->ks_module) == module) &&
                                      (instance == -1 || record->ks_instance == instance) &&
                                      (name == nullptr || tarn::fieldText(record->ks_name) == name))) {
            record = record->ks_next;
        }
        return record == nullptr ? failWith<kstat_t *>(ENOENT) : record;
    });
}
