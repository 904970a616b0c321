#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>

#include "common/system/FileDescriptor.h"
#include "common/system/ScsiCommands.h"
#include "platform/solaris.h"

namespace tarn {

/// Sends a disk a command that reads into `data`, which is filled up with zeros. How many bytes came; nothing when the
/// command is refused, with errno. `flags` are those beside USCSI_READ.
inline std::optional<std::size_t> readFromDisk(const FileDescriptor &device, const ScsiCommand &asked, int flags,
                                               std::span<unsigned char> data) {
    std::array<unsigned char, 10> block = asked.block();
    std::ranges::fill(data.first(std::min(asked.count, data.size())), static_cast<unsigned char>(0));
    uscsi_cmd command{};
    command.uscsi_flags = USCSI_READ | flags;
    command.uscsi_timeout = scsiTimeout;
    command.uscsi_cdb = reinterpret_cast<char *>(block.data());
    command.uscsi_cdblen = static_cast<uchar_t>(asked.length);
    command.uscsi_bufaddr = reinterpret_cast<char *>(data.data());
    command.uscsi_buflen = data.size();
    if (solaris::ioctl(device.get(), USCSICMD, &command) < 0) {
        return std::nullopt;
    }
    return data.size() - std::min(command.uscsi_resid, data.size());
}

} // namespace tarn
