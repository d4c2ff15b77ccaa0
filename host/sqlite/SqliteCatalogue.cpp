#include "host/sqlite/SqliteCatalogue.h"

#include <utility>

#include "toolkit/catalogue/OwnFiles.h"

SqliteCatalogue::SqliteCatalogue(std::shared_ptr<ProjectFile> file)
    : SqliteCatalogue(Ox::makePtr<SqliteMedia>(std::move(file))) {}

/// The name is made without the file's lock: it may ask the file manager.
bool SqliteCatalogue::findFileForCookie(Cookie const& cookie, LightweightString<wchar_t>& filename,
                                        DecodeFormat const& format) {
    auto const found = media_->find(cookie);
    MediaFileInfo const* const file = found ? found->second.ofLevel(format.level) : nullptr;
    if (file != nullptr) {
        filename = file->getPhysicalFilename();
    }
    return file != nullptr;
}

Ox::Ptr<FsysDirectoryEntry> SqliteCatalogue::findEntryForCookie(Cookie const& cookie) {
    auto const found = media_->find(cookie);
    return found ? Ox::makePtr<FsysDirectoryEntry>(found->first, found->second, media_)
                 : Ox::Ptr<FsysDirectoryEntry>();
}

std::vector<Ox::Ptr<FsysDirectoryEntry>> SqliteCatalogue::getClipMediaFiles(Cookie const& clip) {
    std::vector<Ox::Ptr<FsysDirectoryEntry>> entries;
    for (auto const& [cookie, media] : media_->findClip(clip)) {
        entries.push_back(Ox::makePtr<FsysDirectoryEntry>(cookie, media, media_));
    }
    return entries;
}

void SqliteCatalogue::addFile(Cookie const& cookie, MediaFileInfo const& file, bool) {
    CookieMedia now;
    static_cast<void>(media_->change(
        cookie,
        [&](CookieMedia& media) {
            media.add(file);
            return true;
        },
        now));
}

/// What is gone from the project first, and only then deleted, is never missed by it.
OxResult SqliteCatalogue::removeFile(Cookie const& cookie, eMediaTypes types, bool) {
    CookieMedia now;
    std::vector<MediaFileInfo> removed;
    bool const isDone = media_->change(
        cookie,
        [&](CookieMedia& media) {
            removed = media.take(types);
            return !removed.empty();
        },
        now);
    return isDone ? deleteOwnFiles(removed) : oxFailure;
}
