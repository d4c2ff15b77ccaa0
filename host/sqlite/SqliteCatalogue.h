#pragma once

#include <memory>
#include <vector>

#include "host/sqlite/SqliteMedia.h"
#include "toolkit/catalogue/SystemCache.h"

/// The file catalogue of a project on disk. A question about one cookie reads the rows of that cookie and no
/// others.
///
/// Threads  Any.
/// Errors   What can't be read isn't known; what can't be written is logged, and stays as it was.
class SqliteCatalogue final : public SystemCache {
public:
    explicit SqliteCatalogue(std::shared_ptr<ProjectFile> file);
    explicit SqliteCatalogue(Ox::Ptr<SqliteMedia> media) : media_(std::move(media)) {}

    [[nodiscard]] bool findFileForCookie(Cookie const& cookie, LightweightString<wchar_t>& filename,
                                         DecodeFormat const& format) override;
    [[nodiscard]] Ox::Ptr<FsysDirectoryEntry> findEntryForCookie(Cookie const& cookie) override;
    [[nodiscard]] std::vector<Ox::Ptr<FsysDirectoryEntry>> getClipMediaFiles(Cookie const& clip) override;
    using SystemCache::addFile;
    void addFile(Cookie const& cookie, MediaFileInfo const& file, bool option = false) override;
    OxResult removeFile(Cookie const& cookie, eMediaTypes types, bool option = false) override;

private:
    Ox::Ptr<SqliteMedia> const media_;
};
