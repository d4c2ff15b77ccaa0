#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/sqlite/ProjectFile.h"
#include "toolkit/catalogue/Cookie.h"

/// A clip in a list, with the state of its media as it was when somebody looked at them last.
struct ClipSummary {
    Cookie cookie;
    LightweightString<wchar_t> name;
    std::uint32_t logType = 0;
    std::uint32_t videoChannels = 0;
    std::uint32_t audioChannels = 0;
    /// Files, and how many of them could be read.
    std::uint32_t originals = 0;
    std::uint32_t availableOriginals = 0;
    std::uint32_t proxies = 0;
    std::uint32_t availableProxies = 0;
    /// Files that lie elsewhere.
    std::uint32_t linked = 0;
    /// Bytes of all files.
    std::uint64_t size = 0;
};

/// The clips of a project on disk as lists. The files themselves aren't looked at.
///
/// Threads  Any.
/// Errors   What can't be read isn't listed.
class SqliteClipList {
public:
    explicit SqliteClipList(std::shared_ptr<ProjectFile> file);
    ~SqliteClipList();
    SqliteClipList(SqliteClipList const&) = delete;
    SqliteClipList& operator=(SqliteClipList const&) = delete;

    /// The next clips in the order of their names, `count` at most; fewer only at the end.
    ///
    /// @param after  the last one of the page before; a default one begins
    [[nodiscard]] std::vector<ClipSummary> getPage(ClipSummary const& after, std::uint32_t count);
    /// The clips of exactly that name.
    [[nodiscard]] std::vector<Cookie> find(LightweightString<wchar_t> const& name);
    /// Clips whose 32 digits begin so, in their order, `count` at most.
    [[nodiscard]] std::vector<Cookie> findByDigits(std::string const& digits, std::uint32_t count);
    [[nodiscard]] std::uint64_t getCount();

private:
    struct Statements;

    void readMedia(ClipSummary& clip);

    std::shared_ptr<ProjectFile> const file_;
    std::unique_ptr<Statements> statements_;  ///< Under the file's `lookLock`, their end as well.
};
