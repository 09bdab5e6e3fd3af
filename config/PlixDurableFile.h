#pragma once

#include <string>
#include <sys/types.h>

// Replaces a file's content so that a power loss at any moment leaves either
// the old or the new content, and the new one once replace() has returned
// true. The new text goes to the file's temporary first, "<file>.plix-new":
// one fixed name per file, so an interrupted rewrite leaves at most one
// leftover, which the next rewrite replaces and removeLeftover() takes away.
//
// A path that is a symbolic link (to a link, and so on) stays one: what is
// replaced is the file it leads to, whose temporary lives beside it. On a
// device with a read-only root file system whose store files are links into
// a data partition, the rewrite so happens on the data partition.
class PlixDurableFile
{
public:
    // A file that does not exist yet is made with newFileMode (less the
    // umask); one that exists keeps its own.
    explicit PlixDurableFile(std::string path, mode_t newFileMode = 0666);

    // Writes and syncs the temporary, renames it over the file and syncs the
    // file's directory. The file keeps its permission bits, owner and group.
    // On failure the old file is untouched, no temporary stays, and error
    // holds the system's reason.
    bool replace(const std::string& text, std::string& error) const;
    // Removes what an interrupted rewrite left behind; nothing else.
    void removeLeftover() const;
    // Removes the file so that a power loss cannot bring it back; a file
    // that is not there counts as removed.
    bool remove(std::string& error) const;
    // Renames the file to its name followed by suffix, durably.
    bool moveAside(const std::string& suffix, std::string& error) const;
    std::string temporaryPath() const;

private:
    std::string path;
    mode_t newFileMode;
};
