#include "host/sqlite/SqliteMedia.h"

#include "host/sqlite/StatementRun.h"

namespace {

/// Columns of a file, in the order in which all statements name them.
enum eColumn {
    columnPosition,
    columnDrive,
    columnPath,
    columnLink,
    columnKind,
    columnStatus,
    columnStreams,
    columnSize
};

constexpr int originalPosition = 0;

/// Adds the file of a row to `media`.
void takeRow(StatementRun const& row, int firstColumn, CookieMedia& media) {
    std::string const letter = row.text(firstColumn + columnDrive).str();
    MediaFileInfo file(MaterialFilename(letter.empty() ? DriveId() : DriveId(letter.front()),
                                        row.wideText(firstColumn + columnPath)),
                       static_cast<std::uint64_t>(row.number(firstColumn + columnSize)));
    file.physicalFilename = row.wideText(firstColumn + columnLink);
    file.kind = row.count(firstColumn + columnKind);
    file.status = row.count(firstColumn + columnStatus);
    file.streamCount = row.count(firstColumn + columnStreams);
    file.isProxyFile = row.number(firstColumn + columnPosition) != originalPosition;
    media.add(file);
}

}  // namespace

#define FILE_COLUMNS "position, drive, path, link, kind, status, streams, size"
#define OF_COOKIE " WHERE clip = ?1 AND type = ?2 AND channel = ?3"

struct SqliteMedia::Statements {
    static constexpr char const* selectOfCookie =
        "SELECT " FILE_COLUMNS " FROM media" OF_COOKIE " ORDER BY position";

    explicit Statements(ProjectFile& file)
        : ofCookie(file.prepareLook(selectOfCookie)),
          ofCookieInChange(file.prepare(selectOfCookie)),
          firstChannel(
              file.prepareLook("SELECT channel FROM media WHERE clip = ?1 AND type = ?2 AND channel >= ?3"
                               " ORDER BY channel LIMIT 1")),
          ofClip(file.prepareLook("SELECT clip, type, channel, " FILE_COLUMNS
                                  " FROM media WHERE clip = ?1 ORDER BY type, channel, position")),
          ofLink(file.prepare("SELECT 1 FROM media WHERE link = ?1 LIMIT 1")),
          ofPlace(file.prepare("SELECT 1 FROM media WHERE link = '' AND path = ?1 AND drive = ?2 LIMIT 1")),
          put(file.prepare("INSERT INTO media (clip, type, channel, " FILE_COLUMNS
                           ") VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11)")),
          removeCookie(file.prepare("DELETE FROM media" OF_COOKIE)),
          removeClip(file.prepare("DELETE FROM media WHERE clip = ?1")) {}

    SqliteStatement ofCookie;
    SqliteStatement ofCookieInChange;
    SqliteStatement firstChannel;
    SqliteStatement ofClip;
    SqliteStatement ofLink;
    SqliteStatement ofPlace;
    SqliteStatement put;
    SqliteStatement removeCookie;
    SqliteStatement removeClip;
};

#undef OF_COOKIE
#undef FILE_COLUMNS

SqliteMedia::SqliteMedia(std::shared_ptr<ProjectFile> file) : file_(std::move(file)) {
    std::scoped_lock const scope(file_->lock, file_->lookLock);
    statements_ = std::make_unique<Statements>(*file_);
}

SqliteMedia::~SqliteMedia() {
    std::scoped_lock const scope(file_->lock, file_->lookLock);
    statements_ = nullptr;
}

/// Requires the lock of the statement.
CookieMedia SqliteMedia::read(SqliteStatement& ofCookie, Cookie const& cookie) {
    CookieMedia media;
    StatementRun rows(ofCookie);
    rows.with(cookie);
    while (rows.nextRow()) {
        takeRow(rows, 0, media);
    }
    return media;
}

CookieMedia SqliteMedia::readInChange(Cookie const& cookie) {
    return read(statements_->ofCookieInChange, cookie);
}

