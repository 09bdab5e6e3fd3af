#include "PlixDurableFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
const char* const temporarySuffix = ".plix-new";
// The mode of a file that did not exist before: what the umask leaves.
constexpr int noMode = -1;

bool writeAll(int fd, const std::string& text)
{
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = ::write(fd, text.data() + done, text.size() - done);
        if (written < 0 && errno != EINTR) {
            return false;
        }
        done += written > 0 ? static_cast<std::size_t>(written) : 0;
    }
    return true;
}

std::string directoryOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}
} // namespace

PlixDurableFile::PlixDurableFile(std::string path) : path(std::move(path))
{
}

std::string PlixDurableFile::temporaryPath() const
{
    return path + temporarySuffix;
}

bool PlixDurableFile::replace(const std::string& text, std::string& error) const
{
    struct stat status;
    const int mode =
        stat(path.c_str(), &status) == 0 ? static_cast<int>(status.st_mode & 07777) : noMode;
    const std::string temporary = temporaryPath();
    if (!writeTemporary(text, mode, error)) {
        unlink(temporary.c_str());
        return false;
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        error = std::strerror(errno);
        unlink(temporary.c_str());
        return false;
    }
    return syncDirectory(error);
}

void PlixDurableFile::removeLeftover() const
{
    unlink(temporaryPath().c_str());
}

// A leftover is removed first, not reused: it would keep its own mode.
bool PlixDurableFile::writeTemporary(const std::string& text, int mode, std::string& error) const
{
    const std::string temporary = temporaryPath();
    unlink(temporary.c_str());
    const int fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0) {
        error = std::strerror(errno);
        return false;
    }
    bool ok = (mode == noMode || fchmod(fd, static_cast<mode_t>(mode)) == 0) &&
              writeAll(fd, text) && fsync(fd) == 0;
    if (!ok) {
        error = std::strerror(errno);
    }
    if (close(fd) != 0 && ok) {
        error = std::strerror(errno);
        ok = false;
    }
    return ok;
}

// The rename survives a power loss only once the directory is on disk too.
bool PlixDurableFile::syncDirectory(std::string& error) const
{
    const int fd = open(directoryOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool ok = fd >= 0 && fsync(fd) == 0;
    if (!ok) {
        error = std::strerror(errno);
    }
    if (fd >= 0) {
        close(fd);
    }
    return ok;
}
