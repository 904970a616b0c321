#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "platform/replay/Replay.h"
#include "tests/Lines.h"

// What stands in files beside the tests: hosts, and texts that must come out letter for letter.

namespace tests {

/// Makes tests/hosts/NAME.json the current host.
inline void loadHost(const std::string &name) {
    replay::loadHostFile(TARN_TESTS "/hosts/" + name + ".json");
}

inline Lines linesOf(std::istream &&stream) {
    Lines lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// Compares the lines with the file, whose path is below tests/. With TARN_WRITE_EXPECTED in the environment the file is
/// written instead: what changed in it then has to be read, and found right.
inline void expectFile(const std::string &file, const Lines &lines) {
    const std::string path = TARN_TESTS "/" + file;
    if (std::getenv("TARN_WRITE_EXPECTED") != nullptr) {
        std::ofstream(path) << joined(lines, "\n") << '\n';
        return;
    }
    const Lines text = linesOf(std::istringstream(joined(lines, "\n"))), expected = linesOf(std::ifstream(path));
    for (std::size_t i = 0; i < std::max(text.size(), expected.size()); ++i) {
        ASSERT_EQ(i < text.size() ? text[i] : "no line", i < expected.size() ? expected[i] : "no line")
            << file << ":" << i + 1;
    }
}

} // namespace tests
