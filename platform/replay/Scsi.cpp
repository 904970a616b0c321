#include "platform/replay/Scsi.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "common/system/Hexadecimal.h"
#include "description/ScsiCommands.h"
#include "platform/replay/Host.h"
#include "platform/replay/PlatformCall.h"

namespace replay {
namespace {

using description::ScsiCommandName;
using description::scsiCommandNames;
using tarn::ScsiCommand;

constexpr short checkCondition = 2; // SCSI status

std::span<const unsigned char> descriptorBlock(const uscsi_cmd &command) {
    const auto *bytes = reinterpret_cast<const unsigned char *>(command.uscsi_cdb);
    return {bytes, bytes == nullptr ? std::size_t{0} : command.uscsi_cdblen};
}

bool isCommand(const ScsiCommand &command, std::span<const unsigned char> cdb) {
    if (cdb.size() != command.length) {
        return false;
    }
    for (std::size_t i = 0; i < cdb.size(); ++i) {
        if (cdb[i] != command.fixed[i] && i != command.countAt && i != command.countAt + 1) {
            return false;
        }
    }
    return true;
}

const ScsiCommandName *recognise(std::span<const unsigned char> cdb) {
    const auto found = std::ranges::find_if(
        scsiCommandNames, [&](const ScsiCommandName &known) { return isCommand(*known.command, cdb); });
    return found == scsiCommandNames.end() ? nullptr : &*found;
}

/// Bytes that the descriptor block asks for or announces.
std::size_t countOf(const ScsiCommand &command, std::span<const unsigned char> cdb) {
    return static_cast<std::size_t>(cdb[command.countAt] << 8 | cdb[command.countAt + 1]);
}

std::string hexText(std::span<const unsigned char> bytes) {
    std::string text;
    for (const unsigned char byte : bytes) {
        text += text.empty() ? "" : " ";
        text.append(tarn::hexDigits(byte).data(), 2);
    }
    return text;
}

/// Whether the page length and the parameter lengths of a LOG SELECT parameter list come out at its end.
bool isWellFormed(std::span<const unsigned char> list) {
    constexpr std::size_t headerSize = 4; // of the page, and of each parameter
    if (list.size() < headerSize || headerSize + static_cast<std::size_t>(list[2] << 8 | list[3]) != list.size()) {
        return false;
    }
    std::size_t at = headerSize;
    while (at + headerSize <= list.size()) {
        at += headerSize + list[at + 3];
    }
    return at == list.size();
}

/// The device does not do what it was told.
int refuseCommand(uscsi_cmd &command) {
    command.uscsi_status = checkCondition;
    command.uscsi_resid = command.uscsi_buflen;
    return EIO;
}

} // namespace

int sendScsiCommand(const Disk &disk, uscsi_cmd &command) {
    const std::span<const unsigned char> cdb = descriptorBlock(command);
    const ScsiCommandName *known = recognise(cdb);
    if (known == nullptr) {
        return refuseCommand(command);
    }
    const std::size_t count = countOf(*known->command, cdb);
    const bool fromDevice = (command.uscsi_flags & USCSI_READ) != 0;
    if (fromDevice == known->command->sendsData || (known->command->sendsData && command.uscsi_buflen < count)) {
        return EINVAL;
    }
    if (command.uscsi_bufaddr == nullptr && command.uscsi_buflen != 0) {
        return EFAULT;
    }
    if (const int error = failureOf(disk, known->name); error != 0) {
        return error;
    }
    const auto answer = disk.scsi.find(known->name);
    if (answer == disk.scsi.end()) {
        return refuseCommand(command);
    }
    std::size_t moved = count;
    if (!known->command->sendsData) {
        if (leavesDirt()) {
            std::fill_n(command.uscsi_bufaddr, command.uscsi_buflen, static_cast<char>(dirt));
        }
        moved = std::min({answer->second.size(), count, command.uscsi_buflen});
        std::copy_n(answer->second.data(), moved, command.uscsi_bufaddr);
    } else {
        const std::span list(reinterpret_cast<const unsigned char *>(command.uscsi_bufaddr), count);
        if (list.empty() || list.front() != tarn::logSelectPage) {
            return refuseCommand(command);
        }
        if (!isWellFormed(list)) {
            return EINVAL;
        }
    }
    command.uscsi_status = 0;
    command.uscsi_resid = command.uscsi_buflen - moved;
    return 0;
}

std::string scsiCommandText(const uscsi_cmd &command) {
    const std::span<const unsigned char> cdb = descriptorBlock(command);
    const ScsiCommandName *known = recognise(cdb);
    std::string text = hexText(cdb) + " flags " + std::to_string(command.uscsi_flags) + " timeout " +
                       std::to_string(command.uscsi_timeout);
    if (known != nullptr && known->command->sendsData && command.uscsi_bufaddr != nullptr) {
        const auto *data = reinterpret_cast<const unsigned char *>(command.uscsi_bufaddr);
        text += " data " + hexText({data, std::min(countOf(*known->command, cdb), command.uscsi_buflen)});
    }
    return text;
}

} // namespace replay
