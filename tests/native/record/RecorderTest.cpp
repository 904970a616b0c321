// What the recorder asks, call by call, and how little it writes: a text to read, since another recording of the host
// would say the same of both.

#include <gtest/gtest.h>

#include "platform/replay/Replay.h"
#include "record/Recorder.h"
#include "tests/Expected.h"

namespace {

TEST(RecorderTest, AsksInTheLibrarysWaysAndWritesWhatIsNotTheRule) {
    tests::loadHost("small");
    record::Report quiet(true, false);
    replay::startJournal();
    description::Host host = record::recordHost({{{"ctrl-A", "ctrl-B", "KELVO", "ARRAY 9"}}, false, 0}, quiet);
    tests::Lines text = replay::stopJournal();
    host.recordedAt.clear();
    std::string written;
    description::writeHost(host, [&](std::string_view part) { written += part; });
    tests::append(text, tests::linesOf(std::istringstream(written)));
    tests::expectFile("native/record/recorder.txt", text);
}

} // namespace
