#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/replay/Host.h"
#include "platform/replay/PlatformCall.h"
#include "platform/replay/Scsi.h"

// Files, directories and devices.

namespace replay {
namespace {

/// An open device, on the host it was opened on.
struct OpenDevice {
    std::shared_ptr<const Host> host;
    Device device;
    int flags; // of open
    std::string path;
};

/// Open devices by descriptor: the lowest free number, after those of the standard streams.
class DescriptorTable {
public:
    int add(OpenDevice opened) {
        const std::lock_guard lock(mutex);
        const auto free = std::ranges::find(devices, nullptr);
        const auto index = free - devices.begin();
        if (free == devices.end()) {
            devices.emplace_back();
        }
        devices[static_cast<std::size_t>(index)] = std::make_shared<const OpenDevice>(std::move(opened));
        return static_cast<int>(index) + firstDescriptor;
    }

    /// Null when nothing is open there.
    std::shared_ptr<const OpenDevice> find(int descriptor) {
        const std::lock_guard lock(mutex);
        return isInTable(descriptor) ? at(descriptor) : nullptr;
    }

    /// Frees the descriptor, and returns what was open there.
    std::shared_ptr<const OpenDevice> remove(int descriptor) {
        const std::lock_guard lock(mutex);
        return isInTable(descriptor) ? std::exchange(at(descriptor), nullptr) : nullptr;
    }

private:
    bool isInTable(int descriptor) const {
        return descriptor >= firstDescriptor && static_cast<std::size_t>(descriptor - firstDescriptor) < devices.size();
    }

    std::shared_ptr<const OpenDevice> &at(int descriptor) {
        return devices[static_cast<std::size_t>(descriptor - firstDescriptor)];
    }

    static constexpr int firstDescriptor = 3;

