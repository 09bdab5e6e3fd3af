/* sysconfig_set_sysname of the Linux backend: the station name becomes the
 * kernel's host name at once and /etc/hostname for the next boot. The file
 * is written first and put back when the kernel refuses the name, so that
 * the answer, the running name and the file always agree. */
#include "sysconfig_linux.h"

#include <ctype.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#define HOSTNAME_DIR "/etc"
#define HOSTNAME_FILE HOSTNAME_DIR "/hostname"

enum { LABEL_MAX = 63 };
/* The most of an existing /etc/hostname that is kept to be put back. */
enum { OLD_FILE_MAX = 4096 };

/* What /etc/hostname held before the new name was written. */
typedef struct
{
    int existed;
    size_t length;
    char text[OLD_FILE_MAX];
} old_file_t;

/* One label of RFC 1123: letters, digits and inner hyphens. */
static int is_host_label(const char* name, size_t length)
{
    if (name == NULL || length == 0 || length > LABEL_MAX || name[0] == '-' ||
        name[length - 1] == '-') {
        return 0;
    }
    for (size_t i = 0; i < length; i++) {
        unsigned char c = (unsigned char)name[i];
        if (!(isascii(c) && (isalnum(c) || c == '-'))) {
            return 0;
        }
    }
    return 1;
}

static int file_error(const char* what, const char* path)
{
    sysconfig_linux_log(LOG_ERR, "sysconfig_set_sysname: %s %s failed: %s", what, path,
                        strerror(errno));
    return 0;
}

static int write_all(int fd, const char* text, size_t length)
{
    while (length > 0) {
        ssize_t written = write(fd, text, length);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return -1;
        }
        text += written;
        length -= (size_t)written;
    }
    return fsync(fd);
}

/* Where /etc/hostname is a file mounted into place (a container's), it
 * cannot be renamed over and is rewritten where it is. */
static int write_in_place(const char* line, size_t length)
{
    int fd = open(HOSTNAME_FILE, O_WRONLY | O_TRUNC | O_CLOEXEC);
    if (fd < 0) {
        return file_error("opening", HOSTNAME_FILE);
    }
    int written = write_all(fd, line, length) == 0;
    if (close(fd) != 0 || !written) {
        return file_error("writing", HOSTNAME_FILE);
    }
    return 1;
}

static int sync_directory(void)
{
    int fd = open(HOSTNAME_DIR, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0 || fsync(fd) != 0) {
        int result = file_error("syncing", HOSTNAME_DIR);
        if (fd >= 0) {
            close(fd);
        }
        return result;
    }
    close(fd);
    return 1;
}

/* A power cut at any moment leaves either the old or the new name on disk:
 * the new text is complete on disk before it takes the file's place. */
static int write_hostname_file(const char* line, size_t length)
{
    char temporary[] = HOSTNAME_DIR "/.hostname.XXXXXX";
    int fd = mkstemp(temporary);
    if (fd < 0) {
        return file_error("creating a temporary file in", HOSTNAME_DIR);
    }
    int written = fchmod(fd, 0644) == 0 && write_all(fd, line, length) == 0;
    if (close(fd) != 0 || !written) {
        unlink(temporary);
        return file_error("writing", temporary);
    }
    if (rename(temporary, HOSTNAME_FILE) != 0) {
        int busy = errno == EBUSY;
        unlink(temporary);
        return busy ? write_in_place(line, length) : file_error("replacing", HOSTNAME_FILE);
    }
    return sync_directory();
}

/* A file too long to be kept whole is refused before anything changes. */
static int read_old_file(old_file_t* old)
{
    old->length = 0;
    int fd = open(HOSTNAME_FILE, O_RDONLY | O_CLOEXEC);
    old->existed = fd >= 0;
    if (fd < 0) {
        return errno == ENOENT || file_error("opening", HOSTNAME_FILE);
    }
    ssize_t got = 0;
    do {
        got = read(fd, old->text + old->length, sizeof old->text - old->length);
        old->length += got > 0 ? (size_t)got : 0;
    } while ((got > 0 || (got < 0 && errno == EINTR)) && old->length < sizeof old->text);
    if (got > 0) {
        errno = EFBIG;
    }
    int reason = errno;
    close(fd);
    errno = reason;
    return got == 0 || file_error("reading", HOSTNAME_FILE);
}

static void put_back(const old_file_t* old)
{
    if (old->existed) {
        write_hostname_file(old->text, old->length);
    } else if (unlink(HOSTNAME_FILE) != 0) {
        file_error("removing", HOSTNAME_FILE);
    } else {
        sync_directory();
    }
}

int sysconfig_set_sysname(uint16_t caller, const sysconfig_sysname_t* name)
{
    (void)caller; /* the service always calls with its one identifier */
    if (name == NULL || !is_host_label(name->name, name->length)) {
        sysconfig_linux_log(LOG_NOTICE, "sysconfig_set_sysname: not a host name");
        return SYSCONFIG_FAILED;
    }
    char line[LABEL_MAX + 2];
    memcpy(line, name->name, name->length);
    line[name->length] = '\n';
    old_file_t old;
    if (!read_old_file(&old) || !write_hostname_file(line, name->length + 1)) {
        return SYSCONFIG_FAILED;
    }
    if (sethostname(line, name->length) != 0) {
        sysconfig_linux_log(LOG_ERR, "sysconfig_set_sysname: sethostname failed: %s",
                            strerror(errno));
        put_back(&old);
        return SYSCONFIG_FAILED;
    }
    sysconfig_linux_log(LOG_INFO, "sysconfig_set_sysname: host name set to %.*s", (int)name->length,
                        name->name);
    return SYSCONFIG_APPLIED;
}
