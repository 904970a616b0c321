#include <gtest/gtest.h>

#include <bit>
#include <cstdlib>
#include <functional>
#include <set>
#include <thread>

#include "native/SolarisScsiInterrogatorC.h"
#include "platform/replay/Replay.h"
#include "platform/solaris.h"
#include "tests/native/ArrayPages.h"
#include "tests/native/PageDecoding.h"

using namespace pages;

namespace {

// ---- Commands -----------------------------------------------------------------------------------------------------

constexpr char first[] = "ctrl-A";
constexpr char second[] = "ctrl-B";
constexpr char vendor[] = "KELVO";
constexpr char product[] = "ARRAY 9";
constexpr char accessProduct[] = "Universal Xport";

ArrayLun dataLun(const std::string &name, const std::string &controller, const ControllerPages &pages) {
    return {.name = name,
            .vendor = vendor,
            .product = product,
            .controller = controller,
            .translation = pages.translation,
            .statistics = pages.statistics};
}

ArrayLun accessLun(const std::string &name, const std::string &controller, const ControllerPages &pages) {
    ArrayLun lun = dataLun(name, controller, pages);
    lun.product = accessProduct;
    return lun;
}

std::vector<std::string> linesWith(const std::vector<std::string> &journal, const std::string &start) {
    std::vector<std::string> lines;
    std::ranges::copy_if(journal, std::back_inserter(lines), [&](const auto &line) { return line.starts_with(start); });
    return lines;
}

class ScsiCommands : public testing::Test {
protected:
    void load(const std::string &answers) {
        replay::loadHostText(R"({"disks": [{"name": "c1t0d0", "scsi": {)" + answers + "}}]}");
        descriptor = solaris::open("/dev/rdsk/c1t0d0s2", O_RDONLY | O_NDELAY);
        ASSERT_NE(descriptor, -1);
        command = uscsi_cmd{};
        command.uscsi_flags = USCSI_READ;
        command.uscsi_timeout = 30;
        command.uscsi_bufaddr = reinterpret_cast<char *>(data.data());
        command.uscsi_buflen = data.size();
    }
    void TearDown() override {
        solaris::close(descriptor);
    }

