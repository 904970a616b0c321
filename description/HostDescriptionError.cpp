#include "description/HostDescriptionError.h"

#include <string>

#include "common/system/Printable.h"

namespace description {
namespace {

/// The text in no more than `room` bytes, where what is not printable stands as "\x1b". What is too long loses its end.
std::string printable(std::string_view text, std::size_t room) {
    constexpr std::string_view cut = "...";
    std::string shown;
    std::size_t whole = 0; // of what is shown, with the cut behind it
    while (!text.empty()) {
        text.remove_prefix(tarn::showFirst(text, shown));
        if (shown.size() > room) {
            return shown.substr(0, whole).append(cut);
        }
        whole = shown.size() <= room - cut.size() ? shown.size() : whole;
    }
    return shown;
}

std::string endOf(std::string_view path) {
    constexpr std::size_t most = 80;
    return path.size() <= most ? std::string(path) : "..." + std::string(path.substr(path.size() - most));
}

} // namespace

HostDescriptionError::HostDescriptionError(std::string_view message)
    : std::runtime_error(printable(message, mostCharacters)) {
}

HostDescriptionError::HostDescriptionError(std::string_view path, std::string_view message)
    : HostDescriptionError(endOf(path).append(": ").append(message)) {
}

} // namespace description
