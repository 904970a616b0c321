#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

#include "native/SolarisScsiInterrogatorC.h"
#include "tests/native/ArrayPages.h"

// Runs the page decoding on memory of exactly the promised sizes, and a slow, checked second opinion beside it.

namespace pages {

/// Codes of the controller statistics, in the order of their indexes.
constexpr unsigned dictionaryCodes[] = {
    0x0030, 0x8100, 0x8101, 0x8102, 0x8130, 0x8131, 0x8132, 0x8160, 0x8200, 0x8201, 0x8202, 0x8203, 0x8204, 0x8205,
    0x8206, 0x8210, 0x8211, 0x8220, 0x8221, 0x8222, 0x8223, 0x8230, 0x8231, 0x8232, 0x8233, 0x8238, 0x8250, 0x8251,
    0x8252, 0x8253, 0x8254, 0x8255, 0x8260, 0x8261, 0x8262, 0x8280, 0x8281, 0x8282, 0x8300, 0x8301, 0x8302, 0x8303,
    0x8304, 0x8305, 0x8310, 0x8311, 0x8312, 0x8313, 0x8314, 0x8404, 0x8405, 0x8420, 0x8421};

/// What the decoding of one statistics page gives.
struct Report {
    unsigned drives = 0;
    std::string common;
    std::string uncommon;
    bool logSelect = false;
    bool operator==(const Report &) const = default;
};

/// The decoding under test. The buffers end where the promised size ends, so that a sanitizer sees any step outside.
class Decoder {
public:
    /// A new scan.
    void clear() {
        std::memset(driveStatistics, 0, sizeof driveStatistics);
    }

    void translate(const Bytes &page) {
        load(page);
        processReceiveDiagnosticA0buffer(buffer.data());
    }

    Report decode(const Bytes &page) {
        load(page);
        std::memset(common.data(), '#', common.size());
        std::memset(uncommon.data(), '#', uncommon.size());
        Report report;
        report.drives = 0xBAD;
        int logSelect = 0;
        processLogSense3Bbuffer(buffer.data(), &report.drives, common.data(), uncommon.data(), &logSelect);
        report.common = text(common);
        report.uncommon = uncommon[0] == '#' ? "" : text(uncommon);
        report.logSelect = logSelect == 1;
        return report;
    }

private:
    void load(const Bytes &page) {
        std::memcpy(buffer.data(), page.data(), page.size());
        std::memset(buffer.data() + page.size(), 0, buffer.size() - page.size());
    }

    static std::string text(const std::vector<char> &characters) {
        return std::string(characters.data(), strnlen(characters.data(), characters.size()));
    }

    Bytes buffer = Bytes(bufferSize);
    std::vector<char> common = std::vector<char>(2699);
    std::vector<char> uncommon = std::vector<char>(35841);
};

/// The second opinion: maps for tables, every byte fetched with a check, text put together by the C library.
class Model {
public:
    void clear() {
        drives.clear();
    }

    void translate(const Bytes &page) {
        places.clear();
        try {
            for (std::size_t offset = 12; offset < end(page); offset += 4) {
                const unsigned slot = byte(page, offset + 3);
                if (byte(page, offset) < 32) {
                    places[{byte(page, offset), byte(page, offset + 1)}] = {byte(page, offset + 2), slot};
                }
            }
        } catch (const std::out_of_range &) {
            // That is where the page ends.
        }
    }

    Report decode(const Bytes &page) {
        try {
            for (std::size_t offset = 4; offset < end(page); offset += 4 + byte(page, offset + 3)) {
                decodeParameter(page, offset);
            }
        } catch (const std::out_of_range &) {
            // Likewise.
        }
        return report();
    }

    /// Empty, or in what the decoder's tables differ from what the pages said.
    std::string compareTables() const {
        for (std::size_t index = 0; index < std::size(dictionaryCodes); ++index) {
            const auto number = numbers.find(dictionaryCodes[index]);
            if (number != numbers.end() && paraValue[index] != number->second) {
                return "paraValue[" + std::to_string(index) + "]";
            }
        }
        std::size_t present = 0;
        for (const auto &row : driveStatistics) {
            present += static_cast<std::size_t>(std::ranges::count(row, 1U, &tarn::DriveStatistics::present));
        }
        if (present != drives.size()) {
            return "number of drives present";
        }
        for (const auto &[drive, counters] : drives) {
            if (!std::ranges::equal(driveStatistics[drive.first][drive.second].counters, counters)) {
                return "driveStatistics[" + std::to_string(drive.first) + "][" + std::to_string(drive.second) + "]";
            }
        }
        return "";
    }

private:
    static unsigned byte(const Bytes &page, std::size_t offset) {
        if (offset >= bufferSize) {
            throw std::out_of_range("buffer");
        }
        return offset < page.size() ? page[offset] : 0;
    }

    static std::uint32_t word(const Bytes &page, std::size_t offset) {
        return byte(page, offset) << 24 | byte(page, offset + 1) << 16 | byte(page, offset + 2) << 8 |
               byte(page, offset + 3);
    }

    static std::size_t end(const Bytes &page) {
        return byte(page, 2) * 256 + byte(page, 3) + 4;
    }

