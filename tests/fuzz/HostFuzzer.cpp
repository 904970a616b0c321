#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "description/Host.h"
#include "description/HostDescriptionError.h"

// libFuzzer target over the reading and writing of host descriptions: what is written of what was read is taken back,
// and written the same; what is refused is refused in one short line. Run by hand, with the dictionary that ./test fuzzer
// writes:
//
//     host_fuzzer -max_len=65535 -dict=build/asan/host.dict DIR hosts tests/hosts

namespace {

std::string written(const description::Host &host) {
    std::string text;
    description::writeHost(host, [&](std::string_view part) { text += part; });
    return text;
}

bool isOneShortLine(std::string_view message) {
    return !message.empty() && message.size() <= description::HostDescriptionError::mostCharacters &&
           message.find_first_of("\n\x1b") == std::string_view::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    description::Host host;
    try {
        host = description::readHost(std::string(reinterpret_cast<const char *>(data), size));
    } catch (const description::HostDescriptionError &refusal) {
        if (!isOneShortLine(refusal.what())) {
            throw std::logic_error("Refused with " + std::string(refusal.what()));
        }
        return 0;
    }
    const std::string once = written(host);
    const std::string twice = written(description::readHost(once));
    if (twice != once) {
        throw std::logic_error("Written otherwise the second time:\n" + once + twice);
    }
    return 0;
}