    int descriptor = -1;
    uscsi_cmd command{};
    Bytes data = Bytes(bufferSize);
};

struct Command {
    const char *name;
    int (*send)(int, uscsi_cmd *);
    std::string bytes;
    bool write;
};

const Command commands[] = {
    {"INQUIRY", scsiStandardInquiry, "12 00 00 00 ff 00", false},
    {"INQUIRY 80", scsiInquiryVPD80, "12 01 80 00 ff 00", false},
    {"INQUIRY C0", scsiInquiryVPDC0, "12 01 c0 00 ff 00", false},
    {"LOG SENSE 3B", scsiLogSense3B, "4d 00 7b 00 00 00 00 ff ff 00", false},
    {"RECEIVE DIAGNOSTIC A0", scsiReceiveDiagnosticA0, "1c 01 a0 ff ff 00", false},
    {"LOG SELECT 30", scsiLogSelect30, "4c 00 40 00 00 00 00 00 0c 00 data 30 00 00 08 00 01 60 04 01 00 00 00", true},
};

TEST_F(ScsiCommands, SendTheirBytesAndReportFailedRequests) {
    for (const Command &sent : commands) {
        for (const bool answers : {true, false}) {
            SCOPED_TRACE(sent.name + std::string(answers ? ", answered" : ", failed"));
            load(answers ? "\"" + std::string(sent.name) + "\": \"" + (sent.write ? "" : "a1 b2 c3") + "\"" : "");
            data.assign(data.size(), 0);
            command.uscsi_flags = sent.write ? USCSI_WRITE : USCSI_READ;
            replay::startJournal();
            EXPECT_EQ(sent.send(descriptor, &command), answers ? 0 : 1);
            const std::vector<std::string> journal = replay::stopJournal();
            ASSERT_EQ(journal.size(), 1U);
            const std::string line = "ioctl USCSICMD " + sent.bytes;
            EXPECT_EQ(answers ? journal[0] : journal[0].substr(0, line.size()), line);
            EXPECT_EQ(data[0] == 0xA1 && data[2] == 0xC3, answers && !sent.write);
            EXPECT_EQ(command.uscsi_rqbuf, nullptr);
            EXPECT_EQ(command.uscsi_rqlen, 0);
            EXPECT_EQ(command.uscsi_timeout, 30);
            solaris::close(descriptor);
        }
    }
    load("");
}

TEST_F(ScsiCommands, LogSelectInTheReadDirectionFails) {
    load(R"("LOG SELECT 30": "")");
    EXPECT_EQ(scsiLogSelect30(descriptor, &command), 1);
    command.uscsi_flags = USCSI_WRITE;
    EXPECT_EQ(scsiLogSelect30(descriptor, &command), 0);
    EXPECT_EQ(command.uscsi_buflen, 12U);
}

// ---- Page decoding ------------------------------------------------------------------------------------------------

TEST(StatisticsPages, DictionaryKnowsItsCodesAndNoOther) {
    int known = 0;
    for (unsigned code = 0; code <= 0xFFFF; ++code) {
        Bytes parameter;
        append16(parameter, code);
        const bool isKnown = known < 53 && dictionaryCodes[known] == code;
        ASSERT_EQ(enumerateParaCode(parameter.data()), isKnown ? known : -1) << std::hex << code;
        known += isKnown ? 1 : 0;
    }
    EXPECT_EQ(known, 53);
    EXPECT_STREQ(paraCode[0].name, "CumulativeTime");
    EXPECT_STREQ(paraCode[33].name, "TotalDataRepairReconstructsSuccesses");
    EXPECT_STREQ(paraCode[52].name, "TotalInterruptsServicedOnTheFly");
}

TEST(StatisticsPages, ReportPlacedDrivesInWalkOrder) {
    Decoder decoder;
    decoder.clear();
    decoder.translate(translationPage({{0, 1, 0, 2},
                                       {0, 0, 0, 1},
                                       {2, 9, 7, 7},
                                       {2, 9, 254, 14},
                                       {1, 3, 0xFF, 1},
                                       {1, 4, 1, 0xFF},
                                       {0x20, 0, 9, 9},
                                       {0x80, 1, 9, 9}}));
    StatisticsPage page;
    page.drive(2, 9, {0xFFFFFFFF, 0xFFFFFFFE, 1, 10, 100, 1000, 10000, 4000000000, 5}) // last in the walk
        .drive(1, 3, countersOf(1))                                                    // its tray is unknown
        .drive(1, 4, countersOf(1))                                                    // its slot is unknown
        .drive(1, 5, countersOf(1))                                                    // it has no place at all
        .drive(0, 1, countersOf(9))
        .parameter(0xD001, Bytes(36, 1)) // beyond the last channel
        .parameter(0x8500, Bytes(4, 1))
        .parameter(0x0031, Bytes(4, 1))
        .drive(0, 0, countersOf(0))
        .drive(0, 1, {101, 102, 103, 104, 105, 106, 107, 108, 109}); // the later one counts
    EXPECT_EQ(driveChIdtoTraySlot[0x20][0].tray, 0xFF);
    const Report report = decoder.decode(page.bytes());
    EXPECT_EQ(report.drives, 3U);
    EXPECT_EQ(report.common, "    3  0  1  0  2254 14   80");
    EXPECT_EQ(report.uncommon, "         1         2         3         4         5         6         7         8"
                               "       101       102       103       104       105       106       107       108"
                               "42949672954294967294         1        10       100      1000     100004000000000");
    EXPECT_FALSE(report.logSelect);

    // Another controller's translation places a drive that only this page told of.
    decoder.translate(translationPage({{1, 5, 3, 4}}));
    EXPECT_EQ(decoder.decode(StatisticsPage().bytes()).common, "    1  3  4   80");

    // A page that places none of them reports nothing and leaves the records alone.
    decoder.translate(translationPage({{5, 5, 3, 4}}));
    EXPECT_EQ(decoder.decode(page.bytes()), (Report{0, "    0", "", false}));
}

TEST(StatisticsPages, KeepControllerStatistics) {
    Decoder decoder;
    std::fill(std::begin(paraValue), std::end(paraValue), 7U);
    StatisticsPage page;
    for (const unsigned code : dictionaryCodes) {
        page.parameter(code, Bytes(code == 0x8160 ? 128 : 10, static_cast<unsigned char>(code & 0xFF)));
    }
    page.number(0x8101, 0x01020304);
    decoder.decode(page.bytes());
    const std::set<int> notNumbers{1, 7, 8};
    for (int index = 0; index < 53; ++index) {
        const std::uint32_t number = (dictionaryCodes[index] & 0xFF) * 0x01010101U;
        EXPECT_EQ(paraValue[index], index == 2 ? 0x01020304U : notNumbers.contains(index) ? 7U : number) << index;
    }
    EXPECT_EQ(paraValue[53], 7U);
}

TEST(StatisticsPages, CallForLogSelect) {
    struct {
        std::vector<std::pair<unsigned, unsigned>> blocksAndIOs; // of the drives
        bool placed;
        bool expected;
    } const cases[] = {
        {{}, true, false},
        {{{0, 0}}, true, false},
        {{{0, 1}}, true, true},
        {{{1, 1}}, true, false},
        {{{1, 0}}, true, false},
        {{{0, 0}, {0, 9}}, true, true},
        {{{0, 9}, {1, 0}}, true, false},
        {{{0, 1}}, false, false},
    };
    Decoder decoder;
    for (const auto &[blocksAndIOs, placed, expected] : cases) {
        StatisticsPage page;
        std::vector<Place> places;
        for (unsigned i = 0; i < blocksAndIOs.size(); ++i) {
            page.drive(0, i, {5, 5, blocksAndIOs[i].first, blocksAndIOs[i].second, 5, 5, 5, 5, 5});
            places.push_back({placed ? 0U : 1U, i, 0, i});
        }
        decoder.clear();
        decoder.translate(translationPage(places));
        EXPECT_EQ(decoder.decode(page.bytes()).logSelect, expected) << testing::PrintToString(blocksAndIOs);
    }
}

TEST(StatisticsPages, ReportAtMost448Drives) {
    std::vector<Place> everywhere;
    for (unsigned i = 0; i < 4096; ++i) {
        everywhere.push_back({i / 256, i % 256, i / 256, i % 200});
    }
    for (const unsigned drives : {447U, 448U, 449U, 4096U}) {
        Decoder decoder;
        decoder.clear();
        decoder.translate(translationPage(everywhere));
        StatisticsPage page;
        for (unsigned i = 0; i < drives; ++i) {
            if (drives == 4096) {
                page.parameter(0xC000 + i, {}, 0); // without values of their own they all fit one page
            } else {
                page.drive(i / 256, i % 256, countersOf(i));
            }
        }
        const Report report = decoder.decode(page.bytes());
        const unsigned reported = std::min(drives, 448U);
        EXPECT_EQ(report.drives, reported);
        EXPECT_EQ(report.common.substr(0, 5), number(5, reported));
        EXPECT_EQ(report.common.substr(report.common.size() - 11), drives == 447 ? "  1 46   80" : "  1 47   80");
        EXPECT_EQ(report.common.size(), 10 + 6 * reported);
        EXPECT_EQ(report.uncommon.size(), 80 * reported);
        // Only what is reported counts for the LOG SELECT: the 449th drive's blocks do not.
        decoder.clear();
        page = StatisticsPage();
        for (unsigned i = 0; i < std::min(drives, 600U); ++i) {
            page.drive(i / 256, i % 256, {0, 0, i < 448 ? 0U : 1U, 1});
        }
        EXPECT_TRUE(decoder.decode(page.bytes()).logSelect);
    }
}

TEST(StatisticsPages, LengthsOfPages) {
    // One drive at the start of the page, and one that the header's length must reach.
    StatisticsPage page;
    page.drive(0, 0, countersOf(0)).fillTo(bufferSize - 40).drive(0, 1, countersOf(1));
    struct {
        std::size_t length;
        unsigned drives;
    } const cases[] = {{0, 0}, {1, 1}, {3, 1}, {40, 1}, {65491, 1}, {65492, 2}, {65531, 2}, {65535, 2}};
    for (const auto &[length, drives] : cases) {
        Decoder decoder;
        decoder.clear();
        decoder.translate(translationPage({{0, 0, 0, 0}, {0, 1, 0, 1}}));
        EXPECT_EQ(decoder.decode(withPageLength(page.bytes(), length)).drives, drives) << length;

        // The same bytes as a translation page: an entry counts as soon as the page reaches into it.
        Bytes translation = translationPage({{0, 0, 0, 0}});
        translation.resize(bufferSize, 0xEE);
        // The last whole entry, and three bytes of another.
        std::ranges::copy(std::initializer_list<unsigned char>{0, 1, 0, 1, 0, 0, 0}, translation.end() - 7);
        decoder.translate(withPageLength(translation, length));
        EXPECT_EQ(driveChIdtoTraySlot[0][0].slot, length > 8 ? 0 : 0xFF) << length;
        EXPECT_EQ(driveChIdtoTraySlot[0][1].slot, length > 65528 - 4 ? 1 : 0xFF) << length;
    }
}

TEST(StatisticsPages, ParametersAtTheEndOfTheBuffer) {
    struct {
        unsigned code;
        std::size_t bytesRead; // of its value, whatever its length byte says
    } const parameters[] = {{0xC000, 36}, {0x8202, 4}, {0x8100, 10}, {0x8200, 10}, {0x8160, 128}, {0x8500, 0}};
    for (const auto &[code, bytesRead] : parameters) {
        for (const std::size_t length : {std::size_t{0}, bytesRead, bytesRead + 1, std::size_t{255}}) {
            const std::size_t room = 4 + std::max(bytesRead, length);
            // Where it just fits, where its last byte does not, where its header does not.
            for (const std::size_t fromEnd : {room, room - 1, std::size_t{3}, std::size_t{1}}) {
                SCOPED_TRACE(testing::Message() << std::hex << code << std::dec << " " << length << " " << fromEnd);
                StatisticsPage page;
                page.fillTo(bufferSize - fromEnd).parameter(code, Bytes(255, 1), length);
                Bytes bytes = page.bytes();
                bytes.resize(bufferSize);
                Decoder decoder;
                decoder.clear();
                decoder.translate(translationPage({{0, 0, 0, 0}}));
                paraValue[10] = 0;
                const bool decoded = fromEnd >= room;
                EXPECT_EQ(decoder.decode(bytes).drives, decoded && code == 0xC000 ? 1U : 0U);
                EXPECT_EQ(paraValue[10], decoded && code == 0x8202 ? 0x01010101U : 0U);
            }
        }
    }
}

TEST(StatisticsPages, LengthByteOnlyMovesTheOffset) {
    // With length 0 the next parameter begins in the bytes that were read as this one's value.
    Bytes overlapping = StatisticsPage().drive(0, 0, {0xC0010000, 0, 3, 4, 5, 6, 7, 8, 9}).bytes();
    overlapping[7] = 0;
    Decoder decoder;
    decoder.clear();
    decoder.translate(translationPage({{0, 0, 0, 1}, {0, 1, 0, 2}}));
    EXPECT_EQ(decoder.decode(overlapping).uncommon,
              "3221291008         0         3         4         5         6         7         8"
              "         0         3         4         5         6         7         8         9");

    // With length 255 a drive that stands in the value is passed over, and the one behind is found.
    const Bytes inside = StatisticsPage().drive(0, 1, countersOf(1)).bytes();
    Bytes value(255);
    std::copy(inside.begin() + 4, inside.end(), value.begin() + 40);
    decoder.clear();
    decoder.translate(translationPage({{0, 0, 0, 1}, {0, 1, 0, 2}, {0, 2, 0, 3}}));
    EXPECT_EQ(decoder.decode(StatisticsPage().parameter(0xC000, value).drive(0, 2, countersOf(2)).bytes()).common,
              "    2  0  1  0  3   80");
}

TEST(StatisticsPages, RandomAndMutatedPagesDecodeLikeTheModel) {
    constexpr bool isEmulated = std::endian::native == std::endian::big; // and several times slower
    const char *const wanted = std::getenv("TARN_FUZZ_PAGES");
    const unsigned long count = wanted != nullptr ? std::strtoul(wanted, nullptr, 10) : isEmulated ? 20000 : 100000;
    CheckedDecoding decoding;
    for (unsigned long seed = 0; seed < count; ++seed) {
        const RandomPages pages(seed);
        ASSERT_EQ(decoding.run(seed % 2 == 0, pages.translation, pages.statistics), "") << "seed " << seed;
    }
}

// ---- The report ---------------------------------------------------------------------------------------------------

TEST(ArrayReport, JoinsTheStringsOfBothControllers) {
    const std::string one = "    1  0  1   80";
    const std::string two = "    2  0  1  0  2   80";
    const std::string records1(80, '1');
    const std::string records2(160, '2');
    struct {
        std::string common[2];
        std::string uncommon[2];
        unsigned drives[2];
        std::string expected;
    } const cases[] = {
        {{"", ""}, {"", ""}, {0, 0}, "    0"},
        {{"    0", two}, {"", records2}, {0, 2}, "    0"},
        {{"", "    0"}, {"", ""}, {0, 0}, "    0"},
        {{one, two}, {records1, records2}, {1, 2}, one + records1 + records2},
        {{one, ""}, {records1, ""}, {1, 0}, one + records1 + zeroRecords(1)},
        {{one, "    0"}, {records1, ""}, {1, 0}, one + records1 + zeroRecords(1)},
        {{"", two}, {"", records2}, {0, 2}, two + zeroRecords(2) + records2},
    };
    for (const auto &[common, uncommon, drives, expected] : cases) {
        std::vector<char> commonStrings(2 * 2699);
        std::vector<char> uncommonStrings(2 * 35841);
        for (std::size_t i = 0; i < 2; ++i) {
            std::ranges::copy(common[i], &commonStrings[i * 2699]);
            std::ranges::copy(uncommon[i], &uncommonStrings[i * 35841]);
        }
        std::vector<char> report(74379, '#');
        buildReturnString(report.data(), commonStrings.data(), uncommonStrings.data(), drives[0], drives[1]);
        EXPECT_EQ(std::string(report.data()), expected);
    }
}

TEST(ArrayReport, LargestReportFillsItsBuffer) {
    std::string common = "  448" + std::string(448 * 6, '1') + "   80";
    std::vector<char> commonStrings(2 * 2699);
    std::vector<char> uncommonStrings(2 * 35841);
    std::ranges::copy(common, commonStrings.begin());
    std::fill_n(uncommonStrings.begin(), 35840, '7');
    std::vector<char> report(74379, '#');
    buildReturnString(report.data(), commonStrings.data(), uncommonStrings.data(), 448, 0);
    EXPECT_EQ(std::string(report.data()), common + std::string(35840, '7') + zeroRecords(448));
    EXPECT_EQ(report.back(), '\0');
}

// ---- The scan -----------------------------------------------------------------------------------------------------

std::string scan(const char *controller1 = first, const char *controller2 = second, const char *vendorId = vendor,
                 const char *productId = product) {
    std::vector<char> report(74379, '#');
    EXPECT_EQ(scsiInterrogatorC(report.data(), controller1, controller2, vendorId, productId), 0);
    return report.data();
}

/// Scans the LUNs, and holds that every device and directory opened was closed once before anything else was opened.
std::string scanLuns(const std::vector<ArrayLun> &luns, std::vector<std::string> *journalOut = nullptr) {
    replay::loadHostText(describeHost(luns));
    replay::startJournal();
    const std::string report = scan();
    const std::vector<std::string> journal = replay::stopJournal();
    std::string open;
    for (const std::string &line : journal) {
        if (line.starts_with("open /dev/rdsk/") && line.ends_with("O_RDONLY|O_NDELAY")) {
            EXPECT_EQ(open, "") << line;
            open = line.substr(5, line.rfind(' ') - 5);
        } else if (line.starts_with("close ")) {
            EXPECT_EQ(line.substr(6), open);
            open.clear();
        }
    }
    EXPECT_EQ(open, "");
    EXPECT_EQ(linesWith(journal, "opendir /dev/rdsk").size(), 1U);
    EXPECT_EQ(linesWith(journal, "closedir").size(), 1U);
    if (journalOut != nullptr) {
        *journalOut = journal;
    }
    return report;
}

const ControllerPages twoDrives(2);
const ControllerPages otherTwoDrives(2, 7);
constexpr char twoPlaces[] = "    2  0  1  0  2   80";
const std::string records = "         1         2         3         4         5         6         7         8"
                            "       101       102       103       104       105       106       107       108";
const std::string otherRecords = "       701       702       703       704       705       706       707       708"
                                 "       801       802       803       804       805       806       807       808";

TEST(ArrayScan, ReportsBothControllersOrTheOneThatAnswers) {
    const ControllerPages none(0);
    const std::vector<ArrayLun> firsts = {dataLun("c1t0d0", first, twoDrives), dataLun("c1t0d0", first, none)};
    const std::vector<ArrayLun> seconds = {dataLun("c2t0d0", second, otherTwoDrives), dataLun("c2t0d0", second, none)};
    EXPECT_EQ(scanLuns({firsts[0], seconds[0]}), twoPlaces + records + otherRecords);
    EXPECT_EQ(scanLuns({firsts[0], seconds[1]}), twoPlaces + records + zeroRecords(2));
    EXPECT_EQ(scanLuns({firsts[1], seconds[0]}), "    0");
    EXPECT_EQ(scanLuns({firsts[0]}), twoPlaces + records + zeroRecords(2));
    EXPECT_EQ(scanLuns({seconds[0]}), twoPlaces + zeroRecords(2) + otherRecords);
    // The order is that of the arguments, not that of the devices.
    EXPECT_EQ(scanLuns({dataLun("c1t0d0", second, otherTwoDrives), dataLun("c2t0d0", first, twoDrives)}),
              twoPlaces + records + otherRecords);
}

TEST(ArrayScan, DrivesOfTheFirstPageCountForTheSecondTranslation) {
    ControllerPages telling(2);
    telling.translation = translationPage({{0, 1, 5, 6}});
    ControllerPages placing(0);
    placing.translation = translationPage({{0, 0, 3, 4}});
    EXPECT_EQ(scanLuns({dataLun("c1t0d0", first, telling), dataLun("c2t0d0", second, placing)}),
              "    1  5  6   80" + records.substr(80) + records.substr(0, 80));
    // They are gone with the next scan.
    EXPECT_EQ(scanLuns({dataLun("c2t0d0", second, placing)}), "    0");
}

TEST(ArrayScan, ChoosesOneLunPerController) {
    const ControllerPages chosen(1);
    const ControllerPages passedOver(1, 50);
    ArrayLun foreignVendor = dataLun("c0t1d0", first, passedOver);
    foreignVendor.vendor = "OTHER";
    ArrayLun foreignProduct = dataLun("c0t2d0", first, passedOver);
    foreignProduct.product = "ARRAY 99";
    ArrayLun foreignAccess = accessLun("c0t3d0", first, passedOver);
    foreignAccess.vendor = "OTHER";
    ArrayLun otherSlices = dataLun("c0t4d0", first, passedOver);
    otherSlices.slices = {"s0", "s1", "s3"};
    ArrayLun oddSlice = dataLun("c0t5d0", first, chosen);
    oddSlice.slices = {"s20"}; // contains the text that is looked for
    ArrayLun busy = dataLun("c0t6d0", first, passedOver);
    busy.openFailure = "EBUSY";
    ArrayLun terse = accessLun("c0t9d0", "", passedOver); // names no owner, and must not inherit that of the one before
    terse.bytesPerAnswer = 100;
    const ArrayLun stranger = dataLun("c0t7d0", "ctrl-C", passedOver);
    const ArrayLun longer = dataLun("c0t8d0", "ctrl-AA", passedOver);
    const std::vector<ArrayLun> cases[] = {
        {foreignVendor, foreignProduct, foreignAccess, stranger, longer, dataLun("c1t0d0", first, chosen)},
        {otherSlices, busy, dataLun("c1t0d0", first, chosen)},
        {dataLun("c1t0d0", first, chosen), terse},
        {oddSlice},
        // The first data LUN, but rather the first access LUN.
        {dataLun("c1t0d0", first, chosen), dataLun("c1t1d0", first, passedOver)},
        {dataLun("c1t0d0", first, passedOver), accessLun("c1t1d0", first, chosen),
         dataLun("c1t2d0", first, passedOver)},
        {accessLun("c1t0d0", first, chosen), accessLun("c1t1d0", first, passedOver)},
    };
    for (const std::vector<ArrayLun> &luns : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &luns - cases);
        EXPECT_EQ(scanLuns(luns), "    1  0  1   80" + records.substr(0, 80) + zeroRecords(1));
    }
}

