#include "host/sqlite/SqliteCatalogue.h"

#include <utility>

#include "toolkit/catalogue/OwnFiles.h"

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
/// Where the values of a file begin in a statement, behind those of its cookie.
constexpr int firstFilePlace = 4;

std::string clipOf(Cookie const& cookie) {
    return cookie.asString(true).str();
}

LightweightString<wchar_t> wideText(std::string const& text) {
    return fromUTF8(text.c_str(), static_cast<int>(text.size()));
}

/// A statement with its values; ready to run again when the scope is left.
class Bound {
public:
    Bound(SqliteStatement& statement, Cookie const& cookie) : Bound(statement, clipOf(cookie)) {
        statement.bind(2, std::int64_t{cookie.type()});
        statement.bind(3, std::int64_t{cookie.channel()});
    }
    Bound(SqliteStatement& statement, std::string clip) : statement_(statement), clip_(std::move(clip)) {
        statement.bind(1, clip_);
    }
    ~Bound() { statement_.reset(); }
    Bound(Bound const&) = delete;
    Bound& operator=(Bound const&) = delete;

    [[nodiscard]] bool nextRow() { return statement_.step() == SQLITE_ROW; }
    [[nodiscard]] bool isDone() { return statement_.step() == SQLITE_DONE; }

private:
    SqliteStatement& statement_;
    std::string const clip_;
};

template <class Media>
Ox::Ptr<FsysDirectoryEntry> entryOf(Media const& media) {
    return Ox::makePtr<FsysDirectoryEntry>(media.cookie, media.original.value_or(MediaFileInfo()),
                                           media.proxies);
}

}  // namespace

#define FILE_COLUMNS "position, drive, path, link, kind, status, streams, size"

struct SqliteCatalogue::Statements {
    explicit Statements(ProjectFile& file)
        : ofCookie(
              file.prepare("SELECT " FILE_COLUMNS
                           " FROM media WHERE clip = ?1 AND type = ?2 AND channel = ?3 ORDER BY position")),
          firstChannel(
              file.prepare("SELECT channel FROM media WHERE clip = ?1 AND type = ?2 AND channel >= ?3"
                           " ORDER BY channel LIMIT 1")),
          ofClip(file.prepare("SELECT type, channel, " FILE_COLUMNS
                              " FROM media WHERE clip = ?1 ORDER BY type, channel, position")),
          put(file.prepare("INSERT OR REPLACE INTO media (clip, type, channel, " FILE_COLUMNS
                           ") VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11)")),
          lastPosition(
              file.prepare("SELECT max(position) FROM media WHERE clip = ?1 AND type = ?2 AND channel = ?3")),
          removeOriginal(file.prepare("DELETE FROM media WHERE clip = ?1 AND type = ?2 AND channel = ?3"
                                      " AND position = 0")),
          removeProxies(file.prepare("DELETE FROM media WHERE clip = ?1 AND type = ?2 AND channel = ?3"
                                     " AND position > 0")) {}

    SqliteStatement ofCookie;
    SqliteStatement firstChannel;
    SqliteStatement ofClip;
    SqliteStatement put;
    SqliteStatement lastPosition;
    SqliteStatement removeOriginal;
    SqliteStatement removeProxies;
};

#undef FILE_COLUMNS

SqliteCatalogue::SqliteCatalogue(std::shared_ptr<ProjectFile> file) : file_(std::move(file)) {
    std::lock_guard const scope(file_->lock);
    statements_ = std::make_unique<Statements>(*file_);
}

SqliteCatalogue::~SqliteCatalogue() {
    std::lock_guard const scope(file_->lock);
    statements_ = nullptr;
}

void SqliteCatalogue::takeRow(SqliteStatement const& row, int firstColumn, Media& media) const {
    auto const numberIn = [&](eColumn column) { return row.number(firstColumn + column); };
    auto const textIn = [&](eColumn column) { return row.text(firstColumn + column); };
    std::string const letter = textIn(columnDrive);
    MediaFileInfo file(
        MaterialFilename(letter.empty() ? DriveId() : DriveId(letter.front()), wideText(textIn(columnPath))),
        static_cast<std::uint64_t>(numberIn(columnSize)));
    file.physicalFilename = wideText(textIn(columnLink));
    file.kind = static_cast<std::uint32_t>(numberIn(columnKind));
    file.status = static_cast<std::uint32_t>(numberIn(columnStatus));
    file.streamCount = static_cast<std::uint32_t>(numberIn(columnStreams));
    file.isProxyFile = numberIn(columnPosition) != originalPosition;
    if (file.isProxyFile) {
        media.proxies.push_back(std::move(file));
    } else {
        media.original = std::move(file);
    }
}

/// Requires the file's lock.
std::optional<SqliteCatalogue::Media> SqliteCatalogue::read(Cookie const& cookie) {
    Media media{cookie, {}, {}};
    Bound rows(statements_->ofCookie, cookie);
    bool isKnown = false;
    while (rows.nextRow()) {
        takeRow(statements_->ofCookie, 0, media);
        isKnown = true;
    }
    return isKnown ? std::optional(std::move(media)) : std::nullopt;
}

