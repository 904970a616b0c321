#pragma once

// The one door to the operating system. Everything the library asks of Solaris is included or named here: structures,
// macros and constants under their published names from the published headers, functions as solaris::NAME. kstat_* and
// HBA_* belong to libraries with a prefix of their own and are called by their plain names.
//
// On Solaris each solaris::NAME is the system's own function. Elsewhere the headers that the build machine lacks come
// from replay/include/, which stands before the system's directories, and platform/replay/ answers the calls from a
// host description. The contracts are the published ones on both sides: -1 or null on failure, with errno set.

#include <cerrno>
#include <csignal> // for <thread.h>
#include <cstdio>
#include <ctime> // for <hbaapi.h>

#include <crypt.h>
#include <dirent.h>
#include <fcntl.h>
#include <hbaapi.h>
#include <kstat.h>
#include <shadow.h>
#include <thread.h>
#include <unistd.h>
#include <ustat.h>

#include <sys/types.h>

#include <sys/dkio.h>
#include <sys/mkdev.h>
#include <sys/mnttab.h>
#include <sys/processor.h>
#include <sys/scsi/impl/uscsi.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysinfo.h>
#include <sys/systeminfo.h>
#include <sys/utsname.h>
#include <sys/vtoc.h>

namespace solaris {

#ifdef __sun

using ::close;
using ::closedir;
using ::crypt;
using ::fclose;
using ::fopen;
using ::fstat;
using ::getmntent;
using ::getspnam_r;
using ::ioctl;
using ::open;
using ::opendir;
using ::processor_info;
using ::readdir;
using ::readlink;
using ::sleep;
using ::stat;
using ::statvfs64;
using ::sysconf;
using ::sysinfo;
using ::thr_stksegment;
using ::uname;
using ::ustat;

#else

// Devices and directories.
int open(const char *path, int flags, ...);
int close(int descriptor);
int fstat(int descriptor, struct ::stat *status);
int ioctl(int descriptor, int request, ...);
int stat(const char *path, struct ::stat *status);
ssize_t readlink(const char *path, char *buffer, size_t size);
int ustat(dev_t device, struct ::ustat *status);
DIR *opendir(const char *path);
struct dirent *readdir(DIR *directory);
int closedir(DIR *directory);

// Mounted file systems.
FILE *fopen(const char *path, const char *mode);
int fclose(FILE *file);
int getmntent(FILE *table, struct mnttab *entry);
int statvfs64(const char *path, struct ::statvfs64 *status);

// The host and its processors. `sysinfo` answers the bytes the whole text takes, which may be more than `count`.
int sysinfo(int command, char *buffer, long count);
int uname(struct utsname *name);
long sysconf(int name);
unsigned sleep(unsigned seconds);
int processor_info(processorid_t processor, processor_info_t *information);

// The calling thread's stack: `ss_sp` is its base, the highest address, `ss_size` its size in bytes. Answers 0 or an
// error number.
int thr_stksegment(stack_t *segment);

// Users. `getspnam_r` leaves errno alone when it knows no such user. The result of `crypt` is shared by all threads.
struct spwd *getspnam_r(const char *name, struct spwd *entry, char *buffer, int length);
char *crypt(const char *key, const char *setting);

#endif

} // namespace solaris
