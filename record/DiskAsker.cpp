#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "common/system/DiskDevices.h"
#include "common/system/FileDescriptor.h"
#include "common/system/ScsiPages.h"
#include "common/system/ScsiRequest.h"
#include "record/DiskQuestions.h"
#include "record/Recorder.h"

// The calls to what stands in the device directories, made in an asker.

namespace record {
namespace {

constexpr std::size_t longestLink = 8192; // of what is kept of a link; the library takes less

int errorOf(int result) {
    return result < 0 ? errno : 0;
}

/// Asks about one entry after the other, in an asker.
class DiskAsker {
public:
    DiskAsker(std::span<const tarn::ArrayNames> arraysToFind, bool asksAllForPages)
        : arrays(arraysToFind), arrayPages(asksAllForPages) {
    }

    void askBlock(const std::string &path, Teller &teller) {
        askLink(path, teller);
        struct ::stat status {};
        begin(Question::stat, teller);
        const int error = errorOf(solaris::stat(path.c_str(), &status));
        tell(Question::stat, error, bytesOf(FileKind{status.st_rdev, S_ISREG(status.st_mode)}), teller);
    }

    void askRaw(const std::string &path, Teller &teller) {
        askLink(path, teller);
        const std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
        if (tarn::fitsNameField(name)) {
            askRequests(path, name.ends_with(tarn::wholeDiskSlice), teller);
        }
        if (name.find(tarn::wholeDiskSlice) != std::string_view::npos && path.size() < tarn::scsiPathSize) {
            askInquiry(path, teller);
        }
    }

    void askLink(const std::string &path, Teller &teller) {
        begin(Question::readlink, teller);
        const ssize_t length = solaris::readlink(path.c_str(), link.data(), link.size());
        tell(Question::readlink, errorOf(static_cast<int>(length)),
             std::as_bytes(std::span(link.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)))), teller);
    }

    /// The two large pages of an array's LUN.
    void askPages(const std::string &path, Teller &teller) {
        tarn::FileDescriptor device = open(Question::openForCommands, path, tarn::openForCommands, teller);
        if (device.isOpen()) {
            ask(device, Question::receiveDiagnosticA0, teller);
            ask(device, Question::logSense3B, teller);
            close(device, teller);
        }
    }

private:
    static void begin(Question question, Teller &teller) {
        teller.begin(static_cast<unsigned>(question));
    }

    static void tell(Question question, int error, std::span<const std::byte> data, Teller &teller) {
        teller.tell(static_cast<unsigned>(question), error, error == 0 ? data : std::span<const std::byte>());
    }

    static tarn::FileDescriptor open(Question question, const std::string &path, int flags, Teller &teller) {
        begin(question, teller);
        tarn::FileDescriptor device(solaris::open(path.c_str(), flags));
        tell(question, errorOf(device.get()), {}, teller);
        return device;
    }

    static void close(tarn::FileDescriptor &device, Teller &teller) {
        teller.begin(closeCall);
        device.close();
    }

    /// As the providers of disks and of partitions do.
    static void askRequests(const std::string &path, bool isWholeDisk, Teller &teller) {
        tarn::FileDescriptor device = open(Question::openForRequests, path, tarn::openForRequests, teller);
        if (!device.isOpen()) {
            return;
        }
        struct ::stat status {};
        begin(Question::fstat, teller);
        const int error = errorOf(solaris::fstat(device.get(), &status));
        tell(Question::fstat, error, bytesOf(FileKind{status.st_rdev, false}), teller);
        request<dk_cinfo>(device, Question::information, DKIOCINFO, teller);
        const bool hasGeometry = request<dk_geom>(device, Question::geometry, DKIOCGGEOM, teller);
        request<struct ::vtoc>(device, Question::label, DKIOCGVTOC, teller);
        if (error == 0) {
            struct ::ustat fileSystem {};
            begin(Question::ustat, teller);
            tell(Question::ustat, errorOf(solaris::ustat(status.st_rdev, &fileSystem)), {}, teller);
        }
        close(device, teller);
        if (!hasGeometry && isWholeDisk) {
            device = open(Question::openAgain, path, tarn::openForRequestsAgain, teller);
            if (device.isOpen()) {
                request<dk_geom>(device, Question::geometryAgain, DKIOCGGEOM, teller);
                request<struct ::vtoc>(device, Question::labelAgain, DKIOCGVTOC, teller);
                close(device, teller);
            }
        }
    }

