#pragma once

#include <string>

#include "host/sqlite/SqliteProject.h"
#include "tools/playfile/MediaGroups.h"

namespace cli {

/// How media get a place on a drive.
enum class ePlacing {
    none,  ///< not at all
    link,  ///< by a link file that leads to them
    copy   ///< by a copy of theirs
};

/// Gives the files of new clips that lie elsewhere their places on a drive, under the names of their cookies. A place is
/// taken before the clip is in the project; one that was left by an import that was killed is taken again by the next.
///
/// Errors  CommandError, which names what helps; the clip then isn't to be imported.
class MaterialPlacer {
public:
    /// @param drive  one that is there
    MaterialPlacer(ePlacing placing, DriveId const& drive) : placing_(placing), drive_(drive) {}

    /// @throws Stopped  if somebody asks for that during a copy
    void place(NewClip& clip, MediaGroup const& group) const;

private:
    /// @param files  of a series all
    void placeFile(MediaFileInfo& file, std::vector<FoundFile> const& files,
                   LightweightString<wchar_t> const& path) const;
    void copy(std::vector<FoundFile> const& files, LightweightString<wchar_t> const& first) const;

    ePlacing const placing_;
    DriveId const drive_;
};

}  // namespace cli
