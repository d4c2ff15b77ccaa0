#pragma once

#include <map>
#include <string>

#include "host/sqlite/SqliteProject.h"
#include "tools/playfile/MediaGroups.h"

namespace cli {

/// Makes clips of files that were found. A clip's identity is made of its first file's name, so that the same file is
/// the same clip whenever, and by whichever process, it is imported.
///
/// Media below a drive's root are filed at their place, all others as files that lie elsewhere.
class ClipMaker {
public:
    explicit ClipMaker(DriveTable const& drives);

    /// The clip as far as names tell: one channel of what its extension says.
    [[nodiscard]] NewClip make(MediaGroup const& group) const;

    /// Gives a clip other channels; each has all of the clip's media.
    static void setChannels(NewClip& clip, std::uint32_t videoChannels, std::uint32_t audioChannels);

    /// The attribute that says of how many files a series consists.
    static constexpr char const* fileCountAttribute = "files";

private:
    [[nodiscard]] MediaFileInfo fileOf(FoundFile const& found, std::uint64_t size, bool isProxy) const;

    /// By their letters, in their canonical form with a closing separator.
    std::map<DriveId, std::string> roots_;
};

}  // namespace cli
