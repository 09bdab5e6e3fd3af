#pragma once

#include <cstddef>
#include <string>

// A small tmpfs laid over a directory of the test, in a mount namespace that
// the test process makes for itself: the services it starts afterwards see
// the same small disk (their namespaces are copies of the test's), and the
// machine never sees it. The test fills it to the last byte and frees it
// again as a device's data partition fills up with logs and is cleaned.
class PlixSmallDisk
{
public:
    PlixSmallDisk(std::string directory, std::size_t bytes);
    // Takes the tmpfs away from the test's namespace; services still running
    // keep their own view of it until they end.
    ~PlixSmallDisk();
    PlixSmallDisk(const PlixSmallDisk&) = delete;
    PlixSmallDisk& operator=(const PlixSmallDisk&) = delete;

    // Empty once mounted; otherwise why the disk could not be made.
    const std::string& error() const { return mError; }

    // Takes every byte left with one file beside the others; true once a
    // write met a full disk.
    bool fill();
    // Removes that file: the room it took is free again.
    void free();
    // Makes the whole file system read-only, or writable again.
    bool setReadOnly(bool readOnly);

private:
    std::string fillerPath() const { return mDirectory + "/filler"; }

    std::string mDirectory;
    std::string mError;
    bool mMounted = false;
};
