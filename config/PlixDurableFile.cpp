#include "PlixDurableFile.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
const char* const temporarySuffix = ".plix-new";
// As many links as the kernel follows in one path before it gives up.
constexpr int mostLinks = 40;

bool failed(std::string& error)
{
    error = std::strerror(errno);
    return false;
}

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

bool readLink(const std::string& link, std::string& target)
{
    std::string buffer(PATH_MAX, '\0');
    const ssize_t length = readlink(link.c_str(), buffer.data(), buffer.size());
    if (length < 0) {
        return false;
    }
    if (static_cast<std::size_t>(length) == buffer.size()) {
        errno = ENAMETOOLONG;
        return false;
    }
    target = buffer.substr(0, static_cast<std::size_t>(length));
    return true;
}

// Where a link's text leads: a relative one is read from the directory the
// link is in, as the kernel reads it.
std::string linkTarget(const std::string& link, const std::string& text)
{
    if (!text.empty() && text.front() == '/') {
        return text;
    }
    std::string target = directoryOf(link);
    target += '/';
    target += text;
    return target;
}

// The file a path leads to in the end. A file that does not exist yet is
// created where the last link points.
bool followLinks(const std::string& path, std::string& file, std::string& error)
{
    file = path;
    struct stat status;
    for (int links = 0; lstat(file.c_str(), &status) == 0 && S_ISLNK(status.st_mode); ++links) {
        std::string next;
        if (links == mostLinks) {
            errno = ELOOP;
            return failed(error);
        }
        if (!readLink(file, next)) {
            return failed(error);
        }
        file = linkTarget(file, next);
    }
    return true;
}

// A service that does not run as root cannot give a file away: its new file
// then stays its own, as a file it created always was.
bool takeOver(int fd, const struct stat* old)
{
    if (old == nullptr) {
        return true;
    }
    const bool owned = fchown(fd, old->st_uid, old->st_gid) == 0 || errno == EPERM;
    return owned && fchmod(fd, old->st_mode & 07777) == 0;
}

// A leftover is removed first, not reused: it would keep its own mode.
bool writeTemporary(const std::string& temporary, const std::string& text, const struct stat* old,
                    mode_t newFileMode, std::string& error)
{
    unlink(temporary.c_str());
    const int fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, newFileMode);
    if (fd < 0) {
        return failed(error);
    }
    bool ok = takeOver(fd, old) && writeAll(fd, text) && fsync(fd) == 0;
    if (!ok) {
        failed(error);
    }
    if (close(fd) != 0 && ok) {
        ok = failed(error);
    }
    return ok;
}

// The rename survives a power loss only once the directory is on disk too.
bool syncDirectory(const std::string& file, std::string& error)
{
    const int fd = open(directoryOf(file).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool ok = fd >= 0 && fsync(fd) == 0;
    if (!ok) {
        failed(error);
    }
    if (fd >= 0) {
        close(fd);
    }
    return ok;
}

bool replaceFile(const std::string& file, const std::string& text, mode_t newFileMode,
                 std::string& error)
{
    struct stat status;
    const bool existed = stat(file.c_str(), &status) == 0;
    const std::string temporary = file + temporarySuffix;
    if (!writeTemporary(temporary, text, existed ? &status : nullptr, newFileMode, error)) {
        unlink(temporary.c_str());
        return false;
    }
    if (std::rename(temporary.c_str(), file.c_str()) != 0) {
        failed(error);
        unlink(temporary.c_str());
        return false;
    }
    return syncDirectory(file, error);
}
} // namespace

PlixDurableFile::PlixDurableFile(std::string path, mode_t newFileMode)
    : path(std::move(path)), newFileMode(newFileMode)
{
}

std::string PlixDurableFile::temporaryPath() const
{
    std::string file;
    std::string error;
    return (followLinks(path, file, error) ? file : path) + temporarySuffix;
}

bool PlixDurableFile::replace(const std::string& text, std::string& error) const
{
    std::string file;
    return followLinks(path, file, error) && replaceFile(file, text, newFileMode, error);
}

bool PlixDurableFile::remove(std::string& error) const
{
    std::string file;
    if (!followLinks(path, file, error)) {
        return false;
    }
    if (unlink(file.c_str()) != 0) {
        return errno == ENOENT || failed(error);
    }
    return syncDirectory(file, error);
}

bool PlixDurableFile::moveAside(const std::string& suffix, std::string& error) const
{
    std::string file;
    if (!followLinks(path, file, error)) {
        return false;
    }
    if (std::rename(file.c_str(), (file + suffix).c_str()) != 0) {
        return failed(error);
    }
    return syncDirectory(file, error);
}

void PlixDurableFile::removeLeftover() const
{
    unlink(temporaryPath().c_str());
}