TEST(ArrayScan, EndsDiscoveryAtTheSecondAccessLun) {
    std::vector<std::string> journal;
    EXPECT_EQ(scanLuns({dataLun("c1t0d0", first, otherTwoDrives), accessLun("c1t1d0", second, otherTwoDrives),
                        accessLun("c1t2d0", first, twoDrives), dataLun("c1t3d0", first, twoDrives)},
                       &journal),
              twoPlaces + records + otherRecords);
    EXPECT_EQ(linesWith(journal, "open "), (std::vector<std::string>{"open /dev/rdsk/c1t0d0s2 O_RDONLY|O_NDELAY",
                                                                     "open /dev/rdsk/c1t1d0s2 O_RDONLY|O_NDELAY",
                                                                     "open /dev/rdsk/c1t2d0s2 O_RDONLY|O_NDELAY",
                                                                     // the statistics, of controller 1 and then 2
                                                                     "open /dev/rdsk/c1t2d0s2 O_RDONLY|O_NDELAY",
                                                                     "open /dev/rdsk/c1t1d0s2 O_RDONLY|O_NDELAY"}));
    const auto closedir = std::ranges::find_if(journal, [](const auto &line) { return line.starts_with("closedir"); });
    const auto diagnostic =
        std::ranges::find_if(journal, [](const auto &line) { return line.starts_with("ioctl USCSICMD 1c"); });
    EXPECT_LT(closedir, diagnostic);
}