/// For the clip as a whole the first channel of the cookie's type is meant. Requires the file's lock.
std::optional<SqliteCatalogue::Media> SqliteCatalogue::find(Cookie const& cookie) {
    std::optional<Media> media = read(cookie);
    if (media || cookie.channel() != Cookie::wholeClip) {
        return media;
    }
    std::optional<std::uint8_t> channel;
    {
        Bound row(statements_->firstChannel, convertCookie(cookie, cookie.type(), 0));
        if (row.nextRow()) {
            channel = static_cast<std::uint8_t>(statements_->firstChannel.number(0));
        }
    }
    return channel ? read(convertCookie(cookie, cookie.type(), *channel)) : std::nullopt;
}

/// The name is made without the lock: it may ask the file manager.
bool SqliteCatalogue::findFileForCookie(Cookie const& cookie, LightweightString<wchar_t>& filename,
                                        DecodeFormat const& format) {
    std::optional<MediaFileInfo> file;
    {
        std::lock_guard const scope(file_->lock);
        std::optional<Media> const media = find(cookie);
        if (media && format.level == levelProxy) {
            file = media->proxies.empty() ? std::nullopt : std::optional(media->proxies.front());
        } else if (media) {
            file = media->original;
        }
    }
    if (file) {
        filename = file->getPhysicalFilename();
    }
    return file.has_value();
}

Ox::Ptr<FsysDirectoryEntry> SqliteCatalogue::findEntryForCookie(Cookie const& cookie) {
    std::lock_guard const scope(file_->lock);
    std::optional<Media> const media = find(cookie);
    return media ? entryOf(*media) : Ox::Ptr<FsysDirectoryEntry>();
}

std::vector<Ox::Ptr<FsysDirectoryEntry>> SqliteCatalogue::getClipMediaFiles(Cookie const& clip) {
    constexpr int firstFileColumn = 2;
    std::vector<Media> found;
    {
        std::lock_guard const scope(file_->lock);
        Bound rows(statements_->ofClip, clipOf(clip));
        while (rows.nextRow()) {
            Cookie const cookie = convertCookie(clip, static_cast<CookieType>(statements_->ofClip.number(0)),
                                                static_cast<std::uint8_t>(statements_->ofClip.number(1)));
            if (found.empty() || found.back().cookie != cookie) {
                found.push_back({cookie, {}, {}});
            }
            takeRow(statements_->ofClip, firstFileColumn, found.back());
        }
    }
    std::vector<Ox::Ptr<FsysDirectoryEntry>> entries;
    entries.reserve(found.size());
    for (Media const& media : found) {
        entries.push_back(entryOf(media));
    }
    return entries;
}

void SqliteCatalogue::addFile(Cookie const& cookie, MediaFileInfo const& file, bool) {
    std::string const letter(1, file.materialFilename.getDrive().letter());
    std::string const place = toUTF8(file.materialFilename.getPath()).str();
    std::string const target = toUTF8(file.physicalFilename).str();
    std::lock_guard const scope(file_->lock);
    file_->change("a file of " + cookie.asString().str(), [&] {
        std::int64_t at = originalPosition;
        if (file.isProxy()) {
            Bound row(statements_->lastPosition, cookie);
            at = row.nextRow() ? statements_->lastPosition.number(0) + 1 : 1;
        }
        Bound row(statements_->put, cookie);
        statements_->put.bind(firstFilePlace + columnPosition, at);
        statements_->put.bind(firstFilePlace + columnDrive, letter);
        statements_->put.bind(firstFilePlace + columnPath, place);
        statements_->put.bind(firstFilePlace + columnLink, target);
        statements_->put.bind(firstFilePlace + columnKind, std::int64_t{file.kind});
        statements_->put.bind(firstFilePlace + columnStatus, std::int64_t{file.status});
        statements_->put.bind(firstFilePlace + columnStreams, std::int64_t{file.streamCount});
        statements_->put.bind(firstFilePlace + columnSize, static_cast<std::int64_t>(file.size));
        return row.isDone();
    });
}

/// What is gone from the project first, and only then deleted, is never missed by it.
OxResult SqliteCatalogue::removeFile(Cookie const& cookie, eMediaTypes types, bool) {
    std::vector<MediaFileInfo> removed;
    {
        std::lock_guard const scope(file_->lock);
        std::optional<Media> const media = read(cookie);
        if (!media) {
            return oxSuccess;
        }
        bool const takesOriginal = (types & mediaOriginal) != 0;
        bool const takesProxies = (types & mediaProxy) != 0;
        bool const isDone = file_->change("the removal of " + cookie.asString().str(), [&] {
            return (!takesOriginal || Bound(statements_->removeOriginal, cookie).isDone()) &&
                   (!takesProxies || Bound(statements_->removeProxies, cookie).isDone());
        });
        if (!isDone) {
            return oxFailure;
        }
        if (takesOriginal && media->original) {
            removed.push_back(*media->original);
        }
        if (takesProxies) {
            removed.insert(removed.end(), media->proxies.begin(), media->proxies.end());
        }
    }
    return deleteOwnFiles(removed);
}
