#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace cli {

/// A media file that was found on disk.
struct FoundFile {
    /// In its folder.
    std::string name;
    /// Under which it is opened: absolute, the links of its folders followed, and its own as well if what it leads to
    /// bears the extension of media, too.
    std::string path;
    /// What it is in the end, without any links: one file has one.
    std::string realPath;
    /// Bytes.
    std::uint64_t size = 0;
};

/// What couldn't be taken, told as it comes up.
///
/// Threads  One at a time.
class ImportProblems {
public:
    /// @param isTold  false counts in silence
    explicit ImportProblems(bool isTold = true) : isTold_(isTold) {}

    void vanished(std::string const& path);
    void unreadable(std::string const& path, int errorNumber);
    void unnameable(std::string const& path);
    void notOpened(std::string const& path);
    void notPlaced(std::string const& path, std::string const& reason);

    /// Files that were gone, or links that led nowhere.
    [[nodiscard]] std::uint64_t vanishedCount() const { return vanished_; }
    /// All others.
    [[nodiscard]] std::uint64_t otherCount() const { return others_; }

private:
    void tell(std::string const& problem) const;

    bool const isTold_;
    std::uint64_t vanished_ = 0;
    std::uint64_t others_ = 0;
};

/// What lies in a folder: media, which are looked at, folders, and the number of all else.
struct FolderListing {
    /// In the order of their names.
    std::vector<FoundFile> files;
    /// Names of folders and of links to folders, in their order.
    std::vector<std::string> folders;
    std::uint64_t passedOver = 0;
};

/// True for the name of a file that is imported: media, stills, and the chunks of cameras.
[[nodiscard]] bool isImportable(std::string const& name);

/// Lists a folder.
///
/// @param folder    absolute, without links and closing separator
/// @param isWanted  tells by its name whether an entry counts at all
[[nodiscard]] FolderListing listFolder(std::string const& folder, ImportProblems& problems,
                                       std::function<bool(std::string const&)> const& isWanted);

}  // namespace cli