TEST(ArrayScan, EachFailureCostsOnlyItsDevice) {
    struct {
        const char *failing;
        std::size_t opened; // for discovery, and again for its statistics once it has been chosen
    } const cases[] = {{"INQUIRY", 1}, {"INQUIRY C0", 1}, {"RECEIVE DIAGNOSTIC A0", 2}, {"LOG SENSE 3B", 2}};
    for (const auto &[failing, opened] : cases) {
        for (const bool isFirst : {true, false}) {
            SCOPED_TRACE(failing);
            ArrayLun luns[] = {dataLun("c1t0d0", first, twoDrives), dataLun("c2t0d0", second, otherTwoDrives)};
            ArrayLun &silent = luns[isFirst ? 0 : 1];
            silent.failing = failing;
            std::vector<std::string> journal;
            EXPECT_EQ(scanLuns({luns[0], luns[1]}, &journal),
                      twoPlaces + (isFirst ? zeroRecords(2) + otherRecords : records + zeroRecords(2)));
            EXPECT_EQ(linesWith(journal, "open /dev/rdsk/" + silent.name + "s2 ").size(), opened);
        }
    }
    replay::loadHostText("{}"); // no directory to read
    EXPECT_EQ(scan(), "    0");

    // The longest path there is room for; a longer one is not cut to what may be another device.
    EXPECT_EQ(scanLuns({dataLun(std::string(243, 'c'), first, twoDrives)}), twoPlaces + records + zeroRecords(2));
    std::vector<std::string> journal;
    EXPECT_EQ(scanLuns({dataLun(std::string(244, 'c'), first, twoDrives)}, &journal), "    0");
    EXPECT_TRUE(linesWith(journal, "open ").empty());
}

