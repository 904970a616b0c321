#include <cstdlib>
#include <fstream>
#include <span>
#include <stdexcept>

#include "inventory/IdentityPages.h"
#include "tests/native/array/PageDecoding.h"

// libFuzzer target over the decoding of an array's pages, which it compares with the checked model, and over that of the
// pages of a disk's identity. Run by hand:
//
//     page_fuzzer --write-seeds DIR       writes a seed corpus
//     page_fuzzer -max_len=4096 DIR       runs until a finding or an interrupt
//
// An input is one page of a disk, and one scan: translation and statistics page of the first controller, then those of the second. Each page is
//
//     bytes 0-1  its size, big-endian
//     byte 2     0, or how many bytes before the end of the data buffer its contents after the header are moved
//     then       its bytes, as far as there are any

using namespace pages;

namespace {

Bytes takePage(std::span<const std::uint8_t> &input) {
    Bytes page(4);
    if (input.size() >= 3) {
        const auto contents = input.subspan(3, std::min(input[0] * std::size_t{256} + input[1], input.size() - 3));
        page.assign(contents.begin(), contents.end());
        page.resize(std::max<std::size_t>(page.size(), 4));
        if (input[2] != 0) {
            const Bytes filled = StatisticsPage().fillTo(bufferSize - input[2]).bytes();
            page.insert(page.begin() + 4, filled.begin() + 4, filled.end());
            page.resize(bufferSize);
        }
        input = input.subspan(3 + contents.size());
    }
    return page;
}

/// `fromEnd` is for the statistics pages.
void writeSeed(const std::string &path, const ControllerPages &one, const ControllerPages &two, unsigned fromEnd) {
    Bytes input;
    for (const Bytes &page : {one.translation, one.statistics, two.translation, two.statistics}) {
        append(input, 2, page.size());
        append(input, 1, page[0] == 0x3B ? fromEnd : 0);
        input.insert(input.end(), page.begin(), page.end());
    }
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char *>(input.data()), std::ssize(input));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv) {
    if (*argc == 3 && std::string((*argv)[1]) == "--write-seeds") {
        const ControllerPages three(3);
        StatisticsPage dictionary;
        std::ranges::for_each(dictionaryCodes, [&](unsigned code) { dictionary.parameter(code, Bytes(10, 'x')); });
        writeSeed((*argv)[2] + std::string("/start"), {three.translation, dictionary.bytes()}, ControllerPages(16, 7),
                  0);
        // What is read of the drive ends with the buffer, whatever its length byte says; the dictionary is cut.
        const Bytes drive = StatisticsPage().parameter(0xC000, Bytes(36, 1), 0).bytes();
        writeSeed((*argv)[2] + std::string("/end"), {three.translation, withPageLength(drive, 0xFFFF)},
                  {three.translation, withPageLength(dictionary.bytes(), 0xFFFF)}, 40);
        std::exit(0);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::span<const std::uint8_t> input(data, size);
    const std::string designator = tarn::bestDesignator(input);
    const bool isKnown = std::ranges::any_of(std::initializer_list<const char *>{"naa.", "eui.", "t10."},
                                             [&](const char *kind) { return designator.starts_with(kind); });
    if (!designator.empty() && !isKnown) {
        throw std::logic_error("No kind of designator: " + designator);
    }
    static_cast<void>(tarn::serialNumber(input));
    static_cast<void>(tarn::StandardInquiry(input));
    const std::string difference =
        compareDecodings({{takePage(input), takePage(input)}, {takePage(input), takePage(input)}});
    if (!difference.empty()) {
        throw std::logic_error("The decoding differs from the model: " + difference);
    }
    return 0;
}
