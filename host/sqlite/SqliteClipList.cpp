#include "host/sqlite/SqliteClipList.h"

#include "host/sqlite/StatementRun.h"

struct SqliteClipList::Statements {
    explicit Statements(ProjectFile& file)
        : page(file.prepareLook("SELECT clip, type, channel, name, log_type, video_channels, audio_channels"
                                " FROM clips INDEXED BY clips_by_name"
                                " WHERE (name, clip, type, channel) > (?1, ?2, ?3, ?4)"
                                " ORDER BY name, clip, type, channel LIMIT ?5")),
          media(file.prepareLook("SELECT position > 0, status = 2, kind = 512, size"
                                 " FROM media WHERE clip = ?1")),
          byName(file.prepareLook(
              "SELECT clip, type, channel FROM clips WHERE name = ?1 ORDER BY clip, type, channel")),
          byDigits(file.prepareLook("SELECT clip, type, channel FROM clips WHERE clip >= ?1 AND clip < ?2"
                                    " ORDER BY clip, type, channel LIMIT ?3")),
          count(file.prepareLook("SELECT count(*) FROM clips")) {}

    SqliteStatement page;
    SqliteStatement media;
    SqliteStatement byName;
    SqliteStatement byDigits;
    SqliteStatement count;
};

SqliteClipList::SqliteClipList(std::shared_ptr<ProjectFile> file) : file_(std::move(file)) {
    std::lock_guard const scope(file_->lookLock);
    statements_ = std::make_unique<Statements>(*file_);
}

SqliteClipList::~SqliteClipList() {
    std::lock_guard const scope(file_->lookLock);
    statements_ = nullptr;
}

std::vector<ClipSummary> SqliteClipList::getPage(ClipSummary const& after, std::uint32_t count) {
    std::vector<ClipSummary> page;
    file_->look([&] {
        StatementRun rows(statements_->page);
        bool const isFirst = !after.cookie.valid();
        // The empty name of no clip comes before all that are there.
        std::string const clip = isFirst ? std::string() : after.cookie.asString(true).str();
        rows.with(after.name)
            .with(clip)
            .with(std::int64_t{after.cookie.type()})
            .with(std::int64_t{after.cookie.channel()})
            .with(std::int64_t{count});
        while (rows.nextRow()) {
            ClipSummary& summary = page.emplace_back();
            summary.cookie = rows.cookie(0);
            summary.name = rows.wideText(3);
            summary.logType = rows.count(4);
            summary.videoChannels = rows.count(5);
            summary.audioChannels = rows.count(6);
            readMedia(summary);
        }
    });
    return page;
}

void SqliteClipList::readMedia(ClipSummary& clip) {
    StatementRun rows(statements_->media);
    rows.with(clip.cookie.asString(true).view());
    while (rows.nextRow()) {
        bool const isProxy = rows.number(0) != 0;
        bool const isAvailable = rows.number(1) != 0;
        (isProxy ? clip.proxies : clip.originals) += 1;
        (isProxy ? clip.availableProxies : clip.availableOriginals) += isAvailable ? 1 : 0;
        clip.linked += rows.number(2) != 0 ? 1 : 0;
        clip.size += static_cast<std::uint64_t>(rows.number(3));
    }
}

std::vector<Cookie> SqliteClipList::find(LightweightString<wchar_t> const& name) {
    std::vector<Cookie> found;
    std::lock_guard const scope(file_->lookLock);
    StatementRun rows(statements_->byName);
    rows.with(name);
    while (rows.nextRow()) {
        found.push_back(rows.cookie(0));
    }
    return found;
}

std::vector<Cookie> SqliteClipList::findByDigits(std::string const& digits, std::uint32_t count) {
    constexpr char behindAllDigits = 'g';
    std::vector<Cookie> found;
    std::lock_guard const scope(file_->lookLock);
    StatementRun rows(statements_->byDigits);
    rows.with(std::string_view(digits)).with(digits + behindAllDigits).with(std::int64_t{count});
    while (rows.nextRow()) {
        found.push_back(rows.cookie(0));
    }
    return found;
}

std::uint64_t SqliteClipList::getCount() {
    std::lock_guard const scope(file_->lookLock);
    StatementRun row(statements_->count);
    return row.nextRow() ? static_cast<std::uint64_t>(row.number(0)) : 0;
}