    std::mutex mutex;
    std::vector<std::shared_ptr<const OpenDevice>> devices;
};

DescriptorTable descriptors;

/// An open directory; what the system calls a DIR.
struct Directory {
    std::shared_ptr<const Host> host;
    const std::vector<std::uint32_t> *files;
    std::string path;
    std::size_t next = 0;
    std::vector<struct dirent> entry = {}; // the last one read, and behind it room for a name longer than its field
};

std::string flagsText(int flags) {
    const int mode = flags & O_ACCMODE;
    std::string text = mode == O_RDONLY ? "O_RDONLY" : mode == O_WRONLY ? "O_WRONLY" : "O_RDWR";
    if ((flags & O_NDELAY) != 0) {
        text += "|O_NDELAY";
    }
    if (const int others = flags & ~O_ACCMODE & ~O_NDELAY; others != 0) {
        text += "|" + std::to_string(others);
    }
    return text;
}

const char *requestName(int request) {
    switch (request) {
    case DKIOCINFO:
        return "DKIOCINFO";
    case DKIOCGGEOM:
        return "DKIOCGGEOM";
    case DKIOCGVTOC:
        return "DKIOCGVTOC";
    case USCSICMD:
        return "USCSICMD";
    default:
        return nullptr;
    }
}

std::string pathOf(const std::shared_ptr<const OpenDevice> &opened) {
    return opened == nullptr ? "?" : opened->path;
}

int failWithUnless(int error) {
    return error == 0 ? 0 : failWith(error);
}

/// Gives out what the disk has. 0, or an errno.
template <class Structure>
int copyOut(const std::optional<Structure> &source, void *argument) {
    if (!source) {
        return EIO;
    }
    *static_cast<Structure *>(argument) = *source;
    return 0;
}

/// 0, or an errno.
int answerRequest(const OpenDevice &opened, int request, void *argument) {
    const Disk &disk = *opened.device.disk;
    const char *name = requestName(request);
    if (name == nullptr) {
        return ENOTTY;
    }
    if (const int error = failureOf(disk, name, opened.flags); error != 0) {
        return error;
    }
    if (argument == nullptr) {
        return EFAULT;
    }
    switch (request) {
    case DKIOCINFO: {
        auto &information = *static_cast<dk_cinfo *>(argument);
        information = {};
        information.dki_partition = (*disk.slices)[opened.device.slice].partition.value_or(
            static_cast<ushort_t>(disk.place(opened.device.slice)));
        return 0;
    }
    case DKIOCGGEOM:
        return copyOut(disk.geometry, argument);
    case DKIOCGVTOC:
        return copyOut(*disk.vtoc, argument);
    default:
        return sendScsiCommand(disk, *static_cast<uscsi_cmd *>(argument));
    }
}

void describeDevice(const Device &device, struct ::stat &status) {
    status = {};
    status.st_mode = (device.raw ? S_IFCHR : S_IFBLK) | S_IRUSR | S_IWUSR | S_IRGRP;
    status.st_nlink = 1;
    status.st_rdev = device.number();
}

void describeFile(mode_t kind, struct ::stat &status) {
    status = {};
    status.st_mode = kind | S_IRUSR | S_IXUSR | S_IRGRP | S_IROTH;
    status.st_nlink = 1;
}

/// "/dev/rdsk/." and "/dev/rdsk/.." are directories when "/dev/rdsk" is.
bool isDirectory(const FileTree &files, std::string_view path) {
    const std::string_view last = path.substr(path.rfind('/') + 1);
    if (last == "." || last == "..") {
        path.remove_suffix(std::min(last.size() + 1, path.size()));
    }
    return files.directory(path) != nullptr;
}

/// 0, or an errno.
int describePath(const Host &host, std::string_view path, struct ::stat &status) {
    const std::optional<FileNode> node = host.files.find(path);
    if (!node) {
        if (!isDirectory(host.files, path)) {
            return ENOENT;
        }
        describeFile(S_IFDIR, status);
        return 0;
    }
    if (!node->device) {
        if (node->isLink) {
            return ENOENT; // it leads nowhere
        }
        describeFile(S_IFREG, status);
        return 0;
    }
    if (const int error = failureOf(*node->device->disk, "stat"); error != 0) {
        return error;
    }
    describeDevice(*node->device, status);
    return 0;
}

int openPath(const char *path, int flags) {
    std::shared_ptr<const Host> host = currentHost();
    const std::optional<FileNode> node = host->files.find(path);
    if (!node || !node->device) {
        return failWith(ENXIO);
    }
    if (const int error = failureOf(*node->device->disk, "open", flags); error != 0) {
        return failWith(error);
    }
    return descriptors.add({std::move(host), *node->device, flags, path});
}

ssize_t readLinkText(std::string_view path, char *buffer, std::size_t size) {
    const std::shared_ptr<const Host> host = currentHost();
    const std::optional<FileNode> node = host->files.find(path);
    if (!node) {
        return failWith(isDirectory(host->files, path) ? EINVAL : ENOENT);
    }
    if (const int error = node->ofDisk ? failureOf(*node->device->disk, "readlink") : 0; error != 0) {
        return failWith(error);
    }
    const Link link = host->files.linkOf(*node);
    if (!link) {
        return failWith(EINVAL);
    }
    const std::size_t length = std::min(size, link->size());
    std::copy_n(link->data(), length, buffer); // a link's text ends nowhere but at its length
    return static_cast<ssize_t>(length);
}

DIR *openDirectory(const char *path) {
    std::shared_ptr<const Host> host = currentHost();
    const std::vector<std::uint32_t> *files = host->files.directory(path);
    if (files == nullptr) {
        return failWith<DIR *>(host->files.find(path) ? ENOTDIR : ENOENT);
    }
    return reinterpret_cast<DIR *>(std::make_unique<Directory>(Directory{std::move(host), files, path}).release());
}

} // namespace
} // namespace replay

