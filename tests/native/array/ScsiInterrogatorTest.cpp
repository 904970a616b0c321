// The array interrogator: its commands, the decoding of the pages, the scan.

#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

#include "common/system/FileDescriptor.h"
#include "native/array/SolarisScsiInterrogatorC.h"
#include "platform/replay/Replay.h"
#include "tests/Expected.h"
#include "tests/native/array/ArrayPages.h"
#include "tests/native/array/PageDecoding.h"

namespace {

using namespace pages;
using tests::beginning;
using tests::Lines;

// ---- Commands -----------------------------------------------------------------------------------------------------

const std::string logSelectSent = "ioctl USCSICMD 4c 00 40 00 00 00 00 00 0c 00 flags 0 timeout 30 "
                                  "data 30 00 00 08 00 01 60 04 01 00 00 00";

TEST(ScsiCommands, SendTheirBytesAndReportFailedRequests) {
    const std::tuple<std::string, int (*)(int, uscsi_cmd *), std::string> commands[] = {
        {"INQUIRY", scsiStandardInquiry, "ioctl USCSICMD 12 00 00 00 ff 00 flags 8 timeout 30"},
        {"INQUIRY 80", scsiInquiryVPD80, "ioctl USCSICMD 12 01 80 00 ff 00 flags 8 timeout 30"},
        {"INQUIRY C0", scsiInquiryVPDC0, "ioctl USCSICMD 12 01 c0 00 ff 00 flags 8 timeout 30"},
        {"LOG SENSE 3B", scsiLogSense3B, "ioctl USCSICMD 4d 00 7b 00 00 00 00 ff ff 00 flags 8 timeout 30"},
        {"RECEIVE DIAGNOSTIC A0", scsiReceiveDiagnosticA0, "ioctl USCSICMD 1c 01 a0 ff ff 00 flags 8 timeout 30"},
        {"LOG SELECT 30", scsiLogSelect30, logSelectSent},
    };
    for (const auto &[name, send, sent] : commands) {
        const bool reads = send != scsiLogSelect30;
        for (const bool answered : {true, false}) {
            auto scsi = nlohmann::json::object();
            if (answered) {
                scsi[name] = reads ? "a1b2c3" : "";
            }
            replay::loadHostText(nlohmann::json{{"disks", {{{"name", "c1"}, {"scsi", scsi}}}}}.dump());
            const tarn::FileDescriptor device(solaris::open("/dev/rdsk/c1s2", O_RDONLY | O_NDELAY));
            Bytes data(bufferSize);
            uscsi_cmd command{};
            command.uscsi_flags = reads ? USCSI_READ : USCSI_WRITE;
            command.uscsi_timeout = 30;
            command.uscsi_bufaddr = reinterpret_cast<char *>(data.data());
            command.uscsi_buflen = data.size();
            replay::startJournal();
            EXPECT_EQ(send(device.get(), &command), answered ? 0 : 1) << name;
            EXPECT_EQ(replay::stopJournal(), Lines{sent + (answered ? "" : " EIO")});
            EXPECT_EQ(data[0] == 0xA1 && data[2] == 0xC3, answered && reads) << name;
            EXPECT_EQ(command.uscsi_buflen, reads ? bufferSize : 12) << name;
        }
    }
}

// ---- Page decoding ------------------------------------------------------------------------------------------------

TEST(StatisticsPages, DictionaryKnowsItsCodesAndNoOther) {
    for (unsigned code = 0; code <= 0xFFFF; ++code) {
        Bytes parameter;
        append(parameter, 2, code);
        const auto index = std::ranges::find(dictionaryCodes, code) - dictionaryCodes;
        ASSERT_EQ(enumerateParaCode(parameter.data()), index < 53 ? index : -1) << std::hex << code;
    }
    Lines names;
    for (const tarn::ParaCode &statistic : paraCode) {
        names.emplace_back(statistic.name);
    }
    tests::expectFile("native/array/controller-statistics.txt", names);
}

TEST(StatisticsPages, ReportPlacedDrivesInWalkOrder) {
    Decoder decoder;
    const Bytes page = StatisticsPage()
                           .drive(2, 9, {0xFFFFFFFF, 0xFFFFFFFE, 1, 10, 100, 1000, 10000, 4000000000, 5})
                           .drive(1, 3, countersOf(1)) // its tray is unknown
                           .drive(1, 4, countersOf(1)) // its slot is unknown
                           .drive(1, 5, countersOf(1)) // it has no place at all
                           .drive(0, 1, countersOf(9))
                           .parameter(0xD001, Bytes(36, 1)) // beyond the last channel
                           .drive(0, 0, countersOf(0))
                           .drive(0, 1, countersOf(1)) // the later one counts
                           .bytes();
    const std::vector<Place> places{{0, 1, 0, 2},    {0, 0, 0, 1},    {2, 9, 7, 7},    {2, 9, 254, 14},
                                    {1, 3, 0xFF, 1}, {1, 4, 1, 0xFF}, {0x20, 0, 9, 9}, {0x80, 1, 9, 9},
                                    {16, 7, 8, 9},   {31, 255, 6, 5}};
    EXPECT_EQ(decoder.decode({translationPage(places), page}),
              "3|    3  0  1  0  2254 14   80|"
              "         1         2         3         4         5         6         7         8"
              "       101       102       103       104       105       106       107       108"
              "42949672954294967294         1        10       100      1000     100004000000000");
    EXPECT_EQ(driveChIdtoTraySlot[0x20][0].tray, 0xFF);
    EXPECT_EQ(driveChIdtoTraySlot[16][7].slot, 9); // beyond the channels of the statistics
    EXPECT_EQ(driveChIdtoTraySlot[31][255].tray, 6);
    // The second controller's translation places a drive that only the first one's page told of.
    EXPECT_EQ(decoder.decode({translationPage({{1, 5, 3, 4}}), StatisticsPage().bytes()}).substr(0, 18),
              "1|    1  3  4   80");
    // Without any place the records are left alone.
    EXPECT_EQ(decoder.decode({translationPage({{5, 5, 3, 4}}), page}), "0|    0|");
}

TEST(StatisticsPages, EndWithTheirLengthOrWithTheBuffer) {
    const ControllerPages whole(2);
    const Bytes statistics =
        StatisticsPage().drive(0, 0, countersOf(0)).fillTo(bufferSize - 40).drive(0, 1, countersOf(1)).bytes();
    Bytes translation = translationPage({placeOf(0)});
    translation.resize(bufferSize, 0xEE);
    // The last whole entry, and three bytes of another.
    std::ranges::copy(std::initializer_list<unsigned char>{0, 1, 0, 1, 0, 0, 0}, translation.end() - 7);
    const std::tuple<std::size_t, char, char> lengthsDecodedAndPlaced[] = {
        {0, '0', '0'},     {1, '1', '0'},     {8, '1', '0'},     {9, '1', '1'},     {40, '1', '1'},
        {65491, '1', '1'}, {65492, '2', '1'}, {65524, '2', '1'}, {65525, '2', '2'}, {65535, '2', '2'}};
    for (const auto &[length, decoded, placed] : lengthsDecodedAndPlaced) {
        EXPECT_EQ(Decoder().decode({whole.translation, withPageLength(statistics, length)})[0], decoded) << length;
        EXPECT_EQ(Decoder().decode({withPageLength(translation, length), whole.statistics})[0], placed) << length;
    }
}

TEST(StatisticsPages, ParametersAtTheEndOfTheBufferDecodeLikeTheModel) {
    ControllerPages pages(1);
    for (const unsigned fromEnd : {1U, 3U, 4U, 7U, 8U, 13U, 14U, 39U, 40U, 131U, 132U, 258U, 259U}) {
        const StatisticsPage filled = StatisticsPage().fillTo(bufferSize - fromEnd);
        for (const unsigned code : {0xC000U, 0x8202U, 0x8100U, 0x8200U, 0x8160U, 0x8500U}) {
            for (const unsigned length : {0U, 4U, 10U, 36U, 128U, 255U}) {
                pages.statistics = StatisticsPage(filled).parameter(code, Bytes(255, 1), length).bytes();
                pages.statistics.resize(bufferSize);
                ASSERT_EQ(compareDecodings({pages}), "") << code << " " << length << " " << fromEnd;
            }
        }
    }
}

/// A controller's pages: believable ones, ones with bytes changed, and noise. What takes long to decode is rare.
ControllerPages randomPages(std::mt19937_64 &random) {
    const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
    const auto changed = [&](Bytes page) {
        if (below(8) == 0) {
            const unsigned size = below(256) == 0 ? bufferSize : 300;
            page = withPageLength(randomBytes(random, size), below(size));
        }
        page.resize(std::min(page.size(), bufferSize)); // the data buffer has no room for more
        for (unsigned changes = below(4); changes > 0; --changes) {
            const std::size_t at = 3 + random() % (page.size() - 3);
            page[below(1024) == 0 ? 2 : at] = static_cast<unsigned char>(random());
        }
        return page;
    };
    const bool large = below(512) == 0;
    StatisticsPage page;
    page.fillTo(below(64) == 0 ? bufferSize - 4 - below(400) : 4);
    std::vector<Place> places;
    for (unsigned i = below(large ? 1200 : 8); i > 0; --i) {
        const unsigned channel = below(16);
        const unsigned identifier = below(large ? 256 : 3); // so that both controllers often tell of the same drive
        places.push_back({channel, identifier, below(256), below(256)});
        const unsigned codes[] = {below(65536), dictionaryCodes[below(53)], 0xC000 + channel * 256 + identifier};
        const unsigned kind = std::min(below(16), 2U);
        page.parameter(codes[kind], randomBytes(random, kind == 2 ? 36 : below(160)));
    }
    const Bytes translation = changed(translationPage(places));
    return {translation, changed(page.bytes())};
}

TEST(StatisticsPages, RandomAndMutatedPagesDecodeLikeTheModel) {
    const char *const wanted = std::getenv("TARN_FUZZ_PAGES");
    const unsigned long count = wanted == nullptr ? 100000 : std::strtoul(wanted, nullptr, 10);
    std::mt19937_64 random;
    for (unsigned long pages = 0; pages < count; pages += 2) {
        ASSERT_EQ(compareDecodings({randomPages(random), randomPages(random)}), "") << "after " << pages;
    }
}

// ---- The scan -----------------------------------------------------------------------------------------------------

constexpr char first[] = "ctrl-A";
constexpr char second[] = "ctrl-B";

const ControllerPages twoDrives(2);
const ControllerPages otherDrives(2, 7);
const std::string twoPlaces = "    2  0  1  0  2   80";
const std::string records = "         1         2         3         4         5         6         7         8"
                            "       101       102       103       104       105       106       107       108";
const std::string otherRecords = "       701       702       703       704       705       706       707       708"
                                 "       801       802       803       804       805       806       807       808";

constexpr char access[] = "Universal Xport";

std::string scan(const std::string &controller1 = first, const std::string &controller2 = second,
                 const std::string &vendorId = vendor, const std::string &productId = product) {
    std::vector<char> report(74379, '#');
    EXPECT_EQ(
        scsiInterrogatorC(report.data(), controller1.c_str(), controller2.c_str(), vendorId.c_str(), productId.c_str()),
        0);
    return report.data();
}

class ArrayScan : public testing::Test {
protected:
    /// Scans the LUNs, and holds that every device was opened to be asked only, and closed before the next was opened.
    std::string scanLuns(const std::vector<ArrayLun> &luns) {
        replay::loadHostText(describeHost(luns));
        replay::startJournal();
        const std::string report = scan();
        journal = replay::stopJournal();
        Lines handled = beginning(journal, {"open ", "close "});
        std::erase_if(handled, [](const std::string &line) { return line.ends_with(" EBUSY"); });
        Lines expected;
        for (const std::string &line : beginning(journal, {"close "})) {
            expected.insert(expected.end(), {"open" + line.substr(5) + " O_RDONLY|O_NDELAY", line});
        }
        EXPECT_EQ(handled, expected);
        EXPECT_EQ(beginning(journal, {"opendir", "closedir"}), (Lines{"opendir /dev/rdsk", "closedir /dev/rdsk"}));
        return report;
    }

