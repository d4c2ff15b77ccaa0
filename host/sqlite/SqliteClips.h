#pragma once

#include <memory>

#include "host/sqlite/ProjectFile.h"
#include "toolkit/edit/ClipStore.h"

/// The clips of a project on disk. A question about one clip reads the rows of that clip and no others.
///
/// Ownership  Shared by the store and by the clips that are open; it keeps the file open.
/// Threads    Any, but where the file's lock is required.
/// Errors     What can't be read isn't known; what can't be written is logged, and stays as it was.
class SqliteClips final : public iClipKeeper {
public:
    explicit SqliteClips(std::shared_ptr<ProjectFile> file);
    ~SqliteClips() override;
    SqliteClips(SqliteClips const&) = delete;
    SqliteClips& operator=(SqliteClips const&) = delete;

    [[nodiscard]] std::optional<ClipRecord> find(Cookie const& clip) override;
    [[nodiscard]] std::vector<std::pair<Cookie, std::uint32_t>> getAll() override;
    bool change(Cookie const& clip, Change const& change) override;

    /// Requires the file's lock.
    [[nodiscard]] bool isThere(Cookie const& clip);
    /// Puts a record in place of what is known of a clip, nothing for an empty one. Requires the file's lock, in a
    /// change of the file.
    [[nodiscard]] bool write(Cookie const& clip, std::optional<ClipRecord> const& record);

private:
    struct Questions;
    struct Statements;

    [[nodiscard]] static std::optional<ClipRecord> read(Questions& questions, Cookie const& clip);
    static void readTexts(SqliteStatement& statement, Cookie const& clip, ClipRecord& record);
    static void readReferences(SqliteStatement& statement, Cookie const& clip, ClipRecord& record);
    static void readStreams(SqliteStatement& statement, Cookie const& clip, ClipRecord& record);
    [[nodiscard]] bool removeRows(Cookie const& clip);
    [[nodiscard]] bool writeTexts(Cookie const& clip, ClipRecord const& record);
    [[nodiscard]] bool writeReferences(Cookie const& clip, ClipRecord const& record);
    [[nodiscard]] bool writeStreams(Cookie const& clip, ClipRecord const& record);

    std::shared_ptr<ProjectFile> const file_;
    std::unique_ptr<Statements> statements_;  ///< Under the file's locks, their end as well.
};

/// The clip database of a project on disk.
///
/// Threads  Any.
class SqliteEditStore final : public ClipStore {
public:
    explicit SqliteEditStore(std::shared_ptr<ProjectFile> file)
        : SqliteEditStore(Ox::makePtr<SqliteClips>(std::move(file))) {}
    explicit SqliteEditStore(Ox::Ptr<SqliteClips> const& clips) : ClipStore(clips) {}
};
