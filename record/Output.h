#pragma once

#include <functional>
#include <stdexcept>
#include <string>

#include "description/JsonWriter.h"

namespace record {

/// Why something cannot be written, in one line.
class OutputError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Hands over a text part by part.
using Producer = std::function<void(const description::TextSink &)>;

/// A new file that only its owner may read. It is there whole or not at all.
class OutputFile {
public:
    /// Raises OutputError when the file is there already, or none can be made beside it.
    explicit OutputFile(std::string filePath);

    /// Makes the file of what `produce` hands over. Raises OutputError.
    void write(const Producer &produce) const;

private:
    [[noreturn]] void refuse(const std::string &reason) const;

    std::string path;
};

/// Raises OutputError.
void writeToStandardOutput(const Producer &produce);

} // namespace record
