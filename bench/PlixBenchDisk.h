#pragma once

#include "PlixDurableFile.h"

#include <string>

// The disk's share of a durable store write, without the bus or any JSON:
// the bytes of a copy of a store file written back over that copy in the
// two ways the stores compared here write. GLib's g_file_set_contents, which
// dconf-service writes its database with: a new file under a random name,
// its room reserved, synced, renamed over the old one, and, as the old one
// existed, the directory synced. The service's own PlixDurableFile: its
// fixed temporary synced, renamed, the directory synced. Both promise the
// same, so what an Apply costs beyond the Change is not the disk's.
class PlixBenchDisk
{
public:
    // copy: a copy of a store file, never the service's own file.
    explicit PlixBenchDisk(const std::string& copy);

    // False (with a message on standard error) when the copy cannot be read.
    bool read();
    bool replaceAsGlib() const;
    bool replaceAsService() const;

private:
    std::string copy;
    PlixDurableFile durable;
    std::string bytes;
};
