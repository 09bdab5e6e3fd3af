#pragma once

#include "PlixValueTable.h"
#include "PlixVariant.h"

#include <cstdint>
#include <string>
#include <vector>

// One value of a change that awaits its confirmation, with the content it
// held before the change.
struct PlixRollbackEntry
{
    std::string xmlId;
    PlixVariant content;
};

// The values a confirmed change replaced and the moment its window ends,
// kept on disk while the change awaits its confirmation, so that a service
// that is killed or a device that loses power inside the window still goes
// back to them. It may hold password digests: it is made readable by its
// owner only, and replaced and removed so that a power loss leaves either
// the whole file or none.
class PlixRollbackFile
{
public:
    // The one name the file has, beside the first store file.
    static constexpr const char* fileName = "plix-rollback.json";
    // What a corrupt file is renamed to: its name and this suffix.
    static constexpr const char* corruptSuffix = ".corrupt";

    enum class Reading { absent, read, corrupt };

    // The file beside the store file at storePath (beside the file it leads
    // to when it is a link); an empty storePath means no store, and no file.
    explicit PlixRollbackFile(const std::string& storePath);

    const std::string& path() const { return filePath; }
    bool write(const std::vector<PlixRollbackEntry>& entries, std::int64_t deadline,
               std::string& error) const;
    bool remove(std::string& error) const;
    // Reads the file whole: every entry must name a declared value and hold
    // a content of that value's type, or nothing is read at all.
    Reading read(const PlixValueTable& values, std::vector<PlixRollbackEntry>& entries) const;
    bool moveAside(std::string& error) const;
    void removeLeftover() const;

private:
    std::string filePath;
};
