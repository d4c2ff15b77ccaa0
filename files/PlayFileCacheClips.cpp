/// What happens to the cache of open files when clips are closed, get another identity, or change.
#include <algorithm>
#include <set>

#include "files/PlayFileCache.h"
#include "files/PlayUtil.h"
#include "ole/os/OS.h"
#include "playfile/playfile.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/edit/Edit.h"
#include "toolkit/services/Paths.h"

namespace {

using FileSet = std::set<Ox::Ptr<FileReadInstance>>;

std::size_t channelCount(EditPtr const& edit, Edit::eChannelKind kind) {
    Vector<int> channels;
    edit->getChans(channels, kind, Edit::allChannels);
    return channels.size();
}

/// The cookie of a channel; channel numbers are 8 bits wide.
Cookie channelOf(Cookie const& edit, CookieType type, std::size_t channel) {
    return convertCookie(edit, type, static_cast<unsigned char>(channel));
}

bool renameFile(LightweightString<wchar_t> const& from, LightweightString<wchar_t> const& to) {
    return OS()->getFileManager().renameFile(from, to, false);
}

/// A path with the name that the new identity gives it, in the same folder.
LightweightString<wchar_t> renamedPath(LightweightString<wchar_t> const& path, Cookie const& to) {
    return getPath(path) + to.asWString() + LightweightString<wchar_t>(L".") + getExtension(path);
}

/// Names of all files of a clip that can be read now, proxies included.
std::set<LightweightString<wchar_t>> availableFiles(Cookie const& edit) {
    std::set<LightweightString<wchar_t>> names;
    auto const add = [&names](MediaFileInfo const& file) {
        if (file.status == MediaFileInfo::available) {
            names.insert(file.getPhysicalFilename());
        }
    };
    EditPtr clip;
    clip.i_open(edit);
    CookieVec const references = clip ? clip->getReferences(Edit::mediaReferences) : CookieVec();
    for (Cookie const& cookie : references) {
        if (Ox::Ptr<FsysDirectoryEntry> const entry = SystemCache::instance()->findEntryForCookie(cookie)) {
            add(*entry);
            std::for_each(entry->getProxyFiles().begin(), entry->getProxyFiles().end(), add);
        }
    }
    return names;
}

}  // namespace

Ox::Ptr<FileReadInstance> PlayFileCache::remove(Cookie const& cookie, DecodeFormat const& format) {
    ScopedLock const scope(cacheLock_);
    CacheEntry key;
    key.type = PlayUtil::getType(cookie);
    if (!SystemCache::instance()->findFileForCookie(cookie, key.filename, format)) {
        return {};
    }
    auto const found = openFiles_.find(key);
    if (found != openFiles_.end()) {
        found->second->purge();
        auto const removed = openFiles_.extract(found);
        noteOpenCount();
    }
    failedOpens_.erase(key);
    return {};
}

/// A file's end may remove others, so the search begins anew after each.
void PlayFileCache::remove(LightweightString<wchar_t> const& filename) {
    ScopedLock const scope(cacheLock_);
    auto const isIt = [&](FileMap::value_type const& entry) { return entry.second->filename == filename; };
    for (;;) {
        auto const found = std::find_if(openFiles_.begin(), openFiles_.end(), isIt);
        if (found == openFiles_.end()) {
            return;
        }
        found->second->purge();
        auto const removed = openFiles_.extract(found);
        noteOpenCount();
    }
}

/// The lock is held across the edit and all that is removed, so that nobody opens one of its files between.
void PlayFileCache::close(Cookie const& cookie, eMediaTypes types) {
    ScopedLock const scope(cacheLock_);
    if (cookie.type() != 'E') {
        removeLevels(cookie, types);
        return;
    }
    EditPtr edit;
    edit.i_open(cookie);
    if (!edit) {
        return;
    }
    std::size_t const videoChannels = channelCount(edit, Edit::videoChannels);
    for (std::size_t channel = 0; channel <= videoChannels; ++channel) {
        removeLevels(channelOf(cookie, 'V', channel), types);
    }
    std::size_t const audioChannels = channelCount(edit, Edit::audioChannels);
    for (std::size_t channel = 1; channel <= audioChannels; ++channel) {
        removeLevels(channelOf(cookie, 'S', channel), types);
    }
    edit.i_close();
}

void PlayFileCache::removeLevels(Cookie const& cookie, eMediaTypes types) {
    if ((types & mediaOriginal) != 0) {
        remove(cookie, DecodeFormat(levelOriginal));
    }
    if ((types & mediaProxy) != 0) {
        remove(cookie, DecodeFormat(levelProxy));
    }
}

bool PlayFileCache::renameMediaFile(Cookie const& from, Cookie const& to) {
    SystemCache& catalogue = *SystemCache::instance();
    Ox::Ptr<FsysDirectoryEntry> const entry = catalogue.findEntryForCookie(from);
    if (!entry) {
        return false;
    }
    Shared()->remove(from, DecodeFormat::getDefault());
    MediaFileInfo file = *entry;
    LightweightString<wchar_t> const link = file.getLinkFileName();
    if (link.empty() || !renameFile(link, renamedPath(link, to))) {
        return false;
    }
    catalogue.removeFile(from, mediaAll, false);
    MaterialFilename const& material = file.materialFilename;
    file.setMaterialFilename(MaterialFilename(
        material.getDrive(), material.getPath().substitute(from.asWString(), to.asWString())));
    catalogue.addFile(to, file, false);
    if (from.type() == 'S') {
        static_cast<void>(renameFile(getWaveformDataFileFor(from), getWaveformDataFileFor(to)));
    }
    return true;
}

bool PlayFileCache::renameMediaFiles(Cookie const& from, Cookie const& to) {
    if (!SystemCache::instance()->getClipMediaFiles(to).empty()) {
        return false;
    }
    EditPtr edit;
    edit.i_open(from);
    if (!edit) {
        return false;
    }
    playfile_close_files(from, mediaAll);
    std::size_t const videoChannels = channelCount(edit, Edit::videoChannels);
    std::size_t const audioChannels = channelCount(edit, Edit::audioChannels);
    std::size_t renamed = 0;
    for (std::size_t channel = 0; channel < videoChannels; ++channel) {
        renamed += renameMediaFile(channelOf(from, 'V', channel), channelOf(to, 'V', channel)) ? 1 : 0;
    }
    for (std::size_t channel = 1; channel <= audioChannels; ++channel) {
        renamed += renameMediaFile(channelOf(from, 'S', channel), channelOf(to, 'S', channel)) ? 1 : 0;
    }
    edit.i_close();
    return renamed == videoChannels + audioChannels;
}

/// The files are asked without the lock; each sees the value that the one before it left.
void PlayFileCache::recalculateSize(Cookie const& edit, unsigned int value, unsigned int& size) {
    std::set<LightweightString<wchar_t>> const names = availableFiles(edit);
    FileSet files;
    {
        ScopedLock const scope(cacheLock_);
        for (auto const& [key, file] : openFiles_) {
            if (names.count(file->filename) != 0) {
                files.insert(file);
            }
        }
    }
    unsigned int current = size;
    for (Ox::Ptr<FileReadInstance> const& file : files) {
        file->recalculateSize(value, current);
        size = std::min(current, size);
    }
}
