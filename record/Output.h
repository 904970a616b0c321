#pragma once

#include <stdexcept>
#include <string>

namespace record {

/// Why something cannot be written, in one line.
class OutputError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A new file that only its owner may read. It is there whole or not at all.
class OutputFile {
public:
    /// Raises OutputError when the file is there already, or none can be made beside it.
    explicit OutputFile(std::string filePath);

    /// Makes the file. Raises OutputError.
    void write(const std::string &text) const;

private:
    [[noreturn]] void refuse(const std::string &reason) const;

    std::string path;
    std::string unfinishedPath;
};

/// Raises OutputError.
void writeToStandardOutput(const std::string &text);

} // namespace record
