#include "host/sqlite/ProjectSchema.h"

#include <array>

namespace {

#define COOKIE_COLUMNS "clip TEXT NOT NULL, type INTEGER NOT NULL, channel INTEGER NOT NULL, "

/// A cookie is the 32 digits of its clip, its type as a number, and its channel. Of a cookie's media the
/// original lies at position 0, and its proxies behind it in the order in which they came.
constexpr char const* toVersion1 =
    "CREATE TABLE media (" COOKIE_COLUMNS
    " position INTEGER NOT NULL,"
    " drive TEXT NOT NULL, path TEXT NOT NULL, link TEXT NOT NULL,"
    " kind INTEGER NOT NULL, status INTEGER NOT NULL, streams INTEGER NOT NULL, size INTEGER NOT NULL,"
    " PRIMARY KEY (clip, type, channel, position)) WITHOUT ROWID;"
    "PRAGMA user_version = 1;";

/// Of `clip_texts` list 0 holds the attributes and list 1 the decode settings. Of `clip_references` each kind that was
/// said has a row at position 0, which names nothing, and what it refers to behind that.
constexpr char const* toVersion2 =
    "CREATE TABLE clips (" COOKIE_COLUMNS
    " name TEXT NOT NULL, log_type INTEGER NOT NULL, is_image INTEGER NOT NULL,"
    " video_channels INTEGER NOT NULL, audio_channels INTEGER NOT NULL,"
    " has_settings INTEGER NOT NULL, audio_rate REAL NOT NULL,"
    " PRIMARY KEY (clip, type, channel)) WITHOUT ROWID;"
    "CREATE INDEX clips_by_name ON clips (name, clip, type, channel);"
    "CREATE TABLE clip_texts (" COOKIE_COLUMNS
    " list INTEGER NOT NULL, position INTEGER NOT NULL, key TEXT NOT NULL, value TEXT NOT NULL,"
    " PRIMARY KEY (clip, type, channel, list, position)) WITHOUT ROWID;"
    "CREATE TABLE clip_references (" COOKIE_COLUMNS
    " kind INTEGER NOT NULL, position INTEGER NOT NULL,"
    " to_clip TEXT NOT NULL, to_type INTEGER NOT NULL, to_channel INTEGER NOT NULL,"
    " PRIMARY KEY (clip, type, channel, kind, position)) WITHOUT ROWID;"
    "CREATE TABLE clip_streams (" COOKIE_COLUMNS
    " position INTEGER NOT NULL, channels INTEGER NOT NULL, sample_format INTEGER NOT NULL,"
    " sample_bytes INTEGER NOT NULL, sample_bits INTEGER NOT NULL, frame_samples INTEGER NOT NULL,"
    " rate REAL NOT NULL, codec TEXT NOT NULL, is_compressed INTEGER NOT NULL,"
    " PRIMARY KEY (clip, type, channel, position)) WITHOUT ROWID;"
    "CREATE TABLE start_offsets (" COOKIE_COLUMNS
    " samples INTEGER NOT NULL, PRIMARY KEY (clip, type, channel)) WITHOUT ROWID;"
    "CREATE TABLE drives (letter TEXT PRIMARY KEY, root TEXT NOT NULL) WITHOUT ROWID;"
    "CREATE TABLE drive_tasks (task TEXT PRIMARY KEY, letter TEXT NOT NULL) WITHOUT ROWID;"
    "CREATE TABLE spaces (name TEXT PRIMARY KEY, type INTEGER NOT NULL, is_current INTEGER NOT NULL)"
    " WITHOUT ROWID;"
    "CREATE TABLE space_roots (space TEXT NOT NULL, position INTEGER NOT NULL,"
    " path TEXT NOT NULL, local_path TEXT NOT NULL, other_path TEXT NOT NULL,"
    " PRIMARY KEY (space, position)) WITHOUT ROWID;"
    "PRAGMA user_version = 2;";

/// A file is found by its names: what is linked by its link, all else by drive and path.
constexpr char const* toVersion3 =
    "CREATE INDEX media_by_file ON media (link, path, drive);"
    "PRAGMA user_version = 3;";

#undef COOKIE_COLUMNS

/// Each brings a file from its version to the next one. Steps that were shipped are never changed.
constexpr std::array migrations = {toVersion1, toVersion2, toVersion3};

}  // namespace

std::int64_t projectSchemaVersion() {
    return static_cast<std::int64_t>(migrations.size());
}

bool migrateProject(SqliteDatabase& database, std::int64_t version) {
    for (auto step = static_cast<std::size_t>(version); step < migrations.size(); ++step) {
        if (!database.run(migrations[step])) {
            return false;
        }
    }
    return true;
}