bool SqliteMedia::isFiled(MediaFileInfo const& file) {
    if (!file.physicalFilename.empty()) {
        return StatementRun(statements_->ofLink).with(file.physicalFilename).nextRow();
    }
    char const letter = file.materialFilename.getDrive().letter();
    return StatementRun(statements_->ofPlace)
        .with(file.materialFilename.getPath())
        .with(std::string_view(&letter, 1))
        .nextRow();
}

/// Most changes of a status change nothing: what there is to be changed is looked at first, so that those don't wait
/// for other processes. The change itself is made to what is there once nobody else can change it.
bool SqliteMedia::change(Cookie const& cookie, Change const& change, CookieMedia& now) {
    CookieMedia media;
    {
        std::lock_guard const scope(file_->lookLock);
        media = read(statements_->ofCookie, cookie);
    }
    bool isDone = true;
    if (change(media)) {
        std::lock_guard const scope(file_->lock);
        isDone = file_->change("the media of " + cookie.asString().str(), [&] {
            media = read(statements_->ofCookieInChange, cookie);
            return !change(media) || write(cookie, media);
        });
    }
    if (isDone) {
        now = media;
    }
    return isDone;
}

std::optional<SqliteMedia::Found> SqliteMedia::find(Cookie const& cookie) {
    std::lock_guard const scope(file_->lookLock);
    Found found{cookie, read(statements_->ofCookie, cookie)};
    if (found.second.isEmpty() && cookie.channel() == Cookie::wholeClip) {
        std::optional<std::uint8_t> channel;
        {
            StatementRun row(statements_->firstChannel);
            row.with(convertCookie(cookie, cookie.type(), 0));
            if (row.nextRow()) {
                channel = static_cast<std::uint8_t>(row.number(0));
            }
        }
        if (channel) {
            found.first = convertCookie(cookie, cookie.type(), *channel);
            found.second = read(statements_->ofCookie, found.first);
        }
    }
    return found.second.isEmpty() ? std::nullopt : std::optional(std::move(found));
}

std::vector<SqliteMedia::Found> SqliteMedia::findClip(Cookie const& clip) {
    constexpr int firstFileColumn = 3;
    std::vector<Found> found;
    std::lock_guard const scope(file_->lookLock);
    StatementRun rows(statements_->ofClip);
    rows.with(clip.asString(true).view());
    while (rows.nextRow()) {
        Cookie const cookie = rows.cookie(0);
        if (found.empty() || found.back().first != cookie) {
            found.emplace_back(cookie, CookieMedia());
        }
        takeRow(rows, firstFileColumn, found.back().second);
    }
    return found;
}

bool SqliteMedia::write(Cookie const& cookie, CookieMedia const& media) {
    if (!StatementRun(statements_->removeCookie).with(cookie).isDone() ||
        (media.original && !writeFile(cookie, originalPosition, *media.original))) {
        return false;
    }
    std::int64_t position = originalPosition;
    for (MediaFileInfo const& proxy : media.proxies) {
        if (!writeFile(cookie, ++position, proxy)) {
            return false;
        }
    }
    return true;
}

bool SqliteMedia::writeFile(Cookie const& cookie, std::int64_t position, MediaFileInfo const& file) {
    char const letter = file.materialFilename.getDrive().letter();
    return StatementRun(statements_->put)
        .with(cookie)
        .with(position)
        .with(std::string_view(&letter, 1))
        .with(file.materialFilename.getPath())
        .with(file.physicalFilename)
        .with(std::int64_t{file.kind})
        .with(std::int64_t{file.status})
        .with(std::int64_t{file.streamCount})
        .with(static_cast<std::int64_t>(file.size))
        .isDone();
}

bool SqliteMedia::removeClip(Cookie const& clip) {
    return StatementRun(statements_->removeClip).with(clip.asString(true).view()).isDone();
}
