#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/replay/Replay.h"
#include "tests/Lines.h"

// What stands in files beside the tests: hosts, and texts that must come out letter for letter.

namespace tests {

/// Makes tests/hosts/NAME.json the current host.
inline void loadHost(const std::string &name) {
    replay::loadHostFile(TARN_TESTS "/hosts/" + name + ".json");
}

/// Compares the lines with the file, whose path is below tests/. With TARN_WRITE_EXPECTED in the environment the file is
/// written instead: what changed in it then has to be read, and found right.
inline void expectFile(const std::string &file, const Lines &lines) {
    const std::string path = TARN_TESTS "/" + file;
    const std::string text = joined(lines, "\n") + "\n";
    if (std::getenv("TARN_WRITE_EXPECTED") != nullptr) {
        std::ofstream(path) << text;
    }
    std::ifstream stream(path);
    EXPECT_EQ(text, std::string(std::istreambuf_iterator<char>(stream), {})) << file;
}

} // namespace tests
