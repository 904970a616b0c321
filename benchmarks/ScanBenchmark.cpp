// The scan of a large array at the end of a large directory, against code that knows beforehand what it will find: it
// puts the same calls to the platform and writes the same numbers, but looks at no answer and decodes no page.

#include <algorithm>
#include <cstring>

#include "benchmarks/Comparison.h"
#include "native/array/SolarisScsiInterrogatorC.h"
#include "platform/solaris.h"
#include "tests/machine/Jvm.h"
#include "tests/native/array/ArrayPages.h"

extern "C" jstring Java_com_kelvo_tarn_providers_solaris_SolarisScsiInterrogator_scsiInterrogate(JNIEnv *, jobject,
                                                                                                 jstring, jstring,
                                                                                                 jstring, jstring);

namespace bench {
namespace {

constexpr unsigned drivesPerController = 448;
constexpr unsigned slicesPerDisk = 8;
constexpr const char *vendor = "KELVO";
constexpr const char *product = "ARRAY 9";
constexpr const char *controllers[] = {"ctrl-A", "ctrl-B"};
constexpr const char *accessLuns[] = {"c9t0d0", "c9t1d0"};

unsigned firstDriveOf(unsigned controller) {
    return controller * 100000;
}

/// A host whose last two disks are the access LUNs of the array's controllers, so that the scan walks all entries.
std::string hostOf(unsigned entries) {
    const std::vector<std::string> slices{"s0", "s1", "s2", "s3", "s4", "s5", "s6", "s7"};
    std::vector<pages::ArrayLun> luns;
    for (unsigned i = 2; i < entries / slicesPerDisk; ++i) {
        luns.push_back(
            {.name = "c1t" + std::to_string(i) + "d0", .vendor = "OTHER", .product = "72G", .controller = ""});
    }
    for (unsigned i = 0; i < 2; ++i) {
        const pages::ControllerPages answers(drivesPerController, firstDriveOf(i));
        luns.push_back({.name = accessLuns[i],
                        .vendor = vendor,
                        .product = "Universal Xport",
                        .controller = controllers[i],
                        .translation = answers.translation,
                        .statistics = answers.statistics});
    }
    for (pages::ArrayLun &lun : luns) {
        lun.slices = slices;
    }
    return pages::describeHost(luns);
}

jobject interrogate(JNIEnv *env) {
    return Java_com_kelvo_tarn_providers_solaris_SolarisScsiInterrogator_scsiInterrogate(
        env, nullptr, env->NewStringUTF(controllers[0]), env->NewStringUTF(controllers[1]), env->NewStringUTF(vendor),
        env->NewStringUTF(product));
}

/// What the floor has at hand of one drive.
struct KnownDrive {
    unsigned tray;
    unsigned slot;
    pages::Counters counters;
};

std::vector<KnownDrive> knownDrivesOf(unsigned controller) {
    std::vector<KnownDrive> drives;
    for (unsigned i = 0; i < drivesPerController; ++i) {
        const pages::Place place = pages::placeOf(i);
        drives.push_back({place.tray, place.slot, pages::countersOf(firstDriveOf(controller) + i)});
    }
    return drives;
}

char *writeNumber(char *at, std::ptrdiff_t width, std::uint32_t value) {
    char *const end = at + width;
    char *digit = end;
    do {
        *--digit = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0);
    std::fill(at, digit, ' ');
    return end;
}

class Floor {
public:
    Floor() {
        command.uscsi_flags = USCSI_READ;
        command.uscsi_timeout = 30;
        command.uscsi_bufaddr = data;
        command.uscsi_buflen = sizeof data;
    }

    jobject run(JNIEnv *env) {
        const jstring strings[] = {env->NewStringUTF(controllers[0]), env->NewStringUTF(controllers[1]),
                                   env->NewStringUTF(vendor), env->NewStringUTF(product)};
        const char *texts[std::size(strings)];
        std::ranges::transform(strings, texts, [env](jstring text) { return env->GetStringUTFChars(text, nullptr); });
        discover();
        for (const char *const lun : accessLuns) {
            const int device = openWholeDisk(lun);
            scsiReceiveDiagnosticA0(device, &command);
            scsiLogSense3B(device, &command);
            solaris::close(device);
        }
        write();
        const jstring result = env->NewStringUTF(report);
        for (std::size_t i = 0; i < std::size(strings); ++i) {
            env->ReleaseStringUTFChars(strings[i], texts[i]);
        }
        return result;
    }

private:
    static int open(const char *entry) {
        char path[256] = "/dev/rdsk/";
        std::strcat(path, entry);
        return solaris::open(path, O_RDONLY | O_NDELAY);
    }

    static int openWholeDisk(const char *disk) {
        char entry[64];
        std::strcpy(entry, disk);
        return open(std::strcat(entry, "s2"));
    }

    void discover() {
        DIR *const directory = solaris::opendir("/dev/rdsk");
        while (const dirent *const entry = solaris::readdir(directory)) {
            if (std::strstr(entry->d_name, "s2") == nullptr) {
                continue;
            }
            const int device = open(entry->d_name);
            scsiStandardInquiry(device, &command);
            if (entry->d_name[1] == accessLuns[0][1]) {
                scsiInquiryVPDC0(device, &command);
            }
            solaris::close(device);
        }
        solaris::closedir(directory);
    }

    void write() {
        char *at = writeNumber(report, 5, drivesPerController);
        for (const KnownDrive &drive : drives[0]) {
            at = writeNumber(at, 3, drive.tray);
            at = writeNumber(at, 3, drive.slot);
        }
        at = writeNumber(at, 5, 80);
        for (const std::vector<KnownDrive> &ofController : drives) {
            for (const KnownDrive &drive : ofController) {
                for (std::size_t i = 0; i < 8; ++i) {
                    at = writeNumber(at, 10, drive.counters[i]);
                }
            }
        }
        *at = '\0';
    }

    std::vector<KnownDrive> drives[2] = {knownDrivesOf(0), knownDrivesOf(1)};
    uscsi_cmd command{};
    char data[65535] = {};
    char report[74379] = {};
};

jobject floorOfScan(JNIEnv *env) {
    static Floor floor;
    return floor.run(env);
}

std::vector<Comparison> comparisons() {
    const std::string host = hostOf(4000);
    const auto content = [](JNIEnv *env, jobject report) { return std::vector{jvm::toText(env, report)}; };
    return {
        {.name = "scsiInterrogate, 2 x 448 drives, 4,000 entries",
         .bound = 1.3,
         .measured = {host, interrogate},
         .reference = {host, floorOfScan},
         .content = content},
        {.name = "scsiInterrogate, 8 times the entries",
         .bound = 1.3,
         .measured = {hostOf(8 * 4000), interrogate},
         .reference = {host, interrogate},
         .scale = 8.0,
         .turns = 20,
         .content = content},
    };
}

const Registration registration(comparisons);

} // namespace
} // namespace bench