TEST(ArrayScan, IdentitiesArePaddedOrCutToTheirFields) {
    const char *const longId = "controller-0123456789"; // reported, and compared, up to its 16th character
    ArrayLun lun = dataLun("c1t0d0", std::string(longId).substr(0, 16), twoDrives);
    lun.vendor = "EIGHT___";
    lun.product = "SIXTEEN_________";
    struct {
        const char *controller1;
        const char *controller2;
        const char *vendorId;
        const char *productId;
        bool found;
    } const cases[] = {
        {longId, second, "EIGHT___", "SIXTEEN_________", true},
        {longId, second, "EIGHT___too long", "SIXTEEN_________too long", true},
        {second, "controller-01234", "EIGHT___", "SIXTEEN_________", true},
        {"controller-0123", second, "EIGHT___", "SIXTEEN_________", false},
        {longId, second, "EIGHT__", "SIXTEEN_________", false},
        {longId, second, "EIGHT___", "SIXTEEN________", false},
        {longId, second, "", "SIXTEEN_________", false},
        {longId, second, "EIGHT___", "", false},
    };
    replay::loadHostText(describeHost({lun}));
    for (const auto &[controller1, controller2, vendorId, productId, found] : cases) {
        EXPECT_EQ(scan(controller1, controller2, vendorId, productId).substr(0, 22), found ? twoPlaces : "    0")
            << controller1 << " " << vendorId << " " << productId;
    }
    const std::string huge(100000, 'x');
    EXPECT_EQ(scan(huge.c_str(), huge.c_str(), huge.c_str(), huge.c_str()), "    0");
    // Without an identity nothing is even opened.
    replay::startJournal();
    EXPECT_EQ(scan("", second), "    0");
    EXPECT_EQ(scan(longId, ""), "    0");
    EXPECT_TRUE(replay::stopJournal().empty());
}

