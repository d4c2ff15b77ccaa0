#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "host/sqlite/ProjectFile.h"
#include "toolkit/catalogue/FsysDirectoryEntry.h"

/// The media of a project on disk, by cookies. A question about one clip reads the rows of that clip and no others.
///
/// Ownership  Shared by the catalogue and by the entries that it has given out; it keeps the file open.
/// Threads    Any, but where the file's lock is required.
/// Errors     What can't be read isn't known; what can't be written is logged, and stays as it was.
class SqliteMedia final : public iMediaKeeper {
public:
    using Found = std::pair<Cookie, CookieMedia>;

    explicit SqliteMedia(std::shared_ptr<ProjectFile> file);
    ~SqliteMedia() override;
    SqliteMedia(SqliteMedia const&) = delete;
    SqliteMedia& operator=(SqliteMedia const&) = delete;

    [[nodiscard]] bool change(Cookie const& cookie, Change const& change, CookieMedia& now) override;
    /// For the clip as a whole the first channel of the cookie's type is meant.
    [[nodiscard]] std::optional<Found> find(Cookie const& cookie);
    /// All of a clip, in the order of their cookies.
    [[nodiscard]] std::vector<Found> findClip(Cookie const& clip);

    /// What there is of exactly that cookie. Requires the file's lock.
    [[nodiscard]] CookieMedia readInChange(Cookie const& cookie);
    /// Whether a file is filed under any cookie: a linked one under its physical name, any other at its place.
    /// Requires the file's lock.
    [[nodiscard]] bool isFiled(MediaFileInfo const& file);
    /// Puts media in place of those of a cookie. Requires the file's lock, in a change of the file.
    [[nodiscard]] bool write(Cookie const& cookie, CookieMedia const& media);
    /// Forgets all media of a clip. Requires the file's lock, in a change of the file.
    [[nodiscard]] bool removeClip(Cookie const& clip);

private:
    struct Statements;

    [[nodiscard]] static CookieMedia read(SqliteStatement& ofCookie, Cookie const& cookie);
    [[nodiscard]] bool writeFile(Cookie const& cookie, std::int64_t position, MediaFileInfo const& file);

    std::shared_ptr<ProjectFile> const file_;
    std::unique_ptr<Statements> statements_;  ///< Under the file's locks, their end as well.
};