namespace solaris {

using namespace replay;

int open(const char *path, int flags, ...) {
    const auto line = [&] { return std::string("open ") + path + " " + flagsText(flags); };
    return answerCall(line, [&] { return openPath(path, flags); });
}

int close(int descriptor) {
    const std::shared_ptr<const OpenDevice> opened = descriptors.remove(descriptor);
    const auto line = [&] { return "close " + pathOf(opened); };
    return answerCall(line, [&] {
        return failWithUnless(opened == nullptr ? EBADF : failureOf(*opened->device.disk, "close", opened->flags));
    });
}

int fstat(int descriptor, struct ::stat *status) {
    const std::shared_ptr<const OpenDevice> opened = descriptors.find(descriptor);
    const auto line = [&] { return "fstat " + pathOf(opened); };
    return answerCall(line, [&] {
        const int error = opened == nullptr ? EBADF : failureOf(*opened->device.disk, "fstat", opened->flags);
        if (error == 0) {
            describeDevice(opened->device, *status);
        }
        return failWithUnless(error);
    });
}

int ioctl(int descriptor, int request, ...) {
    std::va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    const std::shared_ptr<const OpenDevice> opened = descriptors.find(descriptor);
    const auto line = [&] {
        const char *name = requestName(request);
        const std::string text = "ioctl " + (name == nullptr ? std::to_string(request) : name) + " ";
        return request == USCSICMD && argument != nullptr ? text + scsiCommandText(*static_cast<uscsi_cmd *>(argument))
                                                          : text + pathOf(opened);
    };
    return answerCall(
        line, [&] { return failWithUnless(opened == nullptr ? EBADF : answerRequest(*opened, request, argument)); });
}

int stat(const char *path, struct ::stat *status) {
    return answerCall([&] { return std::string("stat ") + path; },
                      [&] { return failWithUnless(describePath(*currentHost(), path, *status)); });
}

ssize_t readlink(const char *path, char *buffer, size_t size) {
    return answerCall([&] { return std::string("readlink ") + path; },
                      [&] { return readLinkText(path, buffer, size); });
}

int ustat(dev_t device, struct ::ustat *status) {
    const auto line = [&] { return "ustat " + std::to_string(major(device)) + "," + std::to_string(minor(device)); };
    return answerCall(line, [&] {
        const std::shared_ptr<const Host> host = currentHost();
        const Disk *disk = host->files.mountedFrom(device);
        const int error = disk == nullptr ? EINVAL : failureOf(*disk, "ustat");
        if (error == 0) {
            *status = {};
        }
        return failWithUnless(error);
    });
}

DIR *opendir(const char *path) {
    return answerCall([&] { return std::string("opendir ") + path; }, [&] { return openDirectory(path); });
}

struct dirent *readdir(DIR *directory) {
    const InPlatform inside;
    Directory &opened = *reinterpret_cast<Directory *>(directory);
    if (isRefused([&] { return "readdir " + opened.path; })) {
        return failWith<struct dirent *>(EIO);
    }
    static constexpr std::string_view first[] = {".", ".."};
    if (opened.next == opened.files->size() + std::size(first)) {
        return nullptr;
    }
    const std::size_t at = opened.next++;
    const std::string name = at < std::size(first) ? std::string(first[at])
                                                   : opened.host->files.name((*opened.files)[at - std::size(first)]);
    const std::size_t size = offsetof(struct dirent, d_name) + name.size() + 1;
    opened.entry.assign(size / sizeof(struct dirent) + 1, {});
    struct dirent *entry = opened.entry.data();
    entry->d_ino = opened.next;
    entry->d_reclen = static_cast<unsigned short>(size);
    std::memcpy(reinterpret_cast<char *>(entry) + offsetof(struct dirent, d_name), name.c_str(), name.size() + 1);
    return entry;
}

int closedir(DIR *directory) {
    const std::unique_ptr<Directory> opened(reinterpret_cast<Directory *>(directory));
    return answerCall([&] { return "closedir " + opened->path; }, [] { return 0; });
}

} // namespace solaris
