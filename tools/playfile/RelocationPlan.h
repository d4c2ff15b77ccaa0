#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/MaterialFilename.h"

class SqliteProject;

namespace cli {

/// What a relocation would do, found without doing anything.
struct RelocationPlan {
    /// A file that would be copied, or why it would not.
    struct File {
        std::string name;
        std::uint64_t size = 0;
        /// Empty for one that would be copied.
        std::string reason;
        /// Where it would come to lie.
        std::string target;
    };

    /// Of the media that these clips refer to.
    [[nodiscard]] static RelocationPlan of(CookieVec const& clips, DriveId destination);

    std::vector<File> files;
    /// Bytes of those that would be copied.
    std::uint64_t needed = 0;
    /// What may be written on the destination.
    std::uint64_t available = 0;
    /// How many would be copied.
    [[nodiscard]] std::size_t countToCopy() const;
    /// Space for exactly what is needed is too little.
    [[nodiscard]] bool hasSpace() const { return available > needed; }

private:
    void addShot(Cookie const& shot, DriveId destination);
};

/// The project's clips that have media whose place is on a drive.
[[nodiscard]] CookieVec clipsOnDrive(SqliteProject& project, DriveId drive);

}  // namespace cli
