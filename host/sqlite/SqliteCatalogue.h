#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "host/sqlite/ProjectFile.h"
#include "toolkit/catalogue/SystemCache.h"

/// The file catalogue of a project on disk. A question about one cookie reads the rows of that cookie and no
/// others.
///
/// Threads  Any.
/// Errors   What can't be read isn't known; what can't be written is logged, and stays as it was.
class SqliteCatalogue final : public SystemCache {
public:
    explicit SqliteCatalogue(std::shared_ptr<ProjectFile> file);
    ~SqliteCatalogue() override;
    SqliteCatalogue(SqliteCatalogue const&) = delete;
    SqliteCatalogue& operator=(SqliteCatalogue const&) = delete;

    [[nodiscard]] bool findFileForCookie(Cookie const& cookie, LightweightString<wchar_t>& filename,
                                         DecodeFormat const& format) override;
    [[nodiscard]] Ox::Ptr<FsysDirectoryEntry> findEntryForCookie(Cookie const& cookie) override;
    [[nodiscard]] std::vector<Ox::Ptr<FsysDirectoryEntry>> getClipMediaFiles(Cookie const& clip) override;
    using SystemCache::addFile;
    void addFile(Cookie const& cookie, MediaFileInfo const& file, bool option = false) override;
    OxResult removeFile(Cookie const& cookie, eMediaTypes types, bool option = false) override;

private:
    /// The media of one cookie.
    struct Media {
        Cookie cookie;
        std::optional<MediaFileInfo> original;
        std::vector<MediaFileInfo> proxies;
    };

    [[nodiscard]] std::optional<Media> find(Cookie const& cookie);
    [[nodiscard]] std::optional<Media> read(Cookie const& cookie);
    void takeRow(SqliteStatement const& row, int firstColumn, Media& media) const;

    struct Statements;

    std::shared_ptr<ProjectFile> const file_;
    std::unique_ptr<Statements> statements_;  ///< Under the file's lock, their end as well.
};
