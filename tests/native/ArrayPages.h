#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

// The pages of a pretend disk array and the host description that offers them.

namespace pages {

using Bytes = std::vector<unsigned char>;
using Counters = std::array<std::uint32_t, 9>; // of one drive, in page order

constexpr std::size_t bufferSize = 65535;

inline void append16(Bytes &bytes, unsigned value) {
    bytes.push_back(static_cast<unsigned char>(value >> 8 & 0xFF));
    bytes.push_back(static_cast<unsigned char>(value & 0xFF));
}

inline void append32(Bytes &bytes, std::uint32_t value) {
    append16(bytes, value >> 16);
    append16(bytes, value & 0xFFFF);
}

/// Puts into the header of a page how many bytes follow it.
inline Bytes withPageLength(Bytes page, std::size_t length) {
    page[2] = static_cast<unsigned char>(length >> 8);
    page[3] = static_cast<unsigned char>(length & 0xFF);
    return page;
}

/// A statistics page under construction; every parameter's length byte is right unless one is given.
class StatisticsPage {
public:
    StatisticsPage &parameter(unsigned code, const Bytes &value, std::size_t length) {
        header(code, length);
        page.insert(page.end(), value.begin(), value.end());
        return *this;
    }
    StatisticsPage &parameter(unsigned code, const Bytes &value) {
        return parameter(code, value, value.size());
    }

    StatisticsPage &drive(unsigned channel, unsigned identifier, const Counters &counters) {
        header(0xC000 + channel * 256 + identifier, 36);
        for (const std::uint32_t counter : counters) {
            append32(page, counter);
        }
        return *this;
    }
    StatisticsPage &number(unsigned code, std::uint32_t value) {
        header(code, 4);
        append32(page, value);
        return *this;
    }

    /// Fills up with parameters of an unknown code until the next one begins at `offset`, at least 4 from here.
    StatisticsPage &fillTo(std::size_t offset) {
        constexpr std::size_t largest = 4 + 255;
        while (page.size() < offset) {
            const std::size_t room = offset - page.size();
            const std::size_t size = room <= largest ? room : std::min(largest, room - 4);
            parameter(0x0000, Bytes(size - 4, 0xEE));
        }
        return *this;
    }

    /// The page, with the largest length its header can tell when it is longer than that.
    Bytes bytes() const {
        return withPageLength(page, std::min<std::size_t>(page.size() - 4, 0xFFFF));
    }

private:
    void header(unsigned code, std::size_t length) {
        append16(page, code);
        append16(page, static_cast<unsigned>(length & 0xFF)); // after a control byte
    }

    Bytes page{0x3B, 0x00, 0x00, 0x00};
};

struct Place {
    unsigned channel;
    unsigned identifier;
    unsigned tray;
    unsigned slot;
};

inline Bytes translationPage(const std::vector<Place> &places) {
    Bytes page{0xA0, 0x00, 0x00, 0x00, 1, 2, 3, 4, 5, 6, 7, 8};
    for (const Place &place : places) {
        for (const unsigned field : {place.channel, place.identifier, place.tray, place.slot}) {
            page.push_back(static_cast<unsigned char>(field));
        }
    }
    return withPageLength(page, page.size() - 4);
}

/// Counters that tell drives and counters apart.
inline Counters countersOf(unsigned drive) {
    Counters counters;
    for (unsigned i = 0; i < counters.size(); ++i) {
        counters[i] = drive * 100 + i + 1;
    }
    return counters;
}

/// Place of a controller's i-th drive: 256 to a channel, 14 to a tray.
inline Place placeOf(unsigned i) {
    return {i / 256, i % 256, i / 14 % 200, i % 14 + 1};
}

/// Both pages of a controller with this many drives.
struct ControllerPages {
    explicit ControllerPages(unsigned drives, unsigned firstDrive = 0) {
        std::vector<Place> places;
        StatisticsPage page;
        for (unsigned i = 0; i < drives; ++i) {
            places.push_back(placeOf(i));
            page.drive(places[i].channel, places[i].identifier, countersOf(firstDrive + i));
        }
        translation = translationPage(places);
        statistics = page.bytes();
    }

    Bytes translation;
    Bytes statistics;
};

/// One LUN of an array, as its whole-disk device answers.
struct ArrayLun {
    std::string name; // of the disk, "c2t0d0"
    std::string vendor;
    std::string product;
    std::string controller; // that owns it
    Bytes translation{};
    Bytes statistics{};
    std::vector<std::string> slices{"s0", "s2"};
    bool takesLogSelect = false;
    std::string openFailure{};               // an errno's name
    std::string failing{};                   // the command that fails, by its name in a host description
    std::size_t bytesPerAnswer = bufferSize; // at most
};

inline std::string hex(const Bytes &bytes) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
        text += ' ';
    }
    return text;
}

inline Bytes padded(const std::string &text, std::size_t size) {
    Bytes bytes(text.begin(), text.end());
    bytes.resize(size, ' ');
    return bytes;
}

/// The disk of a host description that stands for the LUN.
inline std::string describeLun(const ArrayLun &lun) {
    Bytes inquiry(8);
    for (const Bytes &field : {padded(lun.vendor, 8), padded(lun.product, 16), padded("0710", 4)}) {
        inquiry.insert(inquiry.end(), field.begin(), field.end());
    }
    Bytes pageC0(112, 0x55);
    const Bytes controller = padded(lun.controller, 16);
    pageC0.insert(pageC0.end(), controller.begin(), controller.end());

    std::string answers;
    const auto answer = [&](const char *command, Bytes bytes) {
        if (command != lun.failing) {
            bytes.resize(std::min(bytes.size(), lun.bytesPerAnswer));
            answers += std::string(answers.empty() ? "" : ", ") + "\"" + command + "\": \"" + hex(bytes) + "\"";
        }
    };
    answer("INQUIRY", inquiry);
    answer("INQUIRY C0", pageC0);
    answer("RECEIVE DIAGNOSTIC A0", lun.translation);
    answer("LOG SENSE 3B", lun.statistics);
    if (lun.takesLogSelect) {
        answer("LOG SELECT 30", {});
    }
    std::string slices;
    for (const std::string &slice : lun.slices) {
        slices += (slices.empty() ? "\"" : ", \"") + slice + "\"";
    }
    return "{\"name\": \"" + lun.name + "\", \"slices\": [" + slices + "], \"scsi\": {" + answers + "}" +
           (lun.openFailure.empty() ? "" : ", \"fails\": {\"open\": \"" + lun.openFailure + "\"}") + "}";
}

/// The description of a host that has these LUNs, in this order.
inline std::string describeHost(const std::vector<ArrayLun> &luns) {
    std::string disks;
    for (const ArrayLun &lun : luns) {
        disks += (disks.empty() ? "" : ",\n") + describeLun(lun);
    }
    return "{\"disks\": [" + disks + "]}";
}

/// One zero record of a report, or `count` of them.
inline std::string zeroRecords(unsigned count) {
    std::string text;
    for (unsigned i = 0; i < count * 8; ++i) {
        text += "         0";
    }
    return text;
}

/// A number of a report, "%*u".
inline std::string number(int width, unsigned value) {
    char text[32];
    std::snprintf(text, sizeof text, "%*u", width, value);
    return text;
}

} // namespace pages
