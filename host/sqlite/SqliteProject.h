#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "host/sqlite/SqliteCatalogue.h"
#include "host/sqlite/SqliteClipList.h"
#include "host/sqlite/SqliteClips.h"
#include "host/sqlite/SqliteDrives.h"
#include "host/sqlite/SqliteMaterialInfo.h"
#include "host/sqlite/SqliteProjectSpaces.h"

/// A clip that comes into a project, with its media.
struct NewClip {
    Cookie cookie;
    ClipRecord record;
    std::vector<std::pair<Cookie, CookieMedia>> media;
    /// Samples, by the cookies of the media.
    std::vector<std::pair<Cookie, std::int32_t>> startOffsets;
};

/// How much of what was to be added wasn't there yet.
struct AddedMedia {
    std::uint64_t clips = 0;
    /// Theirs, and those that clips which were there hadn't.
    std::uint64_t proxies = 0;
};

/// A project on disk: one file with its clips, media, drives, spaces and start offsets, and the services that serve a
/// process from it.
///
/// Several processes may have a project open, and each sees at once what the others change, but for the drives: those
/// are taken from the file when the project is installed.
///
/// Ownership   The project owns its services; what is installed is taken out again by its end.
/// Threads     Any; `install` and `uninstall` one at a time, when nobody uses the services. Clips that are open are
///             closed before the project goes; entries of the catalogue may outlive it.
/// Errors      A call that changes something answers false if that couldn't be written, which is logged; then nothing of
///             it was.
/// Deliberate  While the project is installed, the drives of the process are the project's and no others.
class SqliteProject {
public:
    /// Opens the file, made if need be; see `ProjectFile::open`.
    [[nodiscard]] static std::unique_ptr<SqliteProject> open(LightweightString<wchar_t> const& path,
                                                             std::string& error);
    ~SqliteProject();
    SqliteProject(SqliteProject const&) = delete;
    SqliteProject& operator=(SqliteProject const&) = delete;

    /// Puts all services in force: the catalogue, the clip database, start offsets and headers, drives, project spaces.
    void install();
    /// Puts what was before in force again.
    void uninstall();

    [[nodiscard]] SystemCache& catalogue() { return catalogue_; }
    [[nodiscard]] ClipStore& edits() { return edits_; }
    [[nodiscard]] SqliteProjectSpaces& spaces() { return spaces_; }
    [[nodiscard]] ProjectFile& file() { return *file_; }

    /// Adds clips with their media, all of them or none; what was known of one of them before is forgotten. Who has
    /// many adds them some hundreds at a time, so that they needn't be in memory all at once.
    bool addClips(std::vector<NewClip> const& clips);
    bool addClip(NewClip const& clip) { return addClips({clip}); }
    /// Adds those that aren't there yet, all of them or none. A clip is there if its cookie is, or if one of its
    /// originals is filed already, as whatever of whichever clip: then it stays as it is. One that is there by its
    /// cookie gets the proxies that it hasn't. No file is filed as a proxy that is filed already.
    ///
    /// @return empty if it couldn't be written
    [[nodiscard]] std::optional<AddedMedia> addMissing(std::vector<NewClip> const& clips);
    /// Whether `addMissing` would leave the clip as it is, but for its proxies.
    [[nodiscard]] bool isThere(NewClip const& clip);
    /// Forgets a clip with its media; no file is deleted.
    bool removeClip(Cookie const& clip);
    /// See `SqliteClipList`.
    [[nodiscard]] std::vector<ClipSummary> listClips(ClipSummary const& after, std::uint32_t count) {
        return list_.getPage(after, count);
    }
    [[nodiscard]] std::vector<Cookie> findClips(LightweightString<wchar_t> const& name) {
        return list_.find(name);
    }
    [[nodiscard]] std::vector<Cookie> findClipsByDigits(std::string const& digits, std::uint32_t count) {
        return list_.findByDigits(digits, count);
    }
    [[nodiscard]] std::uint64_t countClips() { return list_.getCount(); }
    bool setStartOffset(Cookie const& cookie, std::int32_t samples) {
        return material_.setStartOffset(cookie, samples);
    }

    /// In the file, and in force at once if the project is installed. An empty root takes the drive away.
    bool setDriveRoot(DriveId const& drive, LightweightString<wchar_t> const& root);
    bool removeDrive(DriveId const& drive);
    bool setDriveForTask(char const* task, DriveId const& drive);
    [[nodiscard]] DriveTable getDrives() { return drives_.load(); }

private:
    /// What was in force before the project.
    struct Before {
        SystemCache* catalogue;
        iEditStore* edits;
        MaterialInfo::iStore* material;
        ProjectSpacesManager* spaces;
        iDriveKeeper* driveKeeper;
        DriveTable drives;
    };

    explicit SqliteProject(std::shared_ptr<ProjectFile> file);
    [[nodiscard]] bool write(NewClip const& clip);
    [[nodiscard]] bool isFiled(NewClip const& clip);
    [[nodiscard]] bool addMissing(NewClip clip, AddedMedia& added);
    [[nodiscard]] bool addProxies(NewClip const& clip, AddedMedia& added);
    [[nodiscard]] bool removeRows(Cookie const& clip);

    std::shared_ptr<ProjectFile> const file_;
    Ox::Ptr<SqliteMedia> const media_;
    Ox::Ptr<SqliteClips> const clips_;
    SqliteCatalogue catalogue_;
    SqliteEditStore edits_;
    SqliteMaterialInfo material_;
    SqliteDrives drives_;
    SqliteProjectSpaces spaces_;
    SqliteClipList list_;
    std::optional<Before> before_;
};
