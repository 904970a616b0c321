#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "tests/native/PageDecoding.h"

// libFuzzer target over the page decoding, which it compares with the checked model. Run by hand:
//
//     page_fuzzer --write-seeds=DIR       writes a seed corpus
//     page_fuzzer -max_len=4096 DIR       runs until a finding or an interrupt
//
// An input is read as
//
//     byte 0     bit 0: the drives of the input before stay, as those of the first controller do for the second
//                bit 1: the statistics page's parameters are moved to the end of the data buffer
//     byte 1     how many bytes before the end of the buffer the moved parameters begin, less 4
//     bytes 2-3  size of the translation page, big-endian
//     then       the translation page, then the statistics page

namespace {

using pages::Bytes;

constexpr std::size_t inputHeaderSize = 4;
constexpr std::uint8_t keepDrives = 1;
constexpr std::uint8_t moveToEnd = 2;

Bytes cut(const std::uint8_t *begin, const std::uint8_t *end) {
    Bytes page(begin, begin + std::min<std::ptrdiff_t>(end - begin, pages::bufferSize));
    page.resize(std::max<std::size_t>(page.size(), 4));
    return page;
}

/// Puts the page's parameters, but not its header, that far before the end of the buffer.
Bytes moved(const Bytes &page, std::size_t fromEnd) {
    Bytes result = pages::StatisticsPage().fillTo(pages::bufferSize - fromEnd).bytes();
    std::copy_n(page.begin(), 4, result.begin());
    result.insert(result.end(), page.begin() + 4, page.end());
    result.resize(pages::bufferSize);
    return result;
}

void writeSeed(const std::string &path, std::uint8_t flags, std::uint8_t fromEnd, const Bytes &translation,
               const Bytes &statistics) {
    Bytes input{flags, fromEnd};
    pages::append16(input, static_cast<unsigned>(translation.size()));
    input.insert(input.end(), translation.begin(), translation.end());
    input.insert(input.end(), statistics.begin(), statistics.end());
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char *>(input.data()), std::ssize(input));
}

void writeSeeds(const std::string &directory) {
    const pages::ControllerPages few(3);
    const pages::ControllerPages many(60);
    pages::StatisticsPage dictionary;
    for (const unsigned code : pages::dictionaryCodes) {
        dictionary.parameter(code, Bytes(code == 0x8160 ? 128 : 10, 'x'));
    }
    const Bytes longest = pages::withPageLength(few.statistics, 0xFFFF);
    writeSeed(directory + "/few", 0, 0, few.translation, few.statistics);
    writeSeed(directory + "/many", keepDrives, 0, many.translation, many.statistics);
    writeSeed(directory + "/dictionary", 0, 0, few.translation, dictionary.bytes());
    writeSeed(directory + "/at-end", moveToEnd, 116, few.translation, longest);
    writeSeed(directory + "/across-end", moveToEnd, 100, few.translation, longest);
    writeSeed(directory + "/dictionary-at-end", moveToEnd, 255, few.translation,
              pages::withPageLength(dictionary.bytes(), 0xFFFF));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv) {
    constexpr char option[] = "--write-seeds=";
    for (int i = 1; i < *argc; ++i) {
        if (std::strncmp((*argv)[i], option, sizeof option - 1) == 0) {
            writeSeeds((*argv)[i] + sizeof option - 1);
            std::exit(0);
        }
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *input, std::size_t size) {
    if (size < inputHeaderSize) {
        return 0;
    }
    const std::uint8_t *const begin = input + inputHeaderSize;
    const std::uint8_t *const end = input + size;
    const std::uint8_t *const middle = begin + std::min<std::ptrdiff_t>(end - begin, input[2] * 256 + input[3]);
    const Bytes translation = cut(begin, middle);
    Bytes statistics = cut(middle, end);
    if ((input[0] & moveToEnd) != 0) {
        statistics = moved(statistics, input[1] + 4U);
    }
    static pages::CheckedDecoding decoding;
    static bool isFirst = true;
    const bool newScan = isFirst || (input[0] & keepDrives) == 0;
    isFirst = false;
    const std::string difference = decoding.run(newScan, translation, statistics);
    if (!difference.empty()) {
        std::fprintf(stderr, "The decoding differs from the model: %s\n", difference.c_str());
        std::abort();
    }
    return 0;
}
