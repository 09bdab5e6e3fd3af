#include "PlixPidFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {
const char* const lockDirectory = "/var/lock";

int failAndClose(int fd, const char* message)
{
    std::perror(message);
    close(fd);
    return -1;
}

void writeProcessId(int fd)
{
    if (ftruncate(fd, 0) < 0) {
        std::perror("Couldn't empty the PID-File!\n");
    }
    // Room for any process id, sign and line feed included.
    char text[16];
    std::snprintf(text, sizeof text, "%ld\n", static_cast<long>(getpid()));
    const size_t length = std::strlen(text);
    if (write(fd, text, length) != static_cast<ssize_t>(length)) {
        std::perror("Couldn't write into PID-File.\n");
    }
}
} // namespace

int lockfile(int fd, int whence, int type, int start, int length)
{
    struct flock64 lock
    {
    };
    lock.l_type = static_cast<short>(type);
    lock.l_whence = static_cast<short>(whence);
    lock.l_start = start;
    lock.l_len = length;
    return fcntl(fd, F_SETLK64, &lock);
}

int checkPidFile(std::string name)
{
    return checkPidFileIn(lockDirectory, name);
}

int checkPidFileIn(const std::string& directory, const std::string& name)
{
    const std::string path = directory + "/" + name + ".pid";
    const int fd = open(path.c_str(), O_RDWR | O_CREAT, 0600);
    if (fd < 0) {
        std::perror("coudln't create lockfile.\n");
        return -1;
    }
    const int flags = fcntl(fd, F_GETFD);
    if (flags < 0) {
        return failAndClose(fd, "Couldnt determine any flags.\n");
    }
    if (fcntl(fd, F_SETFD, flags | FD_CLOEXEC) < 0) {
        return failAndClose(fd, "Couldnt set the FD_CLOEXEC flag.");
    }
    if (lockfile(fd, SEEK_SET, F_WRLCK, 0, 0) < 0) {
        // The descriptor stays open: the caller ends the process.
        std::perror(errno == EAGAIN || errno == EACCES ? "PID-File already locked.\n"
                                                       : "Error locking this PID-file occured.\n");
        return -1;
    }
    writeProcessId(fd);
    return fd;
}
