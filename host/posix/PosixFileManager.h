#pragma once

#include "ole/os/FileManager.h"

/// The files of a POSIX system. Names go to the system as UTF-8.
///
/// Threads  Any; it has no state.
class PosixFileManager final : public iFileManager {
public:
    /// Answers `copyCannotAccess` if the source can't be read or the destination not be made, and
    /// `copyFailed` for no space and every other error on the way. A destination that was begun is
    /// deleted unless the copy is whole. A link that lies at the destination is never followed. The
    /// file is flushed to its medium before the answer.
    [[nodiscard]] eCopyRC copyFile(LightweightString<wchar_t> const& source,
                                   LightweightString<wchar_t> const& destination, bool replaceExisting,
                                   CopyProgress progress, void* context) override;
    [[nodiscard]] bool renameFile(LightweightString<wchar_t> const& from,
                                  LightweightString<wchar_t> const& to, bool replaceExisting) override;
    bool deleteFile(LightweightString<wchar_t> const& path) override;
    [[nodiscard]] bool fileExists(LightweightString<wchar_t> const& path) override;
    /// True for a name that begins with a URL scheme ("https://").
    [[nodiscard]] bool isRemote(LightweightString<wchar_t> const& path) override;
    [[nodiscard]] DirectoryItem getFileInfo(LightweightString<wchar_t> const& path) override;
    [[nodiscard]] bool createDirectory(LightweightString<wchar_t> const& path) override;
    [[nodiscard]] wchar_t getPathSeparator() const override { return L'/'; }
    [[nodiscard]] Ox::Ptr<iFile> openFile(LightweightString<wchar_t> const& name, std::uint32_t access,
                                          std::uint32_t behaviour, std::uint32_t share,
                                          std::uint32_t option) override;
    [[nodiscard]] std::uint64_t getFileSize(LightweightString<wchar_t> const& path) override;
    [[nodiscard]] LightweightString<wchar_t> getMountedFilename(
        LightweightString<wchar_t> const& name) override;
    [[nodiscard]] LightweightString<wchar_t> getDisplayFilename(
        LightweightString<wchar_t> const& name) override;
};
