#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "tests/Lines.h"

// The pages of a pretend disk array and the host description that offers them.

namespace pages {

using Bytes = std::vector<unsigned char>;
using Counters = std::array<std::uint32_t, 9>; // of one drive, in page order

constexpr std::size_t bufferSize = 65535;

/// Appends the value's low `size` bytes, big-endian.
inline void append(Bytes &bytes, unsigned size, std::size_t value) {
    while (size-- > 0) {
        bytes.push_back(static_cast<unsigned char>(value >> 8 * size));
    }
}

/// Puts into the header of a page how many bytes follow it.
inline Bytes withPageLength(Bytes page, std::size_t length) {
    page[2] = static_cast<unsigned char>(length >> 8);
    page[3] = static_cast<unsigned char>(length);
    return page;
}

/// A statistics page under construction; every parameter's length byte is right unless one is given.
class StatisticsPage {
public:
    StatisticsPage &parameter(unsigned code, const Bytes &value, std::size_t length) {
        append(page, 2, code);
        append(page, 2, length); // after a control byte
        page.insert(page.end(), value.begin(), value.end());
        return *this;
    }
    StatisticsPage &parameter(unsigned code, const Bytes &value) {
        return parameter(code, value, value.size());
    }
    StatisticsPage &drive(unsigned channel, unsigned identifier, const Counters &counters) {
        parameter(0xC000 + channel * 256 + identifier, {}, 36);
        for (const std::uint32_t counter : counters) {
            append(page, 4, counter);
        }
        return *this;
    }

    /// Fills up with parameters of an unknown code until the next one begins at `offset`, at least 4 from here.
    StatisticsPage &fillTo(std::size_t offset) {
        while (page.size() < offset) {
            const std::size_t room = offset - page.size() - 4;
            parameter(0x0000, Bytes(room <= 255 ? room : std::min<std::size_t>(255, room - 4), 0xEE));
        }
        return *this;
    }

    /// The page, with the largest length its header can tell when it is longer than that.
    Bytes bytes() const {
        return withPageLength(page, std::min<std::size_t>(page.size() - 4, 0xFFFF));
    }

private:
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
        append(page, 4, place.channel << 24 | place.identifier << 16 | place.tray << 8 | place.slot);
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
    ControllerPages(Bytes translationBytes, Bytes statisticsBytes)
        : translation(std::move(translationBytes)), statistics(std::move(statisticsBytes)) {
    }

    Bytes translation;
    Bytes statistics;
};

/// One LUN of an array, as its whole-disk device answers.
struct ArrayLun {
    std::string name;   // of the disk, "c2t0d0"
    std::string vendor; // when it is empty, the answer ends before it
    std::string product;
    std::string controller; // that owns it; when it is empty, the answer ends before the owner
    Bytes translation{};
    Bytes statistics{};
    std::vector<std::string> slices{"s0", "s2"};
    std::string failing{}; // "open", or the command that fails, by its name in a host description
};

constexpr char vendor[] = "KELVO";
constexpr char product[] = "ARRAY 9";

inline ArrayLun arrayLun(const std::string &name, const std::string &controller, const ControllerPages &answers,
                         const std::string &productId = product, const std::string &vendorId = vendor) {
    return {name, vendorId, productId, controller, answers.translation, answers.statistics};
}

inline std::string padded(std::string text, std::size_t size) {
    text.resize(size, ' ');
    return text;
}

/// The disk of a host description that stands for the LUN.
inline nlohmann::json describeLun(const ArrayLun &lun) {
    nlohmann::json disk = {{"name", lun.name}, {"slices", lun.slices}, {"scsi", nlohmann::json::object()}};
    const auto answer = [&](const std::string &command, const auto &bytes) {
        if (command != lun.failing) {
            std::string hex;
            for (const auto byte : bytes) {
                hex += {"0123456789abcdef"[byte >> 4 & 0xF], "0123456789abcdef"[byte & 0xF]};
            }
            disk["scsi"][command] = hex;
        }
    };
    const std::string inquiry = padded("", 8) + padded(lun.vendor, 8) + padded(lun.product, 16) + "0710";
    const std::string whole = padded(inquiry, 112) + "ctrl-A          "; // where the other answer names the owner
    answer("INQUIRY", lun.vendor.empty() ? whole.substr(0, 8) : whole);
    answer("INQUIRY C0", padded("", 112) + (lun.controller.empty() ? "" : padded(lun.controller, 16)));
    answer("RECEIVE DIAGNOSTIC A0", lun.translation);
    answer("LOG SENSE 3B", lun.statistics);
    answer("LOG SELECT 30", Bytes());
    if (lun.failing == "open") {
        disk["fails"] = {{"open", "EBUSY"}};
    }
    return disk;
}

/// The description of a host that has these LUNs, in this order.
inline std::string describeHost(const std::vector<ArrayLun> &luns) {
    auto disks = nlohmann::json::array();
    std::ranges::transform(luns, std::back_inserter(disks), describeLun);
    return nlohmann::json{{"disks", disks}}.dump();
}

/// The records of a report that stand for a controller without any.
inline std::string zeroRecords(unsigned count) {
    return tests::joined(std::vector<std::string>(std::size_t{8} * count, "         0"), "");
}

} // namespace pages
