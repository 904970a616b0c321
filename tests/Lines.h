#pragma once

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

// Lines of a journal, or of the calls that a JNI table recorded.

namespace tests {

using Lines = std::vector<std::string>;

/// The lines that begin with one of the texts.
inline Lines beginning(const Lines &lines, const Lines &starts) {
    Lines found;
    std::ranges::copy_if(lines, std::back_inserter(found), [&](const std::string &line) {
        return std::ranges::any_of(starts, [&](const std::string &start) { return line.starts_with(start); });
    });
    return found;
}

/// The lines that stand more often here than there, each after the sign.
inline Lines only(const std::string &sign, const Lines &here, Lines there) {
    Lines all;
    for (const std::string &line : here) {
        if (const auto same = std::ranges::find(there, line); same != there.end()) {
            there.erase(same);
        } else {
            all.push_back(sign + line);
        }
    }
    return all;
}

inline void append(Lines &lines, const Lines &more) {
    lines.insert(lines.end(), more.begin(), more.end());
}

inline std::string joined(const Lines &parts, const std::string &separator) {
    std::string text;
    for (const std::string &part : parts) {
        text += (text.empty() ? "" : separator) + part;
    }
    return text;
}

} // namespace tests
