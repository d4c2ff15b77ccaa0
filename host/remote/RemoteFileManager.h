#pragma once

#include <memory>
#include <optional>

#include "host/remote/HttpClient.h"
#include "host/remote/RemoteFacts.h"
#include "ole/os/FileManager.h"

/// Adds files in stores that speak HTTP to a file manager, under the names http://... and https://...
///
/// Such a file can be looked for, asked for its size and copied here, and nothing else: it is never opened, changed,
/// renamed or deleted, and nobody is asked whether it could be. All other names go to the file manager before.
///
/// Threads  Any.
/// Errors   A question that a store doesn't answer in time counts as "isn't there", and is logged; the store then
///          isn't asked for a while. Copies are tried always. Credentials stand in no log.
class RemoteFileManager final : public iFileManager {
public:
    using Name = LightweightString<wchar_t>;

    /// @param before  for all other names; must outlive this
    RemoteFileManager(std::shared_ptr<HttpClient> client, iFileManager& before);

    /// From a store to a file of this machine; from here to a store fails (2). Until the store has answered, the
    /// total is told as what it was when it was asked for, else as 0.
    [[nodiscard]] eCopyRC copyFile(Name const& source, Name const& destination, bool replaceExisting,
                                   CopyProgress progress, void* context) override;
    [[nodiscard]] bool renameFile(Name const& from, Name const& to, bool replaceExisting) override;
    bool deleteFile(Name const& path) override;
    [[nodiscard]] bool fileExists(Name const& path) override;
    /// Asks nobody.
    [[nodiscard]] bool isRemote(Name const& path) override;
    /// Of a remote file: name, size, and when it was modified as far as the store says so.
    [[nodiscard]] DirectoryItem getFileInfo(Name const& path) override;
    [[nodiscard]] bool createDirectory(Name const& path) override;
    [[nodiscard]] wchar_t getPathSeparator() const override { return before_.getPathSeparator(); }
    [[nodiscard]] Ox::Ptr<iFile> openFile(Name const& name, std::uint32_t access, std::uint32_t behaviour,
                                          std::uint32_t share, std::uint32_t option) override;
    [[nodiscard]] Ox::Ptr<iVolume> getVolume(Name const& path) override;
    [[nodiscard]] std::uint64_t getFileSize(Name const& path) override;
    /// The name of a remote file is its name everywhere.
    [[nodiscard]] Name getMountedFilename(Name const& name) override;
    /// Without credentials, which are kept for the store, so that the result still names the file.
    [[nodiscard]] Name getDisplayFilename(Name const& name) override;
    /// Of a store nothing is listed.
    void findFiles(Name const& pattern, std::vector<DirectoryItem>& items, bool files, bool folders) override;
    [[nodiscard]] iRemoteStore* findRemoteStore(Name const& name) override;

private:
    /// Empty if there is no such file, or nobody says so.
    [[nodiscard]] std::optional<RemoteFacts> ask(HttpUrl const& url);
    /// The same, kept for the copy that may follow.
    [[nodiscard]] std::optional<RemoteFacts> askAndKeep(Name const& path);
    [[nodiscard]] eCopyRC copyFromStore(HttpUrl const& source, Name const& destination, bool replaceExisting,
                                        CopyProgress progress, void* context);

    std::shared_ptr<HttpClient> const client_;
    iFileManager& before_;
    KnownFacts known_;
};
