#pragma once

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <map>
#include <random>
#include <string>
#include <utility>

#include "native/array/SolarisScsiInterrogatorC.h"
#include "native/array/SolarisScsiInterrogatorCTrace.h"
#include "tests/native/array/ArrayPages.h"

// Runs the page decoding on memory of exactly the promised sizes, and a slow, checked second opinion beside it.

namespace pages {

/// Codes of the controller statistics, in the order of their indexes.
constexpr unsigned dictionaryCodes[] = {
    0x0030, 0x8100, 0x8101, 0x8102, 0x8130, 0x8131, 0x8132, 0x8160, 0x8200, 0x8201, 0x8202, 0x8203, 0x8204, 0x8205,
    0x8206, 0x8210, 0x8211, 0x8220, 0x8221, 0x8222, 0x8223, 0x8230, 0x8231, 0x8232, 0x8233, 0x8238, 0x8250, 0x8251,
    0x8252, 0x8253, 0x8254, 0x8255, 0x8260, 0x8261, 0x8262, 0x8280, 0x8281, 0x8282, 0x8300, 0x8301, 0x8302, 0x8303,
    0x8304, 0x8305, 0x8310, 0x8311, 0x8312, 0x8313, 0x8314, 0x8404, 0x8405, 0x8420, 0x8421};

/// The decoding under test, over one scan. The buffers end where the promised size ends, so that a sanitizer sees any
/// step outside.
class Decoder {
public:
    Decoder() {
        std::ranges::fill(paraValue, 0U);
        std::memset(driveStatistics, 0, sizeof driveStatistics);
    }

    /// What the next controller's pages give: "DRIVES|COMMON STRING|UNCOMMON STRING", and "|LOG SELECT" if called for.
    std::string decode(const ControllerPages &pages) {
        load(pages.translation);
        processReceiveDiagnosticA0buffer(buffer.data());
        load(pages.statistics);
        unsigned drives = 0xBAD;
        int logSelect = 0;
        uncommon[0] = '\0'; // it is left alone when there are no drives
        processLogSense3Bbuffer(buffer.data(), &drives, common.data(), uncommon.data(), &logSelect);
        return std::to_string(drives) + '|' + common.data() + '|' + uncommon.data() +
               (logSelect == 1 ? "|LOG SELECT" : "");
    }

private:
    void load(const Bytes &page) {
        std::fill_n(buffer.begin(), loaded, '\0');
        std::ranges::copy(page, buffer.begin());
        loaded = page.size();
    }

    Bytes buffer = Bytes(bufferSize);
    std::size_t loaded = 0;
    std::vector<char> common = std::vector<char>(2699);
    std::vector<char> uncommon = std::vector<char>(35841);
};

/// The second opinion: maps for tables, every byte fetched with a check, text from the C library.
class Model {
public:
    std::string decode(const ControllerPages &pages) {
        places.clear();
        walk(pages.translation, 12, [this](const Bytes &page, std::size_t at) {
            const std::pair place(number(page, at + 2, 1), number(page, at + 3, 1));
            if (number(page, at, 1) < 32) {
                places[number(page, at, 2)] = place;
            }
            return 4U;
        });
        walk(pages.statistics, 4, [this](const Bytes &page, std::size_t at) {
            const unsigned length = number(page, at + 3, 1);
            number(page, at + 3 + length, 1); // the whole parameter lies in the buffer
            decodeValue(number(page, at, 2), page, at + 4);
            return 4 + length;
        });
        return report();
    }

    /// Whether the decoder's tables hold what the pages said.
    bool matchesTables() const {
        return std::ranges::equal(paraValue, numbers) && std::ranges::all_of(drives, [](const auto &drive) {
                   const auto &[code, counters] = drive;
                   return std::ranges::equal(driveStatistics[code / 256][code % 256].counters, counters);
               });
    }

private:
    struct EndOfBuffer {};

    static std::uint32_t number(const Bytes &page, std::size_t at, std::size_t size) {
        std::uint32_t value = 0;
        for (const std::size_t end = at + size; at < end; ++at) {
            if (at >= bufferSize) {
                throw EndOfBuffer();
            }
            value = value << 8 | (at < page.size() ? page[at] : 0U);
        }
        return value;
    }

    /// Takes step after step, each of which tells its length, until one begins behind the page or leaves the buffer.
    template <class Step>
    static void walk(const Bytes &page, std::size_t at, Step step) {
        try {
            while (at < number(page, 2, 2) + 4) {
                at += step(page, at);
            }
        } catch (const EndOfBuffer &) {
            return;
        }
    }

    void decodeValue(unsigned code, const Bytes &page, std::size_t at) {
        if (code >> 12 == 0xC) {
            Counters counters;
            for (std::size_t i = 0; i < counters.size(); ++i) {
                counters[i] = number(page, at + 4 * i, 4);
            }
            drives[code & 0xFFF] = counters;
        } else if (code == 0x8100 || code == 0x8160 || code == 0x8200) {
            number(page, at + (code == 0x8160 ? 127 : 9), 1);
        } else if (const auto *known = std::ranges::find(dictionaryCodes, code); known != std::end(dictionaryCodes)) {
            numbers[known - dictionaryCodes] = number(page, at, 4);
        }
    }

    std::string report() const {
        std::string texts[2];
        unsigned count = 0;
        std::uint32_t blocks = 0;
        std::uint32_t requests = 0;
        char text[81];
        for (const auto &[drive, c] : drives) {
            const auto place = places.find(drive);
            if (place != places.end() && std::max(place->second.first, place->second.second) < 255 && count < 448) {
                ++count;
                std::snprintf(text, sizeof text, "%3u%3u", place->second.first, place->second.second);
                texts[0] += text;
                std::snprintf(text, sizeof text, "%10u%10u%10u%10u%10u%10u%10u%10u", c[0], c[1], c[2], c[3], c[4], c[5],
                              c[6], c[7]);
                texts[1] += text;
                blocks |= c[2];
                requests |= c[3];
            }
        }
        std::snprintf(text, sizeof text, "%u|%5u", count, count);
        return text + texts[0] + (count == 0 ? "|" : "   80|") + texts[1] +
               (blocks == 0 && requests != 0 ? "|LOG SELECT" : "");
    }

    // By channel * 256 + identifier, which is the order of the report.
    std::map<unsigned, std::pair<unsigned, unsigned>> places;
    std::map<unsigned, Counters> drives;
    std::uint32_t numbers[std::size(paraValue)] = {}; // by index
};

/// Decodes the pages of one scan's controllers both ways. Empty, or in what the two differ.
inline std::string compareDecodings(std::initializer_list<ControllerPages> controllers) {
    Decoder decoder;
    Model model;
    for (const ControllerPages &pages : controllers) {
        if (const std::string actual = decoder.decode(pages), expected = model.decode(pages); actual != expected) {
            return "got " + actual + ", not " + expected;
        }
    }
    return model.matchesTables() ? "" : "other contents of the tables";
}

/// Bytes of which many are 0: small numbers, and often 0.
inline Bytes randomBytes(std::mt19937_64 &random, std::size_t size) {
    Bytes bytes(size);
    std::ranges::generate(bytes, [&random] {
        const std::uint64_t number = random();
        return static_cast<unsigned char>(number % 4 == 0 ? number >> 32 : 0);
    });
    return bytes;
}

} // namespace pages