    /// Whether it is answered.
    template <class Table>
    static bool request(const tarn::FileDescriptor &device, Question question, int code, Teller &teller) {
        Table table{};
        begin(question, teller);
        const int error = errorOf(solaris::ioctl(device.get(), code, &table));
        tell(question, error, bytesOf(table), teller);
        return error == 0;
    }

    /// As the interrogator and the inventory do: page 0xC0 is for the LUNs of an array. Other disks count it as an error of theirs.
    void askInquiry(const std::string &path, Teller &teller) {
        tarn::FileDescriptor device = open(Question::openForCommands, path, tarn::openForCommands, teller);
        if (!device.isOpen()) {
            return;
        }
        const bool isAnswered = ask(device, Question::inquiry, teller);
        const bool isOfArray = isAnswered && std::ranges::any_of(arrays, [&](const tarn::ArrayNames &names) {
                                   return tarn::lunKind(names, data.data()).has_value();
                               });
        const bool knowsPages = isAnswered && tarn::knowsPages(tarn::Page(data).first(tarn::inquirySize));
        if (isOfArray || arrayPages) {
            ask(device, Question::inquiryC0, teller);
        }
        if (knowsPages && path.ends_with(tarn::wholeDiskSlice) && ask(device, Question::inquiry00, teller)) {
            const tarn::Page pages = tarn::Page(data).first(tarn::inquirySize);
            const bool hasSerial = tarn::listsPage(pages, tarn::pageOfSerialNumber);
            const bool hasDesignators = tarn::listsPage(pages, tarn::pageOfDesignators);
            if (hasSerial) {
                ask(device, Question::inquiry80, teller);
            }
            if (hasDesignators) {
                ask(device, Question::inquiry83, teller);
            }
        }
        close(device, teller);
    }

    /// Tells the answer without the zeros at its end: what a command does not answer reads as zeros.
    bool ask(const tarn::FileDescriptor &device, Question question, Teller &teller) {
        const std::size_t index = static_cast<std::size_t>(question) - static_cast<std::size_t>(Question::inquiry);
        const tarn::ScsiCommand &asked = *askedCommands[index];
        begin(question, teller);
        const int error = tarn::readFromDisk(device, asked, 0, data) ? 0 : errno;
        const auto last =
            std::find_if(std::make_reverse_iterator(data.begin() + static_cast<std::ptrdiff_t>(asked.count)),
                         data.rend(), [](unsigned char byte) { return byte != 0; });
        tell(question, error, std::as_bytes(std::span(data.begin(), last.base())), teller);
        return error == 0;
    }

    std::span<const tarn::ArrayNames> arrays;
    bool arrayPages;
    std::array<char, longestLink> link;
    std::array<unsigned char, tarn::dataBufferSize> data;
};

} // namespace

Ask wayToAskDisk(std::size_t kind, const Options &options) {
    const auto asker = std::make_shared<DiskAsker>(options.arrays, options.arrayPages);
    return [kind, asker, path = std::string()](std::string_view text, Teller &teller) mutable {
        path = text;
        switch (kind) {
        case Askers::rawEntry:
            return asker->askRaw(path, teller);
        case Askers::link:
            return asker->askLink(path, teller);
        case Askers::blockEntry:
            return asker->askBlock(path, teller);
        case Askers::arrayPages:
            return asker->askPages(path, teller);
        default:
            return;
        }
    };
}

} // namespace record