    void decodeParameter(const Bytes &page, std::size_t offset) {
        const unsigned code = byte(page, offset) * 256 + byte(page, offset + 1);
        byte(page, offset + 3 + byte(page, offset + 3)); // the whole parameter lies in the buffer
        static const std::set<unsigned> known(std::begin(dictionaryCodes), std::end(dictionaryCodes));
        if (code == 0x8100 || code == 0x8200) {
            byte(page, offset + 4 + 9);
        } else if (code == 0x8160) {
            byte(page, offset + 4 + 127);
        } else if (known.contains(code)) {
            numbers[code] = word(page, offset + 4);
        } else if (code >= 0xC000 && code <= 0xCFFF) {
            byte(page, offset + 4 + 35);
            Counters counters;
            for (std::size_t i = 0; i < counters.size(); ++i) {
                counters[i] = word(page, offset + 4 + 4 * i);
            }
            drives[{code >> 8 & 0xF, code & 0xFF}] = counters;
        }
    }

    Report report() const {
        Report result;
        std::string placesText;
        bool anyBlocks = false;
        bool anyIOs = false;
        for (const auto &[drive, counters] : drives) {
            const auto place = places.find(drive);
            if (place == places.end() || place->second.first == 255 || place->second.second == 255 ||
                result.drives == 448) {
                continue;
            }
            ++result.drives;
            placesText += number(3, place->second.first) + number(3, place->second.second);
            for (std::size_t i = 0; i < 8; ++i) {
                result.uncommon += number(10, counters[i]);
            }
            anyBlocks |= counters[2] != 0;
            anyIOs |= counters[3] != 0;
        }
        result.common = number(5, result.drives) + (result.drives == 0 ? "" : placesText + "   80");
        result.logSelect = anyIOs && !anyBlocks;
        return result;
    }

    using Drive = std::pair<unsigned, unsigned>; // channel and identifier: the order of the report
    std::map<Drive, std::pair<unsigned, unsigned>> places;
    std::map<Drive, Counters> drives;
    std::map<unsigned, std::uint32_t> numbers; // by code
};

/// Decoder and model, side by side over any number of scans.
class CheckedDecoding {
public:
    /// One controller of a scan. Empty, or in what the two differ.
    std::string run(bool newScan, const Bytes &translation, const Bytes &statistics) {
        if (newScan) {
            decoder.clear();
            model.clear();
        }
        decoder.translate(translation);
        model.translate(translation);
        const Report actual = decoder.decode(statistics);
        const Report expected = model.decode(statistics);
        if (actual != expected) {
            return "report: " + actual.common + actual.uncommon + "\nexpected: " + expected.common + expected.uncommon;
        }
        return model.compareTables();
    }

private:
    Decoder decoder;
    Model model;
};

/// Pairs of pages, the same for the same seed on every machine: believable ones, ones with bytes changed, and noise.
class RandomPages {
public:
    explicit RandomPages(std::uint64_t seed) : random(seed) {
        const bool large = below(32) == 0;
        const unsigned drives = below(large ? 1200 : 40);
        const unsigned channels = 1 + below(16);
        std::vector<Place> places;
        StatisticsPage page;
        if (below(8) == 0) {
            page.fillTo(bufferSize - 4 - below(400));
        }
        for (unsigned i = 0; i < drives; ++i) {
            const unsigned channel = below(channels);
            const unsigned identifier = below(256);
            places.push_back({channel, below(8) == 0 ? below(256) : identifier, below(256), below(256)});
            addParameter(page, channel, identifier);
        }
        translation = translationPage(places);
        statistics = page.bytes();
        // What the data buffer has no room for has not been transferred.
        statistics.resize(std::min(statistics.size(), bufferSize));
        const unsigned kind = below(4);
        if (kind == 1) {
            mutate(translation);
            mutate(statistics);
        } else if (kind == 2) {
            scramble(translation);
            scramble(statistics);
        }
    }

    Bytes translation;
    Bytes statistics;

private:
    unsigned below(unsigned limit) {
        return static_cast<unsigned>(random() % limit);
    }

    void addParameter(StatisticsPage &page, unsigned channel, unsigned identifier) {
        const unsigned kind = below(16);
        if (kind == 0) {
            page.parameter(below(65536), Bytes(below(256), static_cast<unsigned char>(below(256))));
        } else if (kind == 1) {
            const unsigned code = dictionaryCodes[below(std::size(dictionaryCodes))];
            page.number(code, static_cast<std::uint32_t>(random()));
        } else {
            Counters counters{};
            for (std::uint32_t &counter : counters) {
                counter = below(3) == 0 ? 0 : static_cast<std::uint32_t>(random() >> below(64));
            }
            page.drive(channel, identifier, counters);
        }
    }

    void mutate(Bytes &page) {
        static constexpr unsigned char favourites[] = {0, 1, 3, 0x30, 0x7F, 0x81, 0xC0, 0xCF, 0xFE, 0xFF};
        for (unsigned changes = 1 + below(8); changes > 0; --changes) {
            const std::size_t at = below(32) == 0 ? 2 + below(2) : below(static_cast<unsigned>(page.size()));
            page[at] = below(2) == 0 ? favourites[below(std::size(favourites))] : static_cast<unsigned char>(random());
        }
    }

    void scramble(Bytes &page) {
        page.resize(4 + below(below(16) == 0 ? bufferSize - 3 : 600));
        for (unsigned char &byte : page) {
            byte = static_cast<unsigned char>(random());
        }
        if (below(8) != 0) {
            page = withPageLength(page, page.size() - 4);
        }
    }

    std::mt19937_64 random;
};

} // namespace pages
