#pragma once

#include "ole/os/FileManager.h"

/// The file systems of this machine. It has no state.
class PosixFileManager final : public iFileManager {
public:
    using Name = LightweightString<wchar_t>;

    [[nodiscard]] eCopyRC copyFile(Name const& source, Name const& destination, bool replaceExisting,
                                   CopyProgress progress, void* context) override;
    [[nodiscard]] bool renameFile(Name const& from, Name const& to, bool replaceExisting) override;
    bool deleteFile(Name const& path) override;
    /// True for whatever exists, folders included.
    [[nodiscard]] bool fileExists(Name const& path) override;
    /// True for names of the form "scheme://...".
    [[nodiscard]] bool isRemote(Name const& path) override;
    [[nodiscard]] DirectoryItem getFileInfo(Name const& path) override;
    [[nodiscard]] bool createDirectory(Name const& path) override;
    [[nodiscard]] wchar_t getPathSeparator() const override { return L'/'; }
    [[nodiscard]] Ox::Ptr<iFile> openFile(Name const& name, std::uint32_t access, std::uint32_t behaviour,
                                          std::uint32_t share, std::uint32_t option) override;
    [[nodiscard]] Ox::Ptr<iVolume> getVolume(Name const& path) override;
    [[nodiscard]] std::uint64_t getFileSize(Name const& path) override;
    void findFiles(Name const& pattern, std::vector<DirectoryItem>& items, bool files, bool folders) override;
    /// The name itself: what isn't mounted isn't known here.
    [[nodiscard]] Name getMountedFilename(Name const& name) override { return name; }
    /// Control characters, and what no text may hold, become U+FFFD.
    [[nodiscard]] Name getDisplayFilename(Name const& name) override;
};
