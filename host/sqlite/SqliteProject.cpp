#include "host/sqlite/SqliteProject.h"

#include <algorithm>

namespace {

/// A proxy of several channels is one file.
std::size_t countProxies(NewClip const& clip) {
    std::size_t most = 0;
    for (auto const& each : clip.media) {
        most = std::max(most, each.second.proxies.size());
    }
    return most;
}

}  // namespace

std::unique_ptr<SqliteProject> SqliteProject::open(LightweightString<wchar_t> const& path,
                                                   std::string& error) {
    std::shared_ptr<ProjectFile> file = ProjectFile::open(path, error);
    return file ? std::unique_ptr<SqliteProject>(new SqliteProject(std::move(file))) : nullptr;
}

SqliteProject::SqliteProject(std::shared_ptr<ProjectFile> file)
    : file_(std::move(file)),
      media_(Ox::makePtr<SqliteMedia>(file_)),
      clips_(Ox::makePtr<SqliteClips>(file_)),
      catalogue_(media_),
      edits_(clips_),
      material_(file_),
      drives_(file_),
      spaces_(file_),
      list_(file_) {}

SqliteProject::~SqliteProject() {
    uninstall();
}

void SqliteProject::install() {
    if (before_) {
        return;
    }
    DriveTable drives = DiskManager::instance().exchangeTable(drives_.load());
    before_ = Before{SystemCache::install(&catalogue_), iEditStore::install(&edits_),
                     MaterialInfo::install(&material_), ProjectSpacesManager::install(&spaces_),
                     DiskManager::install(&drives_),    std::move(drives)};
}

void SqliteProject::uninstall() {
    if (!before_) {
        return;
    }
    DiskManager::install(before_->driveKeeper);
    ProjectSpacesManager::install(before_->spaces);
    MaterialInfo::install(before_->material);
    iEditStore::install(before_->edits);
    SystemCache::install(before_->catalogue);
    DiskManager::instance().exchangeTable(before_->drives);
    before_.reset();
}

bool SqliteProject::addClips(std::vector<NewClip> const& clips) {
    std::lock_guard const scope(file_->lock);
    return file_->change(std::to_string(clips.size()) + " clips", [&] {
        return std::all_of(clips.begin(), clips.end(), [&](NewClip const& clip) { return write(clip); });
    });
}

/// Requires the file's lock, in a change of the file.
bool SqliteProject::write(NewClip const& clip) {
    return removeRows(clip.cookie) && clips_->write(clip.cookie, clip.record) &&
           std::all_of(clip.media.begin(), clip.media.end(),
                       [&](auto const& each) { return media_->write(each.first, each.second); }) &&
           std::all_of(clip.startOffsets.begin(), clip.startOffsets.end(),
                       [&](auto const& each) { return material_.write(each.first, each.second); });
}

/// Requires the file's lock, in a change of the file.
bool SqliteProject::removeRows(Cookie const& clip) {
    return clips_->write(clip, std::nullopt) && media_->removeClip(clip) && material_.removeClip(clip);
}

std::optional<AddedMedia> SqliteProject::addMissing(std::vector<NewClip> const& clips) {
    AddedMedia added;
    std::lock_guard const scope(file_->lock);
    bool const isDone = file_->change(std::to_string(clips.size()) + " clips", [&] {
        return std::all_of(clips.begin(), clips.end(),
                           [&](NewClip const& clip) { return addMissing(clip, added); });
    });
    return isDone ? std::optional(added) : std::nullopt;
}

/// Requires the file's lock, in a change of the file.
bool SqliteProject::addMissing(NewClip clip, AddedMedia& added) {
    for (auto& each : clip.media) {
        std::erase_if(each.second.proxies,
                      [&](MediaFileInfo const& proxy) { return media_->isFiled(proxy); });
    }
    if (clips_->isThere(clip.cookie)) {
        return addProxies(clip, added);
    }
    if (isFiled(clip)) {
        return true;
    }
    ++added.clips;
    added.proxies += countProxies(clip);
    return write(clip);
}

/// Requires the file's lock, in a change of the file.
bool SqliteProject::addProxies(NewClip const& clip, AddedMedia& added) {
    for (auto const& [cookie, media] : clip.media) {
        CookieMedia kept = media_->readInChange(cookie);
        if (kept.isEmpty() || media.proxies.empty()) {
            continue;
        }
        kept.proxies.insert(kept.proxies.end(), media.proxies.begin(), media.proxies.end());
        if (!media_->write(cookie, kept)) {
            return false;
        }
    }
    added.proxies += countProxies(clip);
    return true;
}

/// Requires the file's lock.
bool SqliteProject::isFiled(NewClip const& clip) {
    return std::any_of(clip.media.begin(), clip.media.end(), [&](auto const& each) {
        return each.second.original && media_->isFiled(*each.second.original);
    });
}

bool SqliteProject::isThere(NewClip const& clip) {
    std::lock_guard const scope(file_->lock);
    return clips_->isThere(clip.cookie) || isFiled(clip);
}

bool SqliteProject::removeClip(Cookie const& clip) {
    std::lock_guard const scope(file_->lock);
    return file_->change("the removal of " + clip.asString(true).str(), [&] { return removeRows(clip); });
}

bool SqliteProject::setDriveRoot(DriveId const& drive, LightweightString<wchar_t> const& root) {
    if (root.empty()) {
        return removeDrive(drive);
    }
    bool const isWritten = drives_.setDriveRoot(drive, root);
    if (isWritten && before_) {
        DiskManager::instance().setDriveRoot(drive, root);
    }
    return isWritten;
}

bool SqliteProject::removeDrive(DriveId const& drive) {
    bool const isWritten = drives_.setDriveRoot(drive, {});
    if (isWritten && before_) {
        DiskManager::instance().removeDrive(drive);
    }
    return isWritten;
}

bool SqliteProject::setDriveForTask(char const* task, DriveId const& drive) {
    bool const isWritten = drives_.setDriveForTask(task, drive);
    if (isWritten && before_) {
        DiskManager::instance().setDriveForTask(task, drive);
    }
    return isWritten;
}