TEST(ArrayScan, SendsLogSelectWhereItIsCalledFor) {
    ControllerPages calling(1);
    calling.statistics = StatisticsPage().drive(0, 0, {0, 0, 0, 1}).bytes();
    ControllerPages otherCalling(0); // places another drive, so that the first controller's does not count again
    otherCalling.translation = translationPage({{0, 1, 0, 1}});
    otherCalling.statistics = StatisticsPage().drive(0, 1, {0, 0, 0, 1}).bytes();
    ControllerPages calm = otherCalling;
    calm.statistics = StatisticsPage().drive(0, 1, countersOf(0)).bytes();
    struct {
        ControllerPages pages[2];
        bool taken;
        std::vector<std::string> devices;
    } const cases[] = {
        {{calling, calm}, true, {"c1"}},
        {{calm, calling}, true, {"c2"}},
        {{calling, otherCalling}, true, {"c1", "c2"}},
        {{calling, otherCalling}, false, {"c1", "c2"}},
    };
    for (const auto &[pages, taken, devices] : cases) {
        ArrayLun luns[] = {dataLun("c1t0d0", first, pages[0]), dataLun("c2t0d0", second, pages[1])};
        luns[0].takesLogSelect = taken;
        luns[1].takesLogSelect = taken;
        std::vector<std::string> journal;
        EXPECT_EQ(scanLuns({luns[0], luns[1]}, &journal), "   -2");
        std::vector<std::string> sentTo;
        std::string open;
        for (const std::string &line : journal) {
            if (line.starts_with("open /dev/rdsk/")) {
                open = line.substr(15, 2);
            } else if (line.starts_with("ioctl USCSICMD 4c 00 40 00 00 00 00 00 0c 00 data ")) {
                sentTo.push_back(open);
                EXPECT_EQ(line.ends_with(" 01 00 00 00"), taken) << line; // otherwise an errno ends it
            }
        }
        EXPECT_EQ(sentTo, devices);
        // The second controller's pages are still read into the data buffer, in the read direction.
        EXPECT_EQ(linesWith(journal, "ioctl USCSICMD 4d 00 7b 00 00 00 00 ff ff 00").size(), 2U);
    }
}

