#include "PlixSmallDisk.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

PlixSmallDisk::PlixSmallDisk(std::string directory, std::size_t bytes)
    : mDirectory(std::move(directory))
{
    const std::string options = "size=" + std::to_string(bytes) + ",mode=0755";
    // Private propagation first, or the tmpfs would show up on the machine.
    if (unshare(CLONE_NEWNS) != 0 ||
        mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tmpfs", mDirectory.c_str(), "tmpfs", 0, options.c_str()) != 0) {
        mError = std::string("cannot mount a small tmpfs: ") + std::strerror(errno);
        return;
    }
    mMounted = true;
}

PlixSmallDisk::~PlixSmallDisk()
{
    if (mMounted) {
        umount2(mDirectory.c_str(), MNT_DETACH);
    }
}

bool PlixSmallDisk::fill()
{
    const int fd = open(fillerPath().c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (fd < 0) {
        return errno == ENOSPC;
    }
    const char block[4096] = {};
    bool full = false;
    for (std::size_t size = sizeof block; size > 0 && !full;) {
        if (write(fd, block, size) < 0) {
            // Down to single bytes, so that no partly used page is left.
            full = errno == ENOSPC && size == 1;
            size = errno == ENOSPC ? size / 2 : 0;
        }
    }
    close(fd);
    return full;
}

void PlixSmallDisk::free()
{
    unlink(fillerPath().c_str());
}

bool PlixSmallDisk::setReadOnly(bool readOnly)
{
    // Without MS_BIND the flag is the file system's, so the services see it.
    const unsigned long flags = MS_REMOUNT | (readOnly ? MS_RDONLY : 0);
    return mount(nullptr, mDirectory.c_str(), nullptr, flags, nullptr) == 0;
}
