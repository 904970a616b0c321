#pragma once

#include <array>
#include <cstddef>

// The SCSI commands that disks are sent. The interrogator, the inventory and the recorder send them, a replayed host answers them.

namespace tarn {

/// What the INQUIRY commands ask for, in bytes.
inline constexpr std::size_t inquirySize = 255;

/// Size of the buffer of every read command, in bytes, and what the commands for an array's two large pages ask for.
inline constexpr std::size_t dataBufferSize = 65535;

/// Seconds that a device has.
inline constexpr short scsiTimeout = 30;

inline constexpr unsigned char logSelectPage = 0x30;

/// The one parameter list that is sent.
inline constexpr std::array<unsigned char, 12> logSelectParameters = {
    logSelectPage, 0x00, 0x00, 0x08, // subpage 0, 8 bytes follow
    0x00,          0x01, 0x60, 0x04, // parameter 0x0001, not saved and without target save, 4 bytes follow
    0x01,          0x00, 0x00, 0x00,
};

struct ScsiCommand {
    std::size_t length;                  // of the descriptor block
    std::size_t countAt;                 // where the block's two-byte allocation or parameter list length stands
    std::size_t count;                   // what is asked for or sent, in bytes
    bool sendsData;                      // to the device
    std::array<unsigned char, 10> fixed; // bytes of the block, all but the count

    /// The descriptor block, of which `length` bytes count.
    constexpr std::array<unsigned char, 10> block() const {
        std::array<unsigned char, 10> bytes = fixed;
        bytes[countAt] = static_cast<unsigned char>(count >> 8);
        bytes[countAt + 1] = static_cast<unsigned char>(count);
        return bytes;
    }
};

inline constexpr ScsiCommand standardInquiry = {6, 3, inquirySize, false, {0x12}};
inline constexpr ScsiCommand inquiry00 = {6, 3, inquirySize, false, {0x12, 0x01, 0x00}};
inline constexpr ScsiCommand inquiry80 = {6, 3, inquirySize, false, {0x12, 0x01, 0x80}};
inline constexpr ScsiCommand inquiry83 = {6, 3, inquirySize, false, {0x12, 0x01, 0x83}};
inline constexpr ScsiCommand inquiryC0 = {6, 3, inquirySize, false, {0x12, 0x01, 0xC0}};
inline constexpr ScsiCommand receiveDiagnosticA0 = {6, 3, dataBufferSize, false, {0x1C, 0x01, 0xA0}};
inline constexpr ScsiCommand logSense3B = {
    10, 7, dataBufferSize, false, {0x4D, 0x00, 0x7B}}; // current cumulative values
inline constexpr ScsiCommand logSelect30 = {10, 7, logSelectParameters.size(), true, {0x4C, 0x00, 0x40}};

} // namespace tarn