TEST(ArrayScan, LargestArrayFillsTheReport) {
    const ControllerPages full(449);
    const std::string report = scanLuns({accessLun("c1t0d0", first, full), accessLun("c2t0d0", second, full)});
    EXPECT_EQ(report.size(), 74378U);
    EXPECT_EQ(report.substr(0, 5), "  448");
    EXPECT_EQ(report.substr(2698, 35840), report.substr(2698 + 35840));
    EXPECT_EQ(report.substr(74378 - 80, 10), "     44701");
}

TEST(ArrayScan, ThreadsThatScanAtOnceAllGetTheirReport) {
    ControllerPages larger(300, 20);
    replay::loadHostText(describeHost({dataLun("c1t0d0", first, twoDrives), dataLun("c2t0d0", second, otherTwoDrives),
                                       dataLun("c3t0d0", "ctrl-C", larger), dataLun("c4t0d0", "ctrl-D", larger)}));
    const std::string expectedOfOne = scan(first, second);
    const std::string expectedOfOther = scan("ctrl-C", "ctrl-D");
    ASSERT_EQ(expectedOfOne, twoPlaces + records + otherRecords);
    ASSERT_EQ(expectedOfOther.substr(0, 5), "  300");
    const auto scanOften = [](const char *one, const char *two, const std::string &expected) {
        for (int i = 0; i < 100; ++i) {
            EXPECT_EQ(scan(one, two), expected);
        }
    };
    std::thread thread(scanOften, "ctrl-C", "ctrl-D", std::cref(expectedOfOther));
    scanOften(first, second, expectedOfOne);
    thread.join();
}

} // namespace