    Lines journal; // of the latest scan
};

TEST_F(ArrayScan, ReportsBothControllersOrTheOneThatAnswers) {
    const auto one = [](const ControllerPages &answers) { return arrayLun("c1", first, answers); };
    const auto two = [](const ControllerPages &answers) { return arrayLun("c2", second, answers); };
    const ControllerPages none(0);
    const std::pair<std::vector<ArrayLun>, std::string> cases[] = {
        {{one(twoDrives), two(otherDrives)}, twoPlaces + records + otherRecords},
        {{one(twoDrives), two(ControllerPages(1, 7))}, twoPlaces + records + otherRecords.substr(0, 80)},
        {{one(twoDrives), two(none)}, twoPlaces + records + zeroRecords(2)},
        {{one(twoDrives)}, twoPlaces + records + zeroRecords(2)},
        {{one(none), two(otherDrives)}, "    0"},
        {{two(otherDrives)}, twoPlaces + zeroRecords(2) + otherRecords},
        {{two(none)}, "    0"},
        {{arrayLun("c1", "ctrl-C", twoDrives)}, "    0"},
        // The order is that of the arguments, not that of the devices.
        {{arrayLun("c1", second, otherDrives), arrayLun("c2", first, twoDrives)}, twoPlaces + records + otherRecords}};
    for (const auto &[luns, report] : cases) {
        EXPECT_EQ(scanLuns(luns), report) << "case " << &luns - &cases->first;
    }
    replay::loadHostText("{}"); // no directory to read
    EXPECT_EQ(scan(), "    0");
}

TEST_F(ArrayScan, DrivesOfTheFirstPageCountForTheSecondTranslation) {
    const ArrayLun telling = arrayLun("c1", first, {translationPage({{0, 1, 5, 6}}), twoDrives.statistics});
    const ArrayLun placing = arrayLun("c2", second, {translationPage({{0, 0, 3, 4}}), StatisticsPage().bytes()});
    EXPECT_EQ(scanLuns({telling, placing}), "    1  5  6   80" + records.substr(80) + records.substr(0, 80));
    // They are gone with the next scan.
    EXPECT_EQ(scanLuns({placing}), "    0");
}

TEST_F(ArrayScan, WhatAnAnswerLacksIsZero) {
    // Both pages of the second controller tell a length that their answers do not have. What the answer before left in
    // the buffer there would place a third drive, or change the counters of the second.
    StatisticsPage longer;
    longer.drive(0, 0, countersOf(0)).drive(0, 1, countersOf(1)).fillTo(336).drive(0, 2, {0x00020909});
    std::vector<Place> places(72, Place{0, 0, 0, 1});
    places.push_back({0xC0, 1, 0, 36});
    places.insert(places.end(), 9, {0, 1, 0, 2});
    const ControllerPages cut(withPageLength(translationPage(places), 340),
                              withPageLength(StatisticsPage().drive(0, 0, countersOf(0)).fillTo(300).bytes(), 336));
    EXPECT_EQ(scanLuns({arrayLun("c1", first, {twoDrives.translation, longer.bytes()}), arrayLun("c2", second, cut)}),
              twoPlaces + records + records);
}

TEST_F(ArrayScan, ChoosesOneLunPerController) {
    const ControllerPages chosen(1);
    const ControllerPages passedOver(1, 50);
    const ArrayLun data = arrayLun("c1", first, chosen);
    const ArrayLun other = arrayLun("c0", first, passedOver);
    ArrayLun otherSlices = other;
    otherSlices.slices = {"s0", "s1", "s3"};
    ArrayLun oddSlice = data;
    oddSlice.slices = {"s20"}; // contains the text that is looked for
    const std::vector<ArrayLun> cases[] = {
        {arrayLun("c0", first, passedOver, product, "OTHER"), data},
        {arrayLun("c0", first, passedOver, access, "OTHER"), data},
        {arrayLun("c0", first, passedOver, "ARRAY 99"), data},
        {arrayLun("c0", first, passedOver, "Universal XportX"), data},
        {arrayLun("c0", "ctrl-C", passedOver), arrayLun("c2", "ctrl-AA", passedOver), data},
        {otherSlices, data},
        {oddSlice},
        {data, arrayLun("c2", "", passedOver, access)}, // tells no owner, and must not inherit that of the one before
        {arrayLun("c3", "ctrl-C", passedOver), arrayLun("c2", first, passedOver, "", ""), data}, // nor who made it
        // The first data LUN, but rather the first access LUN.
        {data, arrayLun("c2", first, passedOver)},
        {other, arrayLun("c1", first, chosen, access), arrayLun("c2", first, passedOver)},
        {arrayLun("c1", first, chosen, access), arrayLun("c2", first, passedOver, access)},
    };
    for (const std::vector<ArrayLun> &luns : cases) {
        EXPECT_EQ(scanLuns(luns), "    1  0  1   80" + records.substr(0, 80) + zeroRecords(1))
            << "case " << &luns - cases;
    }
}

std::string opened(const std::string &disk) {
    return "open /dev/rdsk/" + disk + "s2 O_RDONLY|O_NDELAY";
}

TEST_F(ArrayScan, EndsDiscoveryAtTheSecondAccessLun) {
    EXPECT_EQ(scanLuns({arrayLun("c1", first, otherDrives), arrayLun("c2", second, otherDrives, access),
                        arrayLun("c3", first, twoDrives, access), arrayLun("c4", first, twoDrives)}),
              twoPlaces + records + otherRecords);
    EXPECT_EQ(beginning(journal, {"open ", "closedir"}),
              (Lines{opened("c1"), opened("c2"), opened("c3"), "closedir /dev/rdsk", opened("c3"), opened("c2")}));
}

TEST_F(ArrayScan, EachFailureCostsOnlyItsDevice) {
    const std::pair<const char *, std::size_t> failuresAndOpens[] = {
        {"open", 1}, {"INQUIRY", 1}, {"INQUIRY C0", 1}, {"RECEIVE DIAGNOSTIC A0", 2}, {"LOG SENSE 3B", 2}};
    for (const auto &[failing, opens] : failuresAndOpens) {
        for (const unsigned silent : {0U, 1U}) {
            std::vector<ArrayLun> luns{arrayLun("c1", first, twoDrives), arrayLun("c2", second, otherDrives)};
            luns[silent].failing = failing;
            EXPECT_EQ(scanLuns(luns),
                      twoPlaces + (silent == 0 ? zeroRecords(2) + otherRecords : records + zeroRecords(2)));
            EXPECT_EQ(beginning(journal, {opened(luns[silent].name)}).size(), opens) << failing;
        }
    }
    // The longest path there is room for; a longer one is not cut to what may be another device.
    EXPECT_EQ(scanLuns({arrayLun(std::string(243, 'c'), first, twoDrives)}), twoPlaces + records + zeroRecords(2));
    EXPECT_EQ(scanLuns({arrayLun(std::string(244, 'c'), first, twoDrives)}), "    0");
    EXPECT_EQ(beginning(journal, {"open "}), Lines{});
}

TEST_F(ArrayScan, IdentitiesArePaddedOrCutToTheirFields) {
    const std::string id = "controller-01234"; // fills its field, like the other two
    const std::string huge(100000, 'x');
    const std::string itsVendor = "EIGHT___";
    const std::string itsProduct = "SIXTEEN_________";
    const std::string asFirst = twoPlaces + records + zeroRecords(2);
    const std::array<std::string, 5> cases[] = {
        {id, second, itsVendor, itsProduct, asFirst},
        {id + huge, second + huge, itsVendor + huge, itsProduct + huge, asFirst},
        {second, id, itsVendor, itsProduct, twoPlaces + zeroRecords(2) + records},
        {id, id, itsVendor, itsProduct, asFirst},
        {id.substr(0, 15), second, itsVendor, itsProduct, "    0"},
        {id, second, itsVendor.substr(0, 7), itsProduct, "    0"},
        {id, second, itsVendor, itsProduct.substr(0, 15), "    0"},
        {id, second, "", itsProduct, "    0"},
        {id, second, itsVendor, "", "    0"},
    };
    replay::loadHostText(describeHost({arrayLun("c1", id, twoDrives, itsProduct, itsVendor)}));
    for (const auto &[controller1, controller2, vendorId, productId, report] : cases) {
        EXPECT_EQ(scan(controller1, controller2, vendorId, productId), report) << controller1 << controller2;
    }
    // Without an identity nothing is even opened.
    replay::startJournal();
    EXPECT_EQ(scan("", second), "    0");
    EXPECT_EQ(scan(id, ""), "    0");
    EXPECT_EQ(replay::stopJournal(), Lines{});
}

TEST_F(ArrayScan, SendsLogSelectWhereItIsCalledFor) {
    const auto pagesOf = [](unsigned drive, unsigned blocks) { // each has a drive of its own
        return ControllerPages(translationPage({{0, drive, 0, 1}}),
                               StatisticsPage().drive(0, drive, {0, 0, blocks, 1}).bytes());
    };
    const std::tuple<std::array<unsigned, 2>, const char *, Lines> cases[] = {
        {{0, 1}, "", {opened("c1"), logSelectSent, opened("c2")}},
        {{1, 0}, "", {opened("c1"), opened("c2"), logSelectSent}},
        {{0, 0}, "", {opened("c1"), logSelectSent, opened("c2"), logSelectSent}},
        {{0, 0}, "LOG SELECT 30", {opened("c1"), logSelectSent + " EIO", opened("c2"), logSelectSent + " EIO"}},
    };
    for (const auto &[blocks, failing, statistics] : cases) {
        std::vector<ArrayLun> luns{arrayLun("c1", first, pagesOf(0, blocks[0])),
                                   arrayLun("c2", second, pagesOf(1, blocks[1]))};
        luns[0].failing = luns[1].failing = failing;
        EXPECT_EQ(scanLuns(luns), "   -2");
        Lines expected{opened("c1"), opened("c2")};
        expected.insert(expected.end(), statistics.begin(), statistics.end());
        EXPECT_EQ(beginning(journal, {"open ", "ioctl USCSICMD 4c"}), expected);
    }
}

TEST_F(ArrayScan, LargestArrayFillsTheReport) {
    const ControllerPages full(449);
    const std::string report = scanLuns({arrayLun("c1", first, full, access), arrayLun("c2", second, full, access)});
    EXPECT_EQ(report.size(), 74378U);
    EXPECT_EQ(report.substr(2698, 35840), report.substr(2698 + 35840));
    EXPECT_EQ(report.substr(74378 - 80, 10), "     44701");
    EXPECT_EQ(scanLuns({arrayLun("c1", first, full)}), report.substr(0, 2698 + 35840) + zeroRecords(448));
}

TEST_F(ArrayScan, ThreadsThatScanAtOnceAllGetTheirReport) {
    const ControllerPages larger(300, 20);
    scanLuns({arrayLun("c1", first, twoDrives), arrayLun("c2", second, otherDrives), arrayLun("c3", "ctrl-C", larger),
              arrayLun("c4", "ctrl-D", larger)});
    const auto scanOften = [](const std::string &one, const std::string &two, const std::string &expected) {
        for (int i = 0; i < 100; ++i) {
            EXPECT_EQ(scan(one, two), expected);
        }
    };
    const std::string others = scan("ctrl-C", "ctrl-D");
    ASSERT_EQ(others.substr(0, 5), "  300");
    std::thread thread(scanOften, "ctrl-C", "ctrl-D", others);
    scanOften(first, second, twoPlaces + records + otherRecords);
    thread.join();
}

} // namespace
